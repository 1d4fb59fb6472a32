#include "Tests/Fuzz/AgentFaults.h"
#include "Tests/Fuzz/FuzzTarget.h"
#include "Tests/Fuzz/MemoryFile.h"
#include "Tests/Fuzz/ReadingFaults.h"
#include "Tests/Fuzz/RequestFaults.h"
#include "Toolkit/Import/Ddl/ScriptText.h"
#include "Toolkit/Import/OpenModel.h"
#include "Toolkit/Import/SqlScripts.h"
#include "Toolkit/Model/ModelFile.h"

#include <array>
#include <string>
#include <vector>

namespace qe::test {

namespace {

using namespace qe::tool;

/// Both ways to import are met, by the length of what is read.
ImportOptions MakeOptions(std::string_view bytes)
{
    return {.roles = bytes.size() % 2 == 0 ? ERoles::Plain : ERoles::Shortcuts};
}

std::string FindModelFault(std::string_view bytes)
{
    return FindReadingFault([bytes] { return ReadModelText(bytes, "model.json"); });
}

/// Whatever it is, a file is of one kind or is refused.
std::string FindOpeningFault(std::string_view bytes)
{
    const MemoryFile file(bytes);
    return FindReadingFault([&] { return OpenModel(file.GetPath(), MakeOptions(bytes)); });
}

std::string FindDatabaseFault(std::string_view bytes)
{
    const MemoryFile file(bytes);
    return FindReadingFault([&] { return ImportSqlite(file.GetPath(), MakeOptions(bytes)); });
}

template <EDialect dialect>
std::string FindScriptFault(std::string_view bytes)
{
    return FindReadingFault([bytes] {
        const std::array scripts{MakeScriptText("script.sql", std::string(bytes))};
        return MakeModel(ReadSqlTexts(scripts, dialect), MakeOptions(bytes));
    });
}

/// Returns the files that a text holds, one behind the other with a form feed between them.
std::vector<SourceDocument> ReadDocuments(std::string_view bytes, ESyntax usual)
{
    std::vector<SourceDocument> documents;
    while (!bytes.empty()) {
        const std::size_t end = bytes.find('\f');
        const std::string text(bytes.substr(0, end));
        bytes.remove_prefix(end == std::string_view::npos ? bytes.size() : end + 1);
        const ESyntax syntax =
            text.starts_with("cube(") ? ESyntax::JavaScript : RecogniseSyntax(text).value_or(usual);
        documents.push_back(ReadDocument("file" + std::to_string(documents.size()), text, syntax));
    }
    return documents;
}

/// The position is that of the format in the list.
template <std::size_t position>
std::string FindFormatFault(std::string_view bytes)
{
    return FindReadingFault([bytes] {
        const SourceFormat& format = ListSourceFormats()[position];
        const ESyntax usual = format.word == "tmdl" ? ESyntax::Tmdl : ESyntax::Yaml;
        std::vector<SourceDocument> documents = ReadDocuments(bytes, usual);
        if (documents.empty())
            throw InputError({InputProblem{"file", "is empty"}});
        return MakeModel(ReadSource(format, documents), MakeOptions(bytes));
    });
}

constexpr std::array kTargets{
    FuzzTarget{.name = "model", .findFault = FindModelFault},
    FuzzTarget{.name = "request", .findFault = FindRequestFault},
    FuzzTarget{.name = "batch", .findFault = FindBatchFault},
    FuzzTarget{.name = "agent", .findFault = FindAgentFault},
    FuzzTarget{.name = "set-option", .findFault = FindSettingFault},
    FuzzTarget{.name = "history", .findFault = FindHistoryFault},
    FuzzTarget{.name = "open", .findFault = FindOpeningFault},
    FuzzTarget{.name = "database", .findFault = FindDatabaseFault},
    FuzzTarget{.name = "ddl-sqlite", .findFault = FindScriptFault<EDialect::Sqlite>},
    FuzzTarget{.name = "ddl-postgresql", .findFault = FindScriptFault<EDialect::PostgreSql>},
    FuzzTarget{.name = "ddl-mysql", .findFault = FindScriptFault<EDialect::MySql>},
    FuzzTarget{.name = "ddl-sqlserver", .findFault = FindScriptFault<EDialect::SqlServer>},
    FuzzTarget{.name = "ddl-oracle", .findFault = FindScriptFault<EDialect::Oracle>},
    FuzzTarget{.name = "format-dbt", .findFault = FindFormatFault<0>},
    FuzzTarget{.name = "format-dbt-semantic", .findFault = FindFormatFault<1>},
    FuzzTarget{.name = "format-ossie", .findFault = FindFormatFault<2>},
    FuzzTarget{.name = "format-tbls", .findFault = FindFormatFault<3>},
    FuzzTarget{.name = "format-tmsl", .findFault = FindFormatFault<4>},
    FuzzTarget{.name = "format-tmdl", .findFault = FindFormatFault<5>},
    FuzzTarget{.name = "format-wren", .findFault = FindFormatFault<6>},
    FuzzTarget{.name = "format-cube", .findFault = FindFormatFault<7>},
};

} // namespace

std::span<const FuzzTarget> ListFuzzTargets()
{
    return kTargets;
}

} // namespace qe::test
