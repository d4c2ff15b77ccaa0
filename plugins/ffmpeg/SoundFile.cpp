#include "plugins/ffmpeg/SoundFile.h"

#include <algorithm>
#include <utility>

#include "plugins/ffmpeg/SoundOpener.h"

namespace playfile_ffmpeg {
namespace {

SoundTrack trackOf(SoundPlan plan, size_t stream, std::string const& path,
                   std::shared_ptr<ByteFile const> const& file) {
    SoundTrack track;
    track.form = std::move(plan.form);
    track.parameters = std::move(plan.parameters);
    if (plan.pcm) {
        track.pcm = std::make_unique<PcmTrack>(file, *plan.pcm, track.form.channels, std::move(plan.extents),
                                               std::move(plan.kept));
        return track;
    }
    if (!track.form.isReadable()) {
        return track;
    }
    track.coded = std::make_unique<CodedTrack>(
        SoundIndex(std::move(plan.packets), std::move(plan.isStart), std::move(plan.kept)), plan.leadIn,
        track.parameters->codec_id);
    if (plan.traces.empty()) {
        track.coded->readFrom(file);
    } else {
        track.coded->readFrom(path, stream, std::move(plan.traces));
    }
    return track;
}

}  // namespace

int64_t SoundTrack::sampleCount() const {
    if (pcm) {
        return pcm->sampleCount();
    }
    return coded ? coded->sampleCount() : 0;
}

std::unique_ptr<SoundFile> SoundFile::open(std::string const& path, std::string& error) {
    auto const file = std::make_shared<ByteFile>();
    SoundContainer container;
    if (!file->open(path, error) || !container.open(path, error)) {
        return nullptr;
    }
    std::unique_ptr<SoundFile> opened(new SoundFile());
    opened->facts_ = factsOf(container.format(), *container.streams().front());
    opened->hasPicture_ = container.hasPicture();
    std::vector<SoundPlan> plans = planSound(container, *file, path);
    bool const isElsewhere =
        std::any_of(plans.begin(), plans.end(), [](SoundPlan const& plan) { return plan.liesElsewhere; });
    for (size_t stream = 0; stream < plans.size(); ++stream) {
        opened->tracks_.push_back(trackOf(std::move(plans[stream]), stream, path, file));
    }
    bool const isAnyReadable = std::any_of(opened->tracks_.begin(), opened->tracks_.end(),
                                           [](SoundTrack const& track) { return track.form.isReadable(); });
    if (!isAnyReadable) {
        error =
            isElsewhere ? "names another file that holds its sound" : "holds no sound that can be decoded";
        return nullptr;
    }
    return opened;
}

int64_t SoundFile::sampleCount() const {
    int64_t longest = 0;
    for (SoundTrack const& track : tracks_) {
        longest = std::max(longest, track.sampleCount());
    }
    return longest;
}

}  // namespace playfile_ffmpeg
