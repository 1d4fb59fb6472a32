#ifndef TESTS_SUPPORT_MODELTEXTPARSER_H
#define TESTS_SUPPORT_MODELTEXTPARSER_H

#include "Engine/Model/ModelBuilder.h"
#include "amd_id.h"

#include <cstdint>
#include <map>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace qe::test {

/// Splits at the separator and drops blanks around the parts, and empty parts.
[[nodiscard]] std::vector<std::string> SplitList(std::string_view text, char separator);

/// A name as it stands in a text: "Orders#7" has the number 7, "Orders" the number 0.
struct NumberedName
{
    std::string name;
    std::int32_t number = 0;
};

[[nodiscard]] NumberedName ParseNumberedName(std::string_view text);

/// Reads the notation of ModelText into a builder.
class ModelTextParser
{
public:
    void Parse(std::string_view text);
    [[nodiscard]] const qe::model::ModelBuilder& GetBuilder() const { return mBuilder; }

private:
    void ParseStatement(const std::string& statement);
    /// Reads a statement that starts with a keyword; false: it does not.
    bool ParseKeyword(const std::string& statement);
    void ParseArrow(const std::string& left, const std::string& kind, const std::string& right);
    void ParseJoin(const std::string& left, const std::string& ends, const std::string& right);
    void ParseSubjects(const std::string& statement);
    void EnterNamespace(const std::string& name);
    void EnterFolder(const std::string& path);
    /// Gives the subject of that name, which is made when it is not there.
    amd_id Subject(std::string_view text);

    qe::model::ModelBuilder mBuilder;
    amd_id mSpace;
    amd_id mHolder;
    std::map<std::string, amd_id> mSubjects;
    std::map<std::string, amd_id> mJoins;
    std::map<std::pair<amd_id, std::string>, amd_id> mContainers;
};

} // namespace qe::test

#endif
