#include "Toolkit/Export/ExportedModel.h"

#include "AQE_Expression.h"
#include "Engine/Expression/ParseReport.h"
#include "Engine/Expression/Printer.h"
#include "Engine/Model/Model.h"
#include "Engine/Model/Names.h"
#include "Engine/Services/Characters.h"
#include "Toolkit/Model/ToolModel.h"

#include <algorithm>
#include <map>
#include <memory>
#include <optional>
#include <set>
#include <tuple>

namespace qe::tool {

namespace {

using Names = std::vector<std::string>;
using model::ObjectRecord;

/// Returns the names of the references, in pairs of what a condition sets equal; nothing where it
/// does more.
std::optional<std::vector<Names>> FindEqualNames(const std::string& condition)
{
    const auto report = expression::FindReferences(I18NString(condition));
    if (report.error || report.references.empty() || report.references.size() % 2 != 0)
        return std::nullopt;
    std::vector<Names> references;
    std::string equalities;
    for (const expression::NamedReference& reference : report.references) {
        Names& names = references.emplace_back();
        for (const I18NString& name : reference.names)
            names.push_back(name.ToStdString());
        const bool isSecond = references.size() % 2 == 0;
        equalities += (isSecond             ? " = "
                       : equalities.empty() ? ""
                                            : " AND ") +
                      model::ToReferenceText(names);
    }
    const std::unique_ptr<AQE_Expression> parsed(
        AQE_Expression::Create(I18NString(condition), nullptr, I18NString(), {}));
    std::string printed;
    expression::Printer(printed).Print(*parsed);
    return printed == equalities ? std::optional(references) : std::nullopt;
}

class Collector
{
public:
    Collector(const ToolModel& tool, LeftOut& leftOut)
        : mTool(tool), mModel(*tool.model), mLeftOut(leftOut)
    {}

    ExportedModel Collect()
    {
        const auto spaces = mModel.GetIds(model::IdClassNamespace);
        mExported.name = spaces.empty() ? "model" : mModel.Find(spaces.front())->name;
        for (const amd_id& id : mModel.GetSubjects())
            if (mModel.Find(id)->referenced == amd_id())
                AddSubject(id);
        for (const amd_id& id : mModel.GetSubjects())
            if (mModel.Find(id)->referenced != amd_id())
                AddShortcut(id);
        for (const amd_id& id : mModel.GetJoins())
            AddJoin(id);
        NoteRest();
        return std::move(mExported);
    }

private:
    void AddSubject(const amd_id& id)
    {
        const ObjectRecord& record = *mModel.Find(id);
        const ObjectRecord& target = *mModel.Find(mModel.GetTarget(id));
        ExportedSubject subject{
            .name = TakeName(mSubjectNames, id),
            .source = model::ParseQualifiedName(target.text.empty() ? target.name : target.text),
            .description = DescriptionOf(id),
            .keys = target.keys,
            .isRole = record.referenced != amd_id()};
        for (const amd_id& item : mModel.GetItems(id))
            subject.columns.emplace_back(mModel.Find(item)->name, DescriptionOf(item));
        mPositions[id] = mExported.subjects.size();
        mExported.subjects.push_back(std::move(subject));
        for (const Names& key : target.keys)
            EnsureColumns(mPositions[id], key);
    }

    /// Returns the name of the object, with those around it where another one is called so.
    [[nodiscard]] std::string TakeName(UniqueNames& names, const amd_id& id) const
    {
        const std::string& name = mModel.Find(id)->name;
        return names.Take(names.IsFree(name) ? name : model::ToText(mModel.GetQualifiedName(id)));
    }

    void AddShortcut(const amd_id& id)
    {
        if (mPositions.contains(mModel.GetTarget(id)))
            AddSubject(id);
        else
            mLeftOut.Add("shortcuts", mModel.Find(id)->name);
    }

    [[nodiscard]] std::string DescriptionOf(const amd_id& id) const
    {
        const auto found = mTool.descriptions.find(id);
        return found == mTool.descriptions.end() ? std::string() : found->second;
    }

    void AddJoin(const amd_id& id)
    {
        const ObjectRecord& record = *mModel.Find(id);
        const auto left = mPositions.find(record.left);
        const auto right = mPositions.find(record.right);
        if (id.classCode == IdClassRelationshipShortcut || id.classCode == IdClassSpecJoin ||
            left == mPositions.end() || right == mPositions.end())
            return mLeftOut.Add("joins that are shortcuts or belong to a query", record.name);
        ExportedJoin join{.left = MakeEnd(left->second, record.leftCardinality),
                          .right = MakeEnd(right->second, record.rightCardinality),
                          .condition = record.text};
        join.isPlain = AddColumns(record, join);
        if (join.right.isMany && !join.left.isMany)
            std::swap(join.left, join.right);
        if (join.isPlain && !mSignatures.insert(SignatureOf(join)).second)
            return mLeftOut.Add("joins that repeat another one", record.name);
        join.name = TakeName(mJoinNames, id);
        if (!DescriptionOf(id).empty())
            mLeftOut.Add("descriptions of joins", join.name);
        EnsureColumns(join.left.subject, join.left.columns);
        EnsureColumns(join.right.subject, join.right.columns);
        mExported.joins.push_back(std::move(join));
    }

    static ExportedEnd MakeEnd(std::size_t subject, const model::CardinalityRange& range)
    {
        return {.subject = subject,
                .isMany = range.maximum != model::kOneToOne.maximum,
                .isOptional = range.minimum == model::kZeroToOne.minimum};
    }

    /// Returns whether the condition is a conjunction of equal columns of the two ends.
    bool AddColumns(const ObjectRecord& record, ExportedJoin& join) const
    {
        const auto names = FindEqualNames(record.text);
        if (!names)
            return false;
        const Names left = mModel.GetQualifiedName(record.left);
        const Names right = mModel.GetQualifiedName(record.right);
        Names leftColumns;
        Names rightColumns;
        for (std::size_t i = 0; i < names->size(); i += 2) {
            Names first = (*names)[i];
            Names second = (*names)[i + 1];
            leftColumns.push_back(std::move(first.back()));
            rightColumns.push_back(std::move(second.back()));
            first.pop_back();
            second.pop_back();
            if (first == right && second == left && left != right)
                std::swap(leftColumns.back(), rightColumns.back());
            else if (first != left || second != right)
                return false;
        }
        join.left.columns = std::move(leftColumns);
        join.right.columns = std::move(rightColumns);
        return true;
    }

    /// Lets the subject have the columns, of which a model need not list all.
    void EnsureColumns(std::size_t position, const Names& columns)
    {
        auto& known = mExported.subjects[position].columns;
        for (const std::string& column : columns) {
            const bool isKnown = std::any_of(known.begin(), known.end(), [&](const auto& other) {
                return other.first == column;
            });
            if (!isKnown)
                known.emplace_back(column, "");
        }
    }

    using Signature =
        std::tuple<std::size_t, std::size_t, std::set<std::pair<std::string, std::string>>>;

    static Signature SignatureOf(const ExportedJoin& join)
    {
        const bool isTurned = std::tie(join.right.subject, join.right.columns) <
                              std::tie(join.left.subject, join.left.columns);
        const ExportedEnd& first = isTurned ? join.right : join.left;
        const ExportedEnd& second = isTurned ? join.left : join.right;
        Signature signature{first.subject, second.subject, {}};
        for (std::size_t i = 0; i < first.columns.size(); ++i)
            std::get<2>(signature).emplace(first.columns[i], second.columns[i]);
        return signature;
    }

    void NoteRest()
    {
        for (const std::int32_t classCode : {IdClassFilter, IdClassSpecFilter})
            for (const amd_id& id : mModel.GetIds(classCode))
                mLeftOut.Add("filters", mModel.Find(id)->name);
        for (const amd_id& id : mModel.GetIds(IdClassFolder))
            mLeftOut.Add("folders", mModel.Find(id)->name);
        for (const Decision& decision : mTool.decisions)
            mLeftOut.Add("decisions",
                         decision.reason.empty() ? "one without a reason" : decision.reason);
        for (const std::string& history : mTool.histories)
            mLeftOut.Add("files of past queries", history);
    }

    const ToolModel& mTool;
    const model::Model& mModel;
    LeftOut& mLeftOut;
    ExportedModel mExported;
    std::map<amd_id, std::size_t> mPositions;
    UniqueNames mSubjectNames;
    UniqueNames mJoinNames;
    std::set<Signature> mSignatures;
};

} // namespace

bool UniqueNames::IsFree(const std::string& name) const
{
    return !mTaken.contains(ascii::ToLower(name));
}

std::string UniqueNames::Take(const std::string& name)
{
    std::string free = name;
    for (int number = 2; !mTaken.insert(ascii::ToLower(free)).second; ++number)
        free = name + mBefore + std::to_string(number) + mBehind;
    return free;
}

ExportedModel CollectModel(const ToolModel& model, LeftOut& leftOut)
{
    return Collector(model, leftOut).Collect();
}

void SpellSubjects(ExportedModel& model, NameSpelling spell)
{
    UniqueNames names;
    for (ExportedSubject& subject : model.subjects)
        subject.name = names.Take(spell(subject.name));
}

void SpellColumns(ExportedModel& model, NameSpelling spell)
{
    std::vector<std::map<std::string, std::string>> spellings(model.subjects.size());
    const auto respell = [&spellings](std::size_t subject, Names& columns) {
        for (std::string& column : columns)
            column = spellings[subject].at(column);
    };
    for (std::size_t i = 0; i < model.subjects.size(); ++i) {
        ExportedSubject& subject = model.subjects[i];
        UniqueNames names;
        for (auto& [column, description] : subject.columns) {
            const std::string spelled = names.Take(spell(column));
            spellings[i].emplace(column, spelled);
            column = spelled;
        }
        for (Names& key : subject.keys)
            respell(i, key);
    }
    for (ExportedJoin& join : model.joins) {
        respell(join.left.subject, join.left.columns);
        respell(join.right.subject, join.right.columns);
    }
}

void NoteRoles(const ExportedModel& model, LeftOut& leftOut)
{
    for (const ExportedSubject& subject : model.subjects)
        if (subject.isRole)
            leftOut.Add("words that a role reads the table of another subject", subject.name);
}

bool HasKeyWithin(const ExportedSubject& subject, const std::vector<std::string>& columns)
{
    return std::any_of(subject.keys.begin(), subject.keys.end(), [&](const Names& key) {
        return !key.empty() && std::all_of(key.begin(), key.end(), [&](const std::string& column) {
            return std::find(columns.begin(), columns.end(), column) != columns.end();
        });
    });
}

std::vector<ExportedJoin> TakePlainJoins(const ExportedModel& model, LeftOut& leftOut)
{
    std::vector<ExportedJoin> plain;
    for (const ExportedJoin& join : model.joins) {
        if (join.isPlain)
            plain.push_back(join);
        else
            leftOut.Add("joins whose condition is more than equal columns", join.name);
    }
    return plain;
}

} // namespace qe::tool
