#include "tools/playfile/ClipPages.h"

#include <algorithm>

#include "tools/playfile/CommandError.h"
#include "tools/playfile/Interrupt.h"
#include "tools/playfile/Text.h"

namespace cli {
namespace {

constexpr std::uint32_t pageLength = 200;

}  // namespace

void forEachPage(SqliteProject& project, std::string const& path,
                 std::function<void(std::vector<ClipSummary> const&)> const& take) {
    std::uint64_t const countBefore = project.countClips();
    std::uint64_t count = 0;
    ClipSummary last;
    for (auto page = project.listClips(last, pageLength); !page.empty();
         page = project.listClips(last, pageLength)) {
        checkForInterrupt();
        take(page);
        count += page.size();
        last = page.back();
    }
    if (count < std::min(countBefore, project.countClips())) {
        throw CommandError("the project " + inQuotes(path) +
                           " can't be read to its end; 'playfile project check' tells whether it is damaged");
    }
}

}  // namespace cli
