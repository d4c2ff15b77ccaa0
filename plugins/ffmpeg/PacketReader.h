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
    [[nodiscard]] virtual bool read(uint32_t number, AVPacket& packet) = 0;

    /// True if packet `number` is known to be missing, without a look into the file.
    virtual bool isMissing(uint32_t number) const;
};

/// Reads packets whose bytes lie in the file as the decoder wants them, without the container's help.
class DirectPacketReader : public PacketReader {
public:
    DirectPacketReader(std::shared_ptr<ByteFile const> file, FrameIndex const& index);

    [[nodiscard]] bool read(uint32_t number, AVPacket& packet) override;
    bool isMissing(uint32_t number) const override;

private:
    std::shared_ptr<ByteFile const> file_;
    FrameIndex const& index_;
};

/// Reads packets through libavformat.
///
/// After a seek a packet counts only once it is recognised beyond doubt by place, length and content.
class DemuxedPacketReader : public PacketReader {
public:
    DemuxedPacketReader(std::unique_ptr<OpenContainer> container, std::string path, FrameIndex const& index);

    [[nodiscard]] bool read(uint32_t number, AVPacket& packet) override;

private:
    static constexpr uint32_t nowhere = UINT32_MAX;

    bool readNext(AVPacket& packet);
    bool readUpTo(uint32_t number, AVPacket& packet);
    bool goToBefore(uint32_t number);
    bool goToStart();
    bool reopen();
    uint32_t recognise(AVPacket const& packet) const;
    void rememberIdentities();

    std::unique_ptr<OpenContainer> container_;
    std::string path_;
    FrameIndex const& index_;
    uint32_t next_ = nowhere;  ///< Number of the packet that the container would bring next.
    std::vector<std::pair<uint64_t, uint32_t>> identities_;  ///< Sorted; empty until the first seek.
};

/// Holds the only packet of a still.
class HeldPacketReader : public PacketReader {
public:
    explicit HeldPacketReader(AvPtr<AVPacket> packet) : packet_(std::move(packet)) {}

    [[nodiscard]] bool read(uint32_t number, AVPacket& packet) override;

private:
    AvPtr<AVPacket> packet_;
};

}  // namespace playfile_ffmpeg
