#include "tests/fakes/CallLog.h"

#include <algorithm>
#include <iterator>
#include <utility>

void CallLog::add(std::string line) {
    std::lock_guard const scope(lock_);
    lines_.push_back(std::move(line));
}

CallLog::Lines CallLog::all() const {
    std::lock_guard const scope(lock_);
    return lines_;
}

CallLog::Lines CallLog::with(std::string_view part) const {
    std::lock_guard const scope(lock_);
    Lines found;
    std::copy_if(lines_.begin(), lines_.end(), std::back_inserter(found),
                 [&](std::string const& line) { return line.find(part) != std::string::npos; });
    return found;
}

void CallLog::clear() {
    std::lock_guard const scope(lock_);
    lines_.clear();
}
