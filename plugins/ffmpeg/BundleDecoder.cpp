#include "plugins/ffmpeg/BundleDecoder.h"

#include <algorithm>
#include <iterator>
#include <limits>
#include <utility>

namespace playfile_ffmpeg {
namespace {

/// More than a packet gives in the long run, so that they don't pile up.
constexpr size_t mostReusedAtOnce = 2;

}  // namespace

BundleDecoder::BundleDecoder(std::unique_ptr<SoundDecoder> decoder, SoundForm form)
    : decoder_(std::move(decoder)),
      form_(std::move(form)),
      isDelayed_(decoder_->context().codec_id == AV_CODEC_ID_OPUS) {}

void BundleDecoder::reset() {
    decoder_->restart();
    forgetAll();
}

void BundleDecoder::forgetAll() {
    forgetBefore(std::numeric_limits<int64_t>::max());
    isAtStart_ = true;
    isDrained_ = false;
}

void BundleDecoder::take(Bundle const& bundle) {
    if (bundle.startsAnew) {
        startAnew(bundle);
    }
    forgetBefore(bundle.holdFrom);
    for (Bundle::Packet const& packet : bundle.packets) {
        feed(packet);
        forgetBefore(bundle.holdFrom);
    }
    if (bundle.endsStream && !isDrained_) {
        drain();
    }
    lookAtAll();
}

void BundleDecoder::lookAtAll() {
    std::lock_guard const scope(lock_);
    inReach_.clear();
    for (DecodedSound const& decoded : decoded_) {
        inReach_.push_back(&decoded);
    }
}

void BundleDecoder::startAnew(Bundle const& bundle) {
    bool const isFirst = !bundle.packets.empty() && bundle.packets.front().isFirstOfStream;
    if (isFirst) {
        decoder_->restartAtFirstPacket();
    } else {
        decoder_->restart();
    }
    forgetAll();
    next_ = bundle.packets.empty() ? 0 : bundle.packets.front().firstSample;
}

void BundleDecoder::feed(Bundle::Packet const& packet) {
    reuseForgotten();
    if (!packet.bytes.empty()) {
        packetsFed_.fetch_add(1, std::memory_order_relaxed);
        decoder_->feed(packet.bytes);
        collect();
    }
    place(packet);
    keepFresh();
}

void BundleDecoder::drain() {
    isDrained_ = true;
    if (!decoder_->isDelayed()) {
        return;
    }
    decoder_->feed(nullptr);
    collect();
    number(isDelayed_ || decoded_.empty() ? next_ : decoded_.back().endSample());
    keepFresh();
}

/// What isn't in the form that the stream was opened with counts as damage.
void BundleDecoder::collect() {
    while (AVFrame* const frame = decoder_->receive()) {
        if (isUsable(*frame)) {
            fresh_.emplace_back(*frame);
        }
    }
}

void BundleDecoder::number(int64_t at) {
    for (DecodedSound& decoded : fresh_) {
        decoded.placeAt(at);
        at = decoded.endSample();
    }
}

void BundleDecoder::keepFresh() {
    std::lock_guard const scope(lock_);
    std::move(fresh_.begin(), fresh_.end(), std::back_inserter(decoded_));
    fresh_.clear();
}

bool BundleDecoder::isUsable(AVFrame const& frame) const {
    auto const format = static_cast<AVSampleFormat>(frame.format);
    return frame.nb_samples > 0 && frame.ch_layout.nb_channels > 0 &&
           formOf(format, decoder_->context().codec_id, form_.bitsPerSample) == form_.form;
}

/// Numbers the frames that a packet gave. A decoder that holds back samples gives them in one row; with all
/// others a packet's samples are its own. If the first packet after a start gives too few, it is its
/// beginning that was lost.
void BundleDecoder::place(Bundle::Packet const& packet) {
    int64_t given = 0;
    for (DecodedSound const& decoded : fresh_) {
        given += decoded.sampleCount();
    }
    int64_t at = packet.firstSample;
    if (isDelayed_) {
        at = next_;
        next_ = given > 0 ? next_ + given : packet.firstSample + packet.sampleCount;
    } else if (isAtStart_ && given < packet.sampleCount) {
        at += packet.sampleCount - given;
    }
    isAtStart_ = isAtStart_ && given == 0;
    number(at);
}

/// The decoder may be at work on another thread, so it gets the memory back when it is fed next.
void BundleDecoder::forgetBefore(int64_t sample) {
    std::lock_guard const scope(lock_);
    inReach_.clear();
    while (!decoded_.empty() && decoded_.front().endSample() <= sample) {
        if (AvPtr<AVBufferRef> memory = decoded_.front().takeMemory()) {
            forgotten_.push_back(std::move(memory));
        }
        decoded_.pop_front();
    }
}

/// A few at a time: malloc is slow to take back many blocks of a size at once.
void BundleDecoder::reuseForgotten() {
    std::lock_guard const scope(lock_);
    for (size_t count = 0; count < mostReusedAtOnce && !forgotten_.empty(); ++count) {
        decoder_->giveBack(std::move(forgotten_.back()));
        forgotten_.pop_back();
    }
}

void BundleDecoder::write(Bundle const& bundle, int channel, uint8_t* to) const {
    for (SampleRun const& run : bundle.runs) {
        to = writeRun(run, channel, to);
    }
}

/// Where two frames overlap the later one counts, and what lies between two is silence.
uint8_t* BundleDecoder::writeRun(SampleRun const& run, int channel, uint8_t* to) const {
    size_t const bytes = form_.bytesPerSample();
    int64_t at = run.decoded;
    int64_t const end = run.decoded + run.count;
    auto const fill = [&](int64_t until, DecodedSound const* decoded) {
        if (until <= at) {
            return;
        }
        auto const count = static_cast<uint32_t>(until - at);
        if (decoded != nullptr && channel < decoded->channels()) {
            decoded->copyChannel(channel, at, count, form_.form, to);
        } else {
            fillWithSilence(form_.form, count, to);
        }
        to += count * bytes;
        at = until;
    };
    for (size_t i = 0; i < inReach_.size() && at < end; ++i) {
        DecodedSound const& decoded = *inReach_[i];
        int64_t const limit = i + 1 < inReach_.size() ? inReach_[i + 1]->firstSample() : end;
        fill(std::min(end, decoded.firstSample()), nullptr);
        fill(std::min({end, decoded.endSample(), std::max(limit, at)}), &decoded);
    }
    fill(end, nullptr);
    return to;
}

}  // namespace playfile_ffmpeg
