#include "Toolkit/Ask/Answer.h"

#include "IdClass.h"
#include "ORVMessage.h"

#include <string_view>
#include <utility>

namespace qe::tool {

namespace {

std::string ToText(std::int32_t bound)
{
    switch (bound) {
    case BMT_I_Association::CardinalityZero:
        return "0";
    case BMT_I_Association::CardinalityOne:
        return "1";
    case BMT_I_Association::CardinalityMany:
        return "n";
    default:
        return "?";
    }
}

} // namespace

AnswerJoin ToAnswerJoin(const AQE_I_Refiner::QEjoinInfo& info)
{
    return {.id = info.joinId,
            .name = info.name.ToStdString(),
            .left = info.leftQuerySubject,
            .right = info.rightQuerySubject,
            .condition = info.expression.ToStdString(),
            .leftCardinality = info.leftCardinality,
            .rightCardinality = info.rightCardinality,
            .weight = info.weight};
}

AnswerMessage ToAnswerMessage(const ORVMessage& message)
{
    // The label of a list that is empty tells nothing.
    constexpr std::string_view kNoClasses = " User classes: ";
    std::string text = message.GetText().ToStdString();
    if (text.ends_with(kNoClasses))
        text.resize(text.size() - kNoClasses.size());
    return {.number = message.GetNumber(), .text = std::move(text)};
}

std::string Answer::NameOf(const amd_id& subject) const
{
    const auto found = subjects.find(subject);
    return found == subjects.end() ? ::ToText(subject) : found->second.name;
}

const AnswerJoin* Answer::FindJoin(const amd_id& join) const
{
    const auto found = joinsById.find(join);
    return found == joinsById.end() ? nullptr : &found->second;
}

std::string_view JoinKindTitle(const amd_id& join)
{
    switch (join.classCode) {
    case IdClassRelationship:
        return "relationship";
    case IdClassRelationshipShortcut:
        return "relationship shortcut";
    case IdClassRelationship136:
        return "second-kind relationship";
    case IdClassSpecJoin:
        return "query join";
    case IdClassShortcutJoin:
        return "shortcut join";
    default:
        return "join";
    }
}

std::string ToText(const BMT_I_Association::CardinalityRange& range)
{
    return ToText(range.minimum) + ".." + ToText(range.maximum);
}

} // namespace qe::tool
