// What processors of planes and volumes share: labels and propagations for all neighbourhoods, the chain of Canny.

#include "TestImages.h"

#include "Processor/CannyChainStages.h"

#include "siblings/AdvancedMorphology/Processor/ComponentLabels.h"
#include "siblings/AdvancedMorphology/Processor/ExtremumPropagation.h"
#include "siblings/AdvancedMorphology/Processor/StripSpreadKernel.h"
#include "siblings/AdvancedMorphology/Processor/WeakSpreader.h"

#include "frame/attr/Records.h"
#include "frame/image/Strips.h"

#include <functional>

namespace orvik::test { namespace {
using namespace imaproc::advmorpho;
using namespace imaproc::attr;

struct Case
{
    unsigned int nbAxes;  // in which neighbours may differ
    unsigned long sizeZ;  // of what hangs together: a plane or a volume
    Neighborhood table;
    unsigned char (*spreadInStrip)(const ByteLines&);
};

struct Neighbors : ::testing::TestWithParam<Case>
{
    /// Some samples among zeros, so few that there are several components: -9 to 9, or weak (1) and few strong (2) bytes.
    static ImagePtr sparse(image::eImageBufferType type, const image::ImageSizes& sizes)
    {
        std::mt19937 random(static_cast<unsigned int>(sizes.x));
        const ImagePtr image = image::createImage(type, sizes);
        forEachSample(sizes, [&](auto x, auto y, auto z, auto c, auto t) {
            const int value = static_cast<int>(random() % 19) - 9;
            if (random() % 100 < (sizes.z > 1 ? 38 - 9 * GetParam().nbAxes : 40))
                setSample(*image, type != image::eIBT_UInt8 ? value : value == 9 ? 2 : 1, x, y, z, c, t);
        });
        return image;
    }

    /// Spreads extrema in a part and labels its components on from `nbLabels`, in raster order of first samples.
    static void flood(image::BaseImage& part, image::BaseImage& labels, bool minima, unsigned int& nbLabels)
    {
        const image::ImageSizes& sizes = part.getGeometry().getSizes();
        std::vector<std::function<void(double)>> found;  // set a sample
        double extremum = 0;
        const std::function<void(unsigned long, unsigned long, unsigned long)> reach = [&](auto x, auto y, auto z) {
            const double value = x < sizes.x && y < sizes.y && z < sizes.z ? sampleAt(part, x, y, z) : 0.0;
            if (value == 0.0 || sampleAt(labels, x, y, z) != 0.0)
                return;
            setSample(labels, nbLabels += found.empty(), x, y, z);
            extremum = found.empty() || (minima ? value < extremum : value > extremum) ? value : extremum;
            found.push_back([&part, x, y, z](double v) { setSample(part, v, x, y, z); });
            for (unsigned long n = 0; n < 27; ++n)  // steps below 0 wrap to outside
                if (0u + (n % 3 != 1) + (n / 3 % 3 != 1) + (n / 9 != 1) <= GetParam().nbAxes)
                    reach(x + n % 3 - 1, y + n / 3 % 3 - 1, z + n / 9 - 1);
        };
        forEachSample(sizes, [&](auto x, auto y, auto z, auto, auto) {
            reach(x, y, z);
            for (const auto& set : std::exchange(found, {}))
                set(extremum);
        });
    }

    static bool spreadByStrips(const ImagePtr& part, unsigned long height)
    {
        StatsOfStrips strips;
        const bool volume = part->getSizeZ() > 1;
        for (unsigned long start = 0, count = 0, size = volume ? 5 : 7; start < size; start += count) {
            count = std::min(height, size - start);
            const ByteLines lines =
                volume ? imaproc::advmorpho::linesOf(image::OutputImageZStrip3d(part, PlanIndex(), start, count))
                       : imaproc::advmorpho::linesOf(image::OutputImageYStrip2d(part, PlanIndex(), start, count));
            strips[{start, count}] = StatsResult::createNode(0, 0, 0, 0, GetParam().spreadInStrip(lines), 0);
        }
        return spreadAcrossStrips(*part, GetParam().table, strips);
    }
};

INSTANTIATE_TEST_SUITE_P(All, Neighbors,  // 4, 8, 6, 18, 26
                         ::testing::Values(Case{1, 1, neighborhoodOf(eN2D_Four), spreadInStrip<eN2D_Four>},
                                           Case{2, 1, neighborhoodOf(eN2D_Eight), spreadInStrip<eN2D_Eight>},
                                           Case{1, 5, neighborhoodOf(eN3D_Six), spreadInStrip<eN3D_Six>},
                                           Case{2, 5, neighborhoodOf(eN3D_Eighteen), spreadInStrip<eN3D_Eighteen>},
                                           Case{3, 5, neighborhoodOf(eN3D_TwentySix), spreadInStrip<eN3D_TwentySix>}));

TEST_P(Neighbors, LabelsAndPropagationsEqualTheFlood)
{
    for (const image::eImageBufferType type : {image::eIBT_Int8, image::eIBT_UInt8, image::eIBT_Real32})
        for (const unsigned long width : {1, 2, 9, 16, 17, 40}) {
            const bool bytes = type == image::eIBT_UInt8;
            const eLocalExtremumType extremum = width % 2 == 0 && !bytes ? eLET_Minima : eLET_Maxima;
            const image::ImageSizes sizes(width, 7, GetParam().sizeZ, 2, 2);
            const ImagePtr image = sparse(type, sizes), expected = sparse(type, sizes), spread = sparse(type, sizes);
            const ImagePtr labels = image::createImage(image::eIBT_Label16, sizes);
            const ImagePtr expectedLabels = image::createImage(image::eIBT_Label16, sizes);
            ComponentsOfParts parts;
            unsigned int nbLabels = 0, maxLabel = 0;
            for (const unsigned int i : {0, 1, 2, 3}) {
                const auto viewOf = [&](const ImagePtr& of) { return of->getView(PlanIndex(0, i % 2, i / 2), sizes.z); };
                flood(*viewOf(expected), *viewOf(expectedLabels), isMinima(extremum), nbLabels);
                (parts[i] = ImageComponents::createNode())->runs.find(*viewOf(image), GetParam().table);
                EXPECT_TRUE(bytes ? spreadByStrips(viewOf(spread), 1 + 2 * i)
                                  : (spreadExtrema(*viewOf(spread), GetParam().table, extremum), true));
                spreadExtremaOfLabels(*viewOf(image), *viewOf(expectedLabels), nbLabels, extremum, *viewOf(image));
            }
            EXPECT_TRUE(sameSamples(*expected, *spread));
            EXPECT_TRUE(writeLabels(parts, sizes.z, "labels", *labels, maxLabel).getValue() && maxLabel == nbLabels);
            EXPECT_TRUE(sameSamples(*expectedLabels, *labels));
            EXPECT_TRUE(sameSamples(*expected, *image));
        }
}

TEST(CannyChain, HandsOnTheLastGradientFirst)
{
    using imaproc::fd::Gradient;
    typedef imaproc::fd::GradientList<Gradient<InGxGreyImg2d, InSubGxImg2d>, Gradient<InGyGreyImg2d, InSubGyImg2d>,
                                      Gradient<InImg, InSubImg2d>>
        Gradients;
    const std::string order =
        Gradients::withParts([](const auto&... names) { return ((names + ' ') + ...); },
                             [](auto gradient) { return decltype(gradient)::Part::getObjectNameStr(); });
    EXPECT_EQ("InSubImg2d InSubGyImg2d InSubGxImg2d ", order);
}

}  // namespace
}  // namespace orvik::test
