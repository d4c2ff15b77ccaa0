#pragma once

#include <string>
#include <vector>

namespace cli {

/// A table for people: columns as wide as their widest cell, two blanks between them.
class TextTable {
public:
    using Row = std::vector<std::string>;

    /// @param heads  of the columns
    explicit TextTable(Row heads) : rows_{std::move(heads)} {}

    /// A cell for each column; they are made printable.
    void add(Row const& cells);
    [[nodiscard]] bool isEmpty() const { return rows_.size() == 1; }
    /// Its lines, the last without an end.
    [[nodiscard]] std::string text() const;

private:
    std::vector<Row> rows_;
};

/// A text with blanks behind it, so that it is as wide as that.
[[nodiscard]] std::string padded(std::string const& text, std::size_t width);

}  // namespace cli
