#pragma once

#include <nlohmann/json.hpp>
#include <string>

namespace cli {

/// JSON whose members keep the order in which they were set.
using Json = nlohmann::ordered_json;

/// JSON as a text of several lines. A byte that isn't UTF-8 becomes U+FFFD.
[[nodiscard]] std::string toJsonText(Json const& value);

/// The same facts for people: a line a member, what lies inside another is indented.
[[nodiscard]] std::string toPlainText(Json const& value);

}  // namespace cli
