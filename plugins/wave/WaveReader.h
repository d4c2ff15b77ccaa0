#pragma once

#include "audio/AudioReader.h"
#include "plugins/wave/WaveHeaders.h"

namespace playfile_wave {

/// The sound of one WAVE file, as one stream of all of its channels.
///
/// Sample n of every channel lies at the start of the data plus n times the block align, so one read of the
/// file serves all channels of a block.
///
/// Threads  `readAudio`: the file's audio queue; `AudioReader` holds its lock while the file is read.
/// Errors   A file that was cut short since it was opened has its end there. A read that the system refuses
///          fails with its error.
class WaveReader : public FileReadInstance, public Ox::AudioReader {
public:
    /// Empty, with a line in the log that says what is wrong and where, if the file can't be read.
    [[nodiscard]] static Ox::Ptr<WaveReader> open(LightweightString<wchar_t> const& name,
                                                  DecodeFormat const& format, OpenType type);

    WaveReader(LightweightString<wchar_t> const& name, DecodeFormat const& format, OpenType type);

    [[nodiscard]] LightweightString<char> getDescription() const override;
    void readAudio(Ox::Ptr<AudioReadRequest>& request) override { Ox::AudioReader::readAudio(request); }

    OxResult readAudioSamples(unsigned int stream, unsigned long sample, unsigned int count,
                              Ox::Ptr<ByteBufferImpl>& buffer, unsigned int& samplesRead,
                              unsigned int& skipStart, unsigned int& skipEnd) override;
    [[nodiscard]] bool readsByVideoSamples() override { return false; }

private:
    void describe();
    [[nodiscard]] OxResult shortRead(std::uint64_t wantedEnd) const;

    WaveHeaders headers_;
};

}  // namespace playfile_wave
