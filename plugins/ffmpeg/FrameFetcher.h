#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "plugins/ffmpeg/AvPointers.h"
#include "plugins/ffmpeg/ByteFile.h"
#include "plugins/ffmpeg/DecodeLane.h"
#include "plugins/ffmpeg/FrameIndex.h"
#include "plugins/ffmpeg/IndexBuilder.h"
#include "plugins/ffmpeg/PacketReader.h"
#include "plugins/ffmpeg/PictureStore.h"
#include "plugins/ffmpeg/ReadPattern.h"
#include "plugins/ffmpeg/StreamFacts.h"

namespace playfile_ffmpeg {

/// From a file to its n-th shown frame, exact whatever the order in which frames are asked for.
///
/// Opening decodes the first frame, which is what tells pixel format and colour, and keeps it. Frames in
/// a row are decoded by a decoder with a frame per thread, others of intra-coded streams by one with all
/// threads on the one frame. Reading onward never seeks.
///
/// Ownership    Holds the file, up to two decoders, and a few pictures.
/// Threads      One at a time.
/// Units        frame: number in display order, from 0.
/// Errors       A frame that can't be decoded is empty; all others keep their numbers.
class FrameFetcher {
public:
    struct Counters {
        uint64_t seeks = 0;
        uint64_t packetsRead = 0;
        uint64_t framesDecoded = 0;
        uint64_t storeHits = 0;
    };

    /// Empty with the reason in `error` when nothing of the file can be shown. Blocks on the file.
    static std::unique_ptr<FrameFetcher> open(std::string const& path, std::string& error);

    /// The picture in its own size and format; empty if it can't be had. Blocks on the file.
    PicturePtr fetch(uint32_t frame);

    /// The same, with the word on which others are wanted.
    PicturePtr fetch(uint32_t frame, Keep const& keep);

    /// Fills `packet` with the coded bytes of a frame that is a packet by itself; false if the file doesn't
    /// hold it. Blocks on the file.
    [[nodiscard]] bool readPacket(uint32_t frame, AVPacket& packet);
    /// True if each packet is a frame that needs no other.
    bool isPacketPerFrame() const {
        return index_.isEveryPacketAKey() && index_.packetCount() == frameCount();
    }
    AVCodecParameters const& parameters() const { return *parameters_; }

    /// How many pictures are kept.
    void setStoreLimits(PictureStore::Limits const& limits) { store_.setLimits(limits); }
    PictureStore const& store() const { return store_; }
    /// Lets go of the pictures beyond these limits, those farthest from the frame that was fetched last.
    void shrinkStore();

    /// Lets go of the decoders with their threads, and of all pictures; they are made anew when needed. Before
    /// the first fetch a first picture of up to 1 MiB stays.
    void closeDecoders();

    /// True for a stream of several frames of which most need others to be decoded.
    bool isLongGop() const { return !isIntraCoded_ && !index_.isEveryPacketAKey() && frameCount() > 1; }

    uint32_t frameCount() const { return index_.frameCount(); }
    FrameIndex const& index() const { return index_; }
    StreamFacts const& facts() const { return facts_; }

    /// True if all packets were read at open because the container has no index.
    bool wasScanned() const { return wasScanned_; }
    Counters counters() const;

private:
    FrameFetcher() = default;

    bool build(std::string const& path, std::string& error);
    void makeReader(std::unique_ptr<OpenContainer> container, BuiltIndex const& built);
    bool showFirst(std::string& error);
    bool showFirstIntra(std::string& error);
    PicturePtr obtain(uint32_t frame, Keep const& keep);
    PicturePtr decode(uint32_t frame, Keep const& keep);
    PicturePtr decodeAlone(uint32_t frame);
    uint32_t keepFrom(uint32_t frame) const;
    DecodeLane* linear(FrameDecoder::eThreading threading = FrameDecoder::eThreading::throughput);
    IntraLane* intra();
    bool isMissing(uint32_t frame) const;

    AvPtr<AVCodecParameters> parameters_;
    std::shared_ptr<ByteFile> file_;
    FrameIndex index_;
    StreamFacts facts_;
    bool wasScanned_ = false;
    bool isIntraCoded_ = false;
    bool hasFrameThreads_ = false;
    std::unique_ptr<PacketReader> reader_;
    std::unique_ptr<DecodeLane> linear_;
    std::unique_ptr<IntraLane> intra_;
    PictureStore store_;
    std::vector<bool> isUndecodable_;  ///< Empty until the first one.
    int64_t lastFrame_ = -1;
    uint32_t onwardRun_ = 0;
    uint64_t storeHits_ = 0;
    uint64_t decodedBefore_ = 0;  ///< By decoders that are closed.
};

}  // namespace playfile_ffmpeg
