#include "Tests/Support/ModelText.h"

#include "Engine/Model/ModelBuilder.h"

#include <algorithm>
#include <regex>
#include <stdexcept>

namespace qe::test {

using qe::model::CardinalityRange;
using qe::model::ObjectOptions;

namespace {

/// A name as it stands in a text: "Orders#7" has the number 7, "Orders" the number 0.
struct NumberedName
{
    explicit NumberedName(const std::string& text)
        : name(text.substr(0, text.rfind('#'))),
          number(name == text ? 0 : std::stoi(text.substr(name.size() + 1)))
    {}

    [[nodiscard]] ObjectOptions InClass(std::int32_t classCode) const
    {
        return {.id = number == 0 ? amd_id() : amd_id(0, classCode, number)};
    }

    std::string name;
    std::int32_t number;
};

CardinalityRange ReadEnd(const std::string& text)
{
    const bool isOptional = text.find('o') != std::string::npos;
    if (text.find_first_of("<>") == std::string::npos)
        return isOptional ? model::kZeroToOne : model::kOneToOne;
    return isOptional ? model::kZeroToMany : model::kOneToMany;
}

/// Reads the notation into a builder.
class ModelTextParser
{
public:
    std::shared_ptr<const model::Model> Parse(std::string_view text)
    {
        Enter("namespace", "Model");
        for (const std::string& line : SplitList(text, '\n')) {
            for (const std::string& statement : SplitList(line.substr(0, line.find("//")), ';'))
                ParseStatement(statement);
        }
        return mBuilder.Build();
    }

private:
    void ParseStatement(const std::string& statement)
    {
        static const std::regex parent("(namespace|folder) ?(.*)");
        static const std::regex filter("filter (.+) on (.+)");
        static const std::regex queryFilter("query filter (.+) on (.+)");
        static const std::regex shortcut("(.+?) ->([0-9]*) ([^:]+?)");
        static const std::regex relationshipShortcut("(.+?) -> (.+?) : (.+), (.+)");
        static const std::regex join("(.+?) (|o|>o?)([-=~])(|o|o?<) (.+?)"
                                     "(?: : (.+?))?(?: on (.+))?");
        std::smatch parts;
        if (std::regex_match(statement, parts, parent))
            Enter(parts[1], parts[2]);
        else if (std::regex_match(statement, parts, filter))
            mBuilder.AddFilter(mParent, parts[1], parts[2]);
        else if (std::regex_match(statement, parts, queryFilter))
            mBuilder.AddSpecFilter(parts[1], parts[2]);
        else if (std::regex_match(statement, parts, shortcut))
            AddShortcut(parts);
        else if (std::regex_match(statement, parts, relationshipShortcut))
            AddRelationshipShortcut(parts);
        else if (std::regex_match(statement, parts, join))
            AddJoin(parts);
        else
            AddSubjects(statement);
    }

    void Enter(const std::string& kind, const std::string& path)
    {
        mParent = kind == "folder" ? mSpace : amd_id();
        for (const std::string& name : SplitList(path, '/')) {
            amd_id& parent = mContainers[{mParent, name}];
            if (parent == amd_id())
                parent = kind == "folder" ? mBuilder.AddFolder(mParent, name)
                                          : mBuilder.AddNamespace(name);
            mParent = parent;
        }
        if (kind == "namespace")
            mSpace = mParent;
    }

    void AddShortcut(const std::smatch& parts)
    {
        const NumberedName name(parts[1]);
        const amd_id target = Subject(parts[3]);
        mSubjects[name.name] =
            mBuilder.AddShortcut(mParent, name.name, {target, std::stoi('0' + parts[2].str())},
                                 name.InClass(IdClassShortcut));
    }

    void AddRelationshipShortcut(const std::smatch& parts)
    {
        const NumberedName name(parts[1]);
        const amd_id left = Subject(parts[3]);
        mJoins[name.name] = mBuilder.AddRelationshipShortcut(
            mParent, name.name, {mJoins.at(parts[2]), left, Subject(parts[4])},
            name.InClass(IdClassRelationshipShortcut));
    }

    void AddJoin(const std::smatch& parts)
    {
        const model::JoinEnd left{Subject(parts[1]), ReadEnd(parts[2])};
        const model::JoinEnd right{Subject(parts[5]), ReadEnd(parts[4])};
        const NumberedName name(parts[6].matched ? parts[6].str()
                                                 : NumberedName(parts[1]).name + '-' +
                                                       NumberedName(parts[5]).name);
        amd_id& id = mJoins[name.name];
        if (parts[3] == "~")
            id = mBuilder.AddSpecJoin(name.name, left, right, parts[7],
                                      name.InClass(IdClassSpecJoin));
        else if (parts[3] == "=")
            id = mBuilder.AddRelationship136(mParent, name.name, left, right, parts[7],
                                             name.InClass(IdClassRelationship136));
        else
            id = mBuilder.AddRelationship(mParent, name.name, left, right, parts[7],
                                          name.InClass(IdClassRelationship));
    }

    void AddSubjects(const std::string& statement)
    {
        static const std::regex subject(" *([^,(]+)(?:\\(([^)]*)\\))?,?");
        for (std::sregex_iterator part(statement.begin(), statement.end(), subject), end;
             part != end; ++part) {
            const amd_id id = Subject((*part)[1]);
            for (const std::string& item : SplitList((*part)[2].str(), ',')) {
                const NumberedName name(item);
                mBuilder.AddItem(id, name.name, name.InClass(IdClassQueryItem));
            }
        }
    }

    /// Returns the subject of that name, which is made when it is not there.
    amd_id Subject(const std::string& text)
    {
        const NumberedName name(text);
        amd_id& id = mSubjects[name.name];
        if (id == amd_id())
            id = mBuilder.AddQuerySubject(mParent, name.name, name.InClass(IdClassQuerySubject));
        return id;
    }

    model::ModelBuilder mBuilder;
    amd_id mSpace;
    amd_id mParent;
    std::map<std::string, amd_id> mSubjects;
    std::map<std::string, amd_id> mJoins;
    std::map<std::pair<amd_id, std::string>, amd_id> mContainers;
};

} // namespace

std::vector<std::string> SplitList(std::string_view text, char separator)
{
    constexpr const char* kSpaces = " \t\r";
    std::vector<std::string> parts;
    while (!text.empty()) {
        const std::size_t end = std::min(text.find(separator), text.size());
        std::string part(text.substr(0, end));
        part.erase(0, part.find_first_not_of(kSpaces));
        part.erase(part.find_last_not_of(kSpaces) + 1);
        if (!part.empty())
            parts.push_back(std::move(part));
        text.remove_prefix(std::min(end + 1, text.size()));
    }
    return parts;
}

ModelText::ModelText(std::string_view text) : ModelText(ModelTextParser().Parse(text))
{}

ModelText::ModelText(std::shared_ptr<const qe::model::Model> model)
    : mModel(std::move(model)), mGateway(std::make_unique<qe::model::ModelGateway>(mModel))
{
    for (const qe::model::ObjectRecord& record : mModel->GetRecords()) {
        const bool isItem = record.id.classCode == IdClassQueryItem;
        mIds.emplace(isItem ? Name(record.parent) + '.' + record.name : record.name, record.id);
    }
}

amd_id ModelText::Id(std::string_view name) const
{
    const NumberedName wanted{std::string(name)};
    const auto range = mIds.equal_range(wanted.name);
    std::vector<amd_id> found;
    for (auto entry = range.first; entry != range.second; ++entry) {
        if (wanted.number == 0 || wanted.number == entry->second.number)
            found.push_back(entry->second);
    }
    if (found.size() != 1)
        throw std::invalid_argument((found.empty() ? "no object is named " : "ambiguous name ") +
                                    std::string(name));
    return found.front();
}

std::vector<amd_id> ModelText::Ids(std::string_view names) const
{
    std::vector<amd_id> ids;
    for (const std::string& name : SplitList(names, ','))
        ids.push_back(Id(name));
    return ids;
}

std::string ModelText::Name(const amd_id& id) const
{
    const qe::model::ObjectRecord* record = mModel->Find(id);
    return record == nullptr ? ToText(id) : record->name;
}

std::string ModelText::Names(const std::vector<amd_id>& ids) const
{
    std::string text;
    for (const amd_id& id : ids)
        text += (text.empty() ? "" : ", ") + Name(id);
    return text;
}

std::vector<amd_id> ModelText::Subjects() const
{
    return {mModel->GetSubjects().begin(), mModel->GetSubjects().end()};
}

std::vector<amd_id> ModelText::Joins() const
{
    return {mModel->GetJoins().begin(), mModel->GetJoins().end()};
}

} // namespace qe::test
