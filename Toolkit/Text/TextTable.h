#ifndef TOOLKIT_TEXT_TEXTTABLE_H
#define TOOLKIT_TEXT_TEXTTABLE_H

#include <iosfwd>
#include <string>
#include <vector>

namespace qe::tool {

/// A table for people: columns as wide as their widest cell, two spaces apart. The last column is
/// not padded. Cells are made harmless for the terminal as they are written.
class TextTable
{
public:
    enum class EAlign
    {
        Left,
        Right,
    };

    struct Column
    {
        std::string title;
        EAlign align = EAlign::Left;
    };

    explicit TextTable(std::vector<Column> columns) : mColumns(std::move(columns)) {}

    /// Adds a row with one cell for each column.
    void AddRow(std::vector<std::string> cells);

    /// Writes the titles and the rows, each line behind `indent`.
    void Write(std::ostream& out, const std::string& indent) const;

private:
    std::vector<Column> mColumns;
    std::vector<std::vector<std::string>> mRows;
};

} // namespace qe::tool

#endif
