#include "Toolkit/Import/Formats/SourceFormat.h"

#include "Toolkit/Import/Formats/CubeModel.h"
#include "Toolkit/Import/Formats/DbtManifest.h"
#include "Toolkit/Import/Formats/DbtSemantic.h"
#include "Toolkit/Import/Formats/LeftOut.h"
#include "Toolkit/Import/Formats/OssieModel.h"
#include "Toolkit/Import/Formats/TabularModel.h"
#include "Toolkit/Import/Formats/TblsSchema.h"
#include "Toolkit/Import/Formats/WrenModel.h"

#include <algorithm>
#include <array>
#include <set>
#include <string>
#include <utility>

namespace qe::tool {

namespace {

constexpr std::array kFormats{
    SourceFormat{.word = "dbt",
                 .title = "a manifest of dbt",
                 .matches = IsDbtManifest,
                 .read = ReadDbtManifest},
    SourceFormat{.word = "dbt-semantic",
                 .title = "a semantic manifest of dbt",
                 .matches = IsDbtSemantic,
                 .read = ReadDbtSemantic},
    SourceFormat{.word = "ossie",
                 .title = "a semantic model of Apache Ossie",
                 .matches = IsOssieModel,
                 .read = ReadOssieModel},
    SourceFormat{.word = "tbls",
                 .title = "a schema of tbls",
                 .matches = IsTblsSchema,
                 .read = ReadTblsSchema},
    SourceFormat{.word = "tmsl",
                 .title = "a tabular model (model.bim)",
                 .matches = IsTabularJson,
                 .read = ReadTabularModel},
    SourceFormat{.word = "tmdl",
                 .title = "a tabular model (TMDL)",
                 .matches = IsTmdl,
                 .read = ReadTabularModel,
                 .takesSeveral = true},
    SourceFormat{.word = "wren",
                 .title = "a manifest of Wren",
                 .matches = IsWrenModel,
                 .read = ReadWrenModel},
    SourceFormat{.word = "cube",
                 .title = "a data model of Cube",
                 .matches = IsCubeModel,
                 .read = ReadCubeModel,
                 .takesSeveral = true,
                 .hasTemplates = true},
};

} // namespace

std::span<const SourceFormat> ListSourceFormats()
{
    return kFormats;
}

const SourceFormat* FindSourceFormat(std::string_view word)
{
    const auto found =
        std::find_if(kFormats.begin(), kFormats.end(),
                     [word](const SourceFormat& format) { return format.word == word; });
    return found == kFormats.end() ? nullptr : &*found;
}

const SourceFormat* RecogniseFormat(std::span<const SourceDocument> documents)
{
    const auto found =
        std::find_if(kFormats.begin(), kFormats.end(), [&documents](const SourceFormat& format) {
            return format.matches(documents.front());
        });
    return found == kFormats.end() ? nullptr : &*found;
}

DatabaseSchema ReadSource(const SourceFormat& format, std::span<SourceDocument> documents)
{
    if (documents.size() > 1 && !format.takesSeveral)
        throw InputError({{documents[1].name, "is one file too many: one makes a model of " +
                                                  std::string(format.title)}});
    LeftOut leftOut;
    for (SourceDocument& document : documents) {
        if (format.hasTemplates && document.templates.empty())
            RemoveTemplates(document);
        if (!document.templates.empty() && document.json.is_null())
            throw InputError({{document.name, "is no YAML before its templates are rendered"}});
        for (const std::string& place : document.templates)
            leftOut.Add("parts that templates make, which needs code", place);
        ShowLines(document);
    }
    DatabaseSchema schema = format.read(documents);
    for (std::string& note : leftOut.List())
        schema.notes.push_back(std::move(note));
    for (const SourceDocument& document : documents)
        document.problems.ThrowIfAny();
    if (schema.tables.empty())
        throw InputError({{documents.front().name, "describes no query subjects as " +
                                                       std::string(format.title) + " does"}});
    if (documents.size() == 1)
        schema.findPlaces =
            [problems = documents.front().problems](const std::set<std::string>& pointers) {
                return problems.FindPlaces(pointers);
            };
    if (schema.origin.empty())
        schema.origin = format.title;
    return schema;
}

} // namespace qe::tool
