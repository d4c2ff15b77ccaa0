#include "toolkit/services/TimedTask.h"

#include <algorithm>
#include <chrono>
#include <mutex>
#include <string_view>

#include "ole/os/Immortal.h"

namespace {

/// The sums of one task.
class TimedTask : public TimedTaskBase {
public:
    explicit TimedTask(char const* name) : name_(name) {}
    [[nodiscard]] LightweightString<char> getName() const override { return name_; }

    void addRun(char const* section, std::uint64_t durationNs) override {
        std::lock_guard const scope(lock_);
        Section& sum = find(section);
        ++sum.count;
        sum.totalNs += durationNs;
        sum.longestNs = std::max(sum.longestNs, durationNs);
    }

    [[nodiscard]] std::vector<Section> getSections() const override {
        std::lock_guard const scope(lock_);
        return sections_;
    }

private:
    Section& find(char const* name) {
        for (Section& section : sections_) {
            if (section.name.view() == name) {
                return section;
            }
        }
        sections_.emplace_back().name = name;
        return sections_.back();
    }

    LightweightString<char> const name_;
    mutable std::mutex lock_;
    std::vector<Section> sections_;
};

struct AllTasks {
    std::mutex lock;
    std::vector<Ox::Ptr<TimedTaskBase>> list;
};

AllTasks& allTasks() {
    return immortal<AllTasks>();
}

std::uint64_t nowNs() {
    return static_cast<std::uint64_t>(
        std::chrono::nanoseconds(std::chrono::steady_clock::now().time_since_epoch()).count());
}

/// Requires the lock.
Ox::Ptr<TimedTaskBase> makeTask(char const* name) {
    return allTasks().list.emplace_back(Ox::makePtr<TimedTask>(name));
}

}  // namespace

/// The newest of one name is the one that counts.
Ox::Ptr<TimedTaskBase> TimedTaskManager::getTimedTask(char const* name) {
    std::lock_guard const scope(allTasks().lock);
    auto const& list = allTasks().list;
    auto const found = std::find_if(list.rbegin(), list.rend(),
                                    [&](auto const& task) { return task->getName().view() == name; });
    return found == list.rend() ? makeTask(name) : *found;
}

Ox::Ptr<TimedTaskBase> TimedTaskManager::createTimedTask(char const* name) {
    std::lock_guard const scope(allTasks().lock);
    return makeTask(name);
}

std::vector<Ox::Ptr<TimedTaskBase>> TimedTaskManager::getAll() {
    std::lock_guard const scope(allTasks().lock);
    return allTasks().list;
}

TimedSection::TimedSection(Ox::Ptr<TimedTaskBase> task, char const* section)
    : task_(std::move(task)), section_(section), startNs_(nowNs()) {}

TimedSection::~TimedSection() {
    if (task_) {
        task_->addRun(section_, nowNs() - startNs_);
    }
}
