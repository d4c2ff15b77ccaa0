#include "toolkit/edit/ClipStore.h"

#include "toolkit/edit/RecordEdit.h"

namespace {

constexpr std::uint32_t ownClips = 1;
constexpr std::uint32_t anyKind = 0x8000;

}  // namespace

Ox::Ptr<Edit> ClipStore::open(Cookie const& cookie) {
    std::optional<ClipRecord> record = keeper_->find(cookie);
    if (!record) {
        return {};
    }
    ++openCount_;
    return Ox::makePtr<RecordEdit>(cookie, std::move(*record), keeper_);
}

void ClipStore::close(Edit&) {
    --openCount_;
}

std::vector<Cookie> ClipStore::search(std::uint32_t source, std::uint32_t kinds) {
    std::vector<Cookie> found;
    if (source != ownClips) {
        return found;
    }
    for (auto const& [cookie, logType] : keeper_->getAll()) {
        if ((kinds & (logType | anyKind)) != 0) {
            found.push_back(cookie);
        }
    }
    return found;
}

bool ClipStore::change(Cookie const& cookie, std::function<void(ClipRecord&)> const& steps) {
    return keeper_->change(cookie, [&](std::optional<ClipRecord>& kept) {
        steps(kept ? *kept : kept.emplace());
        return true;
    });
}

bool ClipStore::set(Cookie const& cookie, ClipRecord const& record) {
    return change(cookie, [&](ClipRecord& kept) { kept = record; });
}

bool ClipStore::remove(Cookie const& cookie) {
    return keeper_->change(cookie, [](std::optional<ClipRecord>& kept) {
        bool const wasThere = kept.has_value();
        kept.reset();
        return wasThere;
    });
}

bool ClipStore::add(Cookie const& cookie) {
    return change(cookie, [](ClipRecord& kept) { kept.decodeSettings.reset(); });
}

bool ClipStore::add(Cookie const& cookie, configb const& decodeSettings) {
    return change(cookie, [&](ClipRecord& kept) { kept.decodeSettings = decodeSettings; });
}

bool ClipStore::setName(Cookie const& cookie, LightweightString<wchar_t> const& name) {
    return change(cookie, [&](ClipRecord& kept) { kept.name = name; });
}

bool ClipStore::setLogType(Cookie const& cookie, std::uint32_t logType) {
    return change(cookie, [&](ClipRecord& kept) { kept.logType = logType; });
}

bool ClipStore::setIsImage(Cookie const& cookie, bool isImage) {
    return change(cookie, [&](ClipRecord& kept) { kept.isImage = isImage; });
}

bool ClipStore::setChannels(Cookie const& cookie, std::uint32_t videoChannels, std::uint32_t audioChannels) {
    return change(cookie, [&](ClipRecord& kept) {
        kept.videoChannels = videoChannels;
        kept.audioChannels = audioChannels;
    });
}

bool ClipStore::setAttrib(Cookie const& cookie, LightweightString<char> const& name,
                          LightweightString<char> const& text) {
    return change(cookie, [&](ClipRecord& kept) {
        if (text.empty()) {
            kept.attributes.erase(name);
        } else {
            kept.attributes[name] = text;
        }
    });
}

bool ClipStore::setReferences(Cookie const& cookie, std::uint32_t kind,
                              std::vector<Cookie> const& references) {
    return change(cookie, [&](ClipRecord& kept) { kept.references[kind] = references; });
}

bool ClipStore::setAudioInputSampleRate(Cookie const& cookie, Aud::SampleRate rate) {
    return change(cookie, [&](ClipRecord& kept) { kept.audioInputRate = rate; });
}
