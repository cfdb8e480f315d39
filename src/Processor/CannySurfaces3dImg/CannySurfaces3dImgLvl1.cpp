#include "Processor/CannySurfaces3dImg/CannySurfaces3dImgLvl1.h"

#include "Processor/CannyChainStages.h"
#include "Processor/CannySurfaces3dImg/CannySurfaces3dImgLvl2.h"

#include "frame/imaproc/FunctionForms.h"
#include "frame/processor/ProcessorFactory.h"
#include "siblings/AdvancedMorphology/Processor/ConnectedComponent3dImg/ConnectedComponent3dImgLvl1.h"
#include "siblings/AdvancedMorphology/Processor/IterativeExtremumPropagation3dImg/IterativeExtremumPropagation3dImgLvl2.h"
#include "siblings/AdvancedMorphology/Processor/LabelExtremumPropagation3dImg/LabelExtremumPropagation3dImgLutBuildPassLvl2.h"
#include "siblings/AdvancedMorphology/Processor/LabelExtremumPropagation3dImg/LabelExtremumPropagation3dImgThresholdPassLvl2.h"
#include "siblings/Utility/Processor/BasicThresholdImg/BasicThresholdImgLvl1.h"

namespace orvik { namespace imaproc { namespace fd {

using namespace attr;

/// Volumes: what the chain of stages works with.
struct CannySurfaces3dFamily
{
    typedef CannySurfaces3dImgLvl2 Classes;
    typedef advmorpho::IterativeExtremumPropagation3dImgLvl2 IterativePropagation;
    typedef advmorpho::LabelExtremumPropagation3dImgThresholdPassLvl2 LabelThresholdPass;
    typedef advmorpho::ConnectedComponent3dImgLvl1 ConnectedComponents;
    typedef advmorpho::LabelExtremumPropagation3dImgLutBuildPassLvl2 LabelLutPass;
    typedef util::BasicThresholdImgLvl1 Threshold;
    typedef GradientList<Gradient<InGxGreyImg3d, InSubGxImg3d>, Gradient<InGyGreyImg3d, InSubGyImg3d>,
                         Gradient<InGzGreyImg3d, InSubGzImg3d>>
        Gradients;
    typedef InSubImg3d InSubImg;
    typedef InSubLabelImg3d InSubLabelImg;
    typedef InImg InThresholdImg;
    typedef InBinLabImg3d InBinLabImg;
    typedef OutLabelImg3d OutLabelImg;
    typedef InNeighborhood3d InNeighborhood;
    typedef InOptNeighborhood3d InOptNeighborhood;
    static constexpr eNeighborhood3d s_neighborhood = eN3D_TwentySix;

    /// Types are compared by Level 2 alone: deliberate.
    static processor::RulePtr matchGradients(const WeakImage& a, const WeakImage& b) { return matchSize(a, b); }
    template<class A, class Image>
    static SubImages<A> each(const Image& image)
    {
        return eachVolume<A>(image);
    }
};

ORVIK_DEFINE_PROCESSOR(CannySurfaces3dImgLvl1)

typedef FunctionForms<CannySurfaces3dImgLvl1, OutBinImg> Forms;

ORVIK_FUNCTION(cannySurfaces3dImg, (const ConstImagePtr&, inGxImg3d)(const ConstImagePtr&, inGyImg3d)(
                                       const ConstImagePtr&, inGzImg3d)(const ConstPtr<CannyThresholds>&, inCannyThresholds))
{
    processor.set<InGxGreyImg3d>(inGxImg3d);
    processor.set<InGyGreyImg3d>(inGyImg3d);
    processor.set<InGzGreyImg3d>(inGzImg3d);
    processor.set<InCannyThresholds>(inCannyThresholds);
}

ORVIK_PROCEDURE(cannySurfaces3dImg,
                (const ConstImagePtr&, inGxImg3d)(const ConstImagePtr&, inGyImg3d)(const ConstImagePtr&, inGzImg3d)(
                    const ConstPtr<CannyThresholds>&, inCannyThresholds)(const eProcessingOptimizationPolicy&,
                                                                         inOptimizationPolicy)(const ImagePtr&, outImg))
{
    prepare(processor, inGxImg3d, inGyImg3d, inGzImg3d, inCannyThresholds);
    processor.set<InOptOptimizationPolicy>(inOptimizationPolicy);
    processor.set<OutBinImg>(outImg);
}

ORVIK_READER

}}}  // namespace orvik::imaproc::fd
