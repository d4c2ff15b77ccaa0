/// New material: the choice of a writer, and the handing over of samples.
#include "files/FileWriteInstance.h"
#include "files/PlayUtil.h"
#include "ole/os/OS.h"
#include "toolkit/plugins/FileWriterInfo.h"
#include "toolkit/services/Log.h"

namespace {

/// A writer that has more frames to write is waited for.
constexpr std::uint64_t mostBacklog = 32;
/// With the last of these looks at the writer's backlog the frame is given up.
constexpr std::uint8_t mostLooks = 50;
constexpr std::uint32_t pauseMs = 100;

void tell(FileWriteInstance::Callback callback, RequestStatus status) {
    if (callback != nullptr) {
        callback(status);
    }
}

/// False if the writer doesn't come below the limit in time.
bool waitForWriter(FileWriteInstance& file) {
    std::uint8_t looks = 0;
    while (file.getWriteBacklog() > mostBacklog) {
        if (++looks == mostLooks) {
            return false;
        }
        static_cast<void>(file.getWriteBacklog());
        OS()->getThreads().sleep(pauseMs);
    }
    return true;
}

std::uint32_t failedSample(int sampleId, std::uint32_t status, FileWriteInstance::Callback callback) {
    tell(callback, requestFailed);
    LogBoth("Failed to write sample %d\n", sampleId);
    return status;
}

}  // namespace

Ox::Ptr<FileWriteInstance> PlayUtil::openWrite(LightweightString<wchar_t> const& filename,
                                               Ox::FileWriterParams const& params) {
    Ox::Ptr<Ox::FileWriterInfo> const writer = Ox::FileWriterInfo::getFileWriterFor(params);
    if (!writer) {
        return {};
    }
    Ox::Ptr<FileWriteInstance> file;
    return writer->openFile(filename, params, file) == oxSuccess ? file : Ox::Ptr<FileWriteInstance>();
}

std::uint32_t PlayUtil::OxAudioSamples_write(Ox::Ptr<FileWriteInstance>& file, Ox::Ptr<iMemHolder>& data,
                                             void (*callback)(RequestStatus)) {
    if (!file) {
        return oxFailure;
    }
    std::vector<Aud::Metadata> const& streams = file->metadata->audioStreams;
    std::uint32_t const bytesPerSample = streams.empty() ? 0 : streams.front().bytesPerSample;
    std::uint32_t const status = file->writeAudioSamples(data, callback);
    if (status == oxSuccess && bytesPerSample != 0) {
        file->metadata->audioSampleCount += data->getUsed() / bytesPerSample;
    }
    return status;
}

std::uint32_t PlayUtil::OxVideoSample_write(Ox::Ptr<FileWriteInstance>& file, int sampleId,
                                            Ox::Ptr<CapturePacket>& packet, void (*callback)(RequestStatus)) {
    if (static_cast<std::uint32_t>(sampleId) != file->metadata->videoSampleCount) {
        LogBoth("Bad sample ID %d\n", sampleId);
        return oxFailure;
    }
    if (!waitForWriter(*file)) {
        return failedSample(sampleId, oxFailure, callback);
    }
    std::uint32_t const status = file->writeSurface(packet);
    if (status != oxSuccess) {
        return failedSample(sampleId, status, callback);
    }
    tell(callback, requestComplete);
    ++file->metadata->videoSampleCount;
    return oxSuccess;
}
