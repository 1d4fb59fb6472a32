#include "Tests/Support/ModelTextParser.h"

#include <algorithm>
#include <optional>
#include <stdexcept>

namespace qe::test {

using qe::model::CardinalityRange;
using qe::model::JoinEnd;
using qe::model::ObjectOptions;

namespace {

std::string Trim(std::string_view text)
{
    const std::size_t first = text.find_first_not_of(" \t\r");
    if (first == std::string_view::npos)
        return {};
    return std::string(text.substr(first, text.find_last_not_of(" \t\r") - first + 1));
}

/// Splits at the first `separator`; the second part is empty when there is none.
std::pair<std::string, std::string> SplitOnce(const std::string& text, std::string_view separator)
{
    const std::size_t at = text.find(separator);
    if (at == std::string::npos)
        return {Trim(text), {}};
    return {Trim(text.substr(0, at)), Trim(text.substr(at + separator.size()))};
}

std::optional<CardinalityRange> ParseEnd(std::string_view text)
{
    if (text.empty())
        return qe::model::OneToOne;
    if (text == "o")
        return qe::model::ZeroToOne;
    if (text == ">" || text == "<")
        return qe::model::OneToMany;
    if (text == ">o" || text == "o<")
        return qe::model::ZeroToMany;
    return std::nullopt;
}

bool IsJoinOperator(const std::string& token)
{
    const std::size_t middle = token.find_first_of("-=~");
    return middle != std::string::npos && ParseEnd(token.substr(0, middle)) &&
           ParseEnd(token.substr(middle + 1));
}

bool IsArrow(const std::string& token)
{
    return token.rfind("->", 0) == 0 &&
           std::all_of(token.begin() + 2, token.end(),
                       [](char letter) { return letter >= '0' && letter <= '9'; });
}

ObjectOptions Numbered(const NumberedName& name, std::int32_t classCode)
{
    ObjectOptions options;
    if (name.number != 0)
        options.id = amd_id(0, classCode, name.number);
    return options;
}

} // namespace

std::vector<std::string> SplitList(std::string_view text, char separator)
{
    std::vector<std::string> parts;
    while (!text.empty()) {
        const std::size_t end = std::min(text.find(separator), text.size());
        if (std::string part = Trim(text.substr(0, end)); !part.empty())
            parts.push_back(std::move(part));
        text.remove_prefix(std::min(end + 1, text.size()));
    }
    return parts;
}

NumberedName ParseNumberedName(std::string_view text)
{
    const std::string name = Trim(text);
    const std::size_t mark = name.rfind('#');
    if (mark == std::string::npos)
        return {name, 0};
    return {name.substr(0, mark), std::stoi(name.substr(mark + 1))};
}

void ModelTextParser::Parse(std::string_view text)
{
    EnterNamespace("Model");
    for (const std::string& line : SplitList(text, '\n')) {
        for (const std::string& statement : SplitList(line.substr(0, line.find("//")), ';'))
            ParseStatement(statement);
    }
}

void ModelTextParser::ParseStatement(const std::string& statement)
{
    if (ParseKeyword(statement))
        return;
    for (std::size_t from = 0; from < statement.size();) {
        const std::size_t end = std::min(statement.find(' ', from), statement.size());
        const std::string token = statement.substr(from, end - from);
        const std::string left = Trim(statement.substr(0, from));
        const std::string right = Trim(statement.substr(end));
        if (IsArrow(token))
            return ParseArrow(left, token.substr(2), right);
        if (IsJoinOperator(token))
            return ParseJoin(left, token, right);
        from = end + 1;
    }
    ParseSubjects(statement);
}

bool ModelTextParser::ParseKeyword(const std::string& statement)
{
    const auto [keyword, rest] = SplitOnce(statement, " ");
    if (keyword == "namespace") {
        EnterNamespace(rest);
    } else if (keyword == "folder") {
        EnterFolder(rest);
    } else if (keyword == "filter") {
        const auto [name, condition] = SplitOnce(rest, " on ");
        mBuilder.AddFilter(mHolder, name, condition);
    } else if (keyword == "query") {
        const auto [name, condition] = SplitOnce(SplitOnce(rest, "filter ").second, " on ");
        mBuilder.AddSpecFilter(name, condition);
    } else {
        return false;
    }
    return true;
}

void ModelTextParser::ParseArrow(const std::string& left, const std::string& kind,
                                 const std::string& right)
{
    const NumberedName name = ParseNumberedName(left);
    const auto [target, ends] = SplitOnce(right, " : ");
    if (ends.empty()) {
        const amd_id object = Subject(target);
        mSubjects[name.name] =
            mBuilder.AddShortcut(mHolder, name.name, {object, kind.empty() ? 0 : std::stoi(kind)},
                                 Numbered(name, IdClassShortcut));
        return;
    }
    const std::vector<std::string> names = SplitList(ends, ',');
    if (names.size() != 2 || mJoins.count(target) == 0)
        throw std::invalid_argument("not a known join with two ends: " + right);
    const amd_id first = Subject(names[0]);
    const amd_id second = Subject(names[1]);
    mJoins[name.name] =
        mBuilder.AddRelationshipShortcut(mHolder, name.name, {mJoins[target], first, second},
                                         Numbered(name, IdClassRelationshipShortcut));
}

void ModelTextParser::ParseJoin(const std::string& left, const std::string& ends,
                                const std::string& right)
{
    const auto [endAndName, condition] = SplitOnce(right, " on ");
    const auto [rightEnd, joinName] = SplitOnce(endAndName, " : ");
    const std::size_t middle = ends.find_first_of("-=~");
    const JoinEnd first{Subject(left), *ParseEnd(ends.substr(0, middle))};
    const JoinEnd second{Subject(rightEnd), *ParseEnd(ends.substr(middle + 1))};
    NumberedName name = ParseNumberedName(joinName);
    if (name.name.empty())
        name.name = ParseNumberedName(left).name + '-' + ParseNumberedName(rightEnd).name;
    amd_id& id = mJoins[name.name];
    if (ends[middle] == '~')
        id = mBuilder.AddSpecJoin(name.name, first, second, condition,
                                  Numbered(name, IdClassSpecJoin));
    else if (ends[middle] == '=')
        id = mBuilder.AddRelationship136(mHolder, name.name, first, second, condition,
                                         Numbered(name, IdClassRelationship136));
    else
        id = mBuilder.AddRelationship(mHolder, name.name, first, second, condition,
                                      Numbered(name, IdClassRelationship));
}

void ModelTextParser::ParseSubjects(const std::string& statement)
{
    for (std::size_t from = 0; from < statement.size();) {
        std::size_t end = std::min(statement.find_first_of(",(", from), statement.size());
        const amd_id subject = Subject(statement.substr(from, end - from));
        if (end < statement.size() && statement[end] == '(') {
            const std::size_t close = std::min(statement.find(')', end), statement.size());
            for (const std::string& item :
                 SplitList(statement.substr(end + 1, close - end - 1), ',')) {
                const NumberedName name = ParseNumberedName(item);
                mBuilder.AddItem(subject, name.name, Numbered(name, IdClassQueryItem));
            }
            end = std::min(statement.find(',', close), statement.size());
        }
        from = end + 1;
    }
}

void ModelTextParser::EnterNamespace(const std::string& name)
{
    amd_id& space = mContainers[{amd_id(), name}];
    if (space == amd_id())
        space = mBuilder.AddNamespace(name);
    mSpace = space;
    mHolder = space;
}

void ModelTextParser::EnterFolder(const std::string& path)
{
    mHolder = mSpace;
    for (const std::string& name : SplitList(path, '/')) {
        amd_id& folder = mContainers[{mHolder, name}];
        if (folder == amd_id())
            folder = mBuilder.AddFolder(mHolder, name);
        mHolder = folder;
    }
}

amd_id ModelTextParser::Subject(std::string_view text)
{
    const NumberedName name = ParseNumberedName(text);
    if (name.name.empty())
        throw std::invalid_argument("a name is missing");
    const auto known = mSubjects.find(name.name);
    if (known != mSubjects.end())
        return known->second;
    const amd_id id =
        mBuilder.AddQuerySubject(mHolder, name.name, Numbered(name, IdClassQuerySubject));
    mSubjects[name.name] = id;
    return id;
}

} // namespace qe::test
