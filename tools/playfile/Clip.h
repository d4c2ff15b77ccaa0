#pragma once

#include <string>

#include "files/FileReadInstance.h"
#include "tools/playfile/InputFile.h"

namespace cli {

class Session;

/// A media file of the command line as a clip of the catalogue, and its way through the cache.
class Clip {
public:
    /// Puts the file into the catalogue. A file that bears a quarantine mark gets a warning, no more.
    ///
    /// @throws CommandError  if the file can't be read
    Clip(Session& session, std::string const& argument);

    [[nodiscard]] InputFile const& input() const { return input_; }
    [[nodiscard]] Cookie const& videoCookie() const { return videoCookie_; }
    /// The cookie of an audio channel, which is put into the catalogue. @param channel  from 1
    [[nodiscard]] Cookie addChannel(Session& session, std::uint8_t channel) const;
    /// True if the file bore a mark before it was opened here.
    [[nodiscard]] bool wasQuarantined() const { return wasQuarantined_; }

    /// The file, open for its picture.
    ///
    /// @throws CommandError  if it can't be opened or has no picture
    [[nodiscard]] Ox::Ptr<FileReadInstance> openVideo() const;

    /// The file, open for its sound.
    ///
    /// @throws CommandError  if it can't be opened or has no sound
    [[nodiscard]] Ox::Ptr<FileReadInstance> openAudio() const;

    /// The file, open for its picture; empty if it can't be. It leaves no mark and says nothing.
    [[nodiscard]] Ox::Ptr<FileReadInstance> tryVideo() const;
    /// The same for its sound.
    [[nodiscard]] Ox::Ptr<FileReadInstance> trySound() const;

    /// The file, open for whatever it can be opened for: picture, sound, or only to be described.
    ///
    /// @throws CommandError  if no reader knows it
    [[nodiscard]] Ox::Ptr<FileReadInstance> openAny() const;

private:
    [[nodiscard]] Ox::Ptr<FileReadInstance> open(Cookie const& cookie) const;
    [[nodiscard]] Ox::Ptr<FileReadInstance> describe() const;
    [[noreturn]] void refuse() const;

    InputFile input_;
    Cookie videoCookie_;
    Cookie audioCookie_;
    std::string pluginPath_;
    bool wasQuarantined_ = false;
};

}  // namespace cli
