#include "plugins/ffmpeg/PcmTrack.h"

#include <algorithm>
#include <utility>

namespace playfile_ffmpeg {

PcmTrack::PcmTrack(std::shared_ptr<ByteFile const> file, PcmForm form, int channels,
                   std::vector<PcmExtent> extents, KeptSamples kept)
    : file_(std::move(file)),
      form_(form),
      channels_(static_cast<size_t>(channels)),
      extents_(std::move(extents)),
      kept_(std::move(kept)) {}

void PcmTrack::read(int64_t first, uint32_t count, uint8_t* to) {
    size_t const bytesOfAll = Aud::bytesPerSampleOf(form_.delivered()) * channels_;
    kept_.find(first, first + count, runs_);
    for (SampleRun const& run : runs_) {
        readRun(run.decoded, run.count, to);
        to += static_cast<size_t>(run.count) * bytesOfAll;
    }
}

void PcmTrack::readRun(int64_t decoded, int64_t count, uint8_t* to) {
    size_t const bytesOfAll = Aud::bytesPerSampleOf(form_.delivered()) * channels_;
    auto extent =
        std::upper_bound(extents_.begin(), extents_.end(), decoded,
                         [](int64_t sample, PcmExtent const& each) { return sample < each.firstSample; });
    for (extent -= extent == extents_.begin() ? 0 : 1; count > 0 && extent != extents_.end(); ++extent) {
        int64_t const offset = decoded - extent->firstSample;
        int64_t const part = std::min(count, extent->sampleCount - offset);
        int64_t const storedBytes = static_cast<int64_t>(form_.storedByteCount() * channels_);
        readExtent(extent->position + offset * storedBytes, part, to);
        to += static_cast<size_t>(part) * bytesOfAll;
        decoded += part;
        count -= part;
    }
}

void PcmTrack::readExtent(int64_t position, int64_t count, uint8_t* to) {
    size_t const values = static_cast<size_t>(count) * channels_;
    size_t const wanted = values * form_.storedByteCount();
    bool const keepsSize = form_.storedByteCount() == Aud::bytesPerSampleOf(form_.delivered());
    uint8_t* stored = to;
    if (!keepsSize) {
        stored_.resize(std::max(stored_.size(), wanted));
        stored = stored_.data();
    }
    size_t const got = file_->readAt(position, stored, wanted) / form_.storedByteCount();
    form_.convert(stored, got, to);
    fillWithSilence(form_.delivered(), static_cast<uint32_t>(values - got),
                    to + got * Aud::bytesPerSampleOf(form_.delivered()));
}

void appendExtent(std::vector<PcmExtent>& extents, int64_t position, int64_t sampleCount,
                  uint32_t bytesOfAllChannels) {
    if (sampleCount <= 0) {
        return;
    }
    bool const follows =
        !extents.empty() &&
        extents.back().position + extents.back().sampleCount * int64_t{bytesOfAllChannels} == position;
    if (follows) {
        extents.back().sampleCount += sampleCount;
    } else {
        int64_t const first = extents.empty() ? 0 : extents.back().endSample();
        extents.push_back({position, first, sampleCount});
    }
}

}  // namespace playfile_ffmpeg
