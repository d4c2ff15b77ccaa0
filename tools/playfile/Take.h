#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "files/FileWriteInstance.h"
#include "toolkit/catalogue/Cookie.h"
#include "toolkit/plugins/FileWriterInfo.h"
#include "tools/playfile/JsonText.h"
#include "tools/playfile/Session.h"

namespace cli {

/// The new material of one recording: a file of pictures, and a file for each channel of sound.
///
/// Threads  One at a time.
/// Errors   CommandError, which names the file and what helps.
class Take {
public:
    /// @param folder  where the material goes, as a media drive; it must be there
    Take(Session const& session, std::string const& folder);

    /// Makes the file of the pictures.
    void addPicture(std::string const& format, Ox::FrameRate rate, configb const& options);
    /// Makes the file of a channel of sound. @param channel  from 1
    void addChannel(std::string const& format, Aud::Metadata const& stream, std::uint8_t channel,
                    configb const& options);

    void writePicture(Ox::Image::Surface const& surface);
    /// @param index  of the channels, in the order in which they were added
    void writeSamples(std::size_t index, void const* bytes, std::size_t byteCount);

    /// Ends all files, also those behind one that fails, and looks what they hold. What isn't there leaves the
    /// catalogue.
    ///
    /// @return  false if one of them doesn't hold all that was written
    [[nodiscard]] bool finish();

    /// What was recorded, and how often the source had to wait for the writers.
    [[nodiscard]] Json report() const;

private:
    struct Track {
        Cookie cookie;
        std::string format;
        Ox::Ptr<FileWriteInstance> file;
        std::string path;
        std::uint64_t written = 0;
        std::uint64_t kept = 0;
        bool isThere = false;
    };

    [[nodiscard]] std::unique_ptr<Track> create(Cookie const& cookie,
                                                Ox::FileWriterParams const& params) const;
    [[nodiscard]] bool finish(Track& track) const;
    [[noreturn]] void refuse(std::string const& otherwise) const;
    void noteWait(double seconds);

    Session const& session_;
    Cookie const clip_;
    std::unique_ptr<Track> picture_;
    std::vector<std::unique_ptr<Track>> channels_;
    std::uint64_t waits_ = 0;
    double waitedSeconds_ = 0.0;
};

}  // namespace cli
