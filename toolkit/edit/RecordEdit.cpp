#include "toolkit/edit/RecordEdit.h"

#include <numeric>
#include <string>

namespace {

constexpr std::string_view channelsAttribute = "chans";

/// A channel in one piece.
class WholeCel final : public Cel {
public:
    explicit WholeCel(double velocity) : velocity_(velocity) {}
    [[nodiscard]] double get_strip_velocity(ce_handle const&) const override { return velocity_; }

private:
    double const velocity_;
};

}  // namespace

configb const* RecordEdit::getDecodeSettings() const {
    return record_.decodeSettings ? &*record_.decodeSettings : nullptr;
}

void RecordEdit::getChans(Vector<int>& channels, std::uint32_t kind, std::uint32_t) const {
    bool const areVideo = kind == Edit::videoChannels;
    channels.resize(areVideo ? record_.videoChannels : record_.audioChannels);
    std::iota(channels.begin(), channels.end(), areVideo ? 0 : 1);
}

LightweightString<char> RecordEdit::getAttrib(LightweightString<char> const& name) const {
    auto const found = record_.attributes.find(name);
    if (found != record_.attributes.end()) {
        return found->second;
    }
    return name.view() == channelsAttribute ? namesOfChannels() : LightweightString<char>();
}

LightweightString<char> RecordEdit::namesOfChannels() const {
    std::string names = record_.videoChannels != 0 ? "V" : "";
    for (std::uint32_t channel = 1; channel <= record_.audioChannels; ++channel) {
        names += (names.empty() ? "A" : ",A") + std::to_string(channel);
    }
    return LightweightString<char>(names);
}

bool RecordEdit::wantsAudioMetadata() const {
    std::optional<ClipRecord> const now = keeper_->find(cookie_);
    return now && now->audioChannels != 0 && now->audioStreams.empty();
}

void RecordEdit::setAudioMetadata(std::vector<Aud::Metadata> const& streams) {
    keeper_->change(cookie_, [&](std::optional<ClipRecord>& kept) {
        if (kept) {
            kept->audioStreams = streams;
        }
        return kept.has_value();
    });
}

IdStamp RecordEdit::getId(std::uint32_t number) const {
    std::uint64_t const channels = std::uint64_t{record_.videoChannels} + record_.audioChannels;
    return number < channels ? IdStamp(std::uint64_t{number} + 1) : IdStamp();
}

Ox::Ptr<Cel> RecordEdit::getCel(IdStamp const& channel) const {
    bool const isVideo = channel.valid() && channel.value() <= record_.videoChannels;
    bool const isAudio = channel.value() > record_.videoChannels &&
                         channel.value() <= std::uint64_t{record_.videoChannels} + record_.audioChannels;
    if (!isVideo && !isAudio) {
        return {};
    }
    return Ox::makePtr<WholeCel>(isVideo && record_.isImage ? 0.0 : 1.0);
}

CookieVec RecordEdit::getReferences(std::uint32_t kind) const {
    auto const found = record_.references.find(kind);
    CookieVec cookies;
    if (found == record_.references.end()) {
        if (kind != Edit::clipReferences) {
            return ownChannels();
        }
        if (!isMadeOfClips()) {
            cookies.add(cookie_);
        }
        return cookies;
    }
    for (Cookie const& cookie : found->second) {
        cookies.add(cookie);
    }
    return cookies;
}

bool RecordEdit::isMadeOfClips() const {
    return (record_.logType & (logSequence | logGroup | logSync | logEffect)) != 0;
}

CookieVec RecordEdit::ownChannels() const {
    CookieVec cookies;
    for (std::uint32_t channel = 0; channel < record_.videoChannels; ++channel) {
        cookies.add(convertCookie(cookie_, 'V', static_cast<std::uint8_t>(channel)));
    }
    for (std::uint32_t channel = 1; channel <= record_.audioChannels; ++channel) {
        cookies.add(convertCookie(cookie_, 'S', static_cast<std::uint8_t>(channel)));
    }
    return cookies;
}
