#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "host/sqlite/SqliteClipList.h"
#include "toolkit/catalogue/MediaFileInfo.h"

namespace cli {

/// A file of a clip, with all cookies under which the catalogue has it.
struct ClipFile {
    MediaFileInfo file;
    std::vector<Cookie> cookies;
};

/// The files of a clip as the catalogue in force has them, each once, in the order of their cookies.
///
/// @param looks  true looks whether they are there, and has the catalogue keep that
[[nodiscard]] std::vector<ClipFile> filesOfClip(Cookie const& clip, bool looks);

/// Where the media of a clip are, as the catalogue has it.
enum class eClipState { here, linked, remote, proxyOnly, missing };

[[nodiscard]] eClipState stateOf(std::vector<ClipFile> const& files);
[[nodiscard]] char const* nameOf(eClipState state);

/// Bytes of all files.
[[nodiscard]] std::uint64_t sizeOf(std::vector<ClipFile> const& files);
/// What kind of clip it is: "video", "sound", "image", and how others are called.
[[nodiscard]] char const* kindOf(ClipSummary const& clip);
/// "V" for one of picture, "A4" for four of sound; empty if none is known.
[[nodiscard]] std::string channelsOf(ClipSummary const& clip);

}  // namespace cli
