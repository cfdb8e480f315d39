#pragma once

#include "Library.h"

#include "frame/attr/Enumerations.h"
#include "frame/processor/Processor.h"

namespace orvik { namespace image {
class BaseImage;
}}  // namespace orvik::image

namespace orvik { namespace imaproc {

namespace attr {
struct InGxGreyImg2d;
struct InGyGreyImg2d;
struct InCannyThresholds;
struct InOptOptimizationPolicy;
struct OutOptWk1BinImg;
struct OutOptWk2BinImg;
struct OutOptWk1LabelImg;
struct OutBinImg;
class CannyThresholds;
}  // namespace attr

namespace advmorpho {
class ConnectedComponent2dImgLvl1;
}

namespace fd {

class CannyEdges2dImgLvl1;

/// Finds edges in planes, from gradients that the caller has computed.
///
/// A pixel is a candidate when the magnitude sqrt(gx^2 + gy^2) of its gradient is above the low threshold and not less
/// than that of its neighbours along the gradient, taken in four sectors of 45 degrees. Of two equal neighbours along x
/// or y the first in scan order stays; of two equal diagonal neighbours none does. Candidates above the high threshold
/// are edges, and so are those that hang together with one through candidates, in the neighbourhood of eight.
/// After J. Canny, "A computational approach to edge detection", IEEE Trans. PAMI 8(6), 1986.
///
/// @param inGxImg2d, inGyImg2d  gradient along x and y, any number of planes, of equal sizes and buffer type, any of the
/// eleven types; reads 0 outside the image. Magnitudes are compared squared: in double for float images, else in
/// unsigned integers that wrap (16 bits for samples of 8 bits, 32 bits for the others).
/// @param inCannyThresholds  low and high threshold, absolute, in the unit of the gradients. A negative one acts as its
/// absolute value. Neither is checked against the other: with low above high every candidate is an edge.
/// @return a new binary image of the size of the gradients: 1 on edges, 0 elsewhere.
/// @throws processor::ORVIKBaseProcessingException  when an image or the thresholds are null, or sizes or types differ;
/// the text names the attributes and both values. Nothing is written then.
/// Cost: a few passes over the image, no further image. The same bits for any strips, threads and instruction set.
ORVIK_API boost::shared_ptr<image::BaseImage> cannyEdges2dImg(
    const boost::shared_ptr<const image::BaseImage>& inGxImg2d, const boost::shared_ptr<const image::BaseImage>& inGyImg2d,
    const boost::shared_ptr<const attr::CannyThresholds>& inCannyThresholds);

/// The same into an image of the caller's.
///
/// @param inOptimizationPolicy  attr::ePOP_Labels finds what hangs together by labelling: passes independent of the
/// picture, two more images, at most 65535 components (more end the run with a message that says so). Any other value
/// spreads strong edges in place; the default of the shorter form.
/// @param outImg  of the size of the gradients, in memory of its own. With one unsigned byte per sample (types 2, 8 and
/// 11) it also holds the classes in between; other types get 0 and 1 too, through a working image. With attr::ePOP_Labels
/// and such another type only the strong candidates are written: use types 2, 8 or 11 there.
ORVIK_API void cannyEdges2dImg(const boost::shared_ptr<const image::BaseImage>& inGxImg2d,
                               const boost::shared_ptr<const image::BaseImage>& inGyImg2d,
                               const boost::shared_ptr<const attr::CannyThresholds>& inCannyThresholds,
                               const attr::eProcessingOptimizationPolicy& inOptimizationPolicy,
                               const boost::shared_ptr<image::BaseImage>& outImg);

/// The same in the background; the result is had by getAsyncProcessorOutput.
ORVIK_API boost::shared_ptr<CannyEdges2dImgLvl1> cannyEdges2dImg_async(
    const boost::shared_ptr<const image::BaseImage>& inGxImg2d, const boost::shared_ptr<const image::BaseImage>& inGyImg2d,
    const boost::shared_ptr<const attr::CannyThresholds>& inCannyThresholds);
ORVIK_API boost::shared_ptr<CannyEdges2dImgLvl1> cannyEdges2dImg_async(
    const boost::shared_ptr<const image::BaseImage>& inGxImg2d, const boost::shared_ptr<const image::BaseImage>& inGyImg2d,
    const boost::shared_ptr<const attr::CannyThresholds>& inCannyThresholds,
    const attr::eProcessingOptimizationPolicy& inOptimizationPolicy, const boost::shared_ptr<image::BaseImage>& outImg);

/// Waits for the end. @throws what ended the run, when it failed.
ORVIK_API boost::shared_ptr<image::BaseImage> getAsyncProcessorOutput(boost::shared_ptr<CannyEdges2dImgLvl1> processor);

/// Level 1: whole images. Chains the classes of Level 2 with the hysteresis: first 0 (no candidate), 1 (weak) and 2
/// (strong) in a working image, then 2 spreads over what hangs together with it, then what is 2 becomes 1.
class ORVIK_API CannyEdges2dImgLvl1
    : public processor::Processor<CannyEdges2dImgLvl1, processor::BaseRepeatedAsync1Processor, attr::InGxGreyImg2d,
                                  attr::InGyGreyImg2d, attr::InCannyThresholds, attr::InOptOptimizationPolicy,
                                  attr::OutOptWk1BinImg, attr::OutOptWk2BinImg, attr::OutOptWk1LabelImg, attr::OutBinImg>
{
    ORVIK_PROCESSOR(CannyEdges2dImgLvl1, 0)

    using BaseRepeatedAsync1Processor::retrieveProvider;
    processor::RetrievalResult retrieveProvider(const core::BasePriority& priority, unsigned int iterationNumber,
                                                processor::ProviderPtr& provider) override;

private:
    processor::RulePtr createRule() const;
    void initInitializers(processor::InitializerMap& initializers);

    processor::RetrievalResult retrieveFirstProvider(const core::BasePriority&, processor::ProviderPtr&);
    processor::RetrievalResult retrieveSecondProvider(const core::BasePriority&, processor::ProviderPtr&);
    processor::RetrievalResult retrieveThirdProvider(const core::BasePriority&, processor::ProviderPtr&);
    processor::RetrievalResult retrieveFourthProvider(const core::BasePriority&, processor::ProviderPtr&);
    processor::RetrievalResult retrieveFifthProvider(const core::BasePriority&, processor::ProviderPtr&);
    processor::RetrievalResult retrieveSixthProvider(const core::BasePriority&, processor::ProviderPtr&);
    processor::RetrievalResult retrieveThresholdImgProvider(const core::BasePriority&, processor::ProviderPtr&);

    bool usesLabels() const;
    /// The image of classes: the result itself where it can hold them.
    boost::shared_ptr<image::BaseImage> workingImage() const;
    /// Makes working image `A` of the size of the result unless there is one.
    template<class A>
    BoolResult makeWorkingImage(unsigned int bufferType);

    boost::shared_ptr<advmorpho::ConnectedComponent2dImgLvl1> m_connectedComponents;  // tells the number of labels
};

}  // namespace fd
}}  // namespace orvik::imaproc
