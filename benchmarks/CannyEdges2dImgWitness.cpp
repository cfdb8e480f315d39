// Compares our edges with those of OpenCV, sample by sample, on gradients of photographs: a witness that knows nothing
// of this code. Exit status 1 when a sample differs.

#include "Photographs.h"

#include "Processor/CannyEdges2dImg/CannyEdges2dImgLvl1.h"

#include "frame/attr/Records.h"

#include <opencv2/imgproc.hpp>

#include <cmath>
#include <cstdio>
#include <cstdlib>

using namespace orvik;
using bench::ImagePtr;

namespace {

unsigned long nbDifferences(const std::pair<ImagePtr, ImagePtr>& gradients, double low, double high)
{
    const int sizeX = static_cast<int>(gradients.first->getSizeX()), sizeY = static_cast<int>(gradients.first->getSizeY());
    const auto view = [&](const ImagePtr& image) {
        return cv::Mat(sizeY, sizeX, CV_16SC1, image->accessLine(0), static_cast<std::size_t>(image->getStrides().y));
    };
    cv::Mat theirs;
    cv::Canny(view(gradients.first), view(gradients.second), theirs, low, high, true);
    const ImagePtr ours = imaproc::fd::cannyEdges2dImg(gradients.first, gradients.second,
                                                       imaproc::attr::CannyThresholds::createNode(low, high));
    unsigned long differences = 0;
    for (int y = 0; y < sizeY; ++y) {
        const unsigned char* const line = static_cast<const unsigned char*>(ours->getLine(static_cast<unsigned long>(y)));
        for (int x = 0; x < sizeX; ++x)
            differences += (theirs.at<unsigned char>(y, x) != 0) != (line[x] != 0);
    }
    return differences;
}

}  // namespace

int main(int argc, char** argv)
{
    unsigned long nbSamples = 0, differences = 0;
    for (int i = 1; i < (argc > 1 ? argc : 2); ++i) {
        if (argc > 1)
            setenv("ORVIK_PICTURE", argv[i], 1);
        for (const unsigned long size : {511ul, 1024ul, 2050ul}) {
            const std::pair<ImagePtr, ImagePtr> gradients = bench::gradientsOfPhotograph(size, image::eIBT_Int16);
            for (const double low : {0.5, 0.7, 0.85, 0.95}) {
                // Whole thresholds: that function rounds the square of others.
                const double lowest = std::floor(bench::magnitudeQuantile(*gradients.first, *gradients.second, low));
                const double highest = std::floor(2.0 * lowest);
                const unsigned long found = nbDifferences(gradients, lowest, highest);
                nbSamples += size * size;
                differences += found;
                if (found)
                    std::printf("%s, %lu x %lu, thresholds %g and %g: %lu samples differ\n", bench::photographPath().c_str(),
                                size, size, lowest, highest, found);
            }
        }
    }
    std::printf("%lu of %lu samples differ from OpenCV's Canny\n", differences, nbSamples);
    return differences ? 1 : 0;
}
