#pragma once

#include <compare>

#include "ole/Ox/OxString.h"

/// Names a media drive by one character.
class DriveId {
public:
    /// Stands for no drive.
    static constexpr char none = '0';
    /// Answers the question for the drive of media that nobody knows.
    static constexpr char unavailable = '\0';

    constexpr DriveId() = default;
    constexpr DriveId(char letter) : letter_(letter) {}

    [[nodiscard]] constexpr char letter() const { return letter_; }
    auto operator<=>(DriveId const&) const = default;

private:
    char letter_ = none;
};

/// A place on a media drive: the drive, and a path relative to its root. `MediaFileInfo` tells the names of a file
/// apart.
class MaterialFilename {
public:
    MaterialFilename() = default;
    MaterialFilename(DriveId const& drive, LightweightString<wchar_t> const& path)
        : drive_(drive), path_(path) {}

    [[nodiscard]] DriveId getDrive() const { return drive_; }
    /// Relative to the drive's root; of no drive, as the operating system takes it.
    [[nodiscard]] LightweightString<wchar_t> const& getPath() const { return path_; }
    /// As the operating system takes it; empty for a drive that isn't there and for an empty path.
    [[nodiscard]] LightweightString<wchar_t> getOsPath() const;

    friend bool operator==(MaterialFilename const& a, MaterialFilename const& b) {
        return a.drive_ == b.drive_ && a.path_ == b.path_;
    }

private:
    DriveId drive_;
    LightweightString<wchar_t> path_;
};
