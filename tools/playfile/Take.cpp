#include "tools/playfile/Take.h"

#include <chrono>
#include <cstring>
#include <filesystem>

#include "files/PlayFileCache.h"
#include "files/PlayUtil.h"
#include "toolkit/catalogue/DiskManager.h"
#include "toolkit/catalogue/SystemCache.h"
#include "toolkit/sound/ByteBufferImpl.h"
#include "tools/playfile/CommandError.h"
#include "tools/playfile/Output.h"
#include "tools/playfile/Text.h"

namespace cli {
namespace {

constexpr DriveId recordingDrive{'R'};
constexpr std::uint32_t bitsPerByte = 8;
/// A write that takes less hasn't waited for anything.
constexpr double shortestWait = 0.001;
/// What writers say of a file that they give up.
constexpr char const* writersWords = "can't be written";

using Clock = std::chrono::steady_clock;

double secondsSince(Clock::time_point start) {
    return std::chrono::duration<double>(Clock::now() - start).count();
}

std::uint64_t countOf(PlayFileMetadataRep const& metadata, Cookie const& cookie) {
    return cookie.type() == 'V' ? metadata.videoSampleCount : metadata.audioSampleCount;
}

/// What a reader finds in new material.
std::uint64_t readableCount(Cookie const& cookie) {
    Ox::Ptr<FileReadInstance> const file =
        PlayFileCache::Shared()->open(cookie, DecodeFormat::getDefault(), 0);
    return file ? countOf(*file->metadata, cookie) : 0;
}

}  // namespace

Take::Take(Session const& session, std::string const& folder)
    : session_(session), clip_(Ox::UUID::generate(), 'V', 0) {
    DiskManager::instance().setDriveRoot(
        recordingDrive, wideName(std::filesystem::absolute(folder).lexically_normal().string()));
}

void Take::addPicture(std::string const& format, Ox::FrameRate rate, configb const& options) {
    Ox::FileWriterParams params;
    params.format = format.c_str();
    params.video.setFrameRate(rate);
    params.options = options;
    picture_ = create(clip_, params);
}

void Take::addChannel(std::string const& format, Aud::Metadata const& stream, std::uint8_t channel,
                      configb const& options) {
    Ox::FileWriterParams params;
    params.format = format.c_str();
    params.options = options;
    Aud::Metadata mono;
    mono.channels = 1;
    mono.sampleFormat = stream.sampleFormat;
    mono.bytesPerSample = stream.bytesPerSample;
    mono.bitsPerSample =
        stream.bitsPerSample != 0 ? stream.bitsPerSample : stream.bytesPerSample * bitsPerByte;
    mono.sampleRate = stream.sampleRate;
    params.audioMetadata = {mono};
    channels_.push_back(create(convertCookie(clip_, 'S', channel), params));
}

std::unique_ptr<Take::Track> Take::create(Cookie const& cookie, Ox::FileWriterParams const& params) const {
    auto track = std::make_unique<Track>();
    track->cookie = cookie;
    track->format = params.format.c_str();
    Ox::FileWriterParams onDrive = params;
    onDrive.drive = recordingDrive;
    track->file = PlayFileCache::create(cookie, onDrive);
    if (!track->file) {
        refuse("no writer makes files of the format " + inQuotes(track->format) +
               " of this; choose another with --video or --sound");
    }
    track->path = narrowName(track->file->filename);
    return track;
}

/// The writer has said in the log what is wrong.
void Take::refuse(std::string const& otherwise) const {
    std::vector<std::string> const lines = session_.log().lines();
    for (auto line = lines.rbegin(); line != lines.rend(); ++line) {
        if (line->find(writersWords) != std::string::npos) {
            throw CommandError(printable(*line));
        }
    }
    throw CommandError(otherwise);
}

void Take::writePicture(Ox::Image::Surface const& surface) {
    auto packet = Ox::makePtr<CapturePacket>(surface);
    Clock::time_point const start = Clock::now();
    std::uint32_t const status = PlayUtil::OxVideoSample_write(
        picture_->file, static_cast<int>(picture_->file->metadata->videoSampleCount), packet, nullptr);
    noteWait(secondsSince(start));
    if (status != oxSuccess) {
        refuse("the writer takes no more pictures for " + inQuotes(picture_->path) +
               "; choose a faster format with --video");
    }
}

void Take::writeSamples(std::size_t index, void const* bytes, std::size_t byteCount) {
    Track& track = *channels_[index];
    auto const buffer = Ox::makePtr<ByteBufferImpl>(static_cast<std::uint32_t>(byteCount));
    buffer->append(bytes, static_cast<std::uint32_t>(byteCount));
    Ox::Ptr<iMemHolder> data = buffer;
    Clock::time_point const start = Clock::now();
    std::uint32_t const status = PlayUtil::OxAudioSamples_write(track.file, data, nullptr);
    noteWait(secondsSince(start));
    if (status != oxSuccess) {
        refuse("the writer takes no more samples for " + inQuotes(track.path));
    }
}

void Take::noteWait(double seconds) {
    if (seconds >= shortestWait) {
        ++waits_;
        waitedSeconds_ += seconds;
    }
}

bool Take::finish() {
    bool isWhole = !picture_ || finish(*picture_);
    for (std::unique_ptr<Track> const& track : channels_) {
        isWhole = finish(*track) && isWhole;
    }
    return isWhole;
}

bool Take::finish(Track& track) const {
    std::uint32_t const status = track.file->finish();
    track.written = countOf(*track.file->metadata, track.cookie);
    track.file = nullptr;
    std::error_code error;
    track.isThere = std::filesystem::exists(track.path, error);
    if (!track.isThere) {
        SystemCache::instance()->removeFile(track.cookie, mediaAll);
        writeProblem("nothing is left of " + inQuotes(track.path) + ": the file has gone");
        return false;
    }
    track.kept = readableCount(track.cookie);
    bool const isWhole = status == oxSuccess && track.kept == track.written;
    if (!isWhole) {
        writeProblem(inQuotes(track.path) + " holds " + std::to_string(track.kept) + " of " +
                     std::to_string(track.written) + (track.cookie.type() == 'V' ? " frames" : " samples"));
    }
    return isWhole;
}

Json Take::report() const {
    Json json;
    json["clip"] = clip_.asString(true).c_str();
    json["files"] = Json::array();
    auto const add = [&json](Track const& track) {
        bool const isPicture = track.cookie.type() == 'V';
        Json file;
        file["medium"] = isPicture ? "video" : "sound";
        if (!isPicture) {
            file["channel"] = track.cookie.channel();
        }
        file["format"] = track.format;
        file["path"] = track.path;
        file[isPicture ? "frames" : "samples"] = track.kept;
        json["files"].push_back(file);
    };
    if (picture_ && picture_->isThere) {
        add(*picture_);
    }
    for (std::unique_ptr<Track> const& track : channels_) {
        if (track->isThere) {
            add(*track);
        }
    }
    json["waitsForWriters"]["count"] = waits_;
    json["waitsForWriters"]["seconds"] = waitedSeconds_;
    return json;
}

}  // namespace cli
