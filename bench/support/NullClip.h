#pragma once

#include <string>

#include "bench/support/NullReader.h"
#include "toolkit/catalogue/Cookie.h"

namespace bench {

/// A clip in the catalogue whose file is there, empty, and is read by a `NullReader`.
///
/// Ownership  The file goes with this object; until then its reader is registered.
/// Errors     A file that can't be made ends the process with a message.
class NullClip {
public:
    NullClip();
    ~NullClip();
    NullClip(NullClip const&) = delete;
    NullClip& operator=(NullClip const&) = delete;

    [[nodiscard]] Cookie const& cookie() const { return cookie_; }
    [[nodiscard]] LightweightString<wchar_t> const& filename() const { return filename_; }

private:
    std::string path_;
    LightweightString<wchar_t> filename_;
    Cookie cookie_;
    Ox::Ptr<Ox::FileReaderInfo> reader_;
};

}  // namespace bench
