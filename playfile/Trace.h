#pragma once

#include <array>
#include <atomic>
#include <cstdint>
#include <optional>

#include "ole/Ox/OxString.h"

/// One entry of the trace: something that took time, a moment, or a step in the life of a request.
///
/// All plain texts are literals.
struct TraceEvent {
    /// What Chrome's format calls the phase.
    enum ePhase : char {
        slice = 'X',   ///< a piece of a thread's time
        moment = 'i',  ///< on a thread
        requestBegins = 'b',
        requestStep = 'n',
        requestEnds = 'e',
    };

    /// A number, or a word where there is one.
    struct Fact {
        char const* name = nullptr;
        std::int64_t value = 0;
        char const* word = nullptr;
    };
    static constexpr std::size_t mostFacts = 4;

    ePhase phase = moment;
    char const* category = "";
    char const* name = "";
    /// The request that it is about, 0 for none.
    std::uint64_t request = 0;
    std::int64_t startNs = 0;
    std::int64_t lengthNs = 0;
    LightweightString<wchar_t> file;
    LightweightString<char> reader;
    std::array<Fact, mostFacts> facts{};
    std::size_t factCount = 0;

    /// Adds a number; those beyond `mostFacts` are left out.
    TraceEvent& with(char const* factName, std::int64_t value, char const* word = nullptr) noexcept;
    TraceEvent& of(LightweightString<wchar_t> const& fileName) noexcept;
};

/// What the library does, written down as it happens, in the JSON format of Chrome's trace viewer, if the
/// environment's `PLAYFILE_TRACE` names a file; `%p` in the name stands for the process's number.
///
/// Each thread notes its events in a ring of its own. Whoever finds its ring full, or finds that nothing was
/// written for a while, writes those of all threads.
///
/// Threads    Any. No lock is taken but to write, to begin and when a thread comes or goes; it is innermost.
/// Errors     A file that can't be written is logged once, and nothing is traced. Without memory for an event
///            it is lost.
/// Deliberate It uses the system's own calls: `OS()` may be what is being watched. A process that was forked
///            off doesn't write to its parent's file. One that is killed leaves a file without its end, which
///            viewers take.
class PlayFileTrace {
public:
    /// One relaxed load, but for the first call.
    [[nodiscard]] static bool isOn() noexcept {
        eState const state = state_.load(std::memory_order_relaxed);
        return state == on || (state == unasked && begin());
    }

    /// A new request's number; 0 if nothing is traced.
    [[nodiscard]] static std::uint64_t nextRequest() noexcept {
        return isOn() ? lastRequest_.fetch_add(1, std::memory_order_relaxed) + 1 : 0;
    }

    /// Nanoseconds of the clock that never goes back.
    [[nodiscard]] static std::int64_t now() noexcept;

    /// Notes an event, which begins now. Requires `isOn`.
    static void add(TraceEvent&& event) noexcept;
    /// Notes an event that has its times.
    static void addTimed(TraceEvent&& event) noexcept;

    /// Notes a step of a request, which a request without a number doesn't have.
    static void step(TraceEvent::ePhase phase, char const* category, char const* name, std::uint64_t request,
                     TraceEvent::Fact const& fact = {}) noexcept;

    /// Writes all there is and the file's end; nothing is traced any more. The end of the process calls it.
    static void finish() noexcept;

private:
    enum eState : std::uint32_t { unasked, off, on };

    static bool begin() noexcept;

    friend class TraceWriter;
    static std::atomic<eState> state_;
    static std::atomic<std::uint64_t> lastRequest_;
};

/// A slice of the calling thread's time, from its making to its end.
///
/// Nothing but a load and a branch if nothing is traced.
class TraceSlice {
public:
    TraceSlice(char const* category, char const* name, std::uint64_t request = 0) noexcept {
        if (PlayFileTrace::isOn()) {
            open(category, name, request);
        }
    }
    ~TraceSlice() {
        if (event_) {
            close();
        }
    }
    TraceSlice(TraceSlice const&) = delete;
    TraceSlice& operator=(TraceSlice const&) = delete;

    TraceSlice& with(char const* name, std::int64_t value, char const* word = nullptr) noexcept {
        if (event_) {
            event_->with(name, value, word);
        }
        return *this;
    }
    TraceSlice& of(LightweightString<wchar_t> const& file) noexcept {
        if (event_) {
            event_->of(file);
        }
        return *this;
    }
    /// The reader at work.
    TraceSlice& by(LightweightString<char> const& reader) noexcept {
        if (event_) {
            event_->reader = reader;
        }
        return *this;
    }
    /// The request that it turns out to be about.
    TraceSlice& about(std::uint64_t request) noexcept {
        if (event_) {
            event_->request = request;
        }
        return *this;
    }

private:
    void open(char const* category, char const* name, std::uint64_t request) noexcept;
    void close() noexcept;

    std::optional<TraceEvent> event_;
};
