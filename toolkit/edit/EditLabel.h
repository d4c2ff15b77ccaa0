#pragma once

#include "ole/Ox/OxString.h"

/// What a recorder or camera calls a piece of material: its reel and start time code.
class EditLabel {
public:
    EditLabel() = default;
    EditLabel(LightweightString<char> reel, LightweightString<char> startTimecode)
        : reel_(std::move(reel)), startTimecode_(std::move(startTimecode)) {}

    /// False if nothing is known.
    [[nodiscard]] bool valid() const { return !reel_.empty() || !startTimecode_.empty(); }
    [[nodiscard]] LightweightString<char> const& reel() const { return reel_; }
    /// As "hh:mm:ss:ff", with ";ff" for drop frame.
    [[nodiscard]] LightweightString<char> const& startTimecode() const { return startTimecode_; }

private:
    LightweightString<char> reel_;
    LightweightString<char> startTimecode_;
};
