#pragma once

#include <string>
#include <string_view>

namespace cli {

/// What a file's extension says of it.
enum class eMediaKind { none, video, sound, still, cameraChunk };

/// @param name  with or without its folder
[[nodiscard]] eMediaKind kindOfMedia(std::string_view name);

/// A text with its Latin capitals made small.
[[nodiscard]] std::string lowered(std::string_view text);

}  // namespace cli
