#pragma once

// Every public function in each of its forms, on small images: for tests that make something fail under a call. A new family
// joins by a line in publicCalls().

#include "FamilyShapes.h"
#include "ORVIKIPLFeatureDetection.h"
#include "Processor/ComputeBestCirclesRadiiFromGradMagImg2d/ComputeBestCirclesRadiiFromGradMagImg2dLvl1.h"
#include "Processor/ExtractHoughPeaks2d/ExtractHoughPeaks2dLvl1.h"
#include "Processor/ExtractRadiusFromHoughImg/ExtractRadiusFromHoughImgLvl1.h"
#include "Processor/MaxL2Norm2Msr/MaxL2Norm2MsrLvl1.h"

#include "frame/attr/Records.h"

#include <string>
#include <vector>

namespace orvik::test {

struct PublicCall
{
    std::string name;
    /// Makes the call; what it gives tells the result, outside of what is to fail.
    std::function<std::function<Numbers()>()> call;
};

template<class Result>
std::function<Numbers()> toBeRead(const Result& result)
{
    return [result] { return numbersOf(result); };
}

inline std::vector<PublicCall> publicCalls(unsigned long sizeX = 21, unsigned long sizeY = 17)
{
    using namespace imaproc;
    std::vector<PublicCall> calls;
    const ImagePtr plane = drawnImage(image::eIBT_Real32, {sizeX, sizeY}, {0, 1, 5, 9}, 3);
    const ImagePtr other = drawnImage(image::eIBT_Real32, {sizeX, sizeY}, {0, 2, 3}, 5);
    const ImagePtr planes = drawnImage(image::eIBT_UInt8, {sizeX, sizeY, 2}, {0, 0, 0, 1, 7}, 4);
    setSample(*plane, 30, 5, 4);                            // the largest of all, in one strip
    const ImagePtr grey = planes->getView(PlanIndex(), 1);  // votes of floats depend on the order of threads
    const auto thresholds = attr::CannyThresholds::createNode(1, 2);
    const auto votes = attr::HoughLinesImgParams::createNode(1.0, 0.0, kPi, 20u, 0.5f);
    // That of the largest sample alone, for the same reason.
    const auto gradientVotes = attr::HoughLinesGradientImgParams::createNode(1.0, -kPi, kPi, 60u, 20.0f);
    const auto radii = attr::createHoughCirclesRadiusRange(2, 6);
    const ImagePtr volume = drawnImage(image::eIBT_Int16, {sizeX, sizeY, 9}, {0, 0, 1, 4, 9}, 6);
    const auto shells = attr::createHoughCirclesRadiusRange(2, 4);
    const auto spheres = attr::HoughSpheres3dPpties::createNode();
    for (const double x : {4.0, 8.5, 20.0})
        spheres->access<attr::HoughSpheres3dPpties::Coll>().push_back(attr::HoughSphere3dPpties::createNode(x, 7, 1, 5.5,
                                                                                                            1));
    const ConstPtr<attr::HoughSpheres3dPpties> balls = spheres;
    const auto extraction = ConstPtr<attr::HoughLinesExtractionParams>();

#define ORVIK_CALL(space, name, ...) calls.push_back({#name, [=] { return toBeRead(space::name(__VA_ARGS__)); }})
#define ORVIK_BACKGROUND_CALL(name, reader, ...) \
    calls.push_back({#name "_async", [=] { return toBeRead(reader(fd::name##_async(__VA_ARGS__))); }})
#define ORVIK_CALLS(name, ...) \
    ORVIK_CALL(fd, name, __VA_ARGS__); \
    ORVIK_BACKGROUND_CALL(name, fd::getAsyncProcessorOutput, __VA_ARGS__)
// Planes are a volume, too.
#define ORVIK_PLANE_CALLS(name, ...) \
    ORVIK_CALLS(name, grey, __VA_ARGS__); \
    ORVIK_CALL(fd, multiSlice_##name, planes, __VA_ARGS__); \
    ORVIK_BACKGROUND_CALL(multiSlice_##name, fd::getAsyncProcessorMultiSliceOutput, planes, __VA_ARGS__)

    ORVIK_CALL(filter, gaussianGradient2dImg, planes, 1.0f);
    ORVIK_CALL(filter, gaussianGradient3dImg, planes, 1.0f);
    ORVIK_CALLS(maxL2Norm2Msr, plane, other);
    ORVIK_CALLS(cannyEdges2dImg, plane, other, thresholds);
    ORVIK_CALLS(cannySurfaces3dImg, planes, planes, planes, thresholds);
    ORVIK_CALLS(harrisCorner2dImg, planes, 1.0f);
    ORVIK_PLANE_CALLS(harrisCorner2d, 1.0f, 5ul, 2u);
    ORVIK_CALLS(harrisCorner3dImg, planes, 1.0f);
    ORVIK_PLANE_CALLS(harrisCorner3d, 1.0f, 5ul, 2u);
    ORVIK_PLANE_CALLS(extractLocalExtrema2d, 2u, 1u);
    ORVIK_PLANE_CALLS(extractLocalExtrema3d, 2u, 1u, 1u);
    ORVIK_CALLS(houghCircles2dImg, plane, other, radii);
    ORVIK_CALLS(houghCirclesPhaseCoded2dImg, plane, other, radii);
    ORVIK_PLANE_CALLS(houghCircles2d, radii);
    ORVIK_CALLS(houghCircles2d, plane, other, radii, attr::eHCAM_PhaseCoded, attr::eCIT_Both, 0.2, 20u, nullptr, nullptr,
                nullptr, nullptr);
    ORVIK_CALLS(extractHoughPeaks2d, plane, other, 1.0);
    ORVIK_CALLS(houghLines2dImg, planes, votes);
    ORVIK_PLANE_CALLS(houghLines2d, votes, extraction);
    ORVIK_CALLS(houghLinesGradient2dImg, plane, other, gradientVotes, 0.1f);
    ORVIK_CALLS(houghLinesGradient2d, plane, other, gradientVotes, extraction, 0.1f);

    ORVIK_CALLS(houghSpheres3dImg, volume, volume, volume, shells);
    ORVIK_PLANE_CALLS(houghSpheres3d, shells);
    ORVIK_CALLS(houghSpheres3dLabelImg, balls, planes);
    ORVIK_CALLS(houghSpheres3d, volume, volume, volume, shells, attr::eCIT_Both, 3ul, 0.2, 20u, nullptr, nullptr, nullptr);

#undef ORVIK_CALL
#undef ORVIK_BACKGROUND_CALL
#undef ORVIK_CALLS
#undef ORVIK_PLANE_CALLS
    return calls;
}

}  // namespace orvik::test
