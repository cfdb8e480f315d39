// Which kernels are registered, and which one runs. The program is also run with the higher sets hidden.

#include "InstructionSets.h"
#include "Processor/MaxL2Norm2Msr/MaxL2Norm2MsrLvl1.h"
#include "Processor/MaxL2Norm2Msr/MaxL2Norm2MsrLvl3.h"
#include "HookRuns.h"

#include "frame/attr/ImageAttributes.h"
#include "frame/attr/StripAttributes.h"
#include "frame/attr/ValueAttributes.h"

#include <algorithm>
#include <cstdlib>
#include <map>

namespace orvik::test { namespace {

using namespace imaproc;
using core::eInstructionSet;
using core::InstructionSetsIdentifier;
using fd::MaxL2Norm2MsrLvl3;
using image::ImageSizes;

typedef ForcedSet<MaxL2Norm2MsrLvl3> Forced;

const eInstructionSet g_sets[] = {core::eIS_Generic, core::eIS_Sse2, core::eIS_Avx, core::eIS_Avx2, core::eIS_Avx512};
const eInstructionSet g_unknownSet = static_cast<eInstructionSet>(9);

InstructionSetsIdentifier only(eInstructionSet set)
{
    InstructionSetsIdentifier sets;
    sets.init(set);
    return sets;
}

unsigned int lastEfficiency()
{
    return getAlgorithmEntry(MaxL2Norm2MsrLvl3::getTypeName()).lastEfficiency;
}

/// sqrt(3^2 + 4^2), as far as the type holds it.
double norm(image::eImageBufferType type)
{
    const ImagePtr a = image::createImage(type, {130, 3}), b = image::createImage(type, {130, 3});
    setSample(*a, 3, 70, 1);
    setSample(*b, 4, 70, 1);
    return fd::maxL2Norm2Msr(a, b);
}

// --- sets

TEST(InstructionSets, AreHiddenAboveTheCeilingOfTheEnvironment)
{
    const char* const ceiling = std::getenv("ORVIK_MAX_INSTRUCTION_SET");
    for (const eInstructionSet set : g_sets) {
        if (!ceiling || core::getInstructionSetName(set) != ceiling)
            continue;
        for (const eInstructionSet above : {core::eIS_Sse2, core::eIS_Avx, core::eIS_Fma, core::eIS_Avx2, core::eIS_Avx512})
            EXPECT_FALSE(above > set && core::isAvailable(above)) << core::getInstructionSetName(above);
    }
    EXPECT_TRUE(core::isAvailable(core::eIS_Generic));
    EXPECT_FALSE(core::isAvailable(g_unknownSet));
    EXPECT_FALSE(core::isAvailable(static_cast<eInstructionSet>(2)));
}

TEST(InstructionSets, OfAPairAreBothAndRankByTheNewerOne)
{
    InstructionSetsIdentifier pair;
    pair.init(core::eIS_Fma, core::eIS_Avx2);
    EXPECT_EQ("fma+avx2", pair.toString());
    EXPECT_FALSE(pair == only(core::eIS_Fma));
    EXPECT_EQ(core::isAvailable(core::eIS_Fma) && core::isAvailable(core::eIS_Avx2), pair.areAvailable());
    const unsigned int fused = AlgorithmFunctionEfficiency<core::eIS_Fma, core::eIS_Avx2, 0>::getEfficiency();
    EXPECT_LT((AlgorithmFunctionEfficiency<core::eIS_Avx2, core::eIS_Avx2, 0>::getEfficiency()), fused);
    EXPECT_GT((AlgorithmFunctionEfficiency<core::eIS_Avx512, core::eIS_Avx512, 0>::getEfficiency()), fused);
}

// --- registration

TEST(Registration, HasTheKernelsOfTheSetsOfThisMachineAndNoOthers)
{
    std::map<std::string, std::vector<unsigned int>> typesOf;
    for (const AlgorithmFunctionIdentifier& known : MaxL2Norm2MsrLvl3::retrieveFunctionSelector().getFunctions()) {
        EXPECT_TRUE(known.getInstructionSets().areAvailable());
        typesOf[known.getInstructionSets().toString()].push_back(known.getDataTypes().getType());
    }
    const std::vector<unsigned int> all = {1, 2, 3, 4, 5, 6, 7, 8, 11, 9, 10}, none, floats = {7};
    for (const eInstructionSet set : g_sets) {
        const std::vector<unsigned int>& expected = !core::isAvailable(set) ? none : set == core::eIS_Avx ? floats : all;
        EXPECT_EQ(expected, typesOf[core::getInstructionSetName(set)]) << core::getInstructionSetName(set);
    }
    EXPECT_EQ(std::size(g_sets), typesOf.size()) << "a set that this class has no kernels for";
    const std::vector<std::string> names = getAlgorithmNames();
    EXPECT_EQ(1, std::count(names.begin(), names.end(), "orvik::imaproc::fd::MaxL2Norm2MsrLvl3"));
}

TEST(Registration, OfTheSameTypeAndSetTwiceFailsAndEndsWithItsUnit)
{
    AlgorithmFunctionSelector selector;
    AlgorithmFunctionIdentifier identifier;
    DataTypeIdentifierColl types;
    types.init(BaseDataTypeIdentifier(4));
    for (const eInstructionSet set : {core::eIS_Sse2, core::eIS_Generic}) {
        identifier.init(types, only(set), 5, nullptr);
        EXPECT_TRUE(selector.registerFunction(identifier).getValue());
        EXPECT_EQ("A kernel for type 4 and set " + core::getInstructionSetName(set) + " is registered already",
                  selector.registerFunction(identifier).getMessage());
    }
    selector.unRegisterFunctions(only(core::eIS_Sse2));
    ASSERT_EQ(1u, selector.getFunctions().size());
    EXPECT_TRUE(selector.getFunctions()[0].getInstructionSets() == only(core::eIS_Generic));
}

// --- selection

TEST(Selection, RunsTheForcedSetUntilItIsReleased)
{
    std::vector<unsigned int> ranks;
    for (const eInstructionSet set : g_sets)
        if (core::isAvailable(set)) {
            const Forced forced(set);
            EXPECT_EQ(5, norm(image::eIBT_Real32)) << core::getInstructionSetName(set);
            ranks.push_back(lastEfficiency());
        }
    EXPECT_TRUE(std::is_sorted(ranks.begin(), ranks.end(), std::less_equal<unsigned int>()));
    EXPECT_TRUE(MaxL2Norm2MsrLvl3::retrieveForcedInstructionSets().isEmpty());
    norm(image::eIBT_Real32);
    EXPECT_EQ(ranks.back(), lastEfficiency());
}

TEST(Selection, FailsInWordsForASetThatHasNoKernel)
{
    const auto textFor = [](const std::string& type, const std::string& set) {
        return "MaxL2Norm2MsrLvl3: no kernel serves buffer type " + type + " with the forced instruction set " + set;
    };
    const std::string lacking = ", which this machine does not have";
    {
        const Forced forced(g_unknownSet);
        EXPECT_EQ(textFor("float 32 bits (type 7)", "9" + lacking), refusalOf([] { norm(image::eIBT_Real32); }));
        MaxL2Norm2MsrLvl3::forceInstructionSets(only(core::eIS_Avx));
        EXPECT_EQ(textFor("unsigned 8 bits (type 2)", core::isAvailable(core::eIS_Avx) ? "avx" : "avx" + lacking),
                  refusalOf([] { norm(image::eIBT_UInt8); }));
    }
    EXPECT_EQ(5, norm(image::eIBT_Real32)) << "and is over with the release";
}

/// An image of a type that the factory refuses.
ImagePtr typeless()
{
    const ImagePtr bytes = image::createImage(image::eIBT_Real32, ImageSizes(9, 3));
    return boost::make_shared<image::BaseImage>(
        bytes, static_cast<char*>(bytes->accessLine(0)),
        image::ImageGeometry(ImageSizes(9, 3), static_cast<image::eImageBufferType>(12)), bytes->getStrides(), true);
}

TEST(Selection, FailsInWordsForATypeThatIsNone)
{
    EXPECT_EQ("MaxL2Norm2MsrLvl3: no kernel serves buffer type no type (type 12)",
              refusalOf([] { fd::maxL2Norm2Msr(typeless(), typeless()); }));
    // A class that sets a border on a parser that could not be made.
    const auto hash = processorWith<HashLvl1<false>, InTinyImg, InReach>(typeless(), Reach::createNode());
    EXPECT_EQ("HashYLvl3: no kernel serves buffer type no type (type 12)", runRefusal(hash));
}

TEST(Parsers, LiveForOneStripOnly)
{
    const auto strip = stripOf(blank(70, 3));
    const auto copy = processorWith<CopyRaw64, InTinyYStrip, OutTinyYStrip>(strip, outStripOf(blank(70, 3)));
    DataParserColl parsers(1);
    copy->initDataParserColl(parsers);
    ASSERT_EQ(2u, parsers.size());
    copy->clearDataParserColl();
    parsers.clear();
    EXPECT_EQ(2, strip.use_count()) << "the attribute's and this test's";
    executeSyncRun(copy);
    EXPECT_EQ(2, strip.use_count());
    copy->clearInputData();
    copy->initDataParserColl(parsers);
    EXPECT_EQ(1u, parsers.size()) << "none for an attribute without a value";
}

}  // namespace
}  // namespace orvik::test
