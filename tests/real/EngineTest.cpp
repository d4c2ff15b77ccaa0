/// The FFmpeg reader's engine on every clip there is, real ones included.
#include <gtest/gtest.h>

#include "plugins/ffmpeg/FrameFetcher.h"
#include "tests/plugins_ffmpeg/BuiltIndexOf.h"
#include "tests/real/RealMedia.h"

namespace test {
namespace {

using namespace playfile_ffmpeg;

std::string nameOf(testing::TestParamInfo<std::string> const& clip) {
    return std::to_string(clip.index) + "_" + testNameOf(clip.param);
}

std::vector<std::string> openableClips() {
    std::vector<std::string> clips = clipsWithPictures();
    std::erase_if(clips, [](std::string const& path) {
        return path.ends_with("/empty.mp4") || path.ends_with("/text-named.mov");
    });
    return clips;
}

class EngineOnClip : public testing::TestWithParam<std::string> {
protected:
    void SetUp() override {
        std::string error;
        fetcher_ = FrameFetcher::open(GetParam(), error);
        ASSERT_TRUE(fetcher_) << error;
    }

    std::unique_ptr<FrameFetcher> fetcher_;
};

TEST_P(EngineOnClip, NeverSeeksWhenItIsReadOnward) {
    std::uint64_t const atOpen = fetcher_->counters().seeks;
    for (std::uint32_t frame = 0; frame < fetcher_->frameCount(); ++frame) {
        static_cast<void>(fetcher_->fetch(frame));
    }
    EXPECT_EQ(fetcher_->counters().seeks, atOpen);
}

TEST_P(EngineOnClip, ShowsEachFrameLaterThanTheOneBefore) {
    FrameIndex const& index = fetcher_->index();
    for (std::uint32_t frame = 1; frame < fetcher_->frameCount(); ++frame) {
        ASSERT_GT(index.ptsOf(frame), index.ptsOf(frame - 1)) << "frame " << frame;
    }
}

INSTANTIATE_TEST_SUITE_P(Clips, EngineOnClip, testing::ValuesIn(openableClips()), nameOf);

/// Clips of the MOV family.
std::vector<std::string> movies() {
    std::vector<std::string> movies = openableClips();
    std::erase_if(movies, [](std::string const& path) {
        return !path.ends_with(".mp4") && !path.ends_with(".mov") && !path.ends_with(".3gp");
    });
    return movies;
}

/// A clip of the MOV family, of which libavformat keeps the times of showing to itself.
class MovieClip : public testing::TestWithParam<std::string> {
protected:
    /// All packets as libavformat brings them.
    [[nodiscard]] static std::vector<PacketFacts> packetsRead(std::string const& path) {
        std::string error;
        OpenContainer container;
        EXPECT_TRUE(container.open(path, error)) << error;
        std::vector<PacketFacts> packets;
        AvPtr<AVPacket> const packet = makePacket();
        while (container.readVideoPacket(*packet) >= 0) {
            PacketFacts facts;
            facts.pts = packet->pts;
            facts.position = packet->pos;
            facts.byteCount = static_cast<uint32_t>(packet->size);
            facts.isKey = (packet->flags & AV_PKT_FLAG_KEY) != 0;
            facts.isCutOff = (packet->flags & AV_PKT_FLAG_DISCARD) != 0;
            packets.push_back(facts);
        }
        return packets;
    }
    /// One member of all packets.
    template <typename Member>
    [[nodiscard]] static std::vector<Member> all(std::vector<PacketFacts> const& packets,
                                                 Member PacketFacts::*member) {
        std::vector<Member> values;
        for (PacketFacts const& packet : packets) {
            values.push_back(packet.*member);
        }
        return values;
    }

    std::vector<PacketFacts> const built_ = builtIndexOf(GetParam()).packets;
    std::vector<PacketFacts> const read_ = packetsRead(GetParam());
};

TEST_P(MovieClip, HasTheTimesThatLibavformatGives) {
    EXPECT_EQ(all(built_, &PacketFacts::pts), all(read_, &PacketFacts::pts));
}

TEST_P(MovieClip, HasThePlacesThatLibavformatGives) {
    EXPECT_EQ(all(built_, &PacketFacts::position), all(read_, &PacketFacts::position));
}

TEST_P(MovieClip, HasTheSizesThatLibavformatGives) {
    EXPECT_EQ(all(built_, &PacketFacts::byteCount), all(read_, &PacketFacts::byteCount));
}

TEST_P(MovieClip, HasTheKeysThatLibavformatGives) {
    EXPECT_EQ(all(built_, &PacketFacts::isKey), all(read_, &PacketFacts::isKey));
}

TEST_P(MovieClip, CutsOffWhatLibavformatCutsOff) {
    EXPECT_EQ(all(built_, &PacketFacts::isCutOff), all(read_, &PacketFacts::isCutOff));
}

INSTANTIATE_TEST_SUITE_P(Clips, MovieClip, testing::ValuesIn(movies()), nameOf);

}  // namespace
}  // namespace test
