#pragma once

#include <cstdint>
#include <map>
#include <optional>
#include <vector>

#include "toolkit/catalogue/Cookie.h"
#include "toolkit/edit/Edit.h"

/// All that a clip database keeps of one clip.
struct ClipRecord {
    LightweightString<wchar_t> name;
    /// An `eLogType`.
    std::uint32_t logType = logUnknown;
    /// True for a still, and for numbered ones in a row.
    bool isImage = false;
    std::uint32_t videoChannels = 0;
    std::uint32_t audioChannels = 0;
    /// Texts by their names. Where "chans" isn't among them, all channels are in use.
    std::map<LightweightString<char>, LightweightString<char>> attributes;
    /// What the clip refers to, by kind. Of a kind that isn't there it refers to its own channels; where clips are asked
    /// for, to itself, unless it is made of others.
    std::map<std::uint32_t, std::vector<Cookie>> references;
    std::optional<configb> decodeSettings;
    /// What its sound is; empty as long as that isn't known.
    std::vector<Aud::Metadata> audioStreams;
    /// At which rate its sound was recorded; none if that isn't known.
    Aud::SampleRate audioInputRate;
};
