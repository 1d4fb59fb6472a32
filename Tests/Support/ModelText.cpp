#include "Tests/Support/ModelText.h"

#include "Tests/Support/ModelTextParser.h"

#include <stdexcept>

namespace qe::test {

ModelText::ModelText(std::string_view text)
{
    ModelTextParser parser;
    parser.Parse(text);
    mModel = parser.GetBuilder().Build();
    mGateway = std::make_unique<qe::model::ModelGateway>(mModel);
    for (const qe::model::ObjectRecord& record : mModel->GetRecords()) {
        const bool isItem = record.id.classCode == IdClassQueryItem;
        mIds.emplace(isItem ? Name(record.parent) + '.' + record.name : record.name, record.id);
    }
}

amd_id ModelText::Id(std::string_view name) const
{
    const NumberedName wanted = ParseNumberedName(name);
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
