#include "tools/playfile/TransferLog.h"

#include <utility>

#include "tools/playfile/Text.h"

namespace cli {
namespace {

/// What stands between an opening and its closing character, without the backslashes; where it ends is kept in `at`.
bool takePart(std::string const& text, std::size_t& at, char opening, char closing, std::string& part) {
    if (at >= text.size() || text[at] != opening) {
        return false;
    }
    part.clear();
    for (++at; at < text.size() && text[at] != closing; ++at) {
        at += text[at] == '\\' && at + 1 < text.size() ? 1 : 0;
        part += text[at];
    }
    return at++ < text.size();
}

}  // namespace

void TransferLog::reportProgress(LightweightString<wchar_t> const&, double fraction) {
    std::lock_guard const scope(lock_);
    fraction_ = fraction;
}

double TransferLog::calcAggregateProgress() const {
    std::lock_guard const scope(lock_);
    return fraction_;
}

void TransferLog::write(LightweightString<wchar_t> const& text, eOutputType type) {
    std::lock_guard const scope(lock_);
    lines_.push_back({narrowName(text), type});
}

std::vector<TransferLog::Line> TransferLog::takeLines() {
    std::lock_guard const scope(lock_);
    return std::exchange(lines_, {});
}

LinkText LinkText::parse(std::string const& text) {
    LinkText link;
    std::size_t at = 0;
    std::string target;
    if (!takePart(text, at, '[', ']', link.label)) {
        return {text, {}};
    }
    while (takePart(text, at, '(', ')', target)) {
        link.targets.push_back(target);
    }
    return at == text.size() ? link : LinkText{text, {}};
}

}  // namespace cli
