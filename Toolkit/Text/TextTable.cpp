#include "Toolkit/Text/TextTable.h"

#include "Toolkit/Text/DisplayText.h"

#include <algorithm>
#include <cstddef>
#include <ostream>
#include <utility>

namespace qe::tool {

void TextTable::AddRow(std::vector<std::string> cells)
{
    for (std::string& cell : cells)
        cell = ToDisplayText(cell);
    mRows.push_back(std::move(cells));
}

void TextTable::Write(std::ostream& out, const std::string& indent) const
{
    std::vector<std::string> titles;
    std::vector<std::size_t> widths;
    for (std::size_t column = 0; column < mColumns.size(); ++column) {
        titles.push_back(mColumns[column].title);
        std::size_t width = DisplayWidth(titles.back());
        for (const auto& row : mRows)
            width = std::max(width, DisplayWidth(row[column]));
        widths.push_back(width);
    }
    const auto writeRow = [&](const std::vector<std::string>& cells) {
        std::string line = indent;
        for (std::size_t column = 0; column < cells.size(); ++column) {
            const std::string padding(widths[column] - DisplayWidth(cells[column]), ' ');
            const bool isLeft = mColumns[column].align == EAlign::Left;
            line += isLeft ? cells[column] + padding : padding + cells[column];
            line += "  ";
        }
        line.erase(line.find_last_not_of(' ') + 1);
        out << line << '\n';
    };
    writeRow(titles);
    for (const auto& row : mRows)
        writeRow(row);
}

} // namespace qe::tool
