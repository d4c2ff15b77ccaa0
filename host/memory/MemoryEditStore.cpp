#include "host/memory/MemoryEditStore.h"

#include <atomic>
#include <memory>
#include <numeric>
#include <optional>

#include "ole/os/Immortal.h"

namespace {

constinit std::atomic<iEditStore*> installedEdits{nullptr};

}  // namespace

/// A clip as it stood when it was added or last changed; a change makes a new one.
class MemoryEditStore::StoredEdit : public Edit {
public:
    explicit StoredEdit(Cookie const& cookie) : cookie_(cookie) {}

    [[nodiscard]] configb const* getDecodeSettings() const override {
        return settings ? &*settings : nullptr;
    }
    void getChans(Vector<int>& channels, std::uint32_t kind, std::uint32_t) const override {
        channels.resize(kind == Edit::videoChannels ? videoCount : audioCount);
        std::iota(channels.begin(), channels.end(), kind == Edit::videoChannels ? 0 : 1);
    }
    [[nodiscard]] CookieVec getReferences(std::uint32_t) const override {
        CookieVec cookies;
        for (std::uint32_t channel = 0; channel < videoCount; ++channel) {
            cookies.add(convertCookie(cookie_, 'V', static_cast<std::uint8_t>(channel)));
        }
        for (std::uint32_t channel = 1; channel <= audioCount; ++channel) {
            cookies.add(convertCookie(cookie_, 'S', static_cast<std::uint8_t>(channel)));
        }
        return cookies;
    }

    [[nodiscard]] Cookie getCookie() const override { return cookie_; }
    [[nodiscard]] bool wantsAudioMetadata() const override {
        std::lock_guard const scope(sound_->lock);
        return audioCount != 0 && sound_->streams.empty();
    }
    void setAudioMetadata(std::vector<Aud::Metadata> const& streams) override {
        std::lock_guard const scope(sound_->lock);
        sound_->streams = streams;
    }
    [[nodiscard]] Aud::SampleRate getAudioInputSampleRate() const override { return audioRate; }

    std::optional<configb> settings;
    std::uint32_t videoCount = 0;
    std::uint32_t audioCount = 0;
    Aud::SampleRate audioRate;

private:
    /// What its sound is: every copy of the clip knows it as soon as one is told.
    struct Sound {
        std::mutex lock;
        std::vector<Aud::Metadata> streams;
    };

    Cookie const cookie_;
    std::shared_ptr<Sound> const sound_ = std::make_shared<Sound>();
};

MemoryEditStore::MemoryEditStore() = default;
MemoryEditStore::~MemoryEditStore() = default;

Ox::Ptr<Edit> MemoryEditStore::open(Cookie const& cookie) {
    std::lock_guard const scope(lock_);
    auto const found = edits_.find(cookie);
    if (found == edits_.end()) {
        return {};
    }
    ++openCount_;
    return found->second;
}

void MemoryEditStore::close(Edit&) {
    std::lock_guard const scope(lock_);
    --openCount_;
}

/// A copy of what is there, for whoever has the clip open keeps it as it was. Requires the lock.
MemoryEditStore::StoredEdit& MemoryEditStore::change(Cookie const& cookie) {
    Ox::Ptr<StoredEdit>& edit = edits_[cookie];
    edit = edit ? Ox::makePtr<StoredEdit>(*edit) : Ox::makePtr<StoredEdit>(cookie);
    return *edit;
}

void MemoryEditStore::add(Cookie const& cookie) {
    std::lock_guard const scope(lock_);
    change(cookie).settings.reset();
}

void MemoryEditStore::add(Cookie const& cookie, configb const& decodeSettings) {
    std::lock_guard const scope(lock_);
    change(cookie).settings = decodeSettings;
}

void MemoryEditStore::setChannels(Cookie const& cookie, std::uint32_t videoChannels,
                                  std::uint32_t audioChannels) {
    std::lock_guard const scope(lock_);
    StoredEdit& edit = change(cookie);
    edit.videoCount = videoChannels;
    edit.audioCount = audioChannels;
}

void MemoryEditStore::setAudioInputSampleRate(Cookie const& cookie, Aud::SampleRate rate) {
    std::lock_guard const scope(lock_);
    change(cookie).audioRate = rate;
}

void MemoryEditStore::remove(Cookie const& cookie) {
    std::lock_guard const scope(lock_);
    edits_.erase(cookie);
}

int MemoryEditStore::getOpenCount() {
    std::lock_guard const scope(lock_);
    return openCount_;
}

MemoryEditStore& MemoryEditStore::instance() {
    return immortal<MemoryEditStore>();
}

iEditStore* iEditStore::instance() noexcept {
    iEditStore* const installed = installedEdits.load(std::memory_order_acquire);
    return installed ? installed : &MemoryEditStore::instance();
}

iEditStore* iEditStore::install(iEditStore* store) noexcept {
    return installedEdits.exchange(store);
}

void EditPtr::i_open(Cookie const& cookie, int) {
    i_close();
    iEditStore* const store = iEditStore::instance();
    if (Ox::Ptr<Edit> const edit = store->open(cookie)) {
        open_ = Ox::makePtr<Opened>(*store, edit);
    }
}
