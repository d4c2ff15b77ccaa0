#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "plugins/ffmpeg/AvPointers.h"
#include "plugins/ffmpeg/ByteFile.h"
#include "plugins/ffmpeg/FrameIndex.h"
#include "plugins/ffmpeg/OpenContainer.h"

namespace playfile_ffmpeg {

/// Brings the packets of a stream by their number in decoding order.
///
/// Threads      One at a time.
class PacketReader {
public:
    virtual ~PacketReader() = default;

    /// Fills `packet` with packet `number`; false if the file doesn't hold it. May block on the file.
    [[nodiscard]] bool read(uint32_t number, AVPacket& packet);

    /// True if packet `number` is known to be missing, without a look into the file.
    virtual bool isMissing(uint32_t number) const;

    /// How often another place was gone to than the one where the last packet ended.
    uint64_t seekCount() const { return seekCount_; }
    uint64_t readCount() const { return readCount_; }

protected:
    [[nodiscard]] virtual bool readPacket(uint32_t number, AVPacket& packet) = 0;
    void countSeek() { ++seekCount_; }

private:
    uint64_t seekCount_ = 0;
    uint64_t readCount_ = 0;
};

/// Reads packets whose bytes lie in the file as the decoder wants them, without the container's help.
class DirectPacketReader : public PacketReader {
public:
    DirectPacketReader(std::shared_ptr<ByteFile const> file, FrameIndex const& index);

    bool isMissing(uint32_t number) const override;

private:
    [[nodiscard]] bool readPacket(uint32_t number, AVPacket& packet) override;

    std::shared_ptr<ByteFile const> file_;
    FrameIndex const& index_;
    uint32_t following_ = 0;  ///< Number of the packet behind the one that was read last.
};

/// Reads packets through libavformat.
///
/// After a seek a packet counts only once it is recognised beyond doubt by place, length and content.
class DemuxedPacketReader : public PacketReader {
public:
    DemuxedPacketReader(std::unique_ptr<OpenContainer> container, FrameIndex const& index);

private:
    static constexpr uint32_t nowhere = UINT32_MAX;

    [[nodiscard]] bool readPacket(uint32_t number, AVPacket& packet) override;
    bool readNext(AVPacket& packet);
    bool readUpTo(uint32_t number, AVPacket& packet);
    bool goToBefore(uint32_t number);
    bool goToStart();
    bool reopen();
    uint32_t recognise(AVPacket const& packet) const;
    void rememberIdentities();

    std::unique_ptr<OpenContainer> container_;
    FrameIndex const& index_;
    uint32_t next_ = nowhere;  ///< Number of the packet that the container would bring next.
    std::vector<std::pair<uint64_t, uint32_t>> identities_;  ///< Sorted; empty until the first seek.
};

}  // namespace playfile_ffmpeg
