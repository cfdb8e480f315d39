#include "siblings/Filtering/Processor/GaussianGradient2dImg/GaussianGradient2dImgLvl1.h"

#include "siblings/Filtering/FilteringMessages.h"
#include "siblings/Filtering/GaussianRules.h"
#include "siblings/Filtering/Processor/GaussianGradient2dImg/GaussianGradient2dImgLvl2.h"
#include "siblings/Filtering/WantedOutputs.h"

#include "frame/attr/ImageAttributes.h"
#include "frame/attr/ValueAttributes.h"
#include "frame/imaproc/FunctionForms.h"
#include "frame/imaproc/ImageRules.h"
#include "frame/imaproc/Stages.h"
#include "frame/processor/ProcessorFactory.h"
#include "frame/util/FrameMessages.h"

namespace orvik { namespace imaproc { namespace filter {

using namespace attr;

ORVIK_DEFINE_PROCESSOR(GaussianGradient2dImgLvl1)

processor::RulePtr GaussianGradient2dImgLvl1::createRule() const
{
    return makesGaussian(attribute<InStdDevX>(), attribute<InOptGradientGaussianCoverage>())
           && makesGaussian(attribute<InStdDevY>(), attribute<InOptGradientGaussianCoverage>())
           && matchSize(attribute<InImg>(), attribute<OutOptGradXImg>())
           && matchSize(attribute<InImg>(), attribute<OutOptGradYImg>()) && imagesApart(*this);
}

void GaussianGradient2dImgLvl1::initInitializers(processor::InitializerMap& initializers)
{
    const boost::shared_ptr<OutOptGradXImg> x = attribute<OutOptGradXImg>();
    const boost::shared_ptr<OutOptGradYImg> y = attribute<OutOptGradYImg>();
    addInitializer<OutOptGradXImg>(initializers, outputOfNoneGiven(x, {y}, attribute<InImg>()));
    addInitializer<OutOptGradYImg>(initializers, outputOfNoneGiven(y, {x}, attribute<InImg>()));
}

processor::RetrievalResult GaussianGradient2dImgLvl1::retrieveProvider(const core::BasePriority& priority,
                                                                       processor::ProviderPtr& provider)
{
    return dispatch<GaussianGradient2dImgLvl2>(priority, provider, eachPlane<InSubImg2d>(value<InImg>()),
                                               same(attribute<InStdDevX>()), same(attribute<InStdDevY>()),
                                               same<InGaussianCoverage>(value<InOptGradientGaussianCoverage>()),
                                               ifSet(eachPlane<OutOptSubGradXImg2d>(value<OutOptGradXImg>())),
                                               ifSet(eachPlane<OutOptSubGradYImg2d>(value<OutOptGradYImg>())));
}

typedef FunctionForms<GaussianGradient2dImgLvl1, OutOptGradXImg, OutOptGradYImg> Forms;

static void prepare(Forms::Processor& processor, const ConstImagePtr& in, float stdDevX, float stdDevY)
{
    processor.set<InImg>(in);
    processor.set<InStdDevX>(stdDevX);
    processor.set<InStdDevY>(stdDevY);
}

void gaussianGradient2dImg(const ConstImagePtr& in, float stdDevX, float stdDevY, double coverage, const ImagePtr& outX,
                           const ImagePtr& outY)
{
    if (!outX && !outY)
        ORVIK_THROW(processor::ORVIKBaseProcessingException, processor::g_baseProcessingLogSource,
                    processor::eProcessorMessage::eRunFailed, "gaussianGradient2dImg",
                    messageText(getORVIKIPLFilteringLogMessageManager(), eFilteringRuleMessage::eNoOutput));
    Forms::run(Forms::eAllPlanes, [&](Forms::Processor& processor) {
        prepare(processor, in, stdDevX, stdDevY);
        processor.set<InOptGradientGaussianCoverage>(GaussianCoverage::createNode(coverage));
        processor.set<OutOptGradXImg>(outX);
        processor.set<OutOptGradYImg>(outY);
    });
}

std::pair<ImagePtr, ImagePtr> gaussianGradient2dImg(const ConstImagePtr& in, float stdDev)
{
    return Forms::all(Forms::run(Forms::eAllPlanes,
                                 [&](Forms::Processor& processor) { prepare(processor, in, stdDev, stdDev); }));
}

}}}  // namespace orvik::imaproc::filter
