#include "Tests/Toolkit/ReadSource.h"

#include <algorithm>

namespace qe::test {

using namespace qe::tool;

namespace {

std::string Show(const DatabaseSchema& schema)
{
    std::string text;
    for (const SchemaJoin& join : schema.joins) {
        text += schema.tables[join.left.table].name + " > " + schema.tables[join.right.table].name +
                ':';
        for (std::size_t i = 0; i < join.left.columns.size(); ++i)
            text += ' ' + join.left.columns[i] + '=' + join.right.columns[i];
        text += join.condition.empty() ? "" : ' ' + join.condition;
        text += join.isActive ? "\n" : " inactive\n";
    }
    for (const std::string& note : schema.notes)
        text += note + '\n';
    return text;
}

/// Returns the file or folder that a truth lies beside.
std::filesystem::path SourceOf(const std::filesystem::path& truth)
{
    const std::string name = truth.filename().string();
    const std::filesystem::path stem =
        truth.parent_path() / name.substr(0, name.size() - std::string(".truth.json").size());
    for (const char* ending : {".json", ".yaml", ".yml", ".bim"})
        if (std::filesystem::exists(stem.string() + ending))
            return stem.string() + ending;
    return stem;
}

} // namespace

DatabaseSchema ReadSchema(const char* format, const std::string& text)
{
    SourceDocument document = ReadDocument("file", text, RecogniseSyntax(text).value());
    return ReadSource(*FindSourceFormat(format), {&document, 1});
}

std::string ReadSourceText(const char* format, const std::string& text)
{
    try {
        return Show(ReadSchema(format, text));
    } catch (const InputError& error) {
        return error.what();
    }
}

std::vector<OpenModelFile> ListOpenModels()
{
    std::vector<OpenModelFile> files;
    const std::filesystem::path folder = std::filesystem::path(QEREFINER_DATA_DIR) / "models";
    if (!std::filesystem::exists(folder))
        return files;
    for (const auto& entry : std::filesystem::recursive_directory_iterator(folder))
        if (entry.path().string().ends_with(".truth.json"))
            files.push_back({.source = SourceOf(entry.path()), .truth = entry.path()});
    std::sort(files.begin(), files.end(),
              [](const OpenModelFile& left, const OpenModelFile& right) {
                  return left.truth < right.truth;
              });
    return files;
}

} // namespace qe::test
