#pragma once

#include <memory>
#include <string>

#include "ole/Ox/OxString.h"
#include "ole/os/Errors.h"
#include "ole/os/FileManager.h"
#include "plugins/ffmpeg/AvPointers.h"

namespace playfile_ffmpeg {

/// A new file that libavformat writes into, made and written through the file manager.
///
/// Threads  One at a time.
/// Errors   After the first write that fails nothing more is written.
class OutputFile {
public:
    /// Makes the file and the folders above it, in place of a file of that name; empty with the reason in
    /// `error`.
    [[nodiscard]] static std::unique_ptr<OutputFile> open(LightweightString<wchar_t> const& name,
                                                          std::string& error);
    OutputFile(LightweightString<wchar_t> const& name, Ox::Ptr<iFile> file);
    /// Closes the file; what `flush` hasn't written is lost.
    ~OutputFile();
    OutputFile(OutputFile const&) = delete;
    OutputFile& operator=(OutputFile const&) = delete;

    [[nodiscard]] AVIOContext* io() const { return io_.get(); }
    /// Writes what waits in memory; false if anything so far couldn't be written.
    [[nodiscard]] bool flush();
    /// Why the first write failed, and what helps; 1 and empty for none.
    [[nodiscard]] OxResult result() const { return result_; }
    [[nodiscard]] std::string problem() const;
    /// Deletes the file.
    void remove();

private:
    struct IoDeleter {
        void operator()(AVIOContext* io) const;
    };

    static int write(void* self, uint8_t* bytes, int byteCount);
    static int64_t seek(void* self, int64_t offset, int whence);
    [[nodiscard]] int fail();

    LightweightString<wchar_t> const name_;
    Ox::Ptr<iFile> file_;
    int64_t position_ = 0;
    int64_t byteCount_ = 0;
    OxResult result_ = oxSuccess;
    std::unique_ptr<AVIOContext, IoDeleter> io_;
};

}  // namespace playfile_ffmpeg
