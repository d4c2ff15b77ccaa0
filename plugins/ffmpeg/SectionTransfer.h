#pragma once

#include "plugins/ffmpeg/SectionCopy.h"
#include "toolkit/plugins/FileXferManager.h"

namespace playfile_ffmpeg {

/// Copies sections of clips into new files that keep every pixel and every sample.
///
/// Of a source of pictures it makes a QuickTime file, of one channel of sound a WAVE file. The new file lies
/// where the destination's material belongs, is filed there, and gets a header that names the source's file.
///
/// What the spec's options may say:
///
/// | Option       | Value                                                                                |
/// |--------------|--------------------------------------------------------------------------------------|
/// | `path`       | name of the new file (".mov" or ".wav") instead of the place on the drive            |
/// | `soundStart`, `soundEnd` | samples of the source's file that go with its pictures, in all channels  |
/// | `channels`   | `all`: all channels of the source's file instead of the one that the cookie means    |
///
/// Threads  Any, several copies at once.
/// Errors   The log gets a line that names the file and what helps. The results are 0, 3, and those of the
///          system (`iErrorService::systemErrorBase` and above). A copy that fails leaves nothing behind.
class SectionTransfer final : public iFileXferManager {
public:
    /// True if the catalogue has a file for the source that this plug-in reads, or that has sound.
    [[nodiscard]] bool canTransfer(FileXferSpec* spec) override;
    OxResult transfer(FileXferSpec* spec, LoggerHandle& log) override;
};

}  // namespace playfile_ffmpeg
