#include "tools/playfile/ClipImporter.h"

#include <unistd.h>

#include "toolkit/catalogue/MaterialLink.h"
#include "tools/playfile/CommandError.h"
#include "tools/playfile/Interrupt.h"
#include "tools/playfile/MediaProbe.h"
#include "tools/playfile/Output.h"

namespace cli {
namespace {

constexpr std::size_t batchLength = 500;
/// After which a change is written although it is small, so that little is lost and others get their turn.
constexpr std::chrono::seconds longestCollecting{2};
/// Where no terminal shows how far the work has come, a line does so often.
constexpr std::chrono::seconds lineInterval{5};
constexpr std::uint64_t unknownTotal = 0;

/// What lies on a drive in place of media that are elsewhere.
bool isLinkFile(NewClip const& clip) {
    MediaFileInfo const& file = *clip.media.front().second.original;
    return file.physicalFilename.empty() && !MaterialLink::readLink(file.getLinkFileName()).empty();
}

}  // namespace

ClipImporter::ClipImporter(OpenedProject& opened, MaterialPlacer const& placer, bool probes,
                           ImportProblems& problems)
    : opened_(opened),
      placer_(placer),
      maker_(opened.project().getDrives()),
      probes_(probes),
      problems_(problems),
      progress_("clips", unknownTotal, false),
      nextLine_(Clock::now() + lineInterval),
      nextFlush_(Clock::now() + longestCollecting) {}

void ClipImporter::add(MediaGroup const& group) {
    checkForInterrupt();
    NewClip clip = maker_.make(group);
    ++found_;
    bool const isThere = opened_.project().isThere(clip);
    if (!isThere && isLinkFile(clip)) {
        ++linkFiles_;
    } else if (isThere || prepare(clip, group)) {
        batch_.push_back(std::move(clip));
    }
    if (batch_.size() >= batchLength || Clock::now() >= nextFlush_) {
        flush();
    }
    showProgress();
}

bool ClipImporter::prepare(NewClip& clip, MediaGroup const& group) {
    std::string const& path = group.originals.front().path;
    if (probes_ && !probeClip(clip, path)) {
        problems_.notOpened(path);
    }
    try {
        placer_.place(clip, group);
    } catch (CommandError const& error) {
        problems_.notPlaced(path, error.what());
        return false;
    }
    return true;
}

void ClipImporter::flush() {
    nextFlush_ = Clock::now() + longestCollecting;
    if (batch_.empty()) {
        return;
    }
    std::optional<AddedMedia> const added = opened_.project().addMissing(batch_);
    if (!added) {
        opened_.refuseChange();
    }
    added_.clips += added->clips;
    added_.proxies += added->proxies;
    written_ += batch_.size();
    batch_.clear();
}

void ClipImporter::showProgress() {
    progress_.moveTo(found_);
    if (::isatty(STDERR_FILENO) == 0 && Clock::now() >= nextLine_) {
        nextLine_ = Clock::now() + lineInterval;
        writeProblem("imported " + std::to_string(added_.clips) + " of " + std::to_string(found_) +
                     " clips that were found so far");
    }
}

Json ClipImporter::report() const {
    Json json;
    json["imported"] = added_.clips;
    json["proxies"] = added_.proxies;
    json["alreadyThere"] = written_ - added_.clips;
    return json;
}

}  // namespace cli
