#ifndef TOOLKIT_IMPORT_FORMATS_SOURCEFORMAT_H
#define TOOLKIT_IMPORT_FORMATS_SOURCEFORMAT_H

#include "Toolkit/Import/Formats/SourceDocument.h"
#include "Toolkit/Import/Schema/DatabaseSchema.h"

#include <span>
#include <string_view>

namespace qe::tool {

/// A format that other tools describe joins in.
struct SourceFormat
{
    /// The word by which users choose it.
    std::string_view word;
    /// What people call it.
    std::string_view title;
    /// Returns whether the document is of the format.
    bool (*matches)(const SourceDocument& document);
    /// Returns what the documents state, of which there is at least one; with `matches` true for
    /// each, or chosen by the user. Mistakes are added to the documents' problems.
    DatabaseSchema (*read)(std::span<SourceDocument> documents);
    /// Whether one model may be spread over several documents.
    bool takesSeveral = false;
    /// Whether its YAML may hold templates.
    bool hasTemplates = false;
};

/// Returns the formats, in the order in which they are tried.
[[nodiscard]] std::span<const SourceFormat> ListSourceFormats();

/// Returns the format of the word; null when there is none.
[[nodiscard]] const SourceFormat* FindSourceFormat(std::string_view word);

/// Returns the format that the first of the documents is of; null when there is none.
[[nodiscard]] const SourceFormat* RecogniseFormat(std::span<const SourceDocument> documents);

/// Returns what the documents state. Throws an InputError with their mistakes.
[[nodiscard]] DatabaseSchema ReadSource(const SourceFormat& format,
                                        std::span<SourceDocument> documents);

} // namespace qe::tool

#endif
