/// What the trace tells of requests for sound.
#include "tests/audio/AudioQueueFixture.h"
#include "tests/support/TraceFile.h"

namespace {

class AudioRequestTrace : protected TraceFile, public AudioQueueFixture {
protected:
    using Names = std::vector<std::string>;

    /// The events of the only request that isn't the occupant's.
    Names lifeOf(std::uint64_t number) {
        Names names;
        for (Json const& event : allEvents()) {
            if (event.contains("id") && event["id"] == std::to_string(number)) {
                names.push_back(event["ph"].get<std::string>() + " " + event["name"].get<std::string>());
            }
        }
        return names;
    }
};

TEST_F(AudioRequestTrace, FollowsARequestFromItsMakingToItsEnd) {
    AudioRequestPtr const request = ask({});
    finish();
    EXPECT_EQ(lifeOf(request->number), (Names{"b sound request", "n queued", "e sound request"}));
}

TEST_F(AudioRequestTrace, TellsTheReadWithChannelSamplesAndFile) {
    AudioRequestPtr const request = ask({.channel = 1, .start = 300, .count = 20});
    finish();
    EXPECT_EQ(only("read")["args"], (Json{{"request", request->number},
                                          {"stream", 0},
                                          {"channel", 1},
                                          {"sample", 300},
                                          {"count", 20},
                                          {"file", toUTF8(file->filename).str()}}));
}

TEST_F(AudioRequestTrace, TellsOneReadOfTheStreamForAllItsChannels) {
    AudioRequestPtr const left = ask({.channel = 0});
    AudioRequestPtr const right = ask({.channel = 1});
    finish();
    EXPECT_EQ(named("read").size(), 2U);
    EXPECT_EQ(named("split").size(), 1U);
}

TEST_F(AudioRequestTrace, TellsTheCallOfTheIssuer) {
    AudioRequestPtr const request = ask({.issuer = &issuer});
    finish();
    EXPECT_EQ(only("callback")["args"], (Json{{"request", request->number}, {"status", requestComplete}}));
}

TEST_F(AudioRequestTrace, SaysThatARequestWasDropped) {
    occupyWorker();
    std::uint64_t const number = ask({.start = 1})->number;
    finish();
    EXPECT_EQ(lifeOf(number), (Names{"b sound request", "n queued", "n dropped", "e sound request"}));
}

}  // namespace
