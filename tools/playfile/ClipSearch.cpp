#include "tools/playfile/ClipSearch.h"

#include <algorithm>

#include "tools/playfile/CommandError.h"
#include "tools/playfile/MediaKind.h"
#include "tools/playfile/Output.h"
#include "tools/playfile/Text.h"
#include "tools/playfile/TextTable.h"

namespace cli {
namespace {

constexpr std::size_t mostDigits = 32;
constexpr std::uint32_t mostCandidates = 20;

bool areDigits(std::string const& text) {
    return !text.empty() && text.size() <= mostDigits &&
           text.find_first_not_of("0123456789abcdef") == std::string::npos;
}

void listCandidates(SqliteProject& project, std::vector<Cookie> const& clips) {
    TextTable table({"ID", "NAME"});
    for (std::size_t i = 0; i < clips.size() && i < mostCandidates; ++i) {
        auto const record = project.edits().find(clips[i]);
        table.add({clips[i].asString(true).str(), record ? narrowName(record->name) : ""});
    }
    writeLine(table.text());
}

}  // namespace

/// A name counts before digits.
Cookie findClip(SqliteProject& project, std::string const& wanted) {
    std::vector<Cookie> clips = project.findClips(wideName(wanted));
    std::string const digits = lowered(wanted);
    if (clips.empty() && areDigits(digits)) {
        clips = project.findClipsByDigits(digits, mostCandidates + 1);
    }
    if (clips.empty()) {
        throw CommandError("no clip is called " + inQuotes(wanted) +
                           ", and no id begins so; 'playfile project ls' lists them");
    }
    if (clips.size() > 1) {
        listCandidates(project, clips);
        bool const areMore = clips.size() > mostCandidates;
        throw CommandError(
            (areMore ? "more than " + std::to_string(mostCandidates) : std::to_string(clips.size())) +
            " clips are meant by " + inQuotes(wanted) + "; name one by more digits of its id");
    }
    return clips.front();
}

}  // namespace cli
