#pragma once

#include <cstdint>
#include <vector>

#include "ole/Ox/OxObject.h"
#include "ole/Ox/OxString.h"

/// Counts how often, and how long, the sections of one kind of work ran.
///
/// Threads  Any; many may be in the same section at once.
class TimedTaskBase : public virtual iObject {
public:
    /// The sum of one section.
    struct Section {
        LightweightString<char> name;
        std::uint64_t count = 0;
        std::uint64_t totalNs = 0;
        std::uint64_t longestNs = 0;
    };

    [[nodiscard]] virtual LightweightString<char> getName() const = 0;
    /// Adds one run of a section. @param section  a text that lives for ever
    virtual void addRun(char const* section, std::uint64_t durationNs) = 0;
    [[nodiscard]] virtual std::vector<Section> getSections() const = 0;
};

/// Knows all timing tasks of the process.
///
/// Threads  Any.
class TimedTaskManager {
public:
    /// The task of that name, made if there is none yet.
    [[nodiscard]] static Ox::Ptr<TimedTaskBase> getTimedTask(char const* name);
    /// A new task; from now on `getTimedTask` finds it.
    [[nodiscard]] static Ox::Ptr<TimedTaskBase> createTimedTask(char const* name);
    /// All tasks, in the order in which they were made.
    [[nodiscard]] static std::vector<Ox::Ptr<TimedTaskBase>> getAll();
};

/// Runs a section of a task from its construction to its end.
class TimedSection {
public:
    /// @param section  a text that lives for ever
    TimedSection(Ox::Ptr<TimedTaskBase> task, char const* section);
    ~TimedSection();
    TimedSection(TimedSection const&) = delete;
    TimedSection& operator=(TimedSection const&) = delete;

private:
    Ox::Ptr<TimedTaskBase> task_;
    char const* section_;
    std::uint64_t startNs_;
};
