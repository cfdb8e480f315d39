#include "Processor/HoughSpheres3dLabelImg/HoughSpheres3dLabelImgLvl1.h"

#include "OutputInitializer/HoughSpheres3dLabelImgInitializerUtils.h"
#include "Processor/HoughSpheres3dLabelImg/HoughSpheres3dLabelImgLvl2.h"
#include "Rule/SphereLabelsRule.h"

#include "frame/attr/ImageAttributes.h"
#include "frame/attr/ValueAttributes.h"
#include "frame/imaproc/FunctionForms.h"
#include "frame/imaproc/ImageInitializers.h"
#include "frame/imaproc/ImageRules.h"
#include "frame/imaproc/Stages.h"
#include "frame/processor/ProcessorFactory.h"
#include "siblings/Utility/Processor/EraseImg/EraseImgLvl2.h"

namespace orvik { namespace imaproc { namespace fd {

using namespace attr;

ORVIK_DEFINE_PROCESSOR(HoughSpheres3dLabelImgLvl1)

processor::RulePtr HoughSpheres3dLabelImgLvl1::createRule() const
{
    return matchSize(attribute<InImg>(), attribute<OutLabelImg>())
           && matchImagePlans(attribute<InPIHoughSpheres3dPpties>(), attribute<InImg>(), eIPMP_Volumes)
           && canNameSpheres(attribute<InImg>(), attribute<OutLabelImg>(), attribute<InPIHoughSpheres3dPpties>())
           && imagesApart(*this, mayBeSame<InImg, OutLabelImg>);
}

void HoughSpheres3dLabelImgLvl1::initInitializers(processor::InitializerMap& initializers)
{
    addInitializer<OutLabelImg>(
        initializers, customOutput(attribute<OutLabelImg>(),
                                   outputHoughSpheres3dLabelImg(attribute<InImg>(), attribute<InPIHoughSpheres3dPpties>())));
}

processor::RetrievalResult HoughSpheres3dLabelImgLvl1::retrieveFirstProvider(const core::BasePriority& priority,
                                                                             processor::ProviderPtr& provider)
{
    return dispatch<util::EraseImgLvl2>(priority, provider, eachVolume<OutSubImg2d>(value<OutLabelImg>()));
}

processor::RetrievalResult HoughSpheres3dLabelImgLvl1::retrieveSecondProvider(const core::BasePriority& priority,
                                                                              processor::ProviderPtr& provider)
{
    const ImagePtr& out = value<OutLabelImg>();
    return dispatch<HoughSpheres3dLabelImgLvl2>(priority, provider, eachVolume<OutSubLabelImg3d>(out),
                                                entryOfEachVolume<InHoughSpheres3dPpties>(value<InPIHoughSpheres3dPpties>(),
                                                                                          *out));
}

typedef FunctionForms<HoughSpheres3dLabelImgLvl1, OutLabelImg> Forms;

ORVIK_FUNCTION(houghSpheres3dLabelImg,
               (const ConstPtr<PlanIndexedHoughSpheres3dPpties>&, spheres)(const ConstImagePtr&, inImg))
{
    // Attributes of collections do not tell those that are read alone; nothing is written to it.
    processor.set<InPIHoughSpheres3dPpties>(boost::const_pointer_cast<PlanIndexedHoughSpheres3dPpties>(spheres));
    processor.set<InImg>(inImg);
}

ORVIK_FUNCTION(houghSpheres3dLabelImg, (const ConstPtr<HoughSpheres3dPpties>&, spheres)(const ConstImagePtr&, inImg))
{
    Ptr<PlanIndexedHoughSpheres3dPpties> lists;
    if (spheres) {
        lists = PlanIndexedHoughSpheres3dPpties::createColl();
        lists->insert(PlanIndex(), boost::const_pointer_cast<HoughSpheres3dPpties>(spheres));
    }
    prepare(processor, lists, inImg);
}

ORVIK_PROCEDURE(houghSpheres3dLabelImg, (const ConstPtr<PlanIndexedHoughSpheres3dPpties>&,
                                         spheres)(const ConstImagePtr&, inImg)(const ImagePtr&, outImg))
{
    prepare(processor, spheres, inImg);
    processor.set<OutLabelImg>(outImg);
}

ORVIK_PROCEDURE(houghSpheres3dLabelImg,
                (const ConstPtr<HoughSpheres3dPpties>&, spheres)(const ConstImagePtr&, inImg)(const ImagePtr&, outImg))
{
    prepare(processor, spheres, inImg);
    processor.set<OutLabelImg>(outImg);
}

ORVIK_READER

}}}  // namespace orvik::imaproc::fd
