// Uses the frame alone: an image, and its gradient.
#include "frame/image/BaseImage.h"
#include "siblings/Filtering/Processor/GaussianGradient2dImg/GaussianGradient2dImgLvl1.h"

#include <iostream>

int main()
{
    using namespace orvik;
    float ramp[9][9];
    for (int y = 0; y < 9; ++y)
        for (int x = 0; x < 9; ++x)
            ramp[y][x] = static_cast<float>(2 * x + 3 * y);
    const auto image = image::wrapBuffer(static_cast<const void*>(ramp), image::eIBT_Real32, {9, 9});
    const auto gradients = imaproc::filter::gaussianGradient2dImg(image, 0.5f);
    std::cout << static_cast<const float*>(gradients.first->getLine(4))[4] << " "
              << static_cast<const float*>(gradients.second->getLine(4))[4] << "\n";
}
