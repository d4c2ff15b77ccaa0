#pragma once

#include <string>

#include "audio/AudioReader.h"
#include "files/FileReadInstance.h"
#include "ole/os/FileManager.h"
#include "plugins/synth/SynthSettings.h"

/// A made file that is open: each read makes the picture of its frame, or the samples of its tones.
///
/// Ownership  It keeps the file itself open for its life, as readers of real files do.
class SynthFile : public FileReadInstance, public Ox::AudioReader {
public:
    using FileReadInstance::readVideo;

    /// @param handle  of the file
    SynthFile(LightweightString<wchar_t> const& name, DecodeFormat const& format, OpenType type,
              SynthSettings settings, Ox::Ptr<iFile> handle);

    [[nodiscard]] LightweightString<char> getDescription() const override { return "made frames"; }
    [[nodiscard]] std::int32_t getVideoOrigin() const override { return settings_.origin; }

    /// Makes the frame in the size and format that the request states, else in its own. A position past
    /// the end fails, unless the file has one frame only.
    unsigned int readVideo(Ox::Ptr<FrameBufferRep>& buffer,
                           Ox::Ptr<VideoReadRequest>& request) noexcept override;

    void readAudio(Ox::Ptr<AudioReadRequest>& request) override { Ox::AudioReader::readAudio(request); }
    OxResult readAudioSamples(unsigned int stream, unsigned long sample, unsigned int count,
                              Ox::Ptr<ByteBufferImpl>& buffer, unsigned int& samplesRead,
                              unsigned int& skipStart, unsigned int& skipEnd) override;
    [[nodiscard]] bool readsByVideoSamples() override { return false; }

private:
    void describePicture();
    void describeSound();
    void waitAsItsTextSays() const;
    [[nodiscard]] bool canMake(std::uint32_t position) const;

    SynthSettings const settings_;
    Ox::Ptr<iFile> const handle_;
};

/// Waits as long as something of that name is there; an empty name is never there.
void waitWhileThere(std::string const& path);
