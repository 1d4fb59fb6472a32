#include "Toolkit/Import/Formats/DbtVersion.h"

#include <charconv>
#include <string_view>

namespace qe::tool {

namespace {

constexpr const char* kKey = "dbt_schema_version";
constexpr int kOldest = 4;
constexpr int kNewest = 12;

/// What a file of dbt is, as the URL of its schema says: ".../dbt/manifest/v12.json".
struct DbtSchema
{
    std::string kind{};
    int version = 0;
};

std::optional<DbtSchema> ReadSchema(std::string_view url)
{
    constexpr std::string_view kRoot = "/dbt/";
    constexpr std::string_view kVersion = "/v";
    const std::size_t root = url.find(kRoot);
    if (root == std::string_view::npos)
        return std::nullopt;
    url.remove_prefix(root + kRoot.size());
    const std::size_t end = url.find(kVersion);
    if (end == std::string_view::npos)
        return std::nullopt;
    DbtSchema schema{.kind = std::string(url.substr(0, end))};
    url.remove_prefix(end + kVersion.size());
    const auto read = std::from_chars(url.data(), url.data() + url.size(), schema.version);
    return read.ec == std::errc() ? std::optional(schema) : std::nullopt;
}

} // namespace

std::optional<std::string> CheckDbtVersion(JsonObject& metadata, JsonProblems& problems)
{
    const std::string url = metadata.GetText(kKey);
    if (url.empty())
        return std::string();
    const auto reject = [&](const std::string& text) {
        problems.Add(ChildPointer(metadata.GetPointer(), kKey), text);
        return std::nullopt;
    };
    const std::string range = std::to_string(kOldest) + " to " + std::to_string(kNewest);
    const std::optional<DbtSchema> schema = ReadSchema(url);
    if (!schema)
        return reject("names no version of a manifest, of which " + range + " can be read: \"" +
                      url + '"');
    if (schema->kind != "manifest")
        return reject("says that the file is of the kind \"" + schema->kind +
                      "\", which states no joins: take manifest.json");
    const std::string version = std::to_string(schema->version);
    if (schema->version < kOldest)
        return reject("is version " + version + " of manifests; " + range + " can be read");
    if (schema->version > kNewest)
        return "version " + version +
               " of manifests is newer than what is known of them: read as "
               "version " +
               std::to_string(kNewest);
    return std::string();
}

} // namespace qe::tool
