#include "Toolkit/Answers/NamesJson.h"

namespace qe::tool {

nlohmann::ordered_json IdsToJson(std::span<const amd_id> ids)
{
    auto list = nlohmann::ordered_json::array();
    for (const amd_id& id : ids)
        list.push_back(ToText(id));
    return list;
}

nlohmann::ordered_json NamesToJson(const Answer& answer, std::span<const amd_id> subjects)
{
    auto list = nlohmann::ordered_json::array();
    for (const amd_id& subject : subjects)
        list.push_back(answer.NameOf(subject));
    return list;
}

} // namespace qe::tool
