// Images of a call that share memory: every pair of every class, refused in words or served.

#include "FamilyShapes.h"

#include "Processor/CannyEdges2dImg/CannyEdges2dImgLvl1.h"
#include "Processor/CannySurfaces3dImg/CannySurfaces3dImgLvl1.h"
#include "Processor/ComputeBestCirclesRadiiFromGradMagImg2d/ComputeBestCirclesRadiiFromGradMagImg2dLvl1.h"
#include "Processor/ComputeBestSpheresRadiiFromGradMagImg3d/ComputeBestSpheresRadiiFromGradMagImg3dLvl1.h"
#include "Processor/HoughSpheres3d/HoughSpheres3dLvl1.h"
#include "Processor/HoughSpheres3dImg/HoughSpheres3dImgLvl1.h"
#include "Processor/HoughSpheres3dLabelImg/HoughSpheres3dLabelImgLvl1.h"
#include "Processor/ExtractHoughPeaks2d/ExtractHoughPeaks2dLvl1.h"
#include "Processor/ExtractRadiusFromHoughImg/ExtractRadiusFromHoughImgLvl1.h"
#include "Processor/HarrisCorner2d/HarrisCorner2dLvl1.h"
#include "Processor/HarrisCorner2dImg/HarrisCorner2dImgLvl1.h"
#include "Processor/HarrisCorner3d/HarrisCorner3dLvl1.h"
#include "Processor/HarrisCorner3dImg/HarrisCorner3dImgLvl1.h"
#include "Processor/HoughCircles2d/HoughCircles2dLvl1.h"
#include "Processor/HoughCircles2dImg/HoughCircles2dImgLvl1.h"
#include "Processor/HoughCirclesPhaseCoded2dImg/HoughCirclesPhaseCoded2dImgLvl1.h"
#include "Processor/HoughLines2d/HoughLines2dLvl1.h"
#include "Processor/HoughLines2dImg/HoughLines2dImgLvl1.h"
#include "Processor/HoughLinesGradient2d/HoughLinesGradient2dLvl1.h"
#include "Processor/HoughLinesGradient2dImg/HoughLinesGradient2dImgLvl1.h"
#include "Processor/MaxL2Norm2Msr/MaxL2Norm2MsrLvl1.h"

#include "frame/processor/ProcessorFactory.h"
#include "siblings/AdvancedMorphology/Processor/ConnectedComponent2dImg/ConnectedComponent2dImgLvl1.h"
#include "siblings/AdvancedMorphology/Processor/ConnectedComponent3dImg/ConnectedComponent3dImgLvl1.h"
#include "siblings/AdvancedMorphology/Processor/IterativeExtremumPropagation2dImg/IterativeExtremumPropagation2dImgLvl2.h"
#include "siblings/AdvancedMorphology/Processor/IterativeExtremumPropagation3dImg/IterativeExtremumPropagation3dImgLvl2.h"
#include "siblings/AdvancedMorphology/Processor/LabelExtremumPropagation2dImg/LabelExtremumPropagation2dImgLutBuildPassLvl2.h"
#include "siblings/AdvancedMorphology/Processor/LabelExtremumPropagation2dImg/LabelExtremumPropagation2dImgThresholdPassLvl2.h"
#include "siblings/AdvancedMorphology/Processor/LabelExtremumPropagation3dImg/LabelExtremumPropagation3dImgLutBuildPassLvl2.h"
#include "siblings/AdvancedMorphology/Processor/LabelExtremumPropagation3dImg/LabelExtremumPropagation3dImgThresholdPassLvl2.h"
#include "siblings/Filtering/Processor/GaussianGradient2dImg/GaussianGradient2dImgLvl1.h"
#include "siblings/Filtering/Processor/GaussianGradient3dImg/GaussianGradient3dImgLvl1.h"
#include "siblings/Filtering/Processor/StructureTensor2dImg/StructureTensor2dImgLvl2.h"
#include "siblings/Filtering/Processor/StructureTensor3dImg/StructureTensor3dImgLvl2.h"
#include "siblings/Utility/Processor/BasicThresholdImg/BasicThresholdImgLvl1.h"

#include <set>

namespace orvik::test { namespace {

using namespace image;
using namespace imaproc::attr;
using namespace imaproc;

const ImageSizes g_planes(24, 10, 3), g_plane(24, 30);

/// Sets these attributes of a class.
template<class... Attributes, class... Values>
auto with(const Values&... values)
{
    return [=]([[maybe_unused]] auto& made) { (made.template set<Attributes>(values), ...); };
}

/// Reads these attributes of a class that has run.
template<class... Attributes>
struct Results
{
    template<class X>
    Numbers operator()(const X& made) const
    {
        Numbers all;
        (append(all, numbersOf(made.template getStorage<Attributes>())), ...);
        return all;
    }
};

/// Edges or surfaces.
template<class X, class... Gradients>
ImagesOfClass canny(eImageBufferType out, eProcessingOptimizationPolicy policy)
{
    TypesAndSizes images(sizeof...(Gradients), {eIBT_UInt8, g_planes});
    for (const eImageBufferType type : {eIBT_UInt8, eIBT_Binary, eIBT_Label16, out})
        images.emplace_back(type, g_planes);
    return imagesOf<X, Gradients..., OutOptWk1BinImg, OutOptWk2BinImg, OutOptWk1LabelImg, OutBinImg>(
        images, {}, with<InCannyThresholds, InOptOptimizationPolicy>(CannyThresholds::createNode(60, 150), policy),
        Results<OutBinImg>());
}

/// Those of planes and of volumes.
template<class Components, class In, class Out>
ImagesOfClass components()
{
    return imagesOf<Components, In, Out>({{eIBT_Binary, g_planes}, {eIBT_Label8, g_planes}}, {{In::s_name, Out::s_name}},
                                         with<>(), Results<Out>());
}

template<class Iterative, class Neighborhood, class In, class Value>
ImagesOfClass iterative(const ImageSizes& sizes, Value neighborhood)
{
    return imagesOf<Iterative, In, OutImg>(TypesAndSizes(2, {eIBT_UInt8, sizes}), {{In::s_name, "OutImg"}},
                                           with<Neighborhood, InLocalExtremumType>(neighborhood, eLET_Maxima),
                                           Results<OutImg>());
}

template<class Threshold, class In>
ImagesOfClass labelMask(const ImageSizes& sizes)
{
    return imagesOf<Threshold, In, OutBinImg>(TypesAndSizes(2, {eIBT_UInt8, sizes}), {{In::s_name, "OutBinImg"}}, with<>(),
                                              Results<OutBinImg>());
}

template<class Lut, class In, class Labels>
ImagesOfClass labelExtrema(const ImageSizes& sizes)
{
    return imagesOf<Lut, In, Labels, OutImg>({{eIBT_UInt8, sizes}, {eIBT_Label8, sizes}, {eIBT_UInt8, sizes}},
                                             {{In::s_name, "OutImg"}, {Labels::s_name, "OutImg"}},
                                             with<InLocalExtremumType, InNbLabels>(eLET_Maxima, 255), Results<OutImg>());
}

ImagesOfClass harris(eImageBufferType in)
{
    TypesAndSizes images(5, {eIBT_Real32, g_planes});
    images[0].first = in;
    return imagesOf<fd::HarrisCorner2dImgLvl1, InImg, OutWk1Img, OutWk2Img, OutWk3Img, OutImg>(images,
                                                                                               {{"InImg", "OutImg"},
                                                                                                {"InImg", "OutWk3Img"},
                                                                                                {"OutWk1Img", "OutImg"},
                                                                                                {"OutWk2Img", "OutImg"},
                                                                                                {"OutWk3Img", "OutImg"}},
                                                                                               with<>(), Results<OutImg>());
}

ImagesOfClass tensor()
{
    std::vector<std::pair<std::string, std::string>> same;
    for (const char* in : {"InSubGxImg2d", "InSubGyImg2d"})
        for (const char* out : {"OutGxGxImg", "OutGyGyImg", "OutGxGyImg"})
            same.emplace_back(in, out);
    TypesAndSizes images(5, {eIBT_Int16, g_plane});
    images[3].first = eIBT_UInt16;
    return imagesOf<filter::StructureTensor2dImgLvl2, InSubGxImg2d, InSubGyImg2d, OutGxGxImg, OutGyGyImg, OutGxGyImg>(
        images, same, with<InSmoothingStdDev, InGaussianCoverage>(1.0f, GaussianCoverage::createNode(4.0)),
        Results<OutGxGxImg, OutGyGyImg, OutGxGyImg>());
}

typedef std::vector<std::pair<std::string, std::string>> Pairs;

ImagesOfClass harris3d(eImageBufferType in)
{
    Pairs same = {{"InImg3d", "OutImg"}};
    for (const char* const wk : {"OutWk1Img", "OutWk2Img", "OutWk3Img", "OutWk4Img", "OutWk5Img", "OutWk6Img"})
        same.emplace_back(wk, "OutImg");
    for (const char* const wk : {"OutWk4Img", "OutWk5Img", "OutWk6Img"})
        same.emplace_back("InImg3d", wk);
    TypesAndSizes images(8, {eIBT_Real32, g_planes});
    images[0].first = in;
    return imagesOf<fd::HarrisCorner3dImgLvl1, InImg3d, OutWk1Img, OutWk2Img, OutWk3Img, OutWk4Img, OutWk5Img, OutWk6Img,
                    OutImg>(images, same, with<>(), Results<OutImg>());
}

ImagesOfClass tensor3d(eImageBufferType out)
{
    TypesAndSizes images(9, {out, g_planes});
    images[7].first = eIBT_Real32;
    return imagesOf<filter::StructureTensor3dImgLvl2, InSubGxImg3d, InSubGyImg3d, InSubGzImg3d, OutGxGxImg, OutGyGyImg,
                    OutGzGzImg, OutGxGyImg, OutGxGzImg, OutGyGzImg>(
        images, {{"InSubGxImg3d", "OutGxGxImg"}, {"InSubGyImg3d", "OutGyGyImg"}, {"InSubGzImg3d", "OutGzGzImg"}},
        with<InSmoothingStdDev, InGaussianCoverage>(1.0f, GaussianCoverage::createNode(4.0)),
        Results<OutGxGxImg, OutGyGyImg, OutGzGzImg, OutGxGyImg, OutGxGzImg, OutGyGzImg>());
}

/// From a grey image, or from its gradient.
ImagesOfClass circles(bool isGrey)
{
    const eImageBufferType none = static_cast<eImageBufferType>(0), real = eIBT_Real32;
    const std::pair<eImageBufferType, ImageSizes> grey = {isGrey ? eIBT_UInt8 : none, g_planes};
    const std::pair<eImageBufferType, ImageSizes> gradient = {isGrey ? none : real, g_planes};
    const std::pair<eImageBufferType, ImageSizes> made = {isGrey ? real : none, g_planes};
    return imagesOf<fd::HoughCircles2dLvl1, InOptGreyImg2d, InOptGxGreyImg2d, InOptGyGreyImg2d, OutOptRealImg1,
                    OutOptRealImg2, OutOptGxGreyImg2d, OutOptGyGreyImg2d>(
        {grey, gradient, gradient, {real, g_planes}, {real, g_planes}, made, made}, {},
        with<InOptHoughCircles2dAlgoMethod>(eHCAM_PhaseCoded), Results<OutPIHoughCircles2dPpties>());
}

/// From a grey volume, or from its gradient.
ImagesOfClass spheres(bool isGrey)
{
    const eImageBufferType none = static_cast<eImageBufferType>(0), real = eIBT_Real32;
    const std::pair<eImageBufferType, ImageSizes> grey = {isGrey ? eIBT_UInt8 : none, g_planes};
    const std::pair<eImageBufferType, ImageSizes> gradient = {isGrey ? none : real, g_planes};
    const std::pair<eImageBufferType, ImageSizes> made = {isGrey ? real : none, g_planes};
    return imagesOf<fd::HoughSpheres3dLvl1, InOptGreyImg3d, InOptGxGreyImg3d, InOptGyGreyImg3d, InOptGzGreyImg3d,
                    OutOptRealImg1, OutOptRealImg2, OutOptGradXImg3d, OutOptGradYImg3d, OutOptGradZImg3d>(
        {grey, gradient, gradient, gradient, {real, g_planes}, {real, g_planes}, made, made, made}, {}, with<>(),
        Results<OutPIHoughSpheres3dPpties, OutOptRealImg1>());
}

Ptr<PlanIndexedHoughSpheres3dPpties> oneSphere()
{
    const auto list = HoughSpheres3dPpties::createNode();
    list->access<HoughSpheres3dPpties::Coll>().push_back(HoughSphere3dPpties::createNode(9, 4, 1, 3.5, 1));
    const Ptr<PlanIndexedHoughSpheres3dPpties> lists = PlanIndexedHoughSpheres3dPpties::createColl();
    lists->insert(PlanIndex(), list);
    return lists;
}

/// All classes of which a rule looks at more than one image.
std::vector<ImagesOfClass> allClasses()
{
    const ImagePtr voters = createImage(eIBT_UInt32, g_planes);
    const ImagePtr votes = fd::houghLines2dImg(voters), votesOfLines = fd::multiSlice_houghLines2d(voters).second;
    const ImagePtr gradientVotes = fd::houghLinesGradient2dImg(voters, voters);
    const ImagePtr votesOfGradientLines = fd::multiSlice_houghLinesGradient2d(voters, voters).second;
    const auto centers = Pixels2d::createNode();
    centers->access<Pixels2d::Coll>().push_back(Pixel2d::createNode(7, 9, 1));
    const auto voxels = Voxels3d::createNode();
    voxels->access<Voxels3d::Coll>().push_back(Voxel3d::createNode(7, 5, 1, 1));
    const auto radii = createHoughCirclesRadiusRange(2, 6);
    const TypesAndSizes twoPlanes(2, {eIBT_Real32, g_plane});
    const TypesAndSizes twoOfReals(2, {eIBT_Real32, g_planes});
    return {
        imagesOf<fd::MaxL2Norm2MsrLvl1, InImg1, InImg2>(twoOfReals, {}, with<>(), Results<OutMax>()),
        canny<fd::CannyEdges2dImgLvl1, InGxGreyImg2d, InGyGreyImg2d>(eIBT_UInt8, ePOP_Labels),
        canny<fd::CannyEdges2dImgLvl1, InGxGreyImg2d, InGyGreyImg2d>(eIBT_UInt8, ePOP_Iterative),
        canny<fd::CannyEdges2dImgLvl1, InGxGreyImg2d, InGyGreyImg2d>(eIBT_Real32, ePOP_Iterative),
        canny<fd::CannySurfaces3dImgLvl1, InGxGreyImg3d, InGyGreyImg3d, InGzGreyImg3d>(eIBT_UInt8, ePOP_Labels),
        harris(eIBT_Real32),
        harris(eIBT_Int32),
        tensor(),
        imagesOf<fd::HarrisCorner2dLvl1, InImg, OutWk1Img, OutWk2Img, OutWk3Img>(
            TypesAndSizes(4, {eIBT_Real32, g_planes}), {{"InImg", "OutWk3Img"}},
            with<InLocalExtremaConfig, InFeaturesDistX, InFeaturesDistY>(createLocalExtremaConfig(), 2, 1),
            Results<OutPIPixels2d>()),
        harris3d(eIBT_Real32),
        harris3d(eIBT_Int32),
        tensor3d(eIBT_Real32),
        tensor3d(eIBT_Int16),
        imagesOf<fd::HarrisCorner3dLvl1, InImg3d, OutWk1Img, OutWk2Img, OutWk3Img, OutWk4Img, OutWk5Img, OutWk6Img>(
            TypesAndSizes(7, {eIBT_Real32, g_planes}),
            {{"InImg3d", "OutWk4Img"}, {"InImg3d", "OutWk5Img"}, {"InImg3d", "OutWk6Img"}},
            with<InLocalExtremaConfig, InFeaturesDistX, InFeaturesDistY, InFeaturesDistZ>(createLocalExtremaConfig(), 2, 1,
                                                                                          1),
            Results<OutPIVoxels3d>()),
        circles(true),
        circles(false),
        imagesOf<fd::HoughCircles2dImgLvl1, InGxGreyImg2d, InGyGreyImg2d, OutRealImg>(
            {{eIBT_Int16, g_planes}, {eIBT_Int16, g_planes}, {eIBT_Real32, g_planes}}, {}, with<>(), Results<OutRealImg>()),
        imagesOf<fd::HoughCirclesPhaseCoded2dImgLvl1, InGxGreyImg2d, InGyGreyImg2d, OutComplexRealImg, OutComplexImImg>(
            TypesAndSizes(4, {eIBT_Real32, g_planes}), {}, with<>(), Results<OutComplexRealImg, OutComplexImImg>()),
        imagesOf<fd::ExtractHoughPeaks2dLvl1, InGxGreyImg2d, InGyGreyImg2d>(TypesAndSizes(2, {eIBT_Int16, g_planes}), {},
                                                                            with<>(), Results<OutPIPixels2d>()),
        imagesOf<fd::ExtractRadiusFromHoughImgLvl1, InSingleGreyComplexRealImg2d, InSingleGreyComplexImImg2d>(
            twoPlanes, {}, with<InHoughCircles2dCenters, InHoughCirclesRadiusRange>(centers, radii),
            Results<OutHoughCircles2dPpties>()),
        imagesOf<fd::ComputeBestCirclesRadiiFromGradMagImg2dLvl1, InGxSingleGreyImg2d, InGySingleGreyImg2d>(
            twoPlanes, {},
            with<InHoughCircles2dCenters, InHoughCirclesRadiusRange, InMaxAngleWithGradDir, InNbMaxPtsPerCircle,
                 OutHoughCircles2dPpties>(centers, radii, 0.2, 99u, HoughCircles2dPpties::createNode()),
            Results<OutHoughCircles2dPpties>()),
        spheres(true),
        spheres(false),
        imagesOf<fd::HoughSpheres3dLabelImgLvl1, InImg, OutLabelImg>(
            {{eIBT_Label16, g_planes}, {eIBT_Label16, g_planes}}, {{"InImg", "OutLabelImg"}},
            with<InPIHoughSpheres3dPpties>(oneSphere()), Results<OutLabelImg>()),
        imagesOf<fd::HoughSpheres3dImgLvl1, InGxGreyImg3d, InGyGreyImg3d, InGzGreyImg3d, OutRealImg>(
            TypesAndSizes(4, {eIBT_Real32, g_planes}), {}, with<>(), Results<OutRealImg>()),
        imagesOf<fd::ComputeBestSpheresRadiiFromGradMagImg3dLvl1, InGxGreyImg3d, InGyGreyImg3d, InGzGreyImg3d>(
            TypesAndSizes(3, {eIBT_Int16, g_planes}), {},
            with<InHoughSpheres3dCenters, InHoughCirclesRadiusRange, InMaxAngleWithGradDir, InNbMaxPtsPerCircle,
                 OutHoughSpheres3dPpties>(voxels, radii, 0.2, 99u, HoughSpheres3dPpties::createNode()),
            Results<OutHoughSpheres3dPpties>()),
        imagesOf<fd::HoughLines2dImgLvl1, InGreyImg2d, OutImg>(
            {{eIBT_UInt32, g_planes}, {eIBT_UInt32, votes->getGeometry().getSizes()}}, {}, with<>(), Results<OutImg>()),
        imagesOf<fd::HoughLines2dLvl1, InGreyImg2d, OutOptImg>({{eIBT_UInt32, g_planes},
                                                                {eIBT_UInt32, votesOfLines->getGeometry().getSizes()}},
                                                               {}, with<>(), Results<OutPIHoughLines2dPpties, OutOptImg>()),
        imagesOf<fd::HoughLinesGradient2dImgLvl1, InGxGreyImg2d, InGyGreyImg2d, OutRealImg>(
            {{eIBT_UInt8, g_planes}, {eIBT_UInt8, g_planes}, {eIBT_Real32, gradientVotes->getGeometry().getSizes()}}, {},
            with<>(), Results<OutRealImg>()),
        imagesOf<fd::HoughLinesGradient2dLvl1, InGxGreyImg2d, InGyGreyImg2d, OutOptRealImg>(
            {{eIBT_UInt8, g_planes}, {eIBT_UInt8, g_planes}, {eIBT_Real32, votesOfGradientLines->getGeometry().getSizes()}},
            {}, with<>(), Results<OutPIHoughLines2dPpties, OutOptRealImg>()),
        imagesOf<filter::GaussianGradient2dImgLvl1, InImg, OutOptGradXImg, OutOptGradYImg>(
            {{eIBT_Real32, g_planes}, {eIBT_Real32, g_planes}, {eIBT_Int16, g_planes}}, {},
            with<InStdDevX, InStdDevY>(1.0f, 0.7f), Results<OutOptGradXImg, OutOptGradYImg>()),
        imagesOf<filter::GaussianGradient3dImgLvl1, InImg3d, OutOptGradXImg3d, OutOptGradYImg3d, OutOptGradZImg3d>(
            TypesAndSizes(4, {eIBT_Real32, g_planes}), {}, with<InStdDevX, InStdDevY, InStdDevZ>(1.0f, 0.7f, 0.6f),
            Results<OutOptGradXImg3d, OutOptGradYImg3d, OutOptGradZImg3d>()),
        imagesOf<util::BasicThresholdImgLvl1, InImg, OutBinImg>(
            {{eIBT_UInt8, g_planes}, {eIBT_Binary, g_planes}}, {{"InImg", "OutBinImg"}},
            with<InThresholdMin, InThresholdMax>(20, 120), Results<OutBinImg>()),
        components<advmorpho::ConnectedComponent2dImgLvl1, InBinLabImg, OutLabelImg>(),
        components<advmorpho::ConnectedComponent3dImgLvl1, InBinLabImg3d, OutLabelImg3d>(),
        iterative<advmorpho::IterativeExtremumPropagation2dImgLvl2, InNeighborhood2d, InSubImg2d>(g_plane, eN2D_Eight),
        iterative<advmorpho::IterativeExtremumPropagation3dImgLvl2, InNeighborhood3d, InSubImg3d>(g_planes, eN3D_TwentySix),
        labelMask<advmorpho::LabelExtremumPropagation2dImgThresholdPassLvl2, InSubImg2d>(g_plane),
        labelMask<advmorpho::LabelExtremumPropagation3dImgThresholdPassLvl2, InSubImg3d>(g_planes),
        labelExtrema<advmorpho::LabelExtremumPropagation2dImgLutBuildPassLvl2, InSubImg2d, InSubLabelImg2d>(g_plane),
        labelExtrema<advmorpho::LabelExtremumPropagation3dImgLutBuildPassLvl2, InSubImg3d, InSubLabelImg3d>(g_planes),
    };
}

std::vector<std::string> namesOfImages(const processor::BaseProcessor& made)
{
    std::vector<std::string> names;
    for (const auto& attribute : made.getAttributes())
        if (dynamic_cast<const BaseImageAttribute*>(attribute.get()))
            names.push_back(attribute->getObjectName());
    return names;
}

TEST(SharedMemory, OfEveryPairOfEveryClassIsRefusedOrServedForStripsAndThreads)
{
    for (const ImagesOfClass& row : allClasses()) {
        // Sums of floats depend on the order of threads.
        const bool addsFloats = row.name.find("HoughLinesGradient") != std::string::npos;
        for (const unsigned int nbThreads : {2u, 3u}) {
            const WithThreads threads(addsFloats ? 1 : nbThreads);
            const WithGrain lines(nbThreads == 3 ? 1 : 0);
            expectEveryPairRefusedOrServed(row);
        }
    }
}

TEST(SharedMemory, IsLookedAtInAllClassesAndImages)
{
    std::map<std::string, std::vector<std::string>> rows;
    for (const ImagesOfClass& row : allClasses()) {
        std::vector<std::string> names;
        for (const ImageRole& role : row.roles)
            names.push_back(role.name);
        rows[row.name] = names;
    }
    unsigned long nbFound = 0;
    for (const std::string& type : processor::ProcessorFactory::getInstance().getTypeNames()) {
        const auto made = processor::ProcessorFactory::getInstance().createProcessor(type);
        made->init(processor::ePRP_WithRules);
        const std::vector<std::string> names = namesOfImages(*made);
        const bool isLevel1 = type.substr(type.size() - 4) == "Lvl1";
        if (names.size() < 2 || !(isLevel1 || rows.count(made->getObjectName())))
            continue;
        ++nbFound;
        EXPECT_EQ(names, rows[made->getObjectName()]) << type;
    }
    EXPECT_EQ(rows.size(), nbFound);
}

}  // namespace
}  // namespace orvik::test
