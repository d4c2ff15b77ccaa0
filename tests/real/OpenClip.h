#pragma once

#include <cstdint>
#include <string>

#include "files/FileReadInstance.h"
#include "ole/os/Events.h"
#include "toolkit/catalogue/Cookie.h"
#include "toolkit/image/DecodeFormat.h"
#include "toolkit/image/Surface.h"

namespace test {

/// A file that goes the whole road: a cookie in the catalogue, the shared cache, the readers that are
/// really loaded, a request, the file's queue, an issuer.
///
/// Ownership  It holds the file open.
/// Threads    Several may read at once.
class OpenClip {
public:
    /// Which frames of a file of varying rate are counted.
    enum class eNumbering { stored, timeline };

    /// Loads the plug-ins that were built, once in a process.
    explicit OpenClip(std::string const& path, eNumbering numbering = eNumbering::stored);

    /// False if the cache can't open it.
    [[nodiscard]] bool isOpen() const { return static_cast<bool>(file_); }
    [[nodiscard]] PlayFileMetadataRep const& metadata() const { return *file_->metadata; }
    [[nodiscard]] std::uint32_t frameCount() const { return frameCount_; }

    /// The picture of a frame in the file's own size and format, or as `format` says; not valid if the
    /// frame couldn't be had.
    [[nodiscard]] Ox::Image::Surface read(std::uint32_t frame) const { return read(frame, nativeFormat_); }
    [[nodiscard]] Ox::Image::Surface read(std::uint32_t frame, DecodeFormat const& format) const;
    /// The MD5 sum of a frame's own pixels; empty if it couldn't be had.
    [[nodiscard]] std::string sumOf(std::uint32_t frame) const;

    /// Sets one of the reader's decode options.
    void setOption(char const* key, char const* value) const;

    [[nodiscard]] DecodeFormat const& nativeFormat() const { return nativeFormat_; }
    [[nodiscard]] Cookie const& cookie() const { return cookie_; }

private:
    Cookie cookie_;
    DecodeFormat nativeFormat_;
    std::uint32_t frameCount_ = 0;
    Ox::Ptr<FileReadInstance> file_;
};

}  // namespace test
