#pragma once

#include <cstdint>
#include <string>

#include "ole/Ox/OxString.h"
#include "toolkit/catalogue/Cookie.h"

namespace cli {

/// A media file that was named on the command line.
///
/// Units  Bytes.
class InputFile {
public:
    /// Names the file; it needn't be there.
    ///
    /// @throws CommandError  if the name can't be one
    explicit InputFile(std::string const& argument);

    /// @throws CommandError  if it is missing, no regular file, empty, or may not be read
    void requireReadable();

    /// The absolute path, with the links of its folders followed.
    [[nodiscard]] std::string const& path() const { return path_; }
    [[nodiscard]] LightweightString<wchar_t> const& widePath() const { return widePath_; }
    /// Known once the file has been found readable.
    [[nodiscard]] std::uint64_t byteCount() const { return byteCount_; }

    /// The clip that stands for the file. The same path gives the same clip.
    [[nodiscard]] Cookie cookie(CookieType type, std::uint8_t channel) const;

private:
    std::string path_;
    LightweightString<wchar_t> widePath_;
    std::uint64_t byteCount_ = 0;
};

}  // namespace cli
