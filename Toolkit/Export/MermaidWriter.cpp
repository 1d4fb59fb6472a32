#include "Engine/Services/Characters.h"
#include "Toolkit/Export/ExportWriters.h"
#include "Toolkit/Export/ExportedModel.h"
#include "Toolkit/Text/PlainText.h"

#include <algorithm>
#include <map>
#include <set>
#include <string_view>

namespace qe::tool {

namespace {

/// Texts between quotes may hold neither quotes nor "%", a backslash or control characters.
std::string SpellText(std::string_view text)
{
    std::string spelled = ReplaceHarmful(text, '_');
    for (char& c : spelled)
        c = c == '"' ? '\'' : c == '%' || c == '\\' ? '_' : c;
    return spelled;
}

std::string Quote(std::string_view text)
{
    return '"' + SpellText(text) + '"';
}

/// Names of columns are plain words, but not those that mark keys.
std::string ToWord(std::string_view name)
{
    std::string word;
    for (const char c : name)
        word += ascii::IsLetter(c) || ascii::IsDigit(c) ? c : '_';
    const std::string lower = ascii::ToLower(word);
    const bool isMark = lower == "pk" || lower == "fk" || lower == "uk";
    return isMark || word.empty() || ascii::IsDigit(word.front()) ? '_' + word : word;
}

const char* LeftSign(const ExportedEnd& end)
{
    if (end.isMany)
        return end.isOptional ? "}o" : "}|";
    return end.isOptional ? "|o" : "||";
}

const char* RightSign(const ExportedEnd& end)
{
    if (end.isMany)
        return end.isOptional ? "o{" : "|{";
    return end.isOptional ? "o|" : "||";
}

bool Holds(const std::vector<std::string>& names, const std::string& name)
{
    return std::find(names.begin(), names.end(), name) != names.end();
}

using ReferringColumns = std::map<std::size_t, std::set<std::string>>;

std::string WriteEntity(const ExportedSubject& subject, const std::set<std::string>& referring)
{
    std::string text = "    " + Quote(subject.name);
    if (subject.columns.empty())
        return text + '\n';
    text += " {\n";
    UniqueNames words("_", "");
    for (const auto& [name, description] : subject.columns) {
        const std::string word = words.Take(ToWord(name));
        std::string marks;
        if (!subject.keys.empty() && Holds(subject.keys.front(), name))
            marks = " PK";
        if (referring.count(name) != 0)
            marks += marks.empty() ? " FK" : ",FK";
        const std::string comment = word == name ? description : name;
        text += "        any ";
        text += word;
        text += marks;
        if (!comment.empty())
            text += ' ' + Quote(comment);
        text += '\n';
    }
    return text + "    }\n";
}

} // namespace

std::string WriteMermaid(const ToolModel& model, LeftOut& leftOut)
{
    ExportedModel exported = CollectModel(model, leftOut);
    NoteRoles(exported, leftOut);
    SpellSubjects(exported, SpellText);
    ReferringColumns referring;
    for (const ExportedJoin& join : exported.joins) {
        referring[join.left.subject].insert(join.left.columns.begin(), join.left.columns.end());
        if (join.isPlain)
            leftOut.Add("columns that joins compare", join.name);
        else
            leftOut.Add("conditions that are more than equal columns", join.name);
    }
    std::string text = "erDiagram\n";
    for (std::size_t i = 0; i < exported.subjects.size(); ++i)
        text += WriteEntity(exported.subjects[i], referring[i]);
    for (const ExportedJoin& join : exported.joins)
        text += "    " + Quote(exported.subjects[join.left.subject].name) + ' ' +
                LeftSign(join.left) + "--" + RightSign(join.right) + ' ' +
                Quote(exported.subjects[join.right.subject].name) + " : " + Quote(join.name) + '\n';
    return text;
}

} // namespace qe::tool
