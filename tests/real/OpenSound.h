#pragma once

#include <cstdint>
#include <string>

#include "files/FileReadInstance.h"
#include "toolkit/catalogue/Cookie.h"

namespace test {

/// A file whose sound goes the whole road: cookies in the catalogue, the shared cache, the readers that are
/// really loaded, a request, the file's queue, an issuer.
///
/// Ownership  It holds the file open.
/// Threads    Several may read at once.
/// Units      Samples of each channel; channels from 0 over all streams.
class OpenSound {
public:
    /// Loads the plug-ins that were built, once in a process.
    explicit OpenSound(std::string const& path);

    /// False if the cache can't open it.
    [[nodiscard]] bool isOpen() const { return static_cast<bool>(file_); }
    [[nodiscard]] PlayFileMetadataRep const& metadata() const { return *file_->metadata; }
    [[nodiscard]] std::string description() const { return file_->getDescription().str(); }

    /// The bytes of a channel's samples, as many of them as there are; empty if they couldn't be had.
    [[nodiscard]] std::string read(std::uint32_t channel, std::uint64_t first, std::uint32_t count) const;

private:
    [[nodiscard]] Cookie cookieOf(std::uint32_t channel) const {
        return {clip_, 'S', static_cast<std::uint8_t>(channel + 1)};
    }

    Ox::UUID const clip_ = Ox::UUID::generate();
    Ox::Ptr<FileReadInstance> file_;
};

}  // namespace test
