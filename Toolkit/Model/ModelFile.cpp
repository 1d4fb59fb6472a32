#include "Toolkit/Model/ModelFile.h"

#include "Toolkit/Model/ConditionCheck.h"
#include "Toolkit/Model/ContentReader.h"
#include "Toolkit/Model/ContentWriter.h"
#include "Toolkit/Model/DecisionNames.h"
#include "Toolkit/Model/ModelAssembler.h"
#include "Toolkit/Text/InputFile.h"
#include "Toolkit/Text/JsonProblems.h"
#include "Toolkit/Text/JsonText.h"

#include <nlohmann/json.hpp>

#include <utility>

namespace qe::tool {

ToolModel ReadModelFile(const std::filesystem::path& path)
{
    return ReadModelText(ReadInputFile(path), path.string());
}

ToolModel ReadModelText(std::string_view text, const std::string& fileName)
{
    JsonProblems problems(fileName);
    return ReadModelDocument(ParseJson(text, problems), problems);
}

ToolModel ReadModelDocument(nlohmann::json document, JsonProblems& problems)
{
    ModelContent content = ContentReader(problems).Read(document);
    // The model takes its memory.
    document = nullptr;

    ModelAssembler assembler(content, problems);
    ToolModel result;
    result.isModelFile = true;
    result.model = assembler.Assemble();
    ConditionCheck conditions(result.model, assembler.GetDoubtfulNames(), problems);
    for (const ContentObject& object : content.objects)
        conditions.Check(object);
    if (result.model != nullptr)
        result.decisions = DecisionReader(*result.model, assembler.GetDoubtfulNames(), problems)
                               .Resolve(content.decisions);
    problems.ThrowIfAny();

    result.userClasses = std::move(content.userClasses);
    result.histories = std::move(content.histories);
    result.governors = content.governors;
    result.descriptions = assembler.GetDescriptions();
    result.writtenNames = {.dialect = content.dialect, .quoted = assembler.GetQuotedNames()};
    result.rows = assembler.GetRows();
    result.acceptedFindings = std::move(content.acceptedFindings);
    return result;
}

std::string WriteModelText(const ToolModel& model)
{
    return FormatJson(ContentWriter(model).Write());
}

} // namespace qe::tool
