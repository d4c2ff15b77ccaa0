#include "tools/playfile/TextTable.h"

#include <algorithm>

#include "tools/playfile/Text.h"

namespace cli {
namespace {

constexpr std::size_t gap = 2;

}  // namespace

std::string padded(std::string const& text, std::size_t width) {
    std::size_t const own = displayWidth(text);
    return text + std::string(width > own ? width - own : 0, ' ');
}

void TextTable::add(Row const& cells) {
    Row row;
    for (std::string const& cell : cells) {
        row.push_back(cell.empty() ? "-" : printable(cell));
    }
    rows_.push_back(std::move(row));
}

std::string TextTable::text() const {
    std::vector<std::size_t> widths(rows_.front().size());
    for (Row const& row : rows_) {
        for (std::size_t column = 0; column < row.size(); ++column) {
            widths[column] = std::max(widths[column], displayWidth(row[column]));
        }
    }
    std::string text;
    for (Row const& row : rows_) {
        for (std::size_t column = 0; column + 1 < row.size(); ++column) {
            text += padded(row[column], widths[column] + gap);
        }
        text += row.back() + '\n';
    }
    text.pop_back();
    return text;
}

}  // namespace cli
