#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "plugins/ffmpeg/ByteFile.h"
#include "plugins/ffmpeg/SoundContainer.h"
#include "plugins/ffmpeg/SoundIndex.h"
#include "plugins/ffmpeg/SoundSurvey.h"

namespace playfile_ffmpeg {

/// Brings the bytes of a stream's packets by their number.
///
/// Threads      One at a time.
class SoundPacketReader {
public:
    virtual ~SoundPacketReader() = default;

    /// Puts the packet's bytes behind those of `bytes`; false, with nothing put there, if they can't be
    /// had. May block on the file.
    [[nodiscard]] virtual bool read(uint32_t number, std::vector<uint8_t>& bytes) = 0;
};

/// Reads packets that lie in the file in one piece.
///
/// Where they lie one behind the other, several are read at once.
class DirectSoundPackets : public SoundPacketReader {
public:
    DirectSoundPackets(std::shared_ptr<ByteFile const> file, SoundIndex const& index);

    [[nodiscard]] bool read(uint32_t number, std::vector<uint8_t>& bytes) override;

private:
    bool readAhead(uint32_t number);

    std::shared_ptr<ByteFile const> const file_;
    SoundIndex const& index_;
    std::vector<uint8_t> window_;  ///< What was read last.
    int64_t windowAt_ = 0;
};

/// Reads packets through libavformat.
///
/// Packets in a row are read onward. After a jump a packet counts once it is known beyond doubt by its
/// place, length and content. One that couldn't be had isn't looked for again.
///
/// Ownership    The file is opened again at the first read.
class DemuxedSoundPackets : public SoundPacketReader {
public:
    /// @param stream  of the file's streams of sound
    DemuxedSoundPackets(std::string path, size_t stream, std::vector<PacketTrace> traces);

    [[nodiscard]] bool read(uint32_t number, std::vector<uint8_t>& bytes) override;

private:
    static constexpr uint32_t nowhere = UINT32_MAX;

    bool readPacket(uint32_t number);
    bool goToAndRead(uint32_t number);
    bool readUpTo(uint32_t number);
    bool readNext();
    bool fetch();
    bool reopen();
    bool goTo(uint32_t number);
    void rememberIdentities();
    uint32_t recognise() const;

    std::string const path_;
    size_t const streamNumber_;
    std::vector<PacketTrace> const traces_;
    AvPtr<AVPacket> const packet_;
    std::unique_ptr<SoundContainer> container_;
    uint32_t next_ = nowhere;      ///< Number of the packet that the container would bring next.
    uint32_t held_ = nowhere;      ///< Number of the packet in `packet_`.
    std::vector<bool> isMissing_;  ///< Empty until the first one.
    std::vector<std::pair<uint64_t, uint32_t>> identities_;  ///< Sorted; empty until the first jump.
};

}  // namespace playfile_ffmpeg
