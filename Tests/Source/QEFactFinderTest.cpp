#include "QEFactFinder.h"

#include "Engine/Services/LogCapture.h"
#include "HBNException.h"
#include "IdClass.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <array>
#include <cstddef>
#include <random>
#include <set>
#include <sstream>
#include <string>
#include <vector>

namespace {

using testing::HasSubstr;

/// Query subjects are written as letters: A is 100:1.
amd_id Id(char letter)
{
    return {0, IdClassQuerySubject, letter - 'A' + 1};
}

std::string Letters(const std::vector<amd_id>& ids)
{
    std::string letters;
    for (const amd_id& id : ids)
        letters += static_cast<char>('A' + id.number - 1);
    return letters;
}

std::string Facts(AQE_I_FactFinder& finder)
{
    std::vector<amd_id> facts;
    finder.GetFacts(facts);
    return Letters(facts);
}

std::string Shared(AQE_I_FactFinder& finder, std::vector<amd_id> dimensions = {})
{
    finder.GetSharedDimensions(dimensions);
    return Letters(dimensions);
}

/// Returns the own dimensions of a query subject and all of them as "own/all".
std::string Dimensions(AQE_I_FactFinder& finder, char of)
{
    std::vector<amd_id> own;
    std::vector<amd_id> all;
    finder.GetDimensions(Id(of), &own, false);
    finder.GetDimensions(Id(of), &all, true);
    return Letters(own) + '/' + Letters(all);
}

std::string DumpOf(AQE_I_FactFinder& finder)
{
    std::ostringstream out;
    finder.Dump(out);
    return out.str();
}

/// Returns what the join raises as "message@line severity code file component macro parameters";
/// it has to be in the log by then.
std::string Add(AQE_I_FactFinder& finder, char left, int leftMax, char right, int rightMax)
{
    const qe::LogCapture log(1);
    try {
        finder.AddJoin({}, Id(left), leftMax, Id(right), rightMax);
    } catch (const HBNException& error) {
        std::ostringstream text;
        const HBNMessage& message = error.GetMessages().at(0);
        EXPECT_EQ(log.GetEntries().at(0).message, message.GetNumber());
        text << std::hex << message.GetNumber() << std::dec << '@' << error.GetLocation().line
             << ' ' << error.GetSeverity() << ' ' << error.GetCode() << ' '
             << error.GetLocation().file << ' ' << error.GetComponent() << ' '
             << error.GetMacroName() << ' ' << message.GetParameters().size();
        return text.str();
    }
    return "";
}

const std::string ErrorOrigin = " 1 -1 Source/QEFactFinder QE ORV_THROW 0";
const std::string CycleError = "a9e09d1f@316" + ErrorOrigin;

/// Adds joins written as "F>D" (F to-many), "D<F" (the same, seen from D) and "A-B" (one-to-one),
/// and gives what the first failing one raises.
std::string AddJoins(AQE_I_FactFinder& finder, const std::string& joins)
{
    std::istringstream words(joins);
    std::string error;
    for (std::string join; error.empty() && words >> join;)
        error = Add(finder, join[0], join[1] == '>' ? 12 : 11, join[2], join[1] == '<' ? 12 : 10);
    return error;
}

TEST(FactFinder, TellsFactsAndDimensionsInOrder)
{
    struct Row
    {
        const char* joins;
        std::string facts;
        std::string shared;
        char of;
        std::string dimensions;
    };
    const Row rows[] = {
        {"", "", "", 'F', "/"},
        {"A-B", "A", "A", 'A', "/"},
        {"F>D F>E", "F", "F", 'F', "DE/DE"},
        {"E<F D<F", "F", "F", 'F', "ED/ED"},
        {"F>D F>E G>E", "FG", "E", 'F', "DE/DE"},
        {"G>E F>E F>D G>D", "GF", "DE", 'F', "ED/ED"},
        {"F>D G>E H>D", "FGH", "", 'G', "E/E"},
        {"F>D D>E", "F", "F", 'F', "D/DE"},
        {"D>E F>D", "F", "F", 'F', "D/DE"},
        {"F>D F>E D>X E>Y D>E", "F", "F", 'F', "DE/DXEY"},
        {"F>D G>D F>D", "FG", "D", 'F', "D/D"},
        {"F>D F-H H>E", "F", "F", 'H', "DE/DE"},
        {"F>D H-D D>E", "F", "F", 'F', "DH/DEH"},
        {"F>A A-B C-D A-D", "F", "F", 'F', "ABDC/ABDC"},
        // Of two nodes the one that is a dimension is kept, whichever side of the join it is on.
        {"A>X F>B A-B", "F", "F", 'F', "BA/BXA"},
        {"A>X F>B B-A", "F", "F", 'F', "BA/BXA"},
        {"A>X B>X B>Y G>Y A-B", "AG", "Y", 'B', "XY/XY"},
        // G goes on listing the node that B had before it became one with A.
        {"F>A G>B B>X A-B", "FG", "BX", 'G', "B/BX"},
        {"F>A G>B B>X A-B", "FG", "BX", 'F', "AB/AXB"},
        // A fact that is one with its own dimension lies below itself.
        {"F>D D>K F-D", "", "", 'D', "KDF/KDF"},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.joins);
        AQE_FactFinder finder;
        EXPECT_EQ(AddJoins(finder, row.joins), "");
        EXPECT_EQ(Facts(finder), row.facts);
        EXPECT_EQ(Shared(finder), row.shared);
        EXPECT_EQ(Dimensions(finder, row.of), row.dimensions);
    }
}

TEST(FactFinder, RejectsUnusableCardinalitiesAndKeepsTheGraph)
{
    struct Row
    {
        int left;
        int right;
        std::string error;
    };
    AQE_FactFinder finder;
    AddJoins(finder, "F>D A-B");
    const std::string before = DumpOf(finder);
    for (const Row& row :
         {Row{0, 11, "a9ebf43b@154"}, Row{9, 12, "a9ebf43b@154"}, Row{1, 1, "a9ebf43b@154"},
          Row{10, 0, "a9e9ba5b@128"}, Row{11, 13, "a9e9ba5b@128"}, Row{12, -1, "a9e9ba5b@147"},
          Row{12, 12, "a9e12896@141"}})
        EXPECT_EQ(Add(finder, 'X', row.left, 'Y', row.right), row.error + ErrorOrigin);
    EXPECT_EQ(DumpOf(finder), before);
}

TEST(FactFinder, KeepsTheJoinThatClosesACycle)
{
    AQE_FactFinder pair;
    EXPECT_EQ(AddJoins(pair, "A>B B>A"), CycleError);
    EXPECT_EQ(Facts(pair) + Dimensions(pair, 'A'), "B/BA");
    // What is there already is not checked again, and what lies apart is not concerned.
    EXPECT_EQ(AddJoins(pair, "B>A F>D"), "");
    EXPECT_EQ(Facts(pair), "F");

    AQE_FactFinder loop;
    EXPECT_EQ(AddJoins(loop, "A>A"), CycleError);
    EXPECT_EQ(Facts(loop) + Dimensions(loop, 'A'), "AA/A");

    // The cycle leads through what G had as a dimension before the merge.
    AQE_FactFinder merged;
    EXPECT_EQ(AddJoins(merged, "F>A G>B A-B B>G"), CycleError);
    AQE_FactFinder ownDimension;
    EXPECT_EQ(AddJoins(ownDimension, "F>D F-D D>E"), CycleError);
}

TEST(FactFinder, EndsOnNodesThatAreTheirOwnParents)
{
    AQE_FactFinder finder;
    EXPECT_EQ(AddJoins(finder, "F>D D>K F-D K>L G>D"), CycleError);
    EXPECT_THAT(DumpOf(finder), HasSubstr("FactRoot:\n"
                                          "Id(s):  100:7\n"
                                          "    Id(s):  100:4 100:6\n"
                                          "        Id(s):  100:11\n"
                                          "            Id(s):  100:12\n"
                                          "        Id(s):  100:4 100:6\n"
                                          "Facts:\n"));
}

TEST(FactFinder, AppendsToWhatTheCallerHas)
{
    AQE_FactFinder finder;
    AddJoins(finder, "F>D");
    EXPECT_EQ(Shared(finder, {Id('Z')}), "ZF");
    AddJoins(finder, "G>D G>E");
    std::vector<amd_id> ids;
    finder.GetFacts(ids);
    finder.GetFacts(ids);
    EXPECT_EQ(Letters(ids), "FGFG");
    ids = {Id('E'), Id('Z')};
    finder.GetDimensions(Id('G'), nullptr, true);
    finder.GetDimensions(Id('G'), &ids, true);
    EXPECT_EQ(Letters(ids), "EZD");
    // What the caller had counts as a dimension of the first fact.
    EXPECT_EQ(Shared(finder, {Id('Z'), Id('E')}), "DE");
}

TEST(FactFinder, DumpsTheGraphAndTheAnswers)
{
    const AUT_RefPtr<AQE_I_FactFinder> finder = AQE_I_FactFinder::Create();
    EXPECT_EQ(DumpOf(*finder), "FactFinder::Dump\nNodes:\nFacts:\nShared Dimensions:\n");
    AddJoins(*finder, "F>D F>E C-D G>D D>B");
    EXPECT_EQ(DumpOf(*finder), R"(FactFinder::Dump
Nodes:
100:2 --> Id(s):  100:2
100:3 --> Id(s):  100:4 100:3
100:4 --> Id(s):  100:4 100:3
100:5 --> Id(s):  100:5
100:6 --> Id(s):  100:6
100:7 --> Id(s):  100:7
FactRoot:
Id(s):  100:6
    Id(s):  100:4 100:3
        Id(s):  100:2
    Id(s):  100:5
FactRoot:
Id(s):  100:7
    Id(s):  100:4 100:3
        Id(s):  100:2
Facts:
    0:0
    --> 100:4 100:2 100:3 100:5
    0:0
    --> 100:4 100:2 100:3
Shared Dimensions:
    100:2
    100:3
    100:4
)");
}

/// Knows no dimensions of D.
class DiscreetFactFinder : public AQE_FactFinder
{
public:
    void GetDimensions(amd_id id, std::vector<amd_id>* dimensions, bool recursive) override
    {
        if (id != Id('D'))
            AQE_FactFinder::GetDimensions(id, dimensions, recursive);
    }
};

TEST(FactFinder, AsksItselfThroughItsInterface)
{
    DiscreetFactFinder finder;
    AddJoins(finder, "F>D D>E G>D");
    EXPECT_EQ(Dimensions(finder, 'F'), "D/D");
    EXPECT_EQ(Shared(finder), "D");
    EXPECT_THAT(DumpOf(finder), HasSubstr("    --> 100:4\n"));
}

/// The rules in short, worked out from all joins at once. Sets of the letters A to I are bit masks,
/// relations are arrays of them.
struct Restatement
{
    using Relation = std::array<unsigned, 9>;

    explicit Restatement(const std::vector<std::string>& joins)
    {
        for (unsigned i = 0; i < same.size(); ++i)
            same[i] = 1U << i;
        for (const std::string& join : joins) {
            known |= Mask(join[0]) | Mask(join[2]);
            if (join[1] == '-') {
                same[Index(join[0])] |= Mask(join[2]);
                same[Index(join[2])] |= Mask(join[0]);
            }
        }
        Close(same);
        for (const std::string& join : joins) {
            for (unsigned i = 0; i < own.size() && join[1] == '>'; ++i) {
                if ((same[i] & Mask(join[0])) != 0)
                    own[i] |= same[Index(join[2])];
            }
        }
        all = own;
        Close(all);
        for (unsigned i = 0; i < own.size(); ++i) {
            dimensions |= own[i];
            hasCycle = hasCycle || (all[i] & 1U << i) != 0;
        }
    }

    static unsigned Index(char letter) { return static_cast<unsigned>(letter - 'A'); }
    static unsigned Mask(char letter) { return 1U << Index(letter); }
    static void Close(Relation& relation)
    {
        for (unsigned via = 0; via < relation.size(); ++via) {
            for (unsigned& row : relation)
                row |= (row & 1U << via) != 0 ? relation[via] : 0U;
        }
    }

    unsigned known = 0;
    Relation same{};
    Relation own{};
    Relation all{};
    unsigned dimensions = 0;
    bool hasCycle = false;
};

unsigned MaskOf(const std::string& letters)
{
    unsigned mask = 0;
    for (const char letter : letters)
        mask |= Restatement::Mask(letter);
    return mask;
}

void ExpectAgreement(AQE_FactFinder& finder, const Restatement& rules)
{
    std::set<unsigned> expectedFacts;
    unsigned expectedShared = ~0U;
    for (unsigned i = 0; i < rules.same.size(); ++i) {
        const std::string dimensions = Dimensions(finder, static_cast<char>('A' + i));
        const std::size_t slash = dimensions.find('/');
        EXPECT_EQ(MaskOf(dimensions.substr(0, slash)), rules.own[i]);
        EXPECT_EQ(MaskOf(dimensions.substr(slash + 1)), rules.all[i]);
        if ((rules.known & ~rules.dimensions & 1U << i) != 0) {
            expectedFacts.insert(rules.same[i]);
            expectedShared &= rules.all[i];
        }
    }
    // A query subject that is joined to itself alone stays a fact beside the error.
    if (rules.hasCycle)
        return;
    const std::string facts = Facts(finder);
    std::vector<unsigned> factGroups;
    for (const char fact : facts)
        factGroups.push_back(rules.same[Restatement::Index(fact)]);
    EXPECT_THAT(factGroups, testing::UnorderedElementsAreArray(expectedFacts));
    EXPECT_EQ(MaskOf(Shared(finder)), facts.size() > 1 ? expectedShared : MaskOf(facts));
}

/// Returns whether the rules in short cover the one-to-one join. Merging two dimensions leaves the
/// parents of one with the dimensions they had before, and merging something with what lies below
/// it makes a cycle that goes unreported; neither follows from them.
bool IsCovered(const Restatement& rules, const std::string& join)
{
    const unsigned ends = MaskOf(join);
    return (rules.dimensions & ends) != ends &&
           ((rules.all[Restatement::Index(join[0])] | rules.all[Restatement::Index(join[1])]) &
            ends) == 0;
}

TEST(FactFinder, AgreesWithTheRulesInShortOnRandomModels)
{
    std::mt19937 random(20240607);
    int cycles = 0;
    int merges = 0;
    for (int run = 0; run < 500 && !HasFailure(); ++run) {
        AQE_FactFinder finder;
        std::vector<std::string> joins;
        for (bool hasCycle = false; !hasCycle && joins.size() < 14;) {
            std::string join{static_cast<char>('A' + random() % 9), random() % 3 == 0 ? '-' : '>',
                             static_cast<char>('A' + random() % 9)};
            if (join[1] == '-' &&
                (join[0] == join[2] || !IsCovered(Restatement(joins), {join[0], join[2]})))
                continue;
            merges += join[1] == '-' ? 1 : 0;
            joins.push_back(join);
            SCOPED_TRACE(testing::PrintToString(joins));
            const Restatement rules(joins);
            hasCycle = rules.hasCycle;
            EXPECT_EQ(AddJoins(finder, join), hasCycle ? CycleError : "");
            ExpectAgreement(finder, rules);
        }
        cycles += joins.size() < 14 ? 1 : 0;
    }
    EXPECT_GT(cycles, 100);
    EXPECT_GT(merges, 500);
}

} // namespace
