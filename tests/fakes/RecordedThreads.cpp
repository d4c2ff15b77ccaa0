#include "tests/fakes/RecordedThreads.h"

#include <algorithm>
#include <iterator>

#include "tests/fakes/ForwardingOS.h"

namespace test {

class RecordedThreads::Event : public iThreadEvent {
public:
    Event(RecordedThreads& recorder, ThreadEventPtr event, std::size_t eventNumber)
        : real(std::move(event)), number(std::to_string(eventNumber)), recorder_(recorder) {}

    eWaitResult wait(std::uint32_t waitMs) override {
        if (recorder_.onWait) {
            recorder_.onWait();
        }
        recorder_.record("wait " + std::to_string(waitMs) + " for " + number);
        return real->wait(waitMs);
    }
    void set() override {
        if (recorder_.onSet) {
            recorder_.onSet();
        }
        recorder_.record("set " + number);
        real->set();
    }
    void reset() override { real->reset(); }

    ThreadEventPtr const real;
    std::string const number;

private:
    RecordedThreads& recorder_;
};

class RecordedThreads::Lock : public iAccessLock {
public:
    Lock(RecordedThreads& recorder, Ox::Ptr<iAccessLock> real)
        : recorder_(recorder), real_(std::move(real)) {}

    bool lock(std::uint32_t waitMs) override {
        bool const isHeld = real_->lock(waitMs);
        recorder_.isLockHeld_ = isHeld;
        recorder_.record("lock " + std::to_string(waitMs));
        return isHeld;
    }
    void unlock() override {
        recorder_.record("unlock");
        recorder_.isLockHeld_ = false;
        real_->unlock();
    }

private:
    RecordedThreads& recorder_;
    Ox::Ptr<iAccessLock> const real_;
};

class RecordedThreads::Thread : public iThread {
public:
    Thread(RecordedThreads& recorder, Ox::Ptr<iThread> real, std::size_t number)
        : recorder_(recorder), real_(std::move(real)), number_(" of " + std::to_string(number)) {}

    bool setPriority(ePriority priority) override {
        recorder_.record("priority " + std::to_string(priority) + number_);
        return !recorder_.refusesPriority && real_->setPriority(priority);
    }
    void setAffinity(int mask) override {
        recorder_.record("affinity " + std::to_string(mask) + number_);
        real_->setAffinity(mask);
    }
    bool waitForEnd(std::uint32_t waitMs) override {
        recorder_.record("wait for end " + std::to_string(waitMs) + number_);
        if (recorder_.onWaitForEnd) {
            recorder_.onWaitForEnd();
        }
        return real_->waitForEnd(waitMs);
    }
    bool isThisThread() const override { return real_->isThisThread(); }
    LightweightString<char> getName() const override { return real_->getName(); }

private:
    RecordedThreads& recorder_;
    Ox::Ptr<iThread> const real_;
    std::string const number_;
};

/// The system is never destroyed, as a thread may still be on its way out of it.
RecordedThreads::RecordedThreads() : systemBefore_(OS()), expiry_(real().makeEvent(false, false, 0)) {
    static auto* const systems = new std::vector<ForwardingOS*>();
    systems->push_back(new ForwardingOS);
    systems->back()->threads = this;
}

RecordedThreads::~RecordedThreads() {
    installOS(systemBefore_);
}

ThreadEventPtr RecordedThreads::makeEvent(bool isManualReset, bool isInitiallySet, int option) {
    ThreadEventPtr const own = real().makeEvent(isManualReset, isInitiallySet, option);
    ThreadEventPtr event;
    std::string number;
    {
        std::scoped_lock const lock(mutex_);
        number = std::to_string(events_.size() + 1);
        event = Ox::makePtr<Event>(*this, own, events_.size() + 1);
        events_.push_back(event);
    }
    record("make event " + number + (isManualReset ? " manual" : " auto") +
           (isInitiallySet ? " set " : " clear ") + std::to_string(option));
    return event;
}

Ox::Ptr<iAccessLock> RecordedThreads::makeLock(char const* name) {
    record(std::string("make lock ") + name);
    return Ox::makePtr<Lock>(*this, real().makeLock(name));
}

Ox::Ptr<iThread> RecordedThreads::makeThread(ThreadDescription const& description) {
    record("make thread " + description.name.str());
    std::size_t number = 0;
    {
        std::scoped_lock const lock(mutex_);
        descriptions_.push_back(description);
        number = descriptions_.size();
    }
    return Ox::makePtr<Thread>(*this, real().makeThread(description), number);
}

int RecordedThreads::waitForAny(std::vector<ThreadEventPtr> const& events, std::uint32_t waitMs) {
    std::string call = "wait " + std::to_string(waitMs) + " for any";
    std::vector<ThreadEventPtr> own;
    for (ThreadEventPtr const& event : events) {
        auto const& recorded = dynamic_cast<Event const&>(*event);
        call += " " + recorded.number;
        own.push_back(recorded.real);
    }
    own.push_back(expiry_);
    record(call);
    int const index = real().waitForAny(own, waitMs);
    return index == static_cast<int>(events.size()) ? -1 : index;
}

std::vector<std::string> RecordedThreads::calls() const {
    std::scoped_lock const lock(mutex_);
    return calls_;
}

std::vector<std::string> RecordedThreads::callsThatBegin(std::string_view start) const {
    std::vector<std::string> found;
    std::vector<std::string> const all = calls();
    std::copy_if(all.begin(), all.end(), std::back_inserter(found),
                 [start](std::string const& call) { return call.starts_with(start); });
    return found;
}

void RecordedThreads::awaitCalls(std::string_view start, std::size_t count) {
    std::unique_lock lock(mutex_);
    changed_.wait(lock, [&] {
        return static_cast<std::size_t>(std::count_if(
                   calls_.begin(), calls_.end(),
                   [start](std::string const& call) { return call.starts_with(start); })) >= count;
    });
}

void RecordedThreads::forget() {
    std::scoped_lock const lock(mutex_);
    calls_.clear();
}

std::vector<ThreadDescription> RecordedThreads::descriptions() const {
    std::scoped_lock const lock(mutex_);
    return descriptions_;
}

ThreadEventPtr RecordedThreads::event(std::size_t number) const {
    std::scoped_lock const lock(mutex_);
    return events_.at(number - 1);
}

void RecordedThreads::record(std::string const& call) {
    std::scoped_lock const lock(mutex_);
    calls_.push_back(call);
    changed_.notify_all();
}

}  // namespace test
