#pragma once

#include "Library.h"

#include "frame/attr/Declarations.h"
#include "frame/processor/Processor.h"

namespace orvik { namespace imaproc { namespace fd {

class HoughLines2dImgLvl1;

/// Counts votes for the lines of an image: each pixel above a threshold votes with its value for every line through it.
///
/// out(rho, theta): row t stands for the angle theta = ThetaMin + t * (ThetaMax - ThetaMin) / NbThetaBins of the line's
/// normal, column i for the distance rho = (i - sizeX / 2) * RhoStep of the line from the centre of the plane, the pixel
/// (floor(W / 2), floor(H / 2)), where sizeX = 2 * trunc(1 + sqrt(hx^2 + hy^2) / RhoStep) with hx, hy the halves of W and
/// H rounded up. A pixel at (x, y) from the centre has p = (x * cos(theta) + y * sin(theta)) / RhoStep; its value v is
/// parted between columns floor(p) and floor(p) + 1, (1 - frac(p)) * v and frac(p) * v, each rounded to the nearest whole
/// number, halves away from 0, where the accumulator holds whole numbers.
/// After Hough, US patent 3069654, 1962, in the form of Duda, Hart, "Use of the Hough transformation to detect lines and
/// curves in pictures", CACM 15(1), 1972.
///
/// @param inGreyImg  W x H samples per plane, any of the eleven types: edges as a rule, where every edge pixel has 1 vote
/// when they are binary. NaN does not vote.
/// @param inOptHoughLinesImgParams  bins and threshold; null or not given: bins of 1 pixel, 180 angles from 0 to pi,
/// pixels above 0 vote. A RhoStep that is not above 0, or is below 2^-52, gives an accumulator of the size of step 1
/// without votes, or with a few in meaningless places; ThetaMax below ThetaMin makes angles fall from row to row; angles
/// that are not finite, and a threshold that is none, give no votes.
/// @return the accumulator, sizeX x NbThetaBins for each plane of the image: signed 32 bits for signed integers, unsigned
/// 32 bits for unsigned integers, binary and label images, but floats for 8-bit labels and floats. Whole numbers that do
/// not fit wrap. A share whose column is outside is dropped.
/// @throws processor::ORVIKBaseProcessingException  for a null image, and for an accumulator without bins or with more
/// than 2147483647 of them along an axis; the text has both sizes. std::bad_alloc with the size that there is no memory
/// for.
/// Cost: voters * NbThetaBins; memory for the accumulator, and for 4096 voters per thread. Whole numbers are the same for
/// any strips, threads and instruction set; sums of floats are for one thread, and depend on the order of strips otherwise.
ORVIK_API ImagePtr houghLines2dImg(const ConstImagePtr& inGreyImg,
                                   const ConstPtr<attr::HoughLinesImgParams>& inOptHoughLinesImgParams);
ORVIK_API ImagePtr houghLines2dImg(const ConstImagePtr& inGreyImg);

/// The same in the background; the accumulator is had by getAsyncProcessorOutput.
ORVIK_API Ptr<HoughLines2dImgLvl1> houghLines2dImg_async(const ConstImagePtr& inGreyImg);
ORVIK_API Ptr<HoughLines2dImgLvl1> houghLines2dImg_async(
    const ConstImagePtr& inGreyImg, const ConstPtr<attr::HoughLinesImgParams>& inOptHoughLinesImgParams);

/// Waits for the end. @throws what ended the run, when it failed.
ORVIK_API ImagePtr getAsyncProcessorOutput(Ptr<HoughLines2dImgLvl1> processor);

/// Level 1: whole images, one child per plane.
class ORVIK_API HoughLines2dImgLvl1
    : public processor::Processor<HoughLines2dImgLvl1, processor::BaseAsync1Processor, attr::InGreyImg2d,
                                  attr::InOptHoughLinesImgParams, attr::OutImg>
{
    ORVIK_PROCESSOR(HoughLines2dImgLvl1, 52)

    using BaseAsync1Processor::retrieveProvider;
    processor::RetrievalResult retrieveProvider(const core::BasePriority& priority,
                                                processor::ProviderPtr& provider) override;

private:
    processor::RulePtr createRule() const;
    void initInitializers(processor::InitializerMap& initializers);
};

}}}  // namespace orvik::imaproc::fd
