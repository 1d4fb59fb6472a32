#include "Toolkit/Export/ExportWriters.h"
#include "Toolkit/Export/ExportedModel.h"
#include "Toolkit/Text/DisplayText.h"
#include "Toolkit/Text/PlainText.h"

#include <string_view>

namespace qe::tool {

namespace {

/// Names may hold anything but double quotes, backslashes and control characters.
std::string SpellName(std::string_view name)
{
    std::string spelled = ReplaceHarmful(name, ' ');
    for (char& c : spelled)
        c = c == '"' ? '\'' : c == '\\' ? '/' : c;
    return spelled;
}

std::string QuoteName(const std::string& name)
{
    return '"' + name + '"';
}

/// A text on one line.
std::string QuoteText(std::string_view text)
{
    std::string quoted = "'";
    for (const char c : ReplaceHarmful(text, ' ')) {
        if (c == '\'' || c == '\\')
            quoted += '\\';
        quoted += c;
    }
    return quoted + '\'';
}

std::string WriteColumns(const std::vector<std::string>& columns)
{
    const std::string list = JoinTexts(columns, QuoteName);
    return columns.size() == 1 ? list : '(' + list + ')';
}

std::string WriteTable(const ExportedSubject& subject)
{
    std::string text = "Table " + QuoteName(subject.name) + " {\n";
    for (const auto& [name, description] : subject.columns)
        text += "  " + QuoteName(name) + " any" +
                (description.empty() ? "" : " [note: " + QuoteText(description) + ']') + '\n';
    if (!subject.keys.empty())
        text += "  indexes {\n";
    for (std::size_t key = 0; key < subject.keys.size(); ++key)
        text += "    " + WriteColumns(subject.keys[key]) + (key == 0 ? " [pk]\n" : " [unique]\n");
    if (!subject.keys.empty())
        text += "  }\n";
    if (!subject.description.empty())
        text += "  Note: " + QuoteText(subject.description) + '\n';
    return text + "}\n\n";
}

const char* SignOf(const ExportedJoin& join)
{
    if (join.left.isMany)
        return join.right.isMany ? " <> " : " > ";
    return " - ";
}

std::string WriteReference(const ExportedModel& model, const ExportedJoin& join)
{
    const auto write = [&model](const ExportedEnd& end) {
        return QuoteName(model.subjects[end.subject].name) + '.' + WriteColumns(end.columns);
    };
    // Of two single ends the second is the one that refers.
    const bool isTurned = !join.left.isMany;
    return "Ref " + QuoteName(SpellName(join.name)) + ": " +
           write(isTurned ? join.right : join.left) + SignOf(join) +
           write(isTurned ? join.left : join.right) + '\n';
}

/// Returns the joins that references can say.
std::vector<ExportedJoin> TakeReferences(const ExportedModel& model, LeftOut& leftOut)
{
    std::vector<ExportedJoin> taken;
    for (ExportedJoin& join : TakePlainJoins(model, leftOut)) {
        const bool isToItself =
            join.left.subject == join.right.subject && join.left.columns == join.right.columns;
        if (isToItself) {
            leftOut.Add("joins of columns to themselves", join.name);
            continue;
        }
        if (!join.left.isOptional || !join.right.isOptional)
            leftOut.Add("words that each row has a partner", join.name);
        taken.push_back(std::move(join));
    }
    return taken;
}

} // namespace

std::string WriteDbml(const ToolModel& model, LeftOut& leftOut)
{
    ExportedModel exported = CollectModel(model, leftOut);
    NoteRoles(exported, leftOut);
    exported.joins = TakeReferences(exported, leftOut);
    for (const ExportedSubject& subject : exported.subjects)
        if (subject.columns.empty())
            leftOut.Add("subjects without items", subject.name);
    SpellSubjects(exported, SpellName);
    SpellColumns(exported, SpellName);
    std::string text;
    // A table without columns is a mistake.
    for (const ExportedSubject& subject : exported.subjects)
        text += subject.columns.empty() ? "" : WriteTable(subject);
    for (const ExportedJoin& join : exported.joins)
        text += WriteReference(exported, join);
    return text;
}

} // namespace qe::tool
