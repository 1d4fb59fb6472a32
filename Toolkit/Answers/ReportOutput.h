#ifndef TOOLKIT_ANSWERS_REPORTOUTPUT_H
#define TOOLKIT_ANSWERS_REPORTOUTPUT_H

#include <cstdint>
#include <iosfwd>
#include <nlohmann/json_fwd.hpp>

namespace qe::model {
class Model;
}

namespace qe::tool {

struct FactReport;

/// How facts are written for people.
enum class EFactLines : std::uint8_t
{
    /// Facts with the same dimensions share a line where there are many, and so do joins that are
    /// refused for the same reason; of long lists the beginning is written.
    Grouped,
    /// Everything has a line of its own.
    Each,
};

/// Writes the report for people: the facts with their dimensions, the shared dimensions, and the
/// joins that were refused. Names are made harmless for the terminal. The model is the one whose
/// joins were looked at.
void WriteText(std::ostream& out, const FactReport& report, const model::Model& model,
               EFactLines lines = EFactLines::Grouped);

/// Returns the JSON form of the report, which Documentation/json-output.md describes.
[[nodiscard]] nlohmann::ordered_json ToJson(const FactReport& report, const model::Model& model);

} // namespace qe::tool

namespace qe::model {
class Model;
}

namespace qe::tool {

struct ShortcutReport;

/// Writes the report for people: the groups, the shortcuts in none, and the joins between
/// shortcuts and what they stand for. Names are made harmless for the terminal. The model is the
/// one that the report is about.
void WriteText(std::ostream& out, const ShortcutReport& report, const model::Model& model);

/// Returns the JSON form of the report, which Documentation/json-output.md describes.
[[nodiscard]] nlohmann::ordered_json ToJson(const ShortcutReport& report,
                                            const model::Model& model);

} // namespace qe::tool

#endif
