/// Beginning, writing and ending the trace.
///
/// The writer is never destroyed: threads may end, and note events, while the static objects go. Its end is
/// a static object of the library made before all others, so that it comes after theirs. A forked process
/// finds the writer of its parent, perhaps locked, so everything that takes the lock asks first whose it is.
#include "playfile/Trace.h"

#include <fcntl.h>
#include <pthread.h>
#include <unistd.h>

#include <cerrno>
#include <chrono>
#include <cstdlib>
#include <cstring>
#include <mutex>
#include <vector>

#include "playfile/TraceRing.h"
#include "playfile/TraceText.h"
#include "toolkit/services/Log.h"

constinit std::atomic<PlayFileTrace::eState> PlayFileTrace::state_{PlayFileTrace::unasked};
constinit std::atomic<std::uint64_t> PlayFileTrace::lastRequest_{0};

namespace {

constexpr char const* settingName = "PLAYFILE_TRACE";
constexpr char const* processName = "playfile";
/// The longest that an event waits to be written while others come.
constexpr std::int64_t mostUnwrittenNs = 200'000'000;
constexpr int openMode = O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC;
constexpr mode_t fileMode = 0644;

/// The name that the environment states, with the process's number in it; empty for none.
std::string statedName() {
    char const* const stated = std::getenv(settingName);
    std::string name = stated ? stated : "";
    if (std::size_t const place = name.find("%p"); place != std::string::npos) {
        name.replace(place, 2, std::to_string(getpid()));
    }
    return name;
}

bool writeAll(int file, std::string const& text) noexcept {
    std::size_t done = 0;
    while (done < text.size()) {
        ssize_t const written = write(file, text.data() + done, text.size() - done);
        if (written < 0 && errno != EINTR) {
            return false;
        }
        done += written < 0 ? 0 : static_cast<std::size_t>(written);
    }
    return true;
}

}  // namespace

/// The file, and the rings of all threads.
class TraceWriter {
public:
    static TraceWriter& instance() {
        static TraceWriter* const writer = new TraceWriter;
        return *writer;
    }

    /// Opens the file that the environment names; true if events are wanted from now on. Who asks meanwhile
    /// waits for the answer: its events aren't lost.
    bool begin() {
        if (!claim()) {
            return false;
        }
        std::string failure;
        {
            std::scoped_lock const scope(lock_);
            if (PlayFileTrace::state_.load() == PlayFileTrace::unasked) {
                failure = openOrStop();
            }
        }
        if (!failure.empty()) {
            LogBoth("%s\n", failure.c_str());
        }
        return PlayFileTrace::state_.load() == PlayFileTrace::on;
    }

    /// A ring for the calling thread, which says so when it ends.
    TraceRing* join() {
        auto ring = std::make_unique<TraceRing>(gettid());
        char name[16] = "";
        pthread_getname_np(pthread_self(), name, sizeof name);
        std::scoped_lock const scope(lock_);
        appendSeparated([&] { traceText::appendName(text_, "thread_name", name, getpid(), ring->thread); });
        rings_.push_back(std::move(ring));
        return rings_.back().get();
    }

    [[nodiscard]] bool isOfThisProcess() const {
        return process_.load(std::memory_order_relaxed) == getpid();
    }
    [[nodiscard]] bool isTime(std::int64_t now) const {
        return now - writtenNs_.load(std::memory_order_relaxed) > mostUnwrittenNs;
    }

    void flush() {
        std::string failure;
        {
            std::scoped_lock const scope(lock_);
            failure = write("");
        }
        if (!failure.empty()) {
            LogBoth("%s\n", failure.c_str());
        }
    }

    void finish() {
        std::scoped_lock const scope(lock_);
        if (PlayFileTrace::state_.load() == PlayFileTrace::on) {
            static_cast<void>(write("\n]\n"));
            stop();
        }
    }

private:
    /// False in a process that was forked off while its parent was beginning: nobody would open the lock.
    bool claim() {
        int owner = 0;
        bool const isOurs = process_.compare_exchange_strong(owner, getpid()) || owner == getpid();
        if (!isOurs) {
            PlayFileTrace::state_.store(PlayFileTrace::off);
        }
        return isOurs;
    }

    std::string openOrStop() {
        try {
            return open(statedName());
        } catch (...) {
            PlayFileTrace::state_.store(PlayFileTrace::off);
            throw;
        }
    }

    std::string open(std::string const& name) {
        name_ = name;
        file_ = name.empty() ? -1 : ::open(name.c_str(), openMode, fileMode);
        if (file_ < 0) {
            std::string const failure = name.empty() ? "" : complaint();
            PlayFileTrace::state_.store(PlayFileTrace::off);
            return failure;
        }
        text_ = "[\n";
        traceText::appendName(text_, "process_name", processName, process_, process_);
        PlayFileTrace::state_.store(PlayFileTrace::on);
        return write("");
    }

    /// What is wrong with the file, if its system call has just failed.
    [[nodiscard]] std::string complaint() const {
        return "The trace \"" + name_ + "\" can't be written (" + std::strerror(errno) +
               "); nothing is traced";
    }

    template <class Append>
    void appendSeparated(Append const& append) {
        text_ += ",\n";
        append();
    }

    /// Writes what all threads have noted, and `end`; answers what is to be logged.
    [[nodiscard]] std::string write(char const* end) {
        writtenNs_.store(PlayFileTrace::now(), std::memory_order_relaxed);
        std::erase_if(rings_, [this](std::unique_ptr<TraceRing> const& ring) {
            bool const hasEnded = ring->hasEnded.load(std::memory_order_acquire);
            ring->take([&](TraceEvent const& event) {
                appendSeparated([&] { traceText::appendEvent(text_, event, process_, ring->thread); });
            });
            return hasEnded;
        });
        text_ += end;
        bool const isWritten = file_ < 0 || writeAll(file_, text_);
        std::string const failure = isWritten ? "" : complaint();
        text_.clear();
        if (!isWritten) {
            stop();
        }
        return failure;
    }

    void stop() {
        PlayFileTrace::state_.store(PlayFileTrace::off);
        close(file_);
        file_ = -1;
    }

    std::mutex lock_;
    std::string name_;
    int file_ = -1;
    /// Whose trace it is.
    std::atomic<int> process_{0};
    std::vector<std::unique_ptr<TraceRing>> rings_;
    /// Not written yet.
    std::string text_;
    std::atomic<std::int64_t> writtenNs_{0};
};

namespace {

thread_local TraceRing* ownRing = nullptr;
thread_local bool hasThreadLeft = false;

/// Tells that a thread ends. What it notes after that, as the static objects go, gets another ring.
struct ThreadEnd {
    ~ThreadEnd() {
        hasThreadLeft = true;
        if (ownRing) {
            ownRing->hasEnded.store(true, std::memory_order_release);
            ownRing = nullptr;
        }
    }
};

void watchThreadEnd() {
    static thread_local ThreadEnd const end;
    static_cast<void>(end);
}

void note(TraceEvent& event) {
    TraceWriter& writer = TraceWriter::instance();
    if (!ownRing) {
        if (!writer.isOfThisProcess()) {
            return;
        }
        ownRing = writer.join();
        if (!hasThreadLeft) {
            watchThreadEnd();
        }
    }
    std::int64_t const now = event.startNs + event.lengthNs;
    bool const isNoted = ownRing->push(event);
    if ((isNoted && !writer.isTime(now)) || !writer.isOfThisProcess()) {
        return;
    }
    writer.flush();
    if (!isNoted) {
        ownRing->push(event);
    }
}

/// Ends the trace with the library, after its other static objects.
struct TraceEnd {
    ~TraceEnd() { PlayFileTrace::finish(); }
};
[[gnu::init_priority(101)]] TraceEnd const traceEnd;

}  // namespace

TraceEvent& TraceEvent::with(char const* factName, std::int64_t value, char const* word) noexcept {
    if (factCount < mostFacts) {
        facts[factCount++] = {factName, value, word};
    }
    return *this;
}

TraceEvent& TraceEvent::of(LightweightString<wchar_t> const& fileName) noexcept {
    file = fileName;
    return *this;
}

bool PlayFileTrace::begin() noexcept {
    try {
        return TraceWriter::instance().begin();
    } catch (...) {
        return false;
    }
}

std::int64_t PlayFileTrace::now() noexcept {
    return std::chrono::steady_clock::now().time_since_epoch() / std::chrono::nanoseconds(1);
}

void PlayFileTrace::add(TraceEvent&& event) noexcept {
    event.startNs = now();
    addTimed(std::move(event));
}

void PlayFileTrace::addTimed(TraceEvent&& event) noexcept {
    try {
        note(event);
    } catch (...) {
    }
}

void PlayFileTrace::step(TraceEvent::ePhase phase, char const* category, char const* name,
                         std::uint64_t request, TraceEvent::Fact const& fact) noexcept {
    if (request == 0 || !isOn()) {
        return;
    }
    TraceEvent event;
    event.phase = phase;
    event.category = category;
    event.name = name;
    event.request = request;
    if (fact.name) {
        event.with(fact.name, fact.value, fact.word);
    }
    add(std::move(event));
}

void PlayFileTrace::finish() noexcept {
    try {
        if (state_.load() == on && TraceWriter::instance().isOfThisProcess()) {
            TraceWriter::instance().finish();
        }
    } catch (...) {
        state_.store(off);
    }
}

void TraceSlice::open(char const* category, char const* name, std::uint64_t request) noexcept {
    event_.emplace();
    event_->phase = TraceEvent::slice;
    event_->category = category;
    event_->name = name;
    event_->request = request;
    event_->startNs = PlayFileTrace::now();
}

void TraceSlice::close() noexcept {
    event_->lengthNs = PlayFileTrace::now() - event_->startNs;
    PlayFileTrace::addTimed(std::move(*event_));
}
