#include "plugins/ffmpeg/SoundOpener.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <memory>
#include <optional>

#include "plugins/ffmpeg/MovSampleTables.h"

extern "C" {
#include <libavutil/intreadwrite.h>
}

namespace playfile_ffmpeg {
namespace {

/// More than any recording has; what goes on after that is damage.
constexpr uint32_t mostPackets = uint32_t{1} << 24;
/// First packets of all streams together that are read to see what they are.
constexpr int mostFirstPackets = 4096;
/// Containers whose samples lie in one piece up to an end that the demuxer knows.
constexpr std::array<char const*, 5> onePieceFormats = {"wav", "w64", "aiff", "caf", "au"};

using Surveys = std::vector<std::unique_ptr<SoundSurvey>>;

Surveys surveysOf(SoundContainer const& container, ByteFile const& file) {
    Surveys surveys;
    for (AVStream const* stream : container.streams()) {
        surveys.push_back(std::make_unique<SoundSurvey>(*stream, file));
    }
    return surveys;
}

SoundSurvey* surveyOf(SoundContainer const& container, Surveys& surveys, AVPacket const& packet) {
    auto const& streams = container.streams();
    for (size_t index = 0; index < streams.size(); ++index) {
        if (streams[index]->index == packet.stream_index) {
            return surveys[index].get();
        }
    }
    return nullptr;
}

void scan(SoundContainer& container, Surveys& surveys) {
    AvPtr<AVPacket> const packet = makePacket();
    while (container.readPacket(*packet) >= 0) {
        SoundSurvey* const survey = surveyOf(container, surveys, *packet);
        if (survey != nullptr && survey->packetCount() < mostPackets) {
            survey->take(*packet);
        }
    }
}

/// True if a fragment of a movie lies in the file: then the container lists what it has come across.
bool hasFragments(ByteFile const& file) {
    constexpr uint32_t shortHeader = 8;
    int64_t at = 0;
    uint8_t header[16] = {};
    while (file.readAt(at, header, sizeof header) >= shortHeader) {
        uint64_t byteCount = AV_RB32(header);
        if (std::memcmp(header + 4, "moof", 4) == 0) {
            return true;
        }
        if (byteCount == 1) {
            byteCount = AV_RB64(header + 8);
        }
        if (byteCount < shortHeader || byteCount > static_cast<uint64_t>(file.byteCount() - at)) {
            return false;
        }
        at += static_cast<int64_t>(byteCount);
    }
    return false;
}

/// True for codecs of which the container lists the packets as they are, and fixed lengths tell the rest.
bool isListed(AVStream& stream) {
    switch (stream.codecpar->codec_id) {
        case AV_CODEC_ID_AAC:
        case AV_CODEC_ID_ALAC:
        case AV_CODEC_ID_AMR_NB:
        case AV_CODEC_ID_AMR_WB:
            break;
        default:
            if (!PcmForm::of(*stream.codecpar)) {
                return false;
            }
    }
    int const count = avformat_index_get_entries_count(&stream);
    return count > 0 && static_cast<uint32_t>(count) <= mostPackets;
}

void takeLists(SoundContainer& container, Surveys& surveys) {
    AvPtr<AVPacket> const packet = makePacket();
    auto const hasLooked = [](auto const& survey) { return survey->hasLooked(); };
    for (int i = 0; i < mostFirstPackets && !std::all_of(surveys.begin(), surveys.end(), hasLooked); ++i) {
        if (container.readPacket(*packet) < 0) {
            break;
        }
        SoundSurvey* const survey = surveyOf(container, surveys, *packet);
        if (survey != nullptr && !survey->hasLooked()) {
            survey->look(*packet);
        }
    }
    for (size_t index = 0; index < surveys.size(); ++index) {
        AVStream* const stream = container.streams()[index];
        int const count = avformat_index_get_entries_count(stream);
        for (int number = 0; number < count; ++number) {
            surveys[index]->takeListed(*avformat_index_get_entry(stream, number));
        }
    }
}

bool areAllListed(SoundContainer const& container, ByteFile const& file) {
    auto const& streams = container.streams();
    return container.isFormat("mov") && !hasFragments(file) &&
           std::all_of(streams.begin(), streams.end(), [](AVStream* stream) { return isListed(*stream); });
}

/// Where the demuxer's last packet ends, if it follows the first one in one piece; else nothing.
std::optional<int64_t> endOfPiece(SoundContainer& container, AVPacket& packet, int64_t begin,
                                  int64_t bytesOfAll) {
    std::optional<int64_t> end;
    while (container.readPacket(packet) >= 0) {
        bool const isInStep = packet.pos >= begin && (packet.pos - begin) % bytesOfAll == 0;
        if (!isInStep || (end && packet.pos != *end)) {
            return std::nullopt;
        }
        end = packet.pos + packet.size;
    }
    return end;
}

/// Samples that fill the file up to its end, or to one that only the demuxer knows: the first packet tells
/// where they begin, those that come after a jump behind all stated ones where they end.
std::optional<PcmExtent> onePiece(SoundContainer& container, ByteFile const& file, int64_t bytesOfAll) {
    AVStream const& stream = *container.streams().front();
    AvPtr<AVPacket> const packet = makePacket();
    if (container.readPacket(*packet) < 0 || packet->pos < 0 || !trimMarkOf(*packet).isEmpty()) {
        return std::nullopt;
    }
    int64_t const begin = packet->pos;
    int64_t count = (file.byteCount() - begin) / bytesOfAll;
    if (stream.duration > 0) {
        AVRational const perSample = {1, stream.codecpar->sample_rate};
        count = std::min(count, av_rescale_q(stream.duration, stream.time_base, perSample));
    }
    int64_t const last =
        av_rescale_q(std::max<int64_t>(count - 1, 0), {1, stream.codecpar->sample_rate}, stream.time_base);
    if (!container.goToTime(stream, last)) {
        return std::nullopt;
    }
    std::optional<int64_t> const end = endOfPiece(container, *packet, begin, bytesOfAll);
    return end ? std::optional(PcmExtent{begin, 0, (*end - begin) / bytesOfAll}) : std::nullopt;
}

bool mayBeOnePiece(SoundContainer const& container) {
    AVCodecParameters const& parameters = *container.streams().front()->codecpar;
    return container.streams().size() == 1 && parameters.ch_layout.nb_channels > 0 &&
           parameters.sample_rate > 0 && PcmForm::of(parameters) &&
           std::any_of(onePieceFormats.begin(), onePieceFormats.end(),
                       [&](char const* name) { return container.isFormat(name); });
}

std::optional<SoundPlan> planOnePiece(SoundContainer& container, ByteFile const& file) {
    AVCodecParameters const& parameters = *container.streams().front()->codecpar;
    std::optional<PcmForm> const pcm = PcmForm::of(parameters);
    auto const extent =
        onePiece(container, file, int64_t{pcm->storedByteCount()} * parameters.ch_layout.nb_channels);
    if (!extent) {
        return std::nullopt;
    }
    SoundPlan plan;
    plan.form = FirstLook(parameters).form();
    plan.form.form = pcm->delivered();
    plan.parameters = copyOf(parameters);
    plan.pcm = pcm;
    plan.extents = {*extent};
    plan.kept.append(0, extent->sampleCount);
    return plan;
}

/// What the file has where a movie says that another one's samples lie is something else.
void refuseIfElsewhere(SoundContainer const& container, ByteFile const& file, AVStream const& stream,
                       SoundPlan& plan) {
    plan.liesElsewhere =
        container.isFormat("mov") && MovSampleTables::lieElsewhere(file, static_cast<uint32_t>(stream.id));
    if (plan.liesElsewhere) {
        plan.form.form = Aud::sampleUnknown;
        plan.pcm.reset();
    }
}

}  // namespace

std::vector<SoundPlan> planSound(SoundContainer& container, ByteFile const& file, std::string const& path) {
    std::vector<SoundPlan> plans;
    if (mayBeOnePiece(container)) {
        if (std::optional<SoundPlan> plan = planOnePiece(container, file)) {
            plans.push_back(*std::move(plan));
            return plans;
        }
        std::string error;
        if (!container.open(path, error)) {
            return plans;
        }
    }
    Surveys surveys = surveysOf(container, file);
    if (areAllListed(container, file)) {
        takeLists(container, surveys);
    } else {
        scan(container, surveys);
    }
    for (size_t index = 0; index < surveys.size(); ++index) {
        plans.push_back(surveys[index]->finish());
        refuseIfElsewhere(container, file, *container.streams()[index], plans.back());
    }
    return plans;
}

}  // namespace playfile_ffmpeg
