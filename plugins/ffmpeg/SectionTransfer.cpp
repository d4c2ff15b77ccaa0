#include "plugins/ffmpeg/SectionTransfer.h"

#include <cerrno>
#include <cstdlib>
#include <exception>
#include <filesystem>
#include <limits>
#include <utility>

#include "files/PlayFileCache.h"
#include "header/FileXferSpec.h"
#include "header/HeaderOfFile.h"
#include "ole/os/OS.h"
#include "plugins/ffmpeg/FFmpegReader.h"
#include "toolkit/catalogue/DiskManager.h"
#include "toolkit/catalogue/MaterialInfo.h"
#include "toolkit/catalogue/SystemCache.h"
#include "toolkit/services/Log.h"
#include "toolkit/services/Paths.h"
#include "toolkit/services/WriteProblem.h"

namespace playfile_ffmpeg {
namespace {

using Name = LightweightString<wchar_t>;

constexpr int decimal = 10;

std::string optionOf(FileXferSpec const& spec, char const* key) {
    LightweightString<char> value;
    return spec.options.in(key, value) == 0 ? value.str() : std::string();
}

std::uint64_t numberOf(FileXferSpec const& spec, char const* key) {
    return std::strtoull(optionOf(spec, key).c_str(), nullptr, decimal);
}

Ox::Ptr<FileReadInstance> openSource(Cookie const& cookie) {
    return PlayFileCache::Shared()->open(cookie, DecodeFormat(levelOriginal), 0);
}

bool isSound(FileXferSpec const& spec) {
    return spec.source.type() == 'S';
}

/// Where the new file goes.
MaterialFilename targetOf(FileXferSpec const& spec) {
    std::string const path = optionOf(spec, "path");
    if (!path.empty()) {
        return {DriveId::none, fromUTF8(path.c_str())};
    }
    MaterialFilename const place = getMaterialFilenameForCookie(spec.destination, spec.drive);
    return {place.getDrive(), place.getPath() + Name(isSound(spec) ? L".wav" : L".mov")};
}

/// All channels of one stream, with these samples of its own counting.
SoundPart partOf(PlayFileMetadataRep const& metadata, std::uint32_t stream, std::uint64_t first,
                 std::uint64_t end) {
    SoundPart part;
    part.stream = stream;
    part.channelCount = metadata.audioStreams[stream].channels;
    for (std::uint32_t before = 0; before < stream; ++before) {
        part.fileChannel += metadata.audioStreams[before].channels;
    }
    part.first = first;
    part.end = end;
    return part;
}

/// A sample of the first stream, as another one counts it.
std::uint64_t scaled(PlayFileMetadataRep const& metadata, std::uint32_t stream, std::uint64_t sample) {
    auto const rate = static_cast<std::int64_t>(metadata.audioStreams[stream].sampleRate);
    auto const firstRate = static_cast<std::int64_t>(metadata.audioStreams.front().sampleRate);
    return rate == firstRate || firstRate <= 0
               ? sample
               : static_cast<std::uint64_t>(
                     av_rescale_rnd(static_cast<std::int64_t>(sample), rate, firstRate, AV_ROUND_DOWN));
}

/// What lies beside these samples of the first stream, in all streams.
std::vector<SoundPart> allParts(PlayFileMetadataRep const& metadata, std::uint64_t first, std::uint64_t end) {
    std::vector<SoundPart> parts;
    std::uint64_t const last = std::min(end, metadata.audioSampleCount);
    for (std::uint32_t stream = 0; stream < metadata.audioStreams.size(); ++stream) {
        SoundPart const part =
            partOf(metadata, stream, scaled(metadata, stream, first), scaled(metadata, stream, last));
        if (part.channelCount > 0 && part.first < part.end) {
            parts.push_back(part);
        }
    }
    return parts;
}

/// The channel of that number, from 1; one that the file doesn't have means its first, as for every read.
SoundPart oneChannel(PlayFileMetadataRep const& metadata, std::uint8_t number, std::uint64_t first,
                     std::uint64_t end) {
    std::uint32_t const channel = number >= 1 && number <= metadata.getTotalChannels() ? number - 1U : 0;
    std::uint32_t stream = 0;
    SoundPart part = partOf(metadata, stream, first, end);
    while (channel >= part.fileChannel + part.channelCount) {
        part = partOf(metadata, ++stream, first, end);
    }
    part.firstChannel = channel - part.fileChannel;
    part.fileChannel = channel;
    part.channelCount = 1;
    return part;
}

/// The folder of a vanished drive isn't made anew: it would lie on another one.
bool isRootThere(FileXferSpec const& spec, MaterialFilename const& target) {
    Name const root = optionOf(spec, "path").empty() ? DiskManager::instance().getDriveRoot(spec.drive)
                                                     : getPath(target.getOsPath());
    std::error_code error;
    return root.empty() || std::filesystem::is_directory(toUTF8(root).str(), error);
}

bool areOneFile(Name const& one, Name const& other) {
    std::error_code error;
    return std::filesystem::equivalent(toUTF8(one).str(), toUTF8(other).str(), error) && !error;
}

class Transfer {
public:
    Transfer(FileXferSpec& spec, LoggerHandle& log) : spec_(spec), log_(log), target_(targetOf(spec)) {}

    OxResult run() {
        source_ = openSource(spec_.source);
        std::string error = reasonAgainst();
        OxResult result = oxFailure;
        if (error.empty()) {
            SectionCopy copy(plan(), [this](double fraction) { return tell(fraction); });
            result = copy.run(error);
        }
        if (result == oxSuccess) {
            return file();
        }
        if (result != oxInterrupted) {
            log_.write(fromUTF8(error.c_str()), LoggerBase::errorLine);
            LogBoth("FFmpeg: %s\n", error.c_str());
        }
        return result;
    }

private:
    [[nodiscard]] std::string reasonAgainst() const {
        Name const path = target_.getOsPath();
        std::string const shown = "\"" + toUTF8(path).str() + "\"";
        if (!source_) {
            return "the source of the section can't be opened; check that its file is there and whole";
        }
        if (spec_.startSample >= spec_.endSample) {
            return "the section lies behind the end of \"" + toUTF8(source_->filename).str() +
                   "\"; name an earlier one";
        }
        if (path.empty() || !isRootThere(spec_, target_)) {
            return "cannot write " + shown +
                   ": its folder isn't there; choose another one or bring its drive back";
        }
        if (SectionCopy::containerFor(path).empty()) {
            return "cannot write " + shown + ": sections are written to files named .mov or .wav";
        }
        if (areOneFile(path, source_->filename)) {
            return "cannot write " + shown + ": it is the source itself; choose another name";
        }
        if (!MaterialInfo::can_write_header(path)) {
            return "cannot write " + shown +
                   ": the .sav beside it, where the header of the section belongs, holds something else; "
                   "move that away or choose another name";
        }
        return "";
    }

    [[nodiscard]] SectionCopy::Plan plan() const {
        SectionCopy::Plan plan;
        plan.source = source_->filename;
        plan.target = target_.getOsPath();
        PlayFileMetadataRep const& metadata = *source_->metadata;
        if (!isSound(spec_)) {
            plan.firstFrame = static_cast<std::uint32_t>(spec_.startSample);
            plan.endFrame = static_cast<std::uint32_t>(spec_.endSample);
            addSoundOfPictures(plan);
        } else {
            plan.soundFile = source_;
            bool const isWhole = optionOf(spec_, "channels") == "all";
            plan.sound = isWhole ? allParts(metadata, spec_.startSample, spec_.endSample)
                                 : std::vector{oneChannel(metadata, spec_.source.channel(), spec_.startSample,
                                                          spec_.endSample)};
        }
        return plan;
    }

    void addSoundOfPictures(SectionCopy::Plan& plan) const {
        std::uint64_t const first = numberOf(spec_, "soundStart");
        std::uint64_t const end = numberOf(spec_, "soundEnd");
        if (first < end) {
            plan.soundFile = openSource(convertCookie(spec_.source, 'S', 1));
        }
        if (plan.soundFile) {
            plan.sound = allParts(*plan.soundFile->metadata, first, end);
        }
    }

    [[nodiscard]] bool tell(double fraction) {
        log_.reportProgress({}, fraction);
        return !spec_.isStopRequested();
    }

    /// Material without a header isn't left behind.
    OxResult file() {
        SystemCache::instance()->addFile(spec_.destination, target_, false);
        if (MaterialInfo::write_header(spec_.destination, header()) != MaterialInfo::failed) {
            log_.reportProgress({}, 1.0);
            return oxSuccess;
        }
        SystemCache::instance()->removeFile(spec_.destination, mediaOriginal, false);
        std::string const error = "the header of \"" + toUTF8(target_.getOsPath()).str() +
                                  "\" can't be stored; make room in its folder or allow writing there";
        log_.write(fromUTF8(error.c_str()), LoggerBase::errorLine);
        return oxFailure;
    }

    [[nodiscard]] SAV_HEADER header() const {
        PlayFileMetadataRep const& metadata = *source_->metadata;
        if (!isSound(spec_)) {
            return visionHeaderOf(source_);
        }
        if (optionOf(spec_, "channels") == "all") {
            return soundHeaderOf(source_, 0, metadata.getTotalChannels());
        }
        return soundHeaderOf(source_, oneChannel(metadata, spec_.source.channel(), 0, 0).stream, 1);
    }

    FileXferSpec& spec_;
    LoggerHandle& log_;
    MaterialFilename const target_;
    Ox::Ptr<FileReadInstance> source_;
};

}  // namespace

bool SectionTransfer::canTransfer(FileXferSpec* spec) {
    Ox::Ptr<FileReadInstance> const source = openSource(spec->source);
    if (!source) {
        return false;
    }
    return isSound(*spec) ? !source->metadata->audioStreams.empty()
                          : spec->source.type() == 'V' && Ox::dynamicPtrCast<FFmpegReader>(source);
}

OxResult SectionTransfer::transfer(FileXferSpec* spec, LoggerHandle& log) {
    try {
        return Transfer(*spec, log).run();
    } catch (std::exception const& exception) {
        std::string const error = std::string("the section can't be copied: ") + exception.what();
        log.write(fromUTF8(error.c_str()), LoggerBase::errorLine);
        LogBoth("FFmpeg: %s\n", error.c_str());
        return oxFailure;
    }
}

}  // namespace playfile_ffmpeg
