#pragma once

#include <cstdint>
#include <list>

#include "ole/Ox/OxPtr.h"
#include "ole/os/OS.h"
#include "ole/os/Shutdown.h"

/// Tag of the pools whose items serve playback; it has no presence at run time.
struct PlayEnginePriority {};

namespace Ox {

template <class T, class Tag>
class Pool;

/// Gives `item` back: a pool that is open takes the reference for the next taker and leaves `item`
/// empty, a shut one leaves it with the caller to drop. A thread that waits in `getItem` is woken in
/// both cases.
template <class T, class Tag>
void giveBack(Pool<T, Tag>& pool, ExternalPtr<T>& item);

/// Keeps items that are not in use, so that a taker gets one with its thread running.
///
/// Items are used again in the order in which they came back; new ones are made only when none is
/// free, up to a limit; then takers wait.
///
/// Ownership  The pool holds the free items, whoever took one holds that.
/// Threads    Any. `getItem` may wait without limit.
/// Lock order `lock`: taken with a file's lock held; a new item's own locks are taken under it.
template <class T, class Tag>
class Pool {
public:
    using ItemPtr = ExternalPtr<T>;

    /// For pools that may grow as they must.
    static constexpr std::uint32_t noLimit = 0xFFFFFFFF;

    explicit Pool(std::uint32_t limit)
        : limit_(limit), itemReturned_(OS()->getThreads().makeEvent(false, false, 0)) {
        Shutdown::CallbackPtr const callback(new Shutdown::MethodCallback<Pool>(this, &Pool::shutdown));
        Shutdown::addCallback(callback, Shutdown::poolOrder);
    }

    /// Drops what is free. On an empty list it takes no lock.
    ~Pool() {
        if (!freeItems_.empty()) {
            shutdown(Shutdown::normalExit);
        }
    }
    Pool(Pool const&) = delete;
    Pool& operator=(Pool const&) = delete;

    /// A free item, else a new one, else whichever is given back first; never empty.
    ///
    /// Deliberate  A shut pool still makes new items.
    [[nodiscard]] ItemPtr getItem() {
        lock_.enter();
        ItemPtr item = takeFree();
        if (!item && created_ < limit_) {
            item = makeItem();
        }
        while (!item) {
            lock_.leave();
            itemReturned_->wait(iThreadEvent::noTimeLimit);
            lock_.enter();
            item = takeFree();
        }
        lock_.leave();
        return item;
    }

    /// Shuts the pool and drops the free items, oldest first. Items in use aren't touched.
    void shutdown(Shutdown::eExitType) {
        ScopedLock const scope(lock_);
        isOpen_ = false;
        while (!freeItems_.empty()) {
            freeItems_.pop_front();
        }
    }

    /// How many items `getItem` has made; it never falls.
    [[nodiscard]] std::uint64_t getCreated() {
        ScopedLock const scope(lock_);
        return created_;
    }
    [[nodiscard]] std::size_t getFreeCount() {
        ScopedLock const scope(lock_);
        return freeItems_.size();
    }

private:
    friend void giveBack<T, Tag>(Pool& pool, ItemPtr& item);

    [[nodiscard]] ItemPtr takeFree() PLAYFILE_REQUIRES(lock_) {
        ItemPtr item;
        if (!freeItems_.empty()) {
            item = freeItems_.front();
            freeItems_.pop_front();
        }
        return item;
    }

    /// Leaves the lock if the item can't be made, as the exception leaves `getItem`.
    [[nodiscard]] ItemPtr makeItem() PLAYFILE_NO_THREAD_SAFETY_ANALYSIS {
        try {
            ItemPtr item(new T());
            ++created_;
            return item;
        } catch (...) {
            lock_.leave();
            throw;
        }
    }

    CriticalSection lock_{eLockRank::pool, "Pool"};
    bool isOpen_ PLAYFILE_GUARDED_BY(lock_) = true;
    std::uint64_t created_ PLAYFILE_GUARDED_BY(lock_) = 0;
    std::list<ItemPtr> freeItems_;
    std::uint32_t const limit_;
    ThreadEventPtr const itemReturned_;
};

template <class T, class Tag>
void giveBack(Pool<T, Tag>& pool, ExternalPtr<T>& item) {
    ScopedLock const scope(pool.lock_);
    if (pool.isOpen_) {
        pool.freeItems_.push_back(std::move(item));
    }
    pool.itemReturned_->set();
}

}  // namespace Ox
