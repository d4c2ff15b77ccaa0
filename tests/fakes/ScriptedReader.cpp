#include "tests/fakes/ScriptedReader.h"

#include <utility>

ScriptedReader::ScriptedReader(std::string const& name, std::shared_ptr<CallLog> calls)
    : script(std::make_shared<FileScript>(calls)), calls_(std::move(calls)), name_(name) {
    readerName = LightweightString<char>(name.c_str());
}

Ox::Ptr<FileReadInstance> ScriptedReader::openFile(LightweightString<wchar_t> const& filename,
                                                   DecodeFormat const& format, OpenType type) {
    calls_->add(name_ + ".openFile " + narrow(filename) + " " + type.asString());
    OpenCall const call{filename, format, type, ++openCount_};
    if (onOpen) {
        onOpen(call);
    }
    if (!opens(call)) {
        return {};
    }
    if (make) {
        return make(call);
    }
    ++made_;
    auto const file = Ox::makePtr<ScriptedFile>(narrow(filename), type, script, format);
    PlayFileMetadataRep& metadata = *file->metadata;
    metadata.videoSampleCount = 100;
    metadata.audioSampleCount = 1000;
    metadata.videoInfoCount = 1;
    metadata.audioInfoCount = 1;
    if (describe) {
        describe(metadata);
    }
    return file;
}

bool ScriptedReader::canOpen(LightweightString<wchar_t> const& filename, OpenType type) {
    calls_->add(name_ + ".canOpen " + narrow(filename) + " " + type.asString());
    if (onCanOpen) {
        onCanOpen();
    }
    return canOpenFiles;
}

std::uint32_t ScriptedReader::getReadableTypes(LightweightString<wchar_t> const& filename, OpenType type,
                                               PlayFileMetadataRep* metadata, Aud::Metadata const& stream) {
    calls_->add(name_ + ".getReadableTypes " + narrow(filename) + " " + type.asString());
    return onReadableTypes ? onReadableTypes(*metadata, stream) : readableTypes;
}
