#pragma once

#include <string>
#include <vector>

namespace cli {

/// Something that a reader of a header's text would take otherwise than its writer may have meant.
struct HeaderProblem {
    std::size_t line = 0;  ///< From 1; 0 for the text as a whole.
    std::string text;
};

/// Looks through the text of a header: all that is wrong with it, in the order of its lines.
[[nodiscard]] std::vector<HeaderProblem> checkHeaderText(std::string const& text);

}  // namespace cli
