#include "tools/playfile/TransferOptions.h"

#include "host/sqlite/SqliteProject.h"
#include "tools/playfile/ClipSearch.h"
#include "tools/playfile/CommandError.h"

namespace cli {
namespace {

constexpr char const* originals = "originals";
constexpr char const* proxies = "proxies";
constexpr char const* all = "all";
constexpr std::uint32_t pageLength = 500;

}  // namespace

void TransferOptions::declare(CLI::App& command) {
    command.add_option("PROJECT", project_, "The project's file")->required();
    command.add_option("CLIPS", names_, "Names of clips, or the first digits of their ids");
    command.add_flag("--all", isForAll_, "All clips of the project");
    command.add_option("--media", media_, "Which media: 'originals', 'proxies' or 'all'")
        ->check(CLI::IsMember({originals, proxies, all}))
        ->capture_default_str();
}

eMediaTypes TransferOptions::mediaOf(std::string const& name) {
    return name == originals ? mediaOriginal : name == proxies ? mediaProxy : mediaAll;
}

eMediaTypes TransferOptions::media() const {
    return mediaOf(media_);
}

CookieVec TransferOptions::clips(SqliteProject& project) const {
    CookieVec cookies;
    if (names_.empty() && !isForAll_) {
        throw CommandError("no clip is named; name some, or ask for all with --all", exitUsage);
    }
    for (std::string const& name : names_) {
        cookies.add(findClip(project, name));
    }
    ClipSummary last;
    bool isOver = !isForAll_;
    while (!isOver) {
        std::vector<ClipSummary> const page = project.listClips(last, pageLength);
        for (ClipSummary const& clip : page) {
            cookies.add(clip.cookie);
            last = clip;
        }
        isOver = page.size() < pageLength;
    }
    return cookies;
}

}  // namespace cli
