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

/// What the first reader makes of the file that opens it for that medium; empty if none does.
Ox::Ptr<FileReadInstance> probe(LightweightString<wchar_t> const& name, OpenType type) {
    for (std::uint8_t index = 0; index < Ox::FileReaderInfo::getNumFileReaders(); ++index) {
        Ox::Ptr<Ox::FileReaderInfo> const reader = Ox::FileReaderInfo::getFileReaders(index);
        if (!reader || !reader->canOpen(name, type)) {
            continue;
        }
        if (Ox::Ptr<FileReadInstance> file = reader->openFile(name, DecodeFormat::getDefault(), type)) {
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

Cookie Clip::addChannel(Session& session, std::uint8_t channel) const {
    Cookie const cookie = input_.cookie('S', channel);
    session.addToCatalogue(cookie, input_.widePath());
    return cookie;
}

Ox::Ptr<FileReadInstance> Clip::openVideo() const {
    if (Ox::Ptr<FileReadInstance> file = open(videoCookie_)) {
        return file;
    }
    if (!describe()) {
        refuse();
    }
    throw CommandError(inQuotes(input_.path()) + " has no video stream; 'playfile info' tells what it holds");
}

Ox::Ptr<FileReadInstance> Clip::openAudio() const {
    if (Ox::Ptr<FileReadInstance> file = open(audioCookie_)) {
        return file;
    }
    if (!describe()) {
        refuse();
    }
    throw CommandError(inQuotes(input_.path()) + " has no sound; 'playfile info' tells what it holds");
}

Ox::Ptr<FileReadInstance> Clip::tryVideo() const {
    Ox::Ptr<FileReadInstance> file = open(videoCookie_);
    if (!file) {
        static_cast<void>(describe());
    }
    return file;
}

Ox::Ptr<FileReadInstance> Clip::trySound() const {
    Ox::Ptr<FileReadInstance> file = open(audioCookie_);
    if (!file) {
        static_cast<void>(describe());
    }
    return file;
}

Ox::Ptr<FileReadInstance> Clip::openAny() const {
    Ox::Ptr<FileReadInstance> file = open(videoCookie_);
    if (!file) {
        file = open(audioCookie_);
    }
    if (!file) {
        file = describe();
    }
    if (!file) {
        refuse();
    }
    return file;
}

Ox::Ptr<FileReadInstance> Clip::open(Cookie const& cookie) const {
    return PlayFileCache::Shared()->open(cookie, DecodeFormat::getDefault(), firstAudioStream);
}

/// Asks the readers without the cache, which only opens a file for a medium that it can serve. A file
/// that opens well and merely lacks a medium has done nothing to be marked for.
Ox::Ptr<FileReadInstance> Clip::describe() const {
    Ox::Ptr<FileReadInstance> file = probe(input_.widePath(), OpenType::video);
    if (!file) {
        file = probe(input_.widePath(), OpenType::audio);
    }
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
