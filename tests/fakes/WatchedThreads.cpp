#include "tests/fakes/WatchedThreads.h"

#include <algorithm>
#include <utility>

#include "tests/fakes/ForwardingOS.h"

namespace {

/// Forwards to a thread and notes what is asked of it.
class WatchedThread : public iThread {
public:
    WatchedThread(Ox::Ptr<iThread> real, std::shared_ptr<MadeThread> notes)
        : real_(std::move(real)), notes_(std::move(notes)) {}
    bool setPriority(ePriority priority) override {
        notes_->priority = priority;
        return real_->setPriority(priority);
    }
    void setAffinity(int mask) override {
        notes_->affinity = mask;
        real_->setAffinity(mask);
    }
    bool waitForEnd(std::uint32_t waitMs) override { return real_->waitForEnd(waitMs); }
    bool isThisThread() const override { return real_->isThisThread(); }
    LightweightString<char> getName() const override { return real_->getName(); }

private:
    Ox::Ptr<iThread> const real_;
    std::shared_ptr<MadeThread> const notes_;
};

}  // namespace

/// What a thread runs instead of its own entry function.
struct WatchedThreads::Trampoline {
    WatchedThreads& owner;
    ThreadDescription::Entry entry;
    void* argument;
    std::shared_ptr<MadeThread> notes;
};

int WatchedThreads::runAndNote(void* trampoline) {
    std::unique_ptr<Trampoline> const run(static_cast<Trampoline*>(trampoline));
    int const answer = run->entry(run->argument);
    {
        std::lock_guard const scope(run->owner.lock_);
        run->owner.waits_.erase(std::this_thread::get_id());
        run->owner.changed_.notify_all();
    }
    run->notes->ended.pass();
    return answer;
}

WatchedThreads& WatchedThreads::instance() {
    static WatchedThreads* const threads = [] {
        auto* const made = new WatchedThreads;
        static auto* const os = new test::ForwardingOS;
        os->threads = made;
        return made;
    }();
    return *threads;
}

ThreadEventPtr WatchedThreads::makeEvent(bool isManualReset, bool isInitiallySet, int option) {
    if (isManualReset) {
        manualEventMade.pass();
    }
    return real().makeEvent(isManualReset, isInitiallySet, option);
}

Ox::Ptr<iThread> WatchedThreads::makeThread(ThreadDescription const& description) {
    auto notes = std::make_shared<MadeThread>();
    notes->description = description;
    {
        std::lock_guard const scope(lock_);
        threads_.push_back(notes);
    }
    ThreadDescription watched = description;
    watched.entry = &runAndNote;
    watched.argument = new Trampoline{*this, description.entry, description.argument, notes};
    Ox::Ptr<iThread> const thread = real().makeThread(watched);
    return thread ? Ox::makePtr<WatchedThread>(thread, notes) : thread;
}

int WatchedThreads::waitForAny(std::vector<ThreadEventPtr> const& events, std::uint32_t waitMs) {
    latestWaitMs = waitMs;
    {
        std::lock_guard const scope(lock_);
        Waits& waits = waits_[std::this_thread::get_id()];
        ++waits.count;
        waits.isAsleepWithoutLimit = waitMs == iThreadEvent::noTimeLimit;
        changed_.notify_all();
    }
    int const index = real().waitForAny(events, waitMs);
    std::lock_guard const scope(lock_);
    waits_[std::this_thread::get_id()].isAsleepWithoutLimit = false;
    return index;
}

std::vector<std::shared_ptr<MadeThread>> WatchedThreads::threads() const {
    std::lock_guard const scope(lock_);
    return threads_;
}

std::shared_ptr<MadeThread> WatchedThreads::find(std::string_view name) const {
    std::lock_guard const scope(lock_);
    for (auto thread = threads_.rbegin(); thread != threads_.rend(); ++thread) {
        if ((*thread)->description.name.view() == name) {
            return *thread;
        }
    }
    return nullptr;
}

bool WatchedThreads::waitUntilIdle(std::thread::id worker) {
    std::unique_lock scope(lock_);
    Waits const before = waits_[worker];
    return changed_.wait_for(scope, testPatience, [&] { return waits_[worker].isIdleSince(before); });
}

bool WatchedThreads::waitUntilAllIdle() {
    std::unique_lock scope(lock_);
    auto const before = waits_;
    return changed_.wait_for(scope, testPatience, [&] {
        return std::all_of(before.begin(), before.end(), [&](auto const& entry) {
            auto const now = waits_.find(entry.first);
            return now == waits_.end() || now->second.isIdleSince(entry.second);
        });
    });
}
