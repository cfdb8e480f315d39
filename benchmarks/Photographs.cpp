#include "Photographs.h"

#include "PictureIo.h"

#include "siblings/Filtering/Processor/GaussianGradient2dImg/GaussianGradient2dImgLvl1.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <vector>

namespace orvik::bench {

std::string photographPath()
{
    const char* const chosen = std::getenv("ORVIK_PICTURE");
    return chosen ? chosen : std::string(ORVIK_DEMO_PICTURES) + "/camera.png";
}

ImagePtr enlargedPhotograph(unsigned long size, image::eImageBufferType type)
{
    examples::Picture picture;
    try {
        picture = examples::readPicture(photographPath());
    } catch (const examples::PictureError& e) {
        std::fprintf(stderr, "%s\nRun scripts/demo.sh once, or name a photograph in ORVIK_PICTURE.\n", e.what());
        std::exit(1);
    }
    const ImagePtr image = image::createImage(type, {size, size});
    const double stepX = static_cast<double>(picture.sizeX - 1) / static_cast<double>(size);
    const double stepY = static_cast<double>(picture.sizeY - 1) / static_cast<double>(size);
    std::vector<double> grey(picture.sizeX * picture.sizeY);
    for (unsigned long y = 0; y < picture.sizeY; ++y)
        for (unsigned long x = 0; x < picture.sizeX; ++x)
            grey[y * picture.sizeX + x] = picture.valueAt(x, y);
    image::withSampleType(image::toDataType(type), [&](auto zero) {
        typedef decltype(zero) Sample;
        for (unsigned long y = 0; y < size; ++y) {
            Sample* const line = static_cast<Sample*>(image->accessLine(y));
            for (unsigned long x = 0; x < size; ++x) {
                const double px = static_cast<double>(x) * stepX, py = static_cast<double>(y) * stepY;
                const unsigned long ix = static_cast<unsigned long>(px), iy = static_cast<unsigned long>(py);
                const double fx = px - static_cast<double>(ix), fy = py - static_cast<double>(iy);
                const double* const at = &grey[iy * picture.sizeX + ix];
                const double top = at[0] + fx * (at[1] - at[0]);
                const double bottom = at[picture.sizeX] + fx * (at[picture.sizeX + 1] - at[picture.sizeX]);
                const unsigned short sixtyFourths = static_cast<unsigned short>(64.0 * (top + fy * (bottom - top)));
                line[x] = static_cast<Sample>(sizeof(Sample) == 1 ? sixtyFourths / 64 : sixtyFourths);
            }
        }
    });
    return image;
}

std::pair<ImagePtr, ImagePtr> gradientsOfPhotograph(unsigned long size, image::eImageBufferType type)
{
    const ImagePtr image = enlargedPhotograph(size);
    const std::pair<ImagePtr, ImagePtr> gradients(image::createImageLike(*image, type),
                                                  image::createImageLike(*image, type));
    imaproc::filter::gaussianGradient2dImg(image, 2.0f, 2.0f, 4.0, gradients.first, gradients.second);
    return gradients;
}

double magnitudeQuantile(const image::BaseImage& gx, const image::BaseImage& gy, double share)
{
    std::vector<double> magnitudes;
    image::withSampleType(image::toDataType(gx.getBufferType()), [&](auto zero) {
        typedef decltype(zero) Sample;
        for (unsigned long y = 0; y < gx.getSizeY(); y += 3) {
            const Sample* const x = static_cast<const Sample*>(gx.getLine(y));
            const Sample* const yy = static_cast<const Sample*>(gy.getLine(y));
            for (unsigned long i = 0; i < gx.getSizeX(); i += 3)
                magnitudes.push_back(std::hypot(static_cast<double>(x[i]), static_cast<double>(yy[i])));
        }
    });
    const auto at = magnitudes.begin() + static_cast<long>(share * static_cast<double>(magnitudes.size() - 1));
    std::nth_element(magnitudes.begin(), at, magnitudes.end());
    return *at;
}

}  // namespace orvik::bench
