#include "toolkit/tasks/SubTasks.h"

#include <algorithm>
#include <numeric>

SubTasks SubTasks::partOf(SubTasks const& whole) {
    SubTasks part;
    part.own_ = whole.currentSpan();
    return part;
}

void SubTasks::start(std::vector<std::uint64_t> const& weights) {
    double const total =
        std::accumulate(weights.begin(), weights.end(), 0.0,
                        [](double sum, std::uint64_t w) { return sum + static_cast<double>(w); });
    Level level;
    double end = 0.0;
    for (std::uint64_t const weight : weights) {
        end += total > 0.0 ? static_cast<double>(weight) / total : 1.0 / static_cast<double>(weights.size());
        level.ends.push_back(end);
    }
    levels_.push_back(std::move(level));
    fraction_ = 0.0;
}

void SubTasks::next() {
    if (!levels_.empty()) {
        Level& level = levels_.back();
        level.current = std::min(level.current + 1, level.ends.size());
        fraction_ = 0.0;
    }
}

void SubTasks::end() {
    if (!levels_.empty()) {
        levels_.pop_back();
        fraction_ = 1.0;
    }
}

double SubTasks::progress() const {
    Span const span = currentSpan();
    return span.begin + span.length * fraction_;
}

SubTasks::Span SubTasks::currentSpan() const {
    Span span = own_;
    for (Level const& level : levels_) {
        double const begin = level.current == 0 ? 0.0 : level.ends[level.current - 1];
        double const end = level.current < level.ends.size() ? level.ends[level.current] : begin;
        span.begin += span.length * begin;
        span.length *= end - begin;
    }
    return span;
}
