#include "audio/AudioReadRequest.h"

#include "playfile/Counters.h"

AudioReadRequest::AudioReadRequest(Ox::Ptr<FileReadInstance>& readFrom, AudioRequest const& request,
                                   unsigned int samplesToFetch, Ox::Ptr<ReadRequestIssuer::Proxy> issuer)
    : AudioRequest(request), issuers(issuer, number), file(readFrom), mcsCount(samplesToFetch) {
    PlayFileTrace::step(TraceEvent::requestBegins, traceCategory, traceName, number,
                        {"sample", static_cast<std::int64_t>(startSample)});
}

void AudioReadRequest::doCallbacks(Ox::Ptr<iObject>& self) {
    RequestStatus const status = getRequestStatus();
    PlayFileCounters& counters = playFileCounters();
    PlayFileCounters::add(status == requestComplete ? counters.audioRequestsRead : counters.audioReadsFailed);
    issuers.doCallbacks(self, status);
    PlayFileTrace::step(TraceEvent::requestEnds, traceCategory, traceName, number, {"status", status});
}

Aud::Metadata const* AudioReadRequest::findStream() const {
    std::vector<Aud::Metadata> const& streams = getAudioMetadata();
    return stream < streams.size() ? &streams[stream] : nullptr;
}

std::uint64_t AudioReadRequest::getStartByte() const {
    Aud::Metadata const* const format = findStream();
    return format ? startSample * format->bytesPerSample * format->channels : 0;
}

std::uint32_t AudioReadRequest::getBytesPerMCS() const {
    Aud::Metadata const* const format = findStream();
    return format ? mcsCount * format->bytesPerSample * format->channels : 0;
}

std::uint32_t AudioReadRequest::getChannelIndex() const {
    Aud::Metadata const* const format = findStream();
    return channelInStream + (format ? stream * format->channels : 0);
}
