// Images of a call that share memory: every pair of every class, refused in words or served.

#include "FamilyShapes.h"

#include "Processor/CannyEdges2dImg/CannyEdges2dImgLvl1.h"
#include "Processor/HarrisCorner2d/HarrisCorner2dLvl1.h"
#include "Processor/HarrisCorner2dImg/HarrisCorner2dImgLvl1.h"
#include "Processor/HoughLines2d/HoughLines2dLvl1.h"
#include "Processor/HoughLines2dImg/HoughLines2dImgLvl1.h"
#include "Processor/MaxL2Norm2Msr/MaxL2Norm2MsrLvl1.h"

#include "frame/processor/ProcessorFactory.h"
#include "siblings/AdvancedMorphology/Processor/ConnectedComponent2dImg/ConnectedComponent2dImgLvl1.h"
#include "siblings/AdvancedMorphology/Processor/IterativeExtremumPropagation2dImg/IterativeExtremumPropagation2dImgLvl2.h"
#include "siblings/AdvancedMorphology/Processor/LabelExtremumPropagation2dImg/LabelExtremumPropagation2dImgLutBuildPassLvl2.h"
#include "siblings/AdvancedMorphology/Processor/LabelExtremumPropagation2dImg/LabelExtremumPropagation2dImgThresholdPassLvl2.h"
#include "siblings/Filtering/Processor/GaussianGradient2dImg/GaussianGradient2dImgLvl1.h"
#include "siblings/Filtering/Processor/StructureTensor2dImg/StructureTensor2dImgLvl2.h"
#include "siblings/Utility/Processor/BasicThresholdImg/BasicThresholdImgLvl1.h"

#include <set>

namespace orvik::test { namespace {

using namespace image;
using namespace imaproc::attr;
using namespace imaproc;

const ImageSizes g_planes(24, 10, 3), g_plane(24, 30);

ImagesOfClass canny(eImageBufferType out, eProcessingOptimizationPolicy policy)
{
    return imagesOf<fd::CannyEdges2dImgLvl1, InGxGreyImg2d, InGyGreyImg2d, OutOptWk1BinImg, OutOptWk2BinImg,
                    OutOptWk1LabelImg, OutBinImg>(
        {{eIBT_UInt8, g_planes},
         {eIBT_UInt8, g_planes},
         {eIBT_UInt8, g_planes},
         {eIBT_Binary, g_planes},
         {eIBT_Label16, g_planes},
         {out, g_planes}},
        {},
        [policy](auto& made) {
            made.template set<InCannyThresholds>(CannyThresholds::createNode(60, 150));
            made.template set<InOptOptimizationPolicy>(policy);
        },
        [](const auto& made) { return made.template getStorage<OutBinImg>(); });
}

ImagesOfClass harris(eImageBufferType in)
{
    return imagesOf<fd::HarrisCorner2dImgLvl1, InImg, OutWk1Img, OutWk2Img, OutWk3Img, OutImg>(
        {{in, g_planes}, {eIBT_Real32, g_planes}, {eIBT_Real32, g_planes}, {eIBT_Real32, g_planes}, {eIBT_Real32, g_planes}},
        {{"InImg", "OutImg"},
         {"InImg", "OutWk3Img"},
         {"OutWk1Img", "OutImg"},
         {"OutWk2Img", "OutImg"},
         {"OutWk3Img", "OutImg"}},
        [](auto&) {}, [](const auto& made) { return made.template getStorage<OutImg>(); });
}

/// All classes of which a rule looks at more than one image.
std::vector<ImagesOfClass> allClasses()
{
    const auto nothing = [](auto&) {};
    const auto outImg = [](const auto& made) { return made.template getStorage<OutImg>(); };
    const auto outBinImg = [](const auto& made) { return made.template getStorage<OutBinImg>(); };
    const ImagePtr voters = createImage(eIBT_UInt32, g_planes);
    const ImagePtr votes = fd::houghLines2dImg(voters), votesOfLines = fd::multiSlice_houghLines2d(voters).second;
    return {
        imagesOf<fd::MaxL2Norm2MsrLvl1, InImg1, InImg2>({{eIBT_Real32, g_planes}, {eIBT_Real32, g_planes}}, {}, nothing,
                                                        [](const auto& made) { return made.template getStorage<OutMax>(); }),
        canny(eIBT_UInt8, ePOP_Labels),
        canny(eIBT_UInt8, ePOP_Iterative),
        canny(eIBT_Real32, ePOP_Iterative),
        harris(eIBT_Real32),
        harris(eIBT_Int32),
        imagesOf<fd::HarrisCorner2dLvl1, InImg, OutWk1Img, OutWk2Img, OutWk3Img>(
            {{eIBT_Real32, g_planes}, {eIBT_Real32, g_planes}, {eIBT_Real32, g_planes}, {eIBT_Real32, g_planes}},
            {{"InImg", "OutWk3Img"}},
            [](auto& made) {
                made.template set<InLocalExtremaConfig>(createLocalExtremaConfig());
                made.template set<InFeaturesDistX>(2);
                made.template set<InFeaturesDistY>(1);
            },
            [](const auto& made) { return made.template getStorage<OutPIPixels2d>(); }),
        imagesOf<fd::HoughLines2dImgLvl1, InGreyImg2d, OutImg>(
            {{eIBT_UInt32, g_planes}, {eIBT_UInt32, votes->getGeometry().getSizes()}}, {}, nothing, outImg),
        imagesOf<fd::HoughLines2dLvl1, InGreyImg2d, OutOptImg>(
            {{eIBT_UInt32, g_planes}, {eIBT_UInt32, votesOfLines->getGeometry().getSizes()}}, {}, nothing,
            [](const auto& made) {
                return std::make_pair(made.template getStorage<OutPIHoughLines2dPpties>(),
                                      made.template getStorage<OutOptImg>());
            }),
        imagesOf<filter::GaussianGradient2dImgLvl1, InImg, OutOptGradXImg, OutOptGradYImg>(
            {{eIBT_Real32, g_planes}, {eIBT_Real32, g_planes}, {eIBT_Int16, g_planes}}, {},
            [](auto& made) {
                made.template set<InStdDevX>(1.0f);
                made.template set<InStdDevY>(0.7f);
            },
            [](const auto& made) {
                return std::make_pair(made.template getStorage<OutOptGradXImg>(),
                                      made.template getStorage<OutOptGradYImg>());
            }),
        imagesOf<filter::StructureTensor2dImgLvl2, InSubGxImg2d, InSubGyImg2d, OutGxGxImg, OutGyGyImg, OutGxGyImg>(
            {{eIBT_Int16, g_plane},
             {eIBT_Int16, g_plane},
             {eIBT_Int16, g_plane},
             {eIBT_UInt16, g_plane},
             {eIBT_Int16, g_plane}},
            {{"InSubGxImg2d", "OutGxGxImg"},
             {"InSubGxImg2d", "OutGyGyImg"},
             {"InSubGxImg2d", "OutGxGyImg"},
             {"InSubGyImg2d", "OutGxGxImg"},
             {"InSubGyImg2d", "OutGyGyImg"},
             {"InSubGyImg2d", "OutGxGyImg"}},
            [](auto& made) {
                made.template set<InSmoothingStdDev>(1.0f);
                made.template set<InGaussianCoverage>(GaussianCoverage::createNode(4.0));
            },
            [](const auto& made) {
                return std::make_pair(std::make_pair(made.template getStorage<OutGxGxImg>(),
                                                     made.template getStorage<OutGyGyImg>()),
                                      made.template getStorage<OutGxGyImg>());
            }),
        imagesOf<util::BasicThresholdImgLvl1, InImg, OutBinImg>(
            {{eIBT_UInt8, g_planes}, {eIBT_Binary, g_planes}}, {{"InImg", "OutBinImg"}},
            [](auto& made) {
                made.template set<InThresholdMin>(20);
                made.template set<InThresholdMax>(120);
            },
            outBinImg),
        imagesOf<advmorpho::ConnectedComponent2dImgLvl1, InBinLabImg, OutLabelImg>(
            {{eIBT_Binary, g_planes}, {eIBT_Label8, g_planes}}, {{"InBinLabImg", "OutLabelImg"}}, nothing,
            [](const auto& made) { return made.template getStorage<OutLabelImg>(); }),
        imagesOf<advmorpho::IterativeExtremumPropagation2dImgLvl2, InSubImg2d, OutImg>(
            {{eIBT_UInt8, g_plane}, {eIBT_UInt8, g_plane}}, {{"InSubImg2d", "OutImg"}},
            [](auto& made) {
                made.template set<InNeighborhood2d>(eN2D_Eight);
                made.template set<InLocalExtremumType>(eLET_Maxima);
            },
            outImg),
        imagesOf<advmorpho::LabelExtremumPropagation2dImgThresholdPassLvl2, InSubImg2d, OutBinImg>(
            {{eIBT_UInt8, g_plane}, {eIBT_UInt8, g_plane}}, {{"InSubImg2d", "OutBinImg"}}, nothing, outBinImg),
        imagesOf<advmorpho::LabelExtremumPropagation2dImgLutBuildPassLvl2, InSubImg2d, InSubLabelImg2d, OutImg>(
            {{eIBT_UInt8, g_plane}, {eIBT_Label8, g_plane}, {eIBT_UInt8, g_plane}},
            {{"InSubImg2d", "OutImg"}, {"InSubLabelImg2d", "OutImg"}},
            [](auto& made) {
                made.template set<InLocalExtremumType>(eLET_Maxima);
                made.template set<InNbLabels>(255);
            },
            outImg),
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
        expectEveryPairRefusedOrServed(row);
        const WithThreads threads(3);
        const WithGrain lines(1);
        expectEveryPairRefusedOrServed(row);
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
