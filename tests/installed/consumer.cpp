// Calls every public function through the umbrella header, in each of its ways, and catches an exception.
#include "ORVIKIPLFeatureDetection.h"
#include "Processor/CannyEdges2dImg/CannyEdges2dImgLvl3.h"

#include <iostream>

using namespace orvik;
using namespace orvik::imaproc;

int main()
{
    const auto picture = image::createImage(image::eIBT_UInt8, {64, 48});
    for (unsigned long y = 16; y < 32; ++y)
        for (unsigned long x = 20; x < 44; ++x)
            static_cast<unsigned char*>(picture->accessLine(y))[x] = 200;
    core::setNbThreads(2);

    const auto gradients = filter::gaussianGradient2dImg(picture, 1.0f);
    const auto thresholds = attr::CannyThresholds::createNode(5.0, 15.0);
    const auto edges = fd::cannyEdges2dImg(gradients.first, gradients.second, thresholds);
    core::InstructionSetsIdentifier plain;
    plain.init(core::eIS_Generic);
    fd::CannyEdges2dImgLvl3::forceInstructionSets(plain);
    const auto run = fd::cannyEdges2dImg_async(gradients.first, gradients.second, thresholds);
    run->waitForEnd();
    const auto samePlainly = fd::getAsyncProcessorOutput(run);
    fd::CannyEdges2dImgLvl3::releaseForcedInstructionSets();
    unsigned nbEdges = 0, nbDifferent = 0;
    for (unsigned long i = 0; i < 64 * 48; ++i) {
        const auto a = static_cast<const unsigned char*>(edges->getLine(i / 64))[i % 64];
        nbEdges += a;
        nbDifferent += a != static_cast<const unsigned char*>(samePlainly->getLine(i / 64))[i % 64];
    }
    std::cout << "edges " << nbEdges << ", plainly " << nbDifferent << " different\n";

    std::cout << "corners " << fd::harrisCorner2d(picture, 4, 5)->size() << " of "
              << fd::extractLocalExtrema2d(fd::harrisCorner2dImg(picture), 5, 5,
                                           attr::createLocalExtremaConfig(attr::eLET_Maxima, 1.0))
                     ->size()
              << "\n";
    const auto lines = fd::houghLines2d(edges);
    std::cout << "votes " << (lines.second->getSizeX() == fd::houghLines2dImg(edges)->getSizeX()) << ", lines "
              << (lines.first->size() > 0) << "\n";

    try {
        fd::cannyEdges2dImg(picture, image::createImage(image::eIBT_UInt8, {65, 48}), thresholds);
    } catch (const BaseException& refusal) {
        std::cout << refusal.what() << "\n";
    }
}
