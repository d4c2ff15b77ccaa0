#include "tests/audio/AudioFixture.h"

AudioRequestPtr makeSoundRequest(Ox::Ptr<FileReadInstance> file, WantedSound const& wanted) {
    AudioRequest request;
    request.stream = wanted.stream;
    request.channelInStream = wanted.channel;
    request.startSample = wanted.start;
    request.numSamples = wanted.count;
    Ox::Ptr<ReadRequestIssuer::Proxy> const issuer = wanted.issuer ? wanted.issuer->getProxy() : nullptr;
    return Ox::makePtr<AudioReadRequest>(file, request, wanted.fetch != 0 ? wanted.fetch : wanted.count,
                                         issuer);
}

void SoundFixture::open(std::vector<Aud::Metadata> const& formats) {
    file = Ox::makePtr<ScriptedSound>("sound", OpenType::audio, script, formats);
}

AudioRequestPtr SoundFixture::read(WantedSound const& wanted) {
    AudioRequestPtr request = makeSoundRequest(file, wanted);
    file->readAudio(request);
    return request;
}
