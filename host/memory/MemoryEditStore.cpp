#include "host/memory/MemoryEditStore.h"

#include <atomic>
#include <optional>

#include "ole/os/Immortal.h"

namespace {

constinit std::atomic<iEditStore*> installedEdits{nullptr};

}  // namespace

/// A clip as it stood when it was added.
class MemoryEditStore::StoredEdit : public Edit {
public:
    explicit StoredEdit(std::optional<configb> settings) : settings_(std::move(settings)) {}
    [[nodiscard]] configb const* getDecodeSettings() const override {
        return settings_ ? &*settings_ : nullptr;
    }

private:
    std::optional<configb> const settings_;
};

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

void MemoryEditStore::add(Cookie const& cookie) {
    std::lock_guard const scope(lock_);
    edits_[cookie] = Ox::makePtr<StoredEdit>(std::nullopt);
}

void MemoryEditStore::add(Cookie const& cookie, configb const& decodeSettings) {
    std::lock_guard const scope(lock_);
    edits_[cookie] = Ox::makePtr<StoredEdit>(decodeSettings);
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
    store_ = iEditStore::instance();
    edit_ = store_->open(cookie);
}

void EditPtr::i_close() {
    if (edit_) {
        store_->close(*edit_);
        edit_ = nullptr;
    }
}
