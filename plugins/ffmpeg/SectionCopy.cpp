#include "plugins/ffmpeg/SectionCopy.h"

#include <unistd.h>

#include <algorithm>
#include <array>
#include <atomic>
#include <cerrno>
#include <cstring>
#include <limits>
#include <utility>

#include "ole/os/OS.h"
#include "toolkit/services/Paths.h"
#include "toolkit/services/WriteProblem.h"

extern "C" {
#include <libavutil/imgutils.h>
#include <libavutil/timecode.h>
}

namespace playfile_ffmpeg {
namespace {

using Name = LightweightString<wchar_t>;

/// What is said of a file that was written and has gone with its folder.
constexpr OxResult missingFile = iErrorService::systemErrorBase + ENOENT;

Name partialNameFor(Name const& target) {
    static std::atomic<unsigned> counter{0};
    std::string const end = "." + std::to_string(::getpid()) + "-" + std::to_string(++counter) + ".partial";
    return target + fromUTF8(end.c_str());
}

std::string inQuotes(Name const& name) {
    return "\"" + toUTF8(name).str() + "\"";
}

/// The pixels of a picture, row by row without what lies between them.
std::vector<std::uint8_t> pixelsOf(AVFrame const& picture) {
    auto const format = static_cast<AVPixelFormat>(picture.format);
    int const byteCount = av_image_get_buffer_size(format, picture.width, picture.height, 1);
    std::vector<std::uint8_t> pixels(static_cast<std::size_t>(std::max(byteCount, 0)));
    av_image_copy_to_buffer(pixels.data(), byteCount, picture.data, picture.linesize, format, picture.width,
                            picture.height, 1);
    return pixels;
}

/// Names of formats may differ where only the range does: the pixels count.
bool areSame(PicturePtr const& one, PicturePtr const& other) {
    return one && other && one->width == other->width && one->height == other->height &&
           pixelsOf(*one) == pixelsOf(*other);
}

/// A display matrix of whole quarter turns, with or without mirroring.
std::array<std::int32_t, 9> matrixOf(int orientation) {
    constexpr std::int32_t one = 1 << 16;
    constexpr std::int32_t lastOne = 1 << 30;
    std::array<std::int32_t, 9> matrix{one, 0, 0, 0, one, 0, 0, 0, lastOne};
    for (bool const isTurned : {false, true}) {
        for (int signs = 0; signs < 4; ++signs) {
            std::int32_t const a = (signs & 1) != 0 ? -one : one;
            std::int32_t const b = (signs & 2) != 0 ? -one : one;
            matrix[0] = isTurned ? 0 : a;
            matrix[1] = isTurned ? a : 0;
            matrix[3] = isTurned ? b : 0;
            matrix[4] = isTurned ? 0 : b;
            if (orientationOf(matrix.data()) == orientation) {
                return matrix;
            }
        }
    }
    return {one, 0, 0, 0, one, 0, 0, 0, lastOne};
}

std::string timecodeAt(StreamFacts const& facts, std::uint32_t frame) {
    AVTimecode start{};
    if (facts.startTimecode.empty() ||
        av_timecode_init_from_string(&start, facts.frameRate, facts.startTimecode.c_str(), nullptr) < 0) {
        return "";
    }
    std::array<char, AV_TIMECODE_STR_SIZE> text{};
    return av_timecode_make_string(&start, text.data(), static_cast<int>(frame));
}

}  // namespace

SectionCopy::SectionCopy(Plan plan, Progress progress)
    : plan_(std::move(plan)), progress_(std::move(progress)), partial_(partialNameFor(plan_.target)) {}

std::string SectionCopy::containerFor(Name const& target) {
    std::string const extension = toUTF8(getExtension(target)).str();
    for (char const* const known : {"mov", "wav"}) {
        if (extension == known) {
            return known;
        }
    }
    return "";
}

SectionCopy::~SectionCopy() {
    muxer_ = nullptr;
    if (!hasName_) {
        OS()->getFileManager().deleteFile(partial_);
    }
}

OxResult SectionCopy::run(std::string& error) {
    if (frameCount() > 0) {
        source_ = SectionSource::open(plan_.source, error);
        if (!source_) {
            error = inQuotes(plan_.source) + " " + error + "; check that it is whole";
            return oxFailure;
        }
    }
    using eWay = SectionPictures::eWay;
    OxResult result = oxFailure;
    if (source_ && SectionPictures::canCopy(*source_)) {
        result = make(eWay::copied, error);
    }
    // Only what is wrong with the packets themselves can be mended by coding the pictures anew.
    if (result == oxFailure) {
        result = make(eWay::coded, error);
    }
    if (result == oxSuccess && !tellProgress(1, 1)) {
        return oxInterrupted;
    }
    return result == oxSuccess ? giveName(error) : result;
}

/// Makes the whole file under its first name.
OxResult SectionCopy::make(SectionPictures::eWay way, std::string& error) {
    pictures_ = nullptr;
    sounds_.clear();
    muxer_ = Muxer::open(partial_, containerFor(plan_.target), error);
    if (!muxer_) {
        error = "cannot write " + inQuotes(plan_.target) + ": " + error;
        return lastWriteError();
    }
    if (!addStreams(way, error)) {
        return failure(error);
    }
    OxResult const result = writeAll(error);
    if (result == oxSuccess && !isLikeSource(error)) {
        return isPartialThere(error) ? OxResult{oxFailure} : missingFile;
    }
    return result;
}

bool SectionCopy::isPartialThere(std::string& error) const {
    bool const isThere = OS()->getFileManager().fileExists(partial_);
    if (!isThere) {
        error = "cannot write " + inQuotes(plan_.target) + ": " + writeProblemText(missingFile).c_str();
    }
    return isThere;
}

bool SectionCopy::addStreams(SectionPictures::eWay way, std::string& error) {
    if (source_) {
        pictures_ = SectionPictures::make(*source_, plan_.firstFrame, way, error);
        if (!pictures_) {
            return false;
        }
        pictureStream_ = muxer_->addStream(*pictures_->parameters(), frameTime(), av_inv_q(frameTime()));
        describePictures();
    }
    for (SoundPart const& part : plan_.sound) {
        SectionSound section(plan_.soundFile, part);
        if (!section.canWrite()) {
            error =
                "the samples of stream " + std::to_string(part.stream) + " have no form that can be written";
            return false;
        }
        int const stream = muxer_->addStream(*section.parameters(), section.timeBase(), {0, 1});
        sounds_.push_back({std::move(section), stream});
    }
    bool const isWave = containerFor(plan_.target) == "wav";
    return muxer_->begin(isWave ? AvOptions{{"rf64", "auto"}} : AvOptions{}, error);
}

/// What isn't said by the packets: how the picture is turned, and the time code of its first frame.
void SectionCopy::describePictures() const {
    AVStream& stream = *muxer_->format().streams[pictureStream_];
    StreamFacts const& facts = source_->file().facts();
    std::array<std::int32_t, 9> const matrix = matrixOf(facts.orientation);
    if (facts.orientation != 1) {
        std::uint8_t* const data = av_stream_new_side_data(&stream, AV_PKT_DATA_DISPLAYMATRIX, sizeof matrix);
        if (data != nullptr) {
            std::memcpy(data, matrix.data(), sizeof matrix);
        }
    }
    std::string const timecode = timecodeAt(facts, plan_.firstFrame);
    if (!timecode.empty()) {
        av_dict_set(&stream.metadata, "timecode", timecode.c_str(), 0);
    }
}

AVRational SectionCopy::frameTime() const {
    return av_inv_q(source_->file().facts().frameRate);
}

OxResult SectionCopy::writeAll(std::string& error) {
    for (std::uint32_t frame = 0; frame < frameCount(); ++frame) {
        if (!tellProgress(frame, frameCount())) {
            return oxInterrupted;
        }
        if (!writeFrame(frame, error)) {
            return failure(error);
        }
    }
    if (pictures_ && !finishPictures(error)) {
        return failure(error);
    }
    OxResult const result = writeRestOfSound(error);
    if (result != oxSuccess) {
        return result;
    }
    return muxer_->finish(error) ? OxResult{oxSuccess} : failure(error);
}

/// The sound of a frame lies behind it.
bool SectionCopy::writeFrame(std::uint32_t frame, std::string& error) {
    Packets packets;
    if (!pictures_->takeNext(packets, error) || !writePackets(packets, pictureStream_, frameTime(), error)) {
        return false;
    }
    double const end = (frame + 1) * av_q2d(frameTime());
    for (Sound& sound : sounds_) {
        while (!sound.section.isOver() &&
               static_cast<double>(sound.section.taken()) * av_q2d(sound.section.timeBase()) < end) {
            if (!writeSound(sound, error)) {
                return false;
            }
        }
    }
    return true;
}

bool SectionCopy::finishPictures(std::string& error) {
    Packets packets;
    return pictures_->finish(packets, error) && writePackets(packets, pictureStream_, frameTime(), error);
}

OxResult SectionCopy::writeRestOfSound(std::string& error) {
    for (Sound& sound : sounds_) {
        while (!sound.section.isOver()) {
            bool const goesOn = pictures_ ? tellProgress(1, 1)
                                          : tellProgress(sound.section.taken(), sound.section.sampleCount());
            if (!goesOn) {
                return oxInterrupted;
            }
            if (!writeSound(sound, error)) {
                return failure(error);
            }
        }
    }
    return oxSuccess;
}

bool SectionCopy::writeSound(Sound& sound, std::string& error) {
    Packets packets;
    return sound.section.takeNext(packets, error) &&
           writePackets(packets, sound.stream, sound.section.timeBase(), error);
}

bool SectionCopy::writePackets(Packets& packets, int stream, AVRational timeBase, std::string& error) {
    for (AvPtr<AVPacket> const& packet : packets) {
        if (!muxer_->write(*packet, stream, timeBase, error)) {
            return false;
        }
    }
    return true;
}

bool SectionCopy::tellProgress(std::uint64_t done, std::uint64_t total) const {
    return progress_(static_cast<double>(done) / static_cast<double>(std::max<std::uint64_t>(total, 1)));
}

/// The first and the last frame of the copy.
bool SectionCopy::isLikeSource(std::string& error) const {
    if (!source_) {
        return true;
    }
    std::unique_ptr<SectionSource> const copy = SectionSource::open(partial_, error);
    if (!copy || copy->frameCount() != frameCount()) {
        error = "the copy of " + inQuotes(plan_.source) + " can't be read again";
        return false;
    }
    std::uint32_t const last = frameCount() - 1;
    for (std::uint32_t const frame : {0U, last}) {
        PicturePtr const wanted = source_->file().fetch(source_->storedFrame(plan_.firstFrame + frame));
        if (!areSame(copy->file().fetch(copy->storedFrame(frame)), wanted)) {
            error = "the copy of " + inQuotes(plan_.source) + " doesn't show the same pictures";
            return false;
        }
    }
    return true;
}

OxResult SectionCopy::giveName(std::string& error) {
    hasName_ = OS()->getFileManager().renameFile(partial_, plan_.target, true);
    if (hasName_) {
        return oxSuccess;
    }
    OxResult const result = lastWriteError();
    error = "cannot write " + inQuotes(plan_.target) + ": " + writeProblemText(result).c_str();
    return result;
}

/// What kind of failure the last one was, and whose.
OxResult SectionCopy::failure(std::string& error) const {
    bool const isWriting = muxer_->result() != oxSuccess;
    error = (isWriting ? "cannot write " + inQuotes(plan_.target)
                       : "cannot copy from " + inQuotes(plan_.source)) +
            ": " + error;
    return isWriting ? muxer_->result() : OxResult{oxFailure};
}

}  // namespace playfile_ffmpeg
