#pragma once

#include <memory>
#include <vector>

#include "audio/AudioReadQueue.h"
#include "tests/audio/AudioFixture.h"
#include "tests/fakes/WatchedThreads.h"

/// A queue of its own and a stereo file that does as its script says.
class AudioQueueFixture : public ::testing::Test {
protected:
    using Starts = std::vector<std::uint64_t>;

    ~AudioQueueFixture() override;

    /// Queues a read and gives the caller's pointer.
    AudioRequestPtr ask(WantedSound const& wanted, Ox::Ptr<FileReadInstance> const& from = nullptr);
    /// Makes the worker busy with a read of another file, so that whatever comes now has to wait.
    void occupyWorker();
    /// Lets the worker go, ends the queue when it has served everything, and gives the first samples of
    /// this file's requests in the order in which they were read.
    Starts finish();

    WatchedThreads& threads = WatchedThreads::instance();
    SoundScriptPtr const script = std::make_shared<SoundScript>();
    SoundScriptPtr const occupantScript = std::make_shared<SoundScript>();
    Ox::Ptr<ScriptedSound> file =
        Ox::makePtr<ScriptedSound>("sound", OpenType::audio, script, std::vector{soundFormat(2)});
    RecordingIssuer issuer;
    std::unique_ptr<Ox::AudioReadQueue> queue = std::make_unique<Ox::AudioReadQueue>();

private:
    AudioRequestPtr occupant_;
};
