#include "tools/playfile/ExtractLog.h"

#include "tools/playfile/CommandError.h"
#include "tools/playfile/Interrupt.h"
#include "tools/playfile/Text.h"

namespace cli {
namespace {

constexpr double percent = 100.0;

/// No exception may cross the plug-in.
bool isInterrupted() noexcept {
    try {
        checkForInterrupt();
        return false;
    } catch (Stopped const&) {
        return true;
    }
}

}  // namespace

ExtractLog::ExtractLog(FileXferSpec& spec)
    : spec_(spec), progress_("percent", static_cast<std::uint64_t>(percent), false) {}

void ExtractLog::reportProgress(LightweightString<wchar_t> const&, double fraction) {
    fraction_ = fraction;
    progress_.moveTo(static_cast<std::uint64_t>(fraction * percent));
    if (isInterrupted()) {
        spec_.requestStop();
    }
}

void ExtractLog::write(LightweightString<wchar_t> const& text, eOutputType type) {
    if (type == errorLine) {
        problem_ = narrowName(text);
    }
}

}  // namespace cli
