#include "plugins/ffmpeg/BundleDecoder.h"

#include <algorithm>
#include <utility>

namespace playfile_ffmpeg {

BundleDecoder::BundleDecoder(std::unique_ptr<SoundDecoder> decoder, SoundForm form)
    : decoder_(std::move(decoder)),
      form_(std::move(form)),
      isDelayed_(decoder_->context().codec_id == AV_CODEC_ID_OPUS) {}

void BundleDecoder::reset() {
    decoder_->restart();
    decoded_.clear();
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
}

void BundleDecoder::startAnew(Bundle const& bundle) {
    bool const isFirst = !bundle.packets.empty() && bundle.packets.front().isFirstOfStream;
    if (isFirst) {
        decoder_->restartAtFirstPacket();
    } else {
        decoder_->restart();
    }
    decoded_.clear();
    isAtStart_ = true;
    isDrained_ = false;
    next_ = bundle.packets.empty() ? 0 : bundle.packets.front().firstSample;
}

void BundleDecoder::feed(Bundle::Packet const& packet) {
    size_t const before = decoded_.size();
    if (!packet.bytes.empty()) {
        decoder_->feed(packet.bytes);
        collect();
    }
    place(packet, before);
}

void BundleDecoder::drain() {
    isDrained_ = true;
    if (!decoder_->isDelayed()) {
        return;
    }
    int64_t at = isDelayed_ || decoded_.empty() ? next_ : decoded_.back().endSample();
    size_t const before = decoded_.size();
    decoder_->feed(nullptr);
    collect();
    for (size_t i = before; i < decoded_.size(); ++i) {
        decoded_[i].firstSample = at;
        at = decoded_[i].endSample();
    }
}

/// What isn't in the form that the stream was opened with counts as damage.
void BundleDecoder::collect() {
    while (AvPtr<AVFrame> frame = decoder_->receive()) {
        if (isUsable(*frame)) {
            decoded_.push_back({std::move(frame), 0});
        }
    }
}

bool BundleDecoder::isUsable(AVFrame const& frame) const {
    auto const format = static_cast<AVSampleFormat>(frame.format);
    return frame.nb_samples > 0 && frame.ch_layout.nb_channels > 0 &&
           formOf(format, decoder_->context().codec_id, form_.bitsPerSample) == form_.form;
}

/// Numbers the frames that a packet gave. A decoder that holds back samples gives them in one row; with all
/// others a packet's samples are its own. If the first packet after a start gives too few, it is its
/// beginning that was lost.
void BundleDecoder::place(Bundle::Packet const& packet, size_t before) {
    int64_t given = 0;
    for (size_t i = before; i < decoded_.size(); ++i) {
        given += decoded_[i].frame->nb_samples;
    }
    int64_t at = packet.firstSample;
    if (isDelayed_) {
        at = next_;
        next_ = given > 0 ? next_ + given : packet.firstSample + packet.sampleCount;
    } else if (isAtStart_ && given < packet.sampleCount) {
        at += packet.sampleCount - given;
    }
    isAtStart_ = isAtStart_ && given == 0;
    for (size_t i = before; i < decoded_.size(); ++i) {
        decoded_[i].firstSample = at;
        at = decoded_[i].endSample();
    }
}

void BundleDecoder::forgetBefore(int64_t sample) {
    while (!decoded_.empty() && decoded_.front().endSample() <= sample) {
        decoder_->giveBack(std::move(decoded_.front().frame));
        decoded_.pop_front();
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
    auto const fill = [&](int64_t until, AVFrame const* frame, int64_t from) {
        if (until <= at) {
            return;
        }
        auto const count = static_cast<uint32_t>(until - at);
        if (frame != nullptr && channel < frame->ch_layout.nb_channels) {
            copyChannel(*frame, channel, from, count, form_.form, to);
        } else {
            fillWithSilence(form_.form, count, to);
        }
        to += count * bytes;
        at = until;
    };
    for (size_t i = 0; i < decoded_.size() && at < end; ++i) {
        Decoded const& decoded = decoded_[i];
        int64_t const limit = i + 1 < decoded_.size() ? decoded_[i + 1].firstSample : end;
        fill(std::min(end, decoded.firstSample), nullptr, 0);
        fill(std::min({end, decoded.endSample(), std::max(limit, at)}), decoded.frame.get(),
             at - decoded.firstSample);
    }
    fill(end, nullptr, 0);
    return to;
}

}  // namespace playfile_ffmpeg
