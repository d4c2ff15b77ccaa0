#include "tools/playfile/LogCapture.h"

#include <cstdio>

namespace cli {
namespace {

/// Lines that are kept; older ones go.
constexpr std::size_t maxLines = 1000;

}  // namespace

LogCapture::LogCapture(bool isShown) : isShown_(isShown), former_(installLogSink(this)) {}

LogCapture::~LogCapture() {
    installLogSink(former_);
}

void LogCapture::writeToConsole(LightweightString<char> const& text) {
    std::lock_guard const scope(mutex_);
    if (isShown_) {
        std::fwrite(text.c_str(), 1, text.length(), stderr);
    }
    for (char const c : text.view()) {
        if (c != '\n') {
            unfinished_ += c;
            continue;
        }
        lines_.push_back(std::move(unfinished_));
        unfinished_.clear();
        if (lines_.size() > maxLines) {
            lines_.pop_front();
        }
    }
}

void LogCapture::writeToLog(LightweightString<char> const&) {}

std::vector<std::string> LogCapture::lines() const {
    std::lock_guard const scope(mutex_);
    return {lines_.begin(), lines_.end()};
}

}  // namespace cli
