#include "Tests/Fuzz/RefinerCase.h"

#include "Engine/Model/ModelBuilder.h"
#include "IdClass.h"
#include "Tests/Fuzz/ByteReader.h"

#include <algorithm>
#include <sstream>
#include <string>
#include <utility>

namespace qe::test {

namespace {

using model::CardinalityRange;
using model::JoinEnd;

constexpr std::size_t kMostSubjects = 9;
constexpr std::size_t kMostShortcuts = 4;
constexpr std::size_t kMostJoins = 24;
/// The last one is not known.
const std::vector<CardinalityRange> kCardinalities{model::kOneToOne,   model::kOneToMany,
                                                   model::kOneToMany,  model::kZeroToOne,
                                                   model::kZeroToMany, CardinalityRange()};

class CaseDecoder
{
public:
    explicit CaseDecoder(std::string_view bytes) : mBytes(bytes) {}

    RefinerCase Decode()
    {
        AddSubjects();
        AddShortcuts();
        for (std::size_t count = mBytes.Below(kMostJoins + 1); count > 0; --count)
            AddJoin();
        RefinerCase decoded;
        decoded.model = mBuilder.Build();
        ReadLists(*decoded.model, decoded.lists);
        ReadHost(decoded);
        ReadSwitches(decoded);
        return decoded;
    }

private:
    struct Subject
    {
        amd_id id;
        std::string name;
    };

    const amd_id& Place() { return mBytes.Pick(mPlaces); }

    void AddSubjects()
    {
        mPlaces.push_back(mBuilder.AddNamespace("M"));
        for (std::size_t count = mBytes.Below(4); count > 0; --count)
            mPlaces.push_back(mBuilder.AddFolder(Place(), "F" + std::to_string(count)));
        for (std::size_t count = 2 + mBytes.Below(kMostSubjects - 1); count > 0; --count) {
            const std::string name = "Q" + std::to_string(mSubjects.size());
            mSubjects.push_back({mBuilder.AddQuerySubject(Place(), name), name});
            mBuilder.AddItem(mSubjects.back().id, "K");
        }
    }

    void AddShortcuts()
    {
        for (std::size_t count = mBytes.Below(kMostShortcuts + 1); count > 0; --count) {
            const std::string name = "S" + std::to_string(mSubjects.size());
            const amd_id target = mBytes.Pick(mSubjects).id;
            const auto kind = static_cast<std::int32_t>(mBytes.Below(4) / 3);
            mSubjects.push_back({mBuilder.AddShortcut(Place(), name, {target, kind}), name});
        }
    }

    void AddJoin()
    {
        const std::size_t kind = mBytes.Below(8);
        const std::string name = "j" + std::to_string(mBytes.Below(4));
        const Subject& left = mBytes.Pick(mSubjects);
        const Subject& right = mBytes.Pick(mSubjects);
        if (kind == 0 && !mRelationships.empty()) {
            mBuilder.AddRelationshipShortcut(Place(), name,
                                             {mBytes.Pick(mRelationships), left.id, right.id});
            return;
        }
        const JoinEnd leftEnd{left.id, mBytes.Pick(kCardinalities)};
        const JoinEnd rightEnd{right.id, mBytes.Pick(kCardinalities)};
        const std::string condition = "[M].[" + left.name + "].[K] = [M].[" + right.name + "].[K]";
        if (kind == 1)
            mBuilder.AddRelationship136(Place(), name, leftEnd, rightEnd, condition);
        else if (kind == 2)
            mBuilder.AddSpecJoin(name, leftEnd, rightEnd, condition);
        else
            mRelationships.push_back(
                mBuilder.AddRelationship(Place(), name, leftEnd, rightEnd, condition));
    }

    void ReadLists(const model::Model& known, Lists& lists)
    {
        for (const Subject& subject : mSubjects)
            lists.nodes.push_back(subject.id);
        lists.joins.assign(known.GetJoins().begin(), known.GetJoins().end());
        lists.subjects = mBytes.PickSome(lists.nodes, 7);
        lists.secondSet = mBytes.PickSome(lists.nodes, 4);
        lists.favouredSubjects = mBytes.PickSome(lists.nodes, 4);
        lists.favouredJoins = mBytes.PickSome(lists.joins, 4);
        lists.requiredJoins = mBytes.PickSome(lists.joins, 4);
        lists.avoidedJoins = mBytes.PickSome(lists.joins, 4);
        lists.furtherAvoidedJoins = mBytes.PickSome(lists.joins, 3);
        for (const amd_id& node : mBytes.PickSome(lists.nodes, 3))
            std::erase(lists.nodes, node);
        for (const amd_id& join : mBytes.PickSome(lists.joins, 4))
            std::erase(lists.joins, join);
    }

    void ReadHost(RefinerCase& decoded)
    {
        if (mBytes.Below(3) != 0)
            decoded.governors = AQE_Governors{static_cast<std::int32_t>(mBytes.Below(4)), 0};
        decoded.shortcutGovernors.shortcutGrouping = static_cast<std::int32_t>(mBytes.Below(2));
        decoded.command = static_cast<AQE_RequestContext::ECommandType>(mBytes.Below(4));
        decoded.hasShortcutInfo = mBytes.Below(3) != 0;
        decoded.hasCache = mBytes.Below(3) != 0;
        if (!decoded.hasCache)
            return;
        for (const amd_id& join : mBytes.PickSome(decoded.lists.joins, 6))
            decoded.weights[join] = static_cast<int>(mBytes.Below(20));
    }

    void ReadSwitches(RefinerCase& decoded)
    {
        decoded.newAlgo = mBytes.Below(3) != 0;
        decoded.isGovernorOff = mBytes.Below(4) == 1;
        decoded.useFactTableCount = mBytes.Flag();
        decoded.useStraightestPath = mBytes.Flag();
        if (mBytes.Below(3) == 1)
            decoded.choice = static_cast<std::uint32_t>(mBytes.Below(4));
        const std::size_t next = mBytes.Below(kRefinerOperations);
        for (std::size_t i = 0; i < kRefinerOperations; ++i)
            decoded.operations.push_back(
                static_cast<ERefinerOperation>((next + i) % kRefinerOperations));
    }

    ByteReader mBytes;
    model::ModelBuilder mBuilder;
    Ids mPlaces;
    std::vector<Subject> mSubjects;
    Ids mRelationships;
};

void TurnRound(Ids& ids)
{
    std::reverse(ids.begin(), ids.end());
    if (!ids.empty())
        ids.push_back(ids.front());
}

} // namespace

RefinerCase DecodeRefinerCase(std::string_view bytes)
{
    return CaseDecoder(bytes).Decode();
}

std::string Describe(const RefinerCase& input)
{
    std::ostringstream out;
    for (const model::ObjectRecord& record : input.model->GetRecords()) {
        if (record.id.classCode == IdClassQueryItem)
            continue;
        out << ToText(record.id) << ' ' << record.name << " in " << ToText(record.parent);
        if (record.referenced.IsValid())
            out << " for " << ToText(record.referenced);
        if (record.left.IsValid())
            out << ": " << ToText(record.left) << ' ' << record.leftCardinality.maximum << " - "
                << record.rightCardinality.maximum << ' ' << ToText(record.right);
        out << '\n';
    }
    const auto& [subjects, second, favoured, required, avoided, further, nodes, joins,
                 favouredSubjects] = input.lists;
    for (const auto& [name, ids] :
         {std::pair("subjects", subjects), std::pair("second set", second),
          std::pair("favoured", favoured), std::pair("required", required),
          std::pair("avoided", avoided), std::pair("further avoided", further),
          std::pair("nodes", nodes), std::pair("joins", joins),
          std::pair("favoured subjects", favouredSubjects)}) {
        out << name << ':';
        for (const amd_id& id : ids)
            out << ' ' << ToText(id);
        out << '\n';
    }
    for (const auto& [join, weight] : input.weights)
        out << "weight of " << ToText(join) << ": " << weight << '\n';
    out << "new algorithm " << input.newAlgo << ", shortcuts " << input.hasShortcutInfo
        << ", grouping " << input.shortcutGovernors.shortcutGrouping << ", governor "
        << (input.governors ? input.governors->crossProductAllowed : -1) << ", facts "
        << input.useFactTableCount << ", straight " << input.useStraightestPath << '\n';
    return out.str();
}

RefinerCase Reorder(RefinerCase original)
{
    Lists& lists = original.lists;
    for (Ids* const ids : {&lists.nodes, &lists.joins, &lists.favouredJoins, &lists.avoidedJoins,
                           &lists.furtherAvoidedJoins, &lists.favouredSubjects})
        TurnRound(*ids);
    return original;
}

} // namespace qe::test
