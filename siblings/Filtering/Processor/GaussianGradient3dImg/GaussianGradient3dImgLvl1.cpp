#include "siblings/Filtering/Processor/GaussianGradient3dImg/GaussianGradient3dImgLvl1.h"

#include "siblings/Filtering/FilteringMessages.h"
#include "siblings/Filtering/GaussianRules.h"
#include "siblings/Filtering/Processor/GaussianGradient3dImg/GaussianGradient3dImgLvl2.h"
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

ORVIK_DEFINE_PROCESSOR(GaussianGradient3dImgLvl1)

processor::RulePtr GaussianGradient3dImgLvl1::createRule() const
{
    return makesGaussian(attribute<InStdDevX>(), attribute<InOptGradientGaussianCoverage>())
           && makesGaussian(attribute<InStdDevY>(), attribute<InOptGradientGaussianCoverage>())
           && makesGaussian(attribute<InStdDevZ>(), attribute<InOptGradientGaussianCoverage>())
           && matchSize(attribute<InImg3d>(), attribute<OutOptGradXImg3d>())
           && matchSize(attribute<InImg3d>(), attribute<OutOptGradYImg3d>())
           && matchSize(attribute<InImg3d>(), attribute<OutOptGradZImg3d>()) && imagesApart(*this);
}

void GaussianGradient3dImgLvl1::initInitializers(processor::InitializerMap& initializers)
{
    const boost::shared_ptr<OutOptGradXImg3d> x = attribute<OutOptGradXImg3d>();
    const boost::shared_ptr<OutOptGradYImg3d> y = attribute<OutOptGradYImg3d>();
    const boost::shared_ptr<OutOptGradZImg3d> z = attribute<OutOptGradZImg3d>();
    addInitializer<OutOptGradXImg3d>(initializers, outputOfNoneGiven(x, {y, z}, attribute<InImg3d>()));
    addInitializer<OutOptGradYImg3d>(initializers, outputOfNoneGiven(y, {x, z}, attribute<InImg3d>()));
    addInitializer<OutOptGradZImg3d>(initializers, outputOfNoneGiven(z, {x, y}, attribute<InImg3d>()));
}

processor::RetrievalResult GaussianGradient3dImgLvl1::retrieveProvider(const core::BasePriority& priority,
                                                                       processor::ProviderPtr& provider)
{
    return dispatch<GaussianGradient3dImgLvl2>(priority, provider, eachVolume<InSubImg3d>(value<InImg3d>()),
                                               same(attribute<InStdDevX>()), same(attribute<InStdDevY>()),
                                               same(attribute<InStdDevZ>()),
                                               same<InGaussianCoverage>(value<InOptGradientGaussianCoverage>()),
                                               ifSet(eachVolume<OutOptSubGradXImg3d>(value<OutOptGradXImg3d>())),
                                               ifSet(eachVolume<OutOptSubGradYImg3d>(value<OutOptGradYImg3d>())),
                                               ifSet(eachVolume<OutOptSubGradZImg3d>(value<OutOptGradZImg3d>())));
}

typedef FunctionForms<GaussianGradient3dImgLvl1, OutOptGradXImg3d, OutOptGradYImg3d, OutOptGradZImg3d> Forms;

static void prepare(Forms::Processor& processor, const ConstImagePtr& in, float stdDevX, float stdDevY, float stdDevZ)
{
    processor.set<InImg3d>(in);
    processor.set<InStdDevX>(stdDevX);
    processor.set<InStdDevY>(stdDevY);
    processor.set<InStdDevZ>(stdDevZ);
}

void gaussianGradient3dImg(const ConstImagePtr& in, float stdDevX, float stdDevY, float stdDevZ, double coverage,
                           const ImagePtr& outX, const ImagePtr& outY, const ImagePtr& outZ)
{
    if (!outX && !outY && !outZ)
        ORVIK_THROW(processor::ORVIKBaseProcessingException, processor::g_baseProcessingLogSource,
                    processor::eProcessorMessage::eRunFailed, "gaussianGradient3dImg",
                    messageText(getORVIKIPLFilteringLogMessageManager(), eFilteringRuleMessage::eNoOutputOfThree));
    Forms::run(Forms::eAllPlanes, [&](Forms::Processor& processor) {
        prepare(processor, in, stdDevX, stdDevY, stdDevZ);
        processor.set<InOptGradientGaussianCoverage>(GaussianCoverage::createNode(coverage));
        processor.set<OutOptGradXImg3d>(outX);
        processor.set<OutOptGradYImg3d>(outY);
        processor.set<OutOptGradZImg3d>(outZ);
    });
}

std::tuple<ImagePtr, ImagePtr, ImagePtr> gaussianGradient3dImg(const ConstImagePtr& in, float stdDev)
{
    return Forms::all(Forms::run(Forms::eAllPlanes,
                                 [&](Forms::Processor& processor) { prepare(processor, in, stdDev, stdDev, stdDev); }));
}

}}}  // namespace orvik::imaproc::filter
