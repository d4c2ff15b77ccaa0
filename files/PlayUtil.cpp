/// The choice of a reader.
///
/// Finding out what a file is and choosing who reads it are two passes. In the first, the first reader
/// that can open the file at all makes a probe, whose metadata describes the file. In the second, every
/// reader is asked, with that metadata in hand, whether it can serve the medium. So a reader that only
/// decodes can borrow the metadata of one that only parses. `best` is the reader that is good enough so far;
/// the pass ends when it comes to it.
#include "files/PlayUtil.h"

#include "ole/os/OS.h"
#include "playfile/Trace.h"
#include "toolkit/catalogue/SystemCache.h"
#include "toolkit/plugins/FileReaderInfo.h"
#include "toolkit/services/Log.h"
#include "toolkit/services/TimedTask.h"

namespace {

using FilePtr = Ox::Ptr<FileReadInstance>;
using ReaderPtr = Ox::Ptr<Ox::FileReaderInfo>;

/// What is asked for, and under which names.
struct OpenRequest {
    LightweightString<wchar_t> name;
    LightweightString<char> shown;
    DecodeFormat const& format;
    OpenType type;
    unsigned int streamIndex;
};

/// Where the passes stand.
struct Choice {
    FilePtr result;
    Ox::Ptr<PlayFileMetadataRep> firstMetadata;
    ReaderPtr best;
};

LightweightString<char> displayNameOf(LightweightString<wchar_t> const& name) {
    return toUTF8(OS()->getFileManager().getDisplayFilename(name));
}

std::uint32_t readableTypesOf(Ox::FileReaderInfo& reader, OpenRequest const& request,
                              FileReadInstance const& file) {
    auto const& streams = file.metadata->audioStreams;
    Aud::Metadata const stream =
        request.streamIndex < streams.size() ? streams[request.streamIndex] : Aud::Metadata();
    return reader.getReadableTypes(request.name, request.type, file.metadata.get(), stream);
}

bool coversAll(std::uint32_t mask, OpenType type) {
    return (mask & type.mask()) == type.mask();
}

/// True if `file`'s reader knows nothing of the one medium that is wanted.
bool mustBorrow(FileReadInstance const& file, OpenType type) {
    return (type == OpenType::video && file.metadata->videoInfoCount == 0) ||
           (type == OpenType::audio && file.metadata->audioInfoCount == 0);
}

/// An exception counts as a failure, unless the file had come before it.
void openGuarded(Ox::FileReaderInfo& reader, OpenRequest const& request, FilePtr& file) {
    try {
        file = reader.openFile(request.name, request.format, request.type);
    } catch (...) {
        LogBoth("Exception opening \"%s\"\n", request.shown.c_str());
    }
}

/// First pass: false if no reader can open the file.
bool probe(OpenRequest const& request, Choice& choice) {
    for (std::uint8_t index = 0; index < Ox::FileReaderInfo::getNumFileReaders(); ++index) {
        ReaderPtr const reader = Ox::FileReaderInfo::getFileReaders(index);
        if (!reader || !reader->canOpen(request.name, request.type)) {
            continue;
        }
        openGuarded(*reader, request, choice.result);
        if (choice.result) {
            choice.firstMetadata = choice.result->metadata;
            choice.best = reader;
            return true;
        }
    }
    return false;
}

/// Opens the file with another reader than the one that is best so far, and takes that if it serves
/// better; true if the pass is over.
bool reopen(ReaderPtr const& reader, std::uint32_t mask, OpenRequest const& request, Choice& choice) {
    LogBoth("reopen \"%s\" with %s for %s\n", request.shown.c_str(), reader->readerName.c_str(),
            request.type.asString());
    FilePtr const other = reader->openFile(request.name, request.format, request.type);
    if (!other) {
        return false;
    }
    bool const borrows = mustBorrow(*other, request.type);
    if (!borrows && choice.best) {
        return false;
    }
    choice.result = other;
    choice.result->readableTypes = mask;
    choice.best = reader;
    if (borrows) {
        choice.result->updateMetadataFrom(choice.firstMetadata);
    }
    return borrows;
}

/// Second pass.
void choose(OpenRequest const& request, Choice& choice) {
    for (std::uint8_t index = 0; index < Ox::FileReaderInfo::getNumFileReaders(); ++index) {
        ReaderPtr const reader = Ox::FileReaderInfo::getFileReaders(index);
        if (!reader) {
            continue;
        }
        std::uint32_t const mask = readableTypesOf(*reader, request, *choice.result);
        if (!coversAll(mask, request.type)) {
            continue;
        }
        if (reader == choice.best) {
            choice.result->readableTypes = mask;
            return;
        }
        if (reopen(reader, mask, request, choice)) {
            return;
        }
    }
}

}  // namespace

FilePtr PlayUtil::openRead(LightweightString<wchar_t> const& filename, DecodeFormat const& format,
                           OpenType type, unsigned int streamIndex) {
    TimedSection const section(TimedTaskManager::getTimedTask("PlayUtil"), "openRead");
    LightweightString<wchar_t> const name = OS()->getFileManager().getMountedFilename(filename);
    OpenRequest const request{name, displayNameOf(name), format, type, streamIndex};
    TraceSlice slice("files", "choose reader");
    slice.with("media", 0, type.asString()).of(name);
    Choice choice;
    if (!probe(request, choice)) {
        LogBoth("PlayUtil::openRead() : Failed to open (all readers) \"%s\" for %s\n", request.shown.c_str(),
                type.asString());
        return {};
    }
    if (!coversAll(readableTypesOf(*choice.best, request, *choice.result), type)) {
        choice.best = nullptr;
    }
    choose(request, choice);
    if (!choice.best || (choice.result->readableTypes & type.mask()) == 0) {
        LogBoth("PlayUtil::openRead() : Failed to open \"%s\" for %s\n", request.shown.c_str(),
                type.asString());
        return {};
    }
    slice.by(choice.best->readerName);
    LogBoth("Open   \"%s\" with %s for %s\n", request.shown.c_str(), choice.best->readerName.c_str(),
            type.asString());
    return choice.result;
}

FilePtr PlayUtil::openRead(Cookie const& cookie, DecodeFormat const& format, unsigned int streamIndex) {
    LightweightString<wchar_t> filename;
    if (!SystemCache::instance()->findFileForCookie(cookie, filename, format)) {
        return {};
    }
    return openRead(filename, format, OpenType::audio, streamIndex);
}

OpenType PlayUtil::getType(Cookie const& cookie) {
    switch (cookie.type()) {
        case 'S':
            return OpenType::audio;
        case 'V':
            return OpenType::video;
        default:
            return OpenType::unknown;
    }
}
