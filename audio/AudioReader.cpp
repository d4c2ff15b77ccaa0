/// One read of an audio file, up to the point where compressed and uncompressed streams part.
#include "audio/AudioReader.h"

#include <algorithm>
#include <cstring>
#include <limits>
#include <new>

#include "playfile/Counters.h"
#include "toolkit/services/Log.h"
#include "toolkit/services/Settings.h"
#include "toolkit/sound/AudioInterleaver.h"

namespace Ox {
namespace {

constexpr int defaultStreamsToPlay = 99;
constexpr std::uint32_t bytesPerSilentSample = 4;
/// A buffer's bytes are a 32-bit number.
constexpr std::uint32_t mostSilentSamples = std::numeric_limits<std::uint32_t>::max() / bytesPerSilentSample;

/// The setting `NumAudioStreamsToPlay`: streams from this index on are silent. Read at the first read of
/// the process and kept; as an unsigned number, so that a negative one silences nothing.
std::uint32_t getNumStreamsToPlay() {
    static int const value = config_int("NumAudioStreamsToPlay", defaultStreamsToPlay,
                                        std::numeric_limits<int>::min(), std::numeric_limits<int>::max());
    return static_cast<std::uint32_t>(value);
}

}  // namespace

AudioReader::AudioReader(std::vector<Aud::Metadata>& audioStreams) : streams(audioStreams) {}

bool AudioReader::isMuted(std::uint32_t stream) {
    return stream >= getNumStreamsToPlay();
}

void AudioReader::readAudio(Ptr<AudioReadRequest>& request) {
    ScopedLock const scope(lock_);
    OxResult const result = fetchWithinMemory(request);
    if (result == oxSuccess || result == oxEndOfData) {
        request->setRequestStatus(requestComplete);
    } else {
        request->setRequestStatus(requestFailed);
        LogBoth("** disk read error 0x%x\n", result);
    }
    Ptr<iObject> self(request);
    request->doCallbacks(self);
}

/// A request for more than memory holds, or than a buffer can count, fails like any other: its issuer is
/// told, and the queue's thread lives on.
OxResult AudioReader::fetchWithinMemory(Ptr<AudioReadRequest>& request) {
    try {
        return fetch(request);
    } catch (std::bad_alloc const&) {
        return oxFailure;
    }
}

OxResult AudioReader::fetch(Ptr<AudioReadRequest>& request) {
    bool const isSilent = isMuted(request->stream);
    if (request->stream >= streams.size()) {
        return oxFailure;
    }
    if (isSilent) {
        serveSilence(*request);
        return oxSuccess;
    }
    if (contains(*request)) {
        PlayFileCounters::add(playFileCounters().audioChannelHits);
        takeResult(*request);
        return oxSuccess;
    }
    PlayFileCounters::add(playFileCounters().audioStreamReads);
    bool const isCompressed = codecs.count(static_cast<int>(request->stream)) != 0;
    TraceSlice slice(AudioReadRequest::traceCategory, isCompressed ? "decode" : "split", request->number);
    slice.with("stream", request->stream);
    return isCompressed ? fetchCompressed(request) : fetchUncompressed(request);
}

/// The list of a failed split is kept as well, before the failure is looked at.
OxResult AudioReader::fetchUncompressed(Ptr<AudioReadRequest>& request) {
    Ptr<ByteBufferImpl> buffer;
    OxResult result = readsByVideoSamples() ? readAudioByVideoSamples(buffer, request)
                                            : readAudioByAudioSamples(buffer, request);
    bool const hasData = buffer && buffer->getUsed() != 0;
    if (result != oxSuccess && !(result == oxEndOfData && hasData)) {
        return result;
    }
    Aud::StreamBufferList list;
    result = AudioInterleaver::deinterleaveAudio(streams[request->stream], buffer, list) == 0 ? oxSuccess
                                                                                              : oxFailure;
    addBuffers(request->stream, request->startSample, list);
    if (result == oxSuccess) {
        takeResult(*request);
    }
    return result;
}

OxResult AudioReader::readAudioByAudioSamples(Ptr<ByteBufferImpl>& buffer, Ptr<AudioReadRequest>& request) {
    buffer = makePtr<ByteBufferImpl>(readSlack + request->getBytesPerMCS());
    if (request->mcsCount == 0) {
        return oxSuccess;
    }
    std::uint32_t const leastSamples = std::max(streams[request->stream].bytesPerSample, 1U);
    std::uint64_t sample = request->startSample;
    std::uint32_t done = 0;
    for (;;) {
        unsigned int samplesRead = 0;
        unsigned int skipStart = 0;
        unsigned int skipEnd = 0;
        OxResult const result = readAudioSamples(request->stream, sample, request->mcsCount - done, buffer,
                                                 samplesRead, skipStart, skipEnd);
        if (result == oxSuccess && samplesRead < leastSamples) {
            return oxEndOfData;
        }
        done += samplesRead;
        if (done >= request->mcsCount || result != oxSuccess) {
            return result;
        }
        sample += samplesRead;
    }
}

OxResult AudioReader::readAudioByVideoSamples(Ptr<ByteBufferImpl>&, Ptr<AudioReadRequest>&) {
    return oxVideoSamplesNotSupported;
}

void AudioReader::takeResult(AudioReadRequest& request) {
    request.buffer = getResult(request, streams[request.stream].bytesPerSample);
}

/// The memory is made for as many samples as the old buffer had, and grows when the used size is set:
/// what was handed out before keeps its own.
void AudioReader::serveSilence(AudioReadRequest& request) {
    if (request.mcsCount > mostSilentSamples) {
        throw std::bad_alloc();
    }
    if (silence.getSampleCount() < request.mcsCount) {
        auto const zeroes = makePtr<ByteBufferImpl>(silence.getSampleCount() * bytesPerSilentSample);
        silence = Aud::StreamBuffer(zeroes, request.stream, false, request.mcsCount, 0);
        silence.setFlag(true);
        silence.setUsed(request.mcsCount * bytesPerSilentSample);
        std::memset(silence.getBuffer(), 0, silence.getSize());
    }
    request.buffer = silence;
}

}  // namespace Ox
