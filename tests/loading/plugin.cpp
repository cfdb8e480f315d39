// Uses the feature-detection library as a plugin of some application would, and leaves results behind.

#include "Observer.h"

#include "Processor/CannyEdges2dImg/CannyEdges2dImgLvl1.h"

#include "frame/attr/Records.h"
#include "frame/util/BaseException.h"

using namespace orvik;

/// Edges of one bright pixel by both call shapes, and a refusal; 0 when anything is not as it should be.
extern "C" ORVIK_API int useLibrary()
{
    const boost::shared_ptr<image::BaseImage> gx = image::createImage(image::eIBT_Int16, {200, 40});
    const boost::shared_ptr<image::BaseImage> gy = image::createImage(image::eIBT_Int16, {200, 40});
    static_cast<short*>(gx->accessLine(20))[100] = 50;
    const auto thresholds = imaproc::attr::CannyThresholds::createNode(10, 20);
    Leftovers& leftovers = accessLeftovers();
    leftovers.image = imaproc::fd::cannyEdges2dImg(gx, gy, thresholds);
    leftovers.record = thresholds;
    const auto running = imaproc::fd::cannyEdges2dImg_async(gx, gy, thresholds);
    if (static_cast<const unsigned char*>(getAsyncProcessorOutput(running)->getLine(20))[100] != 1)
        return 0;
    try {
        imaproc::fd::cannyEdges2dImg(gx, image::createImage(image::eIBT_Int16, {200, 41}), thresholds);
    } catch (const processor::ORVIKBaseProcessingException& e) {
        return std::string(e.what()).find("200 x 41") != std::string::npos;
    }
    return 0;
}
