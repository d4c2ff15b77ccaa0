#pragma once

#include <memory>
#include <string>

#include "plugins/ffmpeg/AvOptions.h"
#include "plugins/ffmpeg/AvPointers.h"
#include "plugins/ffmpeg/OutputFile.h"

namespace playfile_ffmpeg {

/// Puts packets into a new file: streams are added, then `begin`, packets, and `finish`.
///
/// Ownership  Unless it was finished or kept, the file goes with the object: none is left half made.
/// Threads    One at a time.
/// Errors     Each operation tells why it failed; after that, and after `finish`, only `abandon` and `keep`
///            may follow.
class Muxer {
public:
    /// Makes the file, in place of one of that name.
    ///
    /// @param format  FFmpeg's name of the container ("mov", "mxf")
    /// @return        empty with the reason in `error`; then no file is left, either
    [[nodiscard]] static std::unique_ptr<Muxer> open(LightweightString<wchar_t> const& name,
                                                     std::string const& format, std::string& error);
    ~Muxer();
    Muxer(Muxer const&) = delete;
    Muxer& operator=(Muxer const&) = delete;

    /// True if an encoder for this container must keep its header apart from the packets.
    [[nodiscard]] bool wantsSeparateHeader() const;
    /// Adds a stream of such packets; its number.
    ///
    /// @param frameRate  0/1 for sound
    [[nodiscard]] int addStream(AVCodecParameters const& parameters, AVRational timeBase,
                                AVRational frameRate);
    /// The streams as the container knows them, for what else is to be said of them before `begin`.
    [[nodiscard]] AVFormatContext& format() const { return *context_; }

    /// Writes what stands before the packets.
    ///
    /// @param options  the container's own; an unknown one is a failure
    [[nodiscard]] bool begin(AvOptions const& options, std::string& error);
    /// Writes a packet or keeps it until those of other streams have caught up. The packets of a stream come
    /// in the order in which they are decoded. `packet` is empty afterwards.
    ///
    /// @param timeBase  in which the packet's times are given
    [[nodiscard]] bool write(AVPacket& packet, int stream, AVRational timeBase, std::string& error);
    /// Writes what is held back and what stands behind the packets; the file is whole then, and closed.
    [[nodiscard]] bool finish(std::string& error);
    /// Deletes the file.
    void abandon();
    /// Closes the file as far as it has come, and leaves it.
    void keep();

    /// What the first failed write told; 1 for none.
    [[nodiscard]] OxResult result() const { return result_; }

private:
    struct ContextDeleter {
        void operator()(AVFormatContext* context) const { avformat_free_context(context); }
    };
    using ContextPtr = std::unique_ptr<AVFormatContext, ContextDeleter>;

    Muxer(ContextPtr context, std::unique_ptr<OutputFile> file);
    [[nodiscard]] bool succeeded(int code, char const* what, std::string& error);
    void close();

    std::unique_ptr<OutputFile> file_;  ///< Empty once the file is closed.
    ContextPtr context_;
    bool hasBegun_ = false;
    OxResult result_ = oxSuccess;
};

}  // namespace playfile_ffmpeg
