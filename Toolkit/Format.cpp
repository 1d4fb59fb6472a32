#include "Toolkit/Format.h"

#include "Toolkit/Answers/AnswerJson.h"
#include "Toolkit/Answers/AnswerText.h"
#include "Toolkit/Answers/RiskText.h"
#include "Toolkit/Draw/PictureFormat.h"
#include "Toolkit/Page/Page.h"
#include "Toolkit/Text/InputFile.h"
#include "Toolkit/Text/JsonText.h"

#include <array>
#include <ostream>

namespace qe::tool {

namespace {

Risks FindRisks(const FormatInput& input)
{
    return FindRisks(input.question, input.answer, input.options.sql);
}

void WriteTextFormat(std::ostream& out, const FormatInput& input)
{
    WriteText(out, input.question, input.answer, FindRisks(input), input.options.alternatives);
}

void WriteJsonFormat(std::ostream& out, const FormatInput& input)
{
    out << ToJsonText(
               ToJson(input.question, input.answer, FindRisks(input), input.options.alternatives))
        << '\n';
}

void WriteSqlFormat(std::ostream& out, const FormatInput& input)
{
    const Answer& answer = input.answer;
    const bool isStatement = input.options.sql.select == SqlOptions::ESelect::FirstItems;
    std::string sql = WriteSql(input.model, answer, GetAnsweredPath(answer), input.options.sql);
    if (isStatement && !sql.empty())
        sql.back() = ';';
    if (!sql.empty())
        WriteRemarks(out, ListRemarks(answer, FindRisks(input)), kSqlComment);
    out << sql << (isStatement ? "\n" : "");
}

constexpr std::array kFormats{
    Format{"text", "for people", WriteTextFormat, true},
    Format{"json", "for programs", WriteJsonFormat, true},
    Format{"sql", "a FROM clause along the path", WriteSqlFormat},
    Format{"dot", "a graph for Graphviz", WriteDotFormat},
    Format{"svg", "a picture, drawn by Graphviz", WriteSvgFormat},
    Format{"png", "a picture, drawn by Graphviz", WritePngFormat},
    Format{"html", "a page to look at and to choose in", WriteHtmlFormat, true, true},
};

} // namespace

std::span<const Format> GetFormats()
{
    return kFormats;
}

void RequireForm(const Question& question, const Format& format)
{
    if (question.operation == EOperation::JoinedSubjects && format.name == "sql")
        throw InputError(
            {InputProblem{"", "There is no SQL of subjects without their joins: ask for a path"}});
}

const Format* FindFormat(std::string_view name)
{
    for (const Format& format : kFormats) {
        if (format.name == name)
            return &format;
    }
    return nullptr;
}

} // namespace qe::tool
