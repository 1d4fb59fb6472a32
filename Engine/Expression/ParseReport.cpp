#include "Engine/Expression/ParseReport.h"

#include "Engine/Expression/MarkupRemover.h"
#include "Engine/Expression/Parser.h"
#include "Engine/Services/Characters.h"

#include <utility>

namespace qe::expression {

ParseReport FindReferences(const I18NString& text)
{
    const UntaggedText untagged = MarkupRemover(text.View()).Run();
    ParseResult result = Parse(untagged.GetText());
    PositionCounter counter(text.View());
    const auto locate = [&untagged, &counter](std::size_t offset) {
        return counter.MoveTo(untagged.GetSourceOffset(offset));
    };
    ParseReport report;
    for (PlacedReference& reference : result.references)
        report.references.push_back({std::move(reference.names), locate(reference.offset)});
    if (result.failure)
        report.error = {locate(result.failure->offset), std::move(result.failure->expected),
                        std::move(result.failure->found)};
    return report;
}

} // namespace qe::expression
