/// The steps around a partial copy: times to samples, a look at the source, the choice of a plug-in, the
/// catalogue.
#include "header/FileXferSpec.h"

#include <algorithm>
#include <cmath>

#include "files/PlayFileCache.h"
#include "toolkit/catalogue/DiskManager.h"
#include "toolkit/catalogue/MaterialInfo.h"
#include "toolkit/catalogue/SystemCache.h"
#include "toolkit/edit/Edit.h"
#include "toolkit/services/Log.h"

namespace {

/// Times are sums of frames' lengths: one that is meant for a frame may come out this much before it.
constexpr double visionTolerance = 0.0001;
constexpr double soundTolerance = 0.000001;

std::uint64_t sampleAt(double seconds, double tolerance, double rate) {
    double const sample = std::floor((seconds + tolerance) * rate);
    constexpr double limit = 18446744073709551615.0;
    return sample > 0.0 ? sample >= limit ? UINT64_MAX : static_cast<std::uint64_t>(sample) : 0;
}

/// A section that begins before 0: what of it can be had isn't copied either.
void announcePadding(FileXferSpec const& spec) {
    if (spec.endTime < 0.0) {
        zorn_printf("get_extract: requested section before start\n");
    } else {
        zorn_printf("get_extract: file '%s' needs %g seconds black padding\n", spec.source.asString().c_str(),
                    -spec.startTime);
    }
}

}  // namespace

FileXferSpec::FileXferSpec() : drive(DiskManager::instance().getDriveForTask("render", true)) {}

void FileXferSpec::get_vision_samples() {
    double const rate = Ox::getFramesPerSecond(frameRate);
    startSample = sampleAt(startTime, visionTolerance, rate);
    endSample = sampleAt(endTime, visionTolerance, rate);
}

void FileXferSpec::get_sound_samples() {
    double const rate = get_soundfile_sample_rate(source);
    startSample = sampleAt(startTime, soundTolerance, rate);
    endSample = sampleAt(endTime, soundTolerance, rate);
}

OxResult FileXferSpec::get_extract_samples() {
    switch (static_cast<char>(source.type())) {
        case 'V':
            get_vision_samples();
            return oxSuccess;
        case 'S':
            get_sound_samples();
            return oxSuccess;
        default:
            zorn_printf("get_extract_samples(): Unknown Cookie type");
            return oxFailure;
    }
}

iFileXferManager* FileXferSpec::getOurFileXferManager() {
    std::vector<iFileXferManager*> managers;
    findPluginResources<iFileXferManager>(managers, fileXferResource);
    auto const found = std::find_if(managers.begin(), managers.end(),
                                    [this](iFileXferManager* manager) { return manager->canTransfer(this); });
    return found == managers.end() ? nullptr : *found;
}

OxResult FileXferSpec::get_extract(LoggerHandle& log) {
    std::int32_t const startOffset = MaterialInfo::get_start_offset(source);
    if (startTime < 0.0) {
        announcePadding(*this);
        return oxSuccess;
    }
    if (!(startTime < endTime)) {
        return oxEmptyExtractSection;
    }
    if (OxResult const result = get_extract_samples(); result != oxSuccess) {
        return result;
    }
    if (source.type() == 'S') {
        startSample += static_cast<std::uint64_t>(std::int64_t{startOffset});
        endSample += static_cast<std::uint64_t>(std::int64_t{startOffset});
    }
    return clipToSource() ? transfer(log) : oxFailure;
}

/// The file stays open only in the cache while it is copied. False if there is nothing to copy from.
bool FileXferSpec::clipToSource() {
    Ox::Ptr<FileReadInstance> const file =
        PlayFileCache::Shared()->open(source, DecodeFormat(levelOriginal), 0);
    if (!file) {
        LogBoth("PlayFile::extract(): Unable to open input material file\n");
        return false;
    }
    PlayFileMetadataRep const& metadata = *file->metadata;
    if (source.type() == 'S') {
        endSample = std::min(endSample, metadata.audioSampleCount);
    } else if (source.type() == 'V') {
        endSample = std::min<std::uint64_t>(endSample, metadata.videoSampleCount);
    } else {
        LogBoth("playfile_extract(): Unknown record type to extract\n");
        return false;
    }
    xferStatus = 0;
    return true;
}

OxResult FileXferSpec::transfer(LoggerHandle& log) {
    iFileXferManager* const manager = getOurFileXferManager();
    if (manager == nullptr) {
        return oxFailure;
    }
    OxResult const result = manager->transfer(this, log);
    switch (result) {
        case oxInterrupted:
            LogBoth("playfile_extract: *** Interrupted ***\n");
            break;
        case oxFailure:
            LogBoth("playfile_extract: *** Error copying file ***\n");
            break;
        case oxSuccess:
            SystemCache::instance()->addFile(destination, getMaterialFilenameForCookie(destination, drive),
                                             false);
            break;
        default:
            LogBoth("playfile_extract: *** Error ***\n");
    }
    return result;
}

double get_soundfile_sample_rate(Cookie cookie) {
    EditPtr edit;
    edit.i_open(convertCookie(cookie, 'E', Cookie::wholeClip));
    return edit ? edit->getAudioInputSampleRate().calcCombinedSampleRate() : 0.0;
}
