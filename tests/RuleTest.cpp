// What rules compare, how they combine, and what they say.

#include "HookRuns.h"

#include "frame/attr/ImageAttributes.h"
#include "frame/attr/StripAttributes.h"

#include <boost/smart_ptr/make_shared.hpp>

namespace orvik::test { namespace {

using namespace imaproc;

struct FixedRule : BaseRule
{
    explicit FixedRule(bool holds) : m_holds(holds) {}
    eRuleType getRuleType() const override { return eRT_Attribute; }
    bool testRule() const override { return m_holds; }
    std::string createRuleFormalString() const override { return m_holds ? "yes" : "no"; }
    std::string createRuleEvaluatedString(unsigned int depth) const override
    {
        return createRuleEvaluatedStartString(depth) + createRuleFormalString() + "\n";
    }
    bool m_holds;
};

TEST(Rules, CombineByTheirTruthTables)
{
    const RulePtr yes = boost::make_shared<FixedRule>(true), no = boost::make_shared<FixedRule>(false);
    for (const RulePtr& holds : {yes && yes, If(yes, yes), If(no, no), If(no, no, yes), Not(no), none()})
        EXPECT_TRUE(holds->testRule()) << holds->createRuleFormalString();
    for (const RulePtr& fails : {yes && no, no && yes, no && no, If(yes, no), If(no, yes, no), If(yes, no, yes), Not(yes)})
        EXPECT_FALSE(fails->testRule()) << fails->createRuleFormalString();
    EXPECT_EQ("failed: all hold:\n  ok: as no does not hold:\n    ok: yes\n  failed: does not hold:\n    ok: yes\n",
              (If(no, no, yes) && Not(yes))->createRuleEvaluatedString(0));
}

TEST(Rules, HoldAttributesWeaklyAndSayWhenTheyAreGone)
{
    const boost::shared_ptr<InTinyImg> a = boost::make_shared<InTinyImg>();
    boost::shared_ptr<OutTinyImg> b = boost::make_shared<OutTinyImg>();
    const RulePtr rule = matchSize(a, b);
    const InitializerPtr initializer = duplicateInOut(b, a, image::eIBT_UInt8);
    EXPECT_TRUE(rule->testRule());
    EXPECT_EQ(1, b.use_count());
    b.reset();
    const std::string expired = "Attribute weak pointer has expired, can't get it";
    EXPECT_EQ(expired, refusalOf([&] { rule->testRule(); }));
    EXPECT_EQ(expired, refusalOf([&] { rule->createRuleEvaluatedString(0); }));
    EXPECT_EQ(expired, refusalOf([&] { initializer->initOutputAttribute(); }));
    EXPECT_EQ("Initialize rule before trying to use its data", refusalOf([] { RuleOptionalIsSet().testRule(); }));
    const std::string null = "Input attribute should not be null";
    EXPECT_EQ(null, refusalOf([&] { matchSize(a, b); }));
    EXPECT_EQ(null, refusalOf([&] { isSet(b); }));
    EXPECT_EQ(null, refusalOf([&] { duplicateInOut(b, a, image::eIBT_UInt8); }));
    EXPECT_EQ(null, refusalOf([&] { fromImage(boost::make_shared<OutPIMarks>(), boost::shared_ptr<InTinyImg>()); }));
}

TEST(Rules, OnImagesCompareWhatTheySay)
{
    const auto a = boost::make_shared<InTinyImg>();
    const auto b = boost::make_shared<OutTinyImg>();
    const auto holds = [&](const RulePtr& rule, const ImagePtr& first, const ImagePtr& second) {
        a->init(first);
        b->init(second);
        return rule->testRule();
    };
    const ImagePtr plane = blank(4, 3), volume = blank(4, 3, 2), channels = blank(4, 3, 1, 2), narrow = blank(5, 3),
                   wide = blank(4, 3, 1, 1, image::eIBT_Int8);
    for (const auto& [rule, other, matches] :
         {std::make_tuple(matchSize(a, b), wide, true),
          {matchSize(a, b), volume, false},
          {matchSize(a, b), channels, false},
          {matchSize(a, b), nullptr, true},  // a side without a value is not held against the other
          {matchSize(eMIST_ZCT, a, b), narrow, true},
          {matchSize(eMIST_ZCT, a, b), volume, false},
          {matchSize(eMIST_ZCT, a, b), channels, false},
          {matchBufferType(a, b), wide, false},
          {matchBufferType(a, b), volume, true},
          {matchSizeAndType(a, b), wide, false},
          {matchSizeAndType(a, b), narrow, false},
          {matchVolumeGeometryType(a, b), volume, false},
          {matchColorGeometryType(a, b), channels, false},
          {matchColorGeometryType(a, b), volume, true},
          {noInSitu(a, b), wide, true}})
        EXPECT_EQ(matches, holds(rule, plane, other)) << rule->createRuleEvaluatedString(0);
    EXPECT_FALSE(holds(noInSitu(a, b), plane, plane));
    EXPECT_FALSE(holds(noInSitu(a, b), volume, volume->getView(PlanIndex(), 1))) << "a view is the same memory";
}

TEST(Rules, OnStripsCompareAllOfThemWithTheFirst)
{
    const auto a = boost::make_shared<attr::InYStrip2d1>(), b = boost::make_shared<attr::InYStrip2d1>(),
               c = boost::make_shared<attr::InYStrip2d1>();
    const auto d = boost::make_shared<attr::OutYStrip2d>();
    const RulePtr two = matchSizeAndType(a, b), three = matchSizeAndType(a, b, c), four = matchSizeAndType(a, b, c, d);
    for (const auto& input : {a, b, c})
        input->init(stripOf(blank(4, 3)));
    d->init(outStripOf(blank(4, 3, 1, 1, image::eIBT_Int8)));
    EXPECT_TRUE(three->testRule() && !four->testRule());
    c->init(stripOf(blank(5, 3)));
    EXPECT_TRUE(two->testRule() && !three->testRule());
    const std::string type = "  ok: buffer type of the strip of InYStrip2d1 (unsigned 8 bits (type 2)) equals that of "
                             "InYStrip2d1 (unsigned 8 bits (type 2))\n",
                      size = "size of the strip, X x lines, of InYStrip2d1 (4 x 3) equals that of InYStrip2d1 ";
    EXPECT_EQ("failed: all hold:\n  ok: " + size + "(4 x 3)\n" + type + "  failed: " + size + "(5 x 3)\n" + type,
              three->createRuleEvaluatedString(0));
}

TEST(Rules, OnPlansWantExactlyThoseOfTheImage)
{
    const auto in = boost::make_shared<InTinyImg>();
    const auto coll = boost::make_shared<OutPIMarks>();
    in->init(blank(2, 2, 2, 2));
    const auto holds = [&](eImagePlansMatchPolicy policy, const std::vector<PlanIndex>& plans) {
        coll->initEmpty();
        for (const PlanIndex& plan : plans)
            coll->getStorage()->insert(plan, Marks::createNode());
        return matchImagePlans(coll, in, policy)->testRule();
    };
    EXPECT_TRUE(matchImagePlans(coll, in, eIPMP_Planes)->testRule());
    EXPECT_TRUE(holds(eIPMP_Planes, {}));
    EXPECT_TRUE(holds(eIPMP_Planes, {{0, 0, 0}, {1, 0, 0}, {0, 1, 0}, {1, 1, 0}}));
    EXPECT_FALSE(holds(eIPMP_Planes, {{0, 0, 0}}));
    EXPECT_FALSE(holds(eIPMP_Planes, {{0, 0, 0}, {1, 0, 0}, {0, 1, 0}, {0, 0, 1}}));
    EXPECT_TRUE(holds(eIPMP_Volumes, {{0, 0, 0}, {0, 1, 0}}));
    EXPECT_FALSE(holds(eIPMP_Volumes, {{0, 0, 0}, {1, 0, 0}}));
}

TEST(Rules, OnAScalarRefuseOnlyWhatIsNegative)
{
    const auto in = boost::make_shared<InTinyImg>();
    const auto record = boost::make_shared<InReach>();
    in->init(blank(8, 5));
    const RulePtr rule = matchSize<Reach::Value>(eMIST_MinXY, eMISS_Half, in, record);
    EXPECT_EQ(eIBMRT_ScalarToSize, dynamic_cast<const BaseImageBinaryMixedRule&>(*rule).getImageBinaryMixedRuleType());
    EXPECT_TRUE(rule->testRule()) << "unset";
    record->init(Reach::createNode(0, 0, 0, 0, 0, 0, 0, 1000));
    EXPECT_TRUE(rule->testRule()) << "too wide is narrowed";
    record->init(Reach::createNode(0, 0, 0, 0, 0, 0, 0, -1));
    EXPECT_FALSE(rule->testRule());
    EXPECT_EQ(
        "failed: InReach::Value is not negative, and beyond half of the smaller of X and Y of InTinyImg narrowed to it: "
        "-1.000000, image 8 x 5 x 1 x 1 x 1\n",
        rule->createRuleEvaluatedString(0));
}

TEST(Rules, OnImagesCompareAnyNumberOfThemWithTheFirst)
{
    boost::shared_ptr<InTinyImg> images[6];
    for (auto& each : images)
        (each = boost::make_shared<InTinyImg>())->init(blank(4, 8));
    const auto& [a, b, c, d, e, f] = images;
    const RulePtr six = matchSizeAndType(a, b, c, d, e, f);
    EXPECT_TRUE(six->testRule());
    for (const auto& each : {b, c, d, e, f}) {
        each->init(blank(4, 9));
        EXPECT_FALSE(six->testRule());
        each->init(blank(4, 8));
    }
}

TEST(Rules, OnMemorySayWhatSharesItAndNotWhereItLies)
{
    const auto a = boost::make_shared<InTinyImg>();
    const auto b = boost::make_shared<OutTinyImg>();
    const RulePtr rule = noInSitu(a, b);
    const std::string formal = "each of InTinyImg, OutTinyImg that is written lies apart in memory from the others";
    EXPECT_EQ(formal, rule->createRuleFormalString());
    EXPECT_EQ("ok: " + formal + "\n", rule->createRuleEvaluatedString(0)) << "unset";
    const ImagePtr stack = blank(4, 3, 2);
    a->init(stack);
    b->init(stack->getView(PlanIndex(1, 0, 0), 1));
    EXPECT_FALSE(rule->testRule());
    EXPECT_EQ("failed: memory of InTinyImg (4 x 3 x 2 x 1 x 1, unsigned 8 bits (type 2)) lies apart from that of "
              "OutTinyImg (4 x 3 x 1 x 1 x 1, unsigned 8 bits (type 2)): OutTinyImg shares memory with "
              "InTinyImg and begins 192 bytes after it\n",
              rule->createRuleEvaluatedString(0));
    // Upside down is the same memory; a plane of another channel is not, whatever lies between the two.
    const ImagePtr colours = blank(4, 3, 2, 2);
    const auto viewOf = [&](unsigned long z, unsigned long c, long direction) {
        const long line = colours->getStrides().y;
        return image::wrapBuffer(colours->accessLine(direction > 0 ? 0 : 2, z, c), image::eIBT_UInt8, {4, 3, 1, 1},
                                 image::ImageStrides(direction * line), colours);
    };
    a->init(viewOf(0, 1, 1));
    b->init(viewOf(0, 1, -1));
    EXPECT_FALSE(rule->testRule());
    a->init(image::wrapBuffer(colours->accessLine(0), image::eIBT_UInt8, {4, 3, 1, 2},
                              image::ImageStrides(colours->getStrides().y, 0, colours->getStrides().c), colours));
    b->init(viewOf(1, 0, -1));
    EXPECT_TRUE(rule->testRule());
    b->init(viewOf(0, 1, -1));
    EXPECT_FALSE(rule->testRule());
    // Lines of images that the frame made are written with their slack, as whole blocks.
    const ImagePtr made = blank(4, 3), beside = blank(70, 3);
    for (const ImagePtr& each : {made, beside}) {
        a->init(each);
        const auto within = [&](unsigned long column) {
            return image::wrapBuffer(static_cast<unsigned char*>(each->accessLine(0)) + column, image::eIBT_UInt8, {4, 3},
                                     image::ImageStrides(each->getStrides().y), each);
        };
        b->init(within(each->getSizeX() + 8));
        EXPECT_FALSE(rule->testRule());
    }
}

}  // namespace
}  // namespace orvik::test
