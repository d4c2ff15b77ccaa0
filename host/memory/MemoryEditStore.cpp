#include "host/memory/MemoryEditStore.h"

#include <atomic>
#include <map>
#include <mutex>

#include "ole/os/Immortal.h"

namespace {

constinit std::atomic<iEditStore*> installedEdits{nullptr};

/// The records.
///
/// Threads  Any.
class MemoryClips final : public iClipKeeper {
public:
    [[nodiscard]] std::optional<ClipRecord> find(Cookie const& clip) override {
        std::lock_guard const scope(lock_);
        auto const found = records_.find(clip);
        return found == records_.end() ? std::nullopt : std::optional(found->second);
    }

    [[nodiscard]] std::vector<std::pair<Cookie, std::uint32_t>> getAll() override {
        std::lock_guard const scope(lock_);
        std::vector<std::pair<Cookie, std::uint32_t>> all;
        for (auto const& [clip, record] : records_) {
            all.emplace_back(clip, record.logType);
        }
        return all;
    }

    bool change(Cookie const& clip, Change const& change) override {
        std::lock_guard const scope(lock_);
        auto const found = records_.find(clip);
        std::optional<ClipRecord> record =
            found == records_.end() ? std::nullopt : std::optional(found->second);
        if (change(record) && record) {
            records_.insert_or_assign(clip, std::move(*record));
        } else if (!record) {
            records_.erase(clip);
        }
        return true;
    }

private:
    std::mutex lock_;
    std::map<Cookie, ClipRecord> records_;
};

}  // namespace

MemoryEditStore::MemoryEditStore() : ClipStore(Ox::makePtr<MemoryClips>()) {}

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
