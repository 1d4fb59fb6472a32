#include "Tools/Model/ModelFile.h"

#include "Tools/InputFile.h"
#include "Tools/Model/ConditionCheck.h"
#include "Tools/Model/ContentReader.h"
#include "Tools/Model/ContentWriter.h"
#include "Tools/Model/FileProblems.h"
#include "Tools/Model/JsonLayout.h"
#include "Tools/Model/JsonText.h"
#include "Tools/Model/ModelAssembler.h"

#include <nlohmann/json.hpp>

#include <utility>

namespace qe::tool {

ToolModel ReadModelFile(const std::filesystem::path& path)
{
    return ReadModelText(ReadInputFile(path), path.string());
}

ToolModel ReadModelText(std::string_view text, const std::string& fileName)
{
    FileProblems problems(fileName);
    const nlohmann::json document = ParseJson(text, fileName, problems);
    ModelContent content = ContentReader(problems).Read(document);

    ModelAssembler assembler(content, problems);
    ToolModel result;
    result.model = assembler.Assemble();
    ConditionCheck conditions(result.model, assembler.GetDoubtfulNames(), problems);
    for (const ContentObject& object : content.objects)
        conditions.Check(object);
    problems.RaiseIfAny();

    result.userClasses = std::move(content.userClasses);
    result.governors = content.governors;
    return result;
}

std::string WriteModelText(const ToolModel& model)
{
    return LayOut(ContentWriter(model).Write());
}

} // namespace qe::tool
