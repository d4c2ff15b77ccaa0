#include "tools/playfile/Clip.h"

#include "files/PlayFileCache.h"
#include "files/QuarantinedFiles.h"
#include "toolkit/plugins/FileReaderInfo.h"
#include "tools/playfile/CommandError.h"
#include "tools/playfile/Output.h"
#include "tools/playfile/Session.h"
#include "tools/playfile/Text.h"

namespace cli {
namespace {

constexpr std::uint8_t firstVideoChannel = 0;
constexpr std::uint8_t firstAudioChannel = 1;
constexpr unsigned firstAudioStream = 0;

/// What the first reader makes of the file that opens it at all; empty if none does.
Ox::Ptr<FileReadInstance> probe(LightweightString<wchar_t> const& name) {
    for (std::uint8_t index = 0; index < Ox::FileReaderInfo::getNumFileReaders(); ++index) {
        Ox::Ptr<Ox::FileReaderInfo> const reader = Ox::FileReaderInfo::getFileReaders(index);
        if (!reader || !reader->canOpen(name, OpenType::video)) {
            continue;
        }
        if (Ox::Ptr<FileReadInstance> file =
                reader->openFile(name, DecodeFormat::getDefault(), OpenType::video)) {
            return file;
        }
    }
    return {};
}

}  // namespace

Clip::Clip(Session& session, std::string const& argument)
    : input_(argument),
      videoCookie_(input_.cookie('V', firstVideoChannel)),
      audioCookie_(input_.cookie('S', firstAudioChannel)),
      pluginPath_(session.pluginPath()) {
    input_.requireReadable();
    session.addToCatalogue(videoCookie_, input_.widePath());
    session.addToCatalogue(audioCookie_, input_.widePath());
    wasQuarantined_ = QuarantinedFiles::contains(input_.widePath());
    if (wasQuarantined_) {
        writeProblem("warning: an earlier opening of " + inQuotes(input_.path()) +
                     " failed or never came to its end; 'playfile quarantine release' forgets that");
    }
}

Ox::Ptr<FileReadInstance> Clip::openVideo() const {
    Ox::Ptr<FileReadInstance> file =
        PlayFileCache::Shared()->open(videoCookie_, DecodeFormat::getDefault(), firstAudioStream);
    if (file) {
        return file;
    }
    if (!describe()) {
        refuse();
    }
    throw CommandError(inQuotes(input_.path()) + " has no video stream; 'playfile info' tells what it holds");
}

Ox::Ptr<FileReadInstance> Clip::openAny() const {
    PlayFileCache& cache = *PlayFileCache::Shared();
    Ox::Ptr<FileReadInstance> file = cache.open(videoCookie_, DecodeFormat::getDefault(), firstAudioStream);
    if (!file) {
        file = cache.open(audioCookie_, DecodeFormat::getDefault(), firstAudioStream);
    }
    if (!file) {
        file = describe();
    }
    if (!file) {
        refuse();
    }
    return file;
}

/// Asks the readers without the cache, which only opens a file for a medium that it can serve. A file
/// that opens well and merely lacks a medium has done nothing to be marked for.
Ox::Ptr<FileReadInstance> Clip::describe() const {
    Ox::Ptr<FileReadInstance> file = probe(input_.widePath());
    if (file) {
        QuarantinedFiles::remove(input_.widePath());
    }
    return file;
}

void Clip::refuse() const {
    if (Ox::FileReaderInfo::getNumFileReaders() == 0) {
        throw CommandError("cannot open " + inQuotes(input_.path()) + ": no reader was loaded from " +
                           inQuotes(pluginPath_) + "; name the folder of the plug-ins with --plugin-path");
    }
    throw CommandError("cannot open " + inQuotes(input_.path()) +
                       ": no reader knows it; check that it is a whole media file (--verbose tells more)");
}

}  // namespace cli
