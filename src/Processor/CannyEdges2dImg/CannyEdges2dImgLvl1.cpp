#include "Processor/CannyEdges2dImg/CannyEdges2dImgLvl1.h"

#include "Processor/CannyChainStages.h"
#include "Processor/CannyEdges2dImg/CannyEdges2dImgLvl2.h"

#include "frame/imaproc/FunctionForms.h"
#include "frame/processor/ProcessorFactory.h"
#include "siblings/AdvancedMorphology/Processor/ConnectedComponent2dImg/ConnectedComponent2dImgLvl1.h"
#include "siblings/AdvancedMorphology/Processor/IterativeExtremumPropagation2dImg/IterativeExtremumPropagation2dImgLvl2.h"
#include "siblings/AdvancedMorphology/Processor/LabelExtremumPropagation2dImg/LabelExtremumPropagation2dImgLutBuildPassLvl2.h"
#include "siblings/AdvancedMorphology/Processor/LabelExtremumPropagation2dImg/LabelExtremumPropagation2dImgThresholdPassLvl2.h"
#include "siblings/Utility/Processor/BasicThresholdImg/BasicThresholdImgLvl2.h"

namespace orvik { namespace imaproc { namespace fd {

using namespace attr;

/// Planes: what the chain of stages works with.
struct CannyEdges2dFamily
{
    typedef CannyEdges2dImgLvl2 Classes;
    typedef advmorpho::IterativeExtremumPropagation2dImgLvl2 IterativePropagation;
    typedef advmorpho::LabelExtremumPropagation2dImgThresholdPassLvl2 LabelThresholdPass;
    typedef advmorpho::ConnectedComponent2dImgLvl1 ConnectedComponents;
    typedef advmorpho::LabelExtremumPropagation2dImgLutBuildPassLvl2 LabelLutPass;
    typedef util::BasicThresholdImgLvl2 Threshold;
    typedef GradientList<Gradient<InGxGreyImg2d, InSubGxImg2d>, Gradient<InGyGreyImg2d, InSubGyImg2d>> Gradients;
    typedef InSubImg2d InSubImg;
    typedef InSubLabelImg2d InSubLabelImg;
    typedef InSubImg2d InThresholdImg;
    typedef attr::InBinLabImg InBinLabImg;
    typedef attr::OutLabelImg OutLabelImg;
    typedef InNeighborhood2d InNeighborhood;
    typedef InOptNeighborhood2d InOptNeighborhood;
    static constexpr eNeighborhood2d s_neighborhood = eN2D_Eight;

    static processor::RulePtr matchGradients(const WeakImage& a, const WeakImage& b) { return matchSizeAndType(a, b); }
    template<class A>
    static SubImages<A> each(const ImagePtr& image)
    {
        return eachPlane<A>(image);
    }
    template<class A>
    static SubImages<A> each(const ConstImagePtr& image)
    {
        return eachPlane<A>(image);
    }
};

ORVIK_DEFINE_PROCESSOR(CannyEdges2dImgLvl1)

typedef FunctionForms<CannyEdges2dImgLvl1, OutBinImg> Forms;

ORVIK_FUNCTION(cannyEdges2dImg, (const ConstImagePtr&, inGxImg2d)(const ConstImagePtr&, inGyImg2d)(
                                    const ConstPtr<CannyThresholds>&, inCannyThresholds))
{
    processor.set<InGxGreyImg2d>(inGxImg2d);
    processor.set<InGyGreyImg2d>(inGyImg2d);
    processor.set<InCannyThresholds>(inCannyThresholds);
}

ORVIK_PROCEDURE(cannyEdges2dImg, (const ConstImagePtr&, inGxImg2d)(const ConstImagePtr&, inGyImg2d)(
                                     const ConstPtr<CannyThresholds>&, inCannyThresholds)(
                                     const eProcessingOptimizationPolicy&, inOptimizationPolicy)(const ImagePtr&, outImg))
{
    prepare(processor, inGxImg2d, inGyImg2d, inCannyThresholds);
    processor.set<InOptOptimizationPolicy>(inOptimizationPolicy);
    processor.set<OutBinImg>(outImg);
}

ORVIK_READER

}}}  // namespace orvik::imaproc::fd
