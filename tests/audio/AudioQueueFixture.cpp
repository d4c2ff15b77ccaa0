#include "tests/audio/AudioQueueFixture.h"

AudioRequestPtr AudioQueueFixture::ask(WantedSound const& wanted, Ox::Ptr<FileReadInstance> const& from) {
    AudioRequestPtr request = makeSoundRequest(from ? from : Ox::Ptr<FileReadInstance>(file), wanted);
    EXPECT_EQ(queue->queueReadRequest(request), 1U);
    return request;
}

void AudioQueueFixture::occupyWorker() {
    occupantScript->readGate.close();
    occupant_ = ask({}, Ox::makePtr<ScriptedSound>("occupant", OpenType::audio, occupantScript,
                                                   std::vector{soundFormat(2)}));
    ASSERT_TRUE(occupantScript->readGate.waitForArrivals(1));
}

AudioQueueFixture::Starts AudioQueueFixture::finish() {
    script->readGate.open();
    occupantScript->readGate.open();
    queue = nullptr;
    return script->startsRead();
}

AudioQueueFixture::~AudioQueueFixture() {
    finish();
}
