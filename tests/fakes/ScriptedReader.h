#pragma once

#include <functional>
#include <memory>
#include <string>

#include "tests/fakes/CallLog.h"
#include "tests/fakes/Gate.h"
#include "tests/fakes/ScriptedFile.h"
#include "toolkit/plugins/FileReaderInfo.h"

/// A reader that answers as it is told and records what it was asked.
///
/// Its calls appear as "A.canOpen name video", "A.openFile ..." and "A.getReadableTypes ...".
///
/// Threads  Its settings are made before it is used.
class ScriptedReader : public Ox::FileReaderInfo {
public:
    /// What one call of `openFile` is about.
    struct OpenCall {
        LightweightString<wchar_t> name;
        DecodeFormat const& format;
        OpenType type;
        /// Counts this reader's opens from 1.
        unsigned number;
    };

    ScriptedReader(std::string const& name, std::shared_ptr<CallLog> calls);

    Ox::Ptr<FileReadInstance> openFile(LightweightString<wchar_t> const& filename, DecodeFormat const& format,
                                       OpenType type) override;
    bool canOpen(LightweightString<wchar_t> const& filename, OpenType type) override;
    std::uint32_t getReadableTypes(LightweightString<wchar_t> const& filename, OpenType type,
                                   PlayFileMetadataRep* metadata, Aud::Metadata const& stream) override;

    bool canOpenFiles = true;
    std::uint32_t readableTypes = OpenType::both;
    /// Run at the start of each call, for waiting and throwing.
    std::function<void()> onCanOpen;
    std::function<void(OpenCall const&)> onOpen;
    /// Sees what getReadableTypes was given; its answer replaces `readableTypes`.
    std::function<std::uint32_t(PlayFileMetadataRep const&, Aud::Metadata const&)> onReadableTypes;
    /// False makes that open fail.
    std::function<bool(OpenCall const&)> opens = [](OpenCall const&) { return true; };
    /// Fills the metadata of what was opened. As it comes: 100 frames, 1000 samples, one description of
    /// each medium.
    std::function<void(PlayFileMetadataRep&)> describe;
    /// Makes the files that are opened, whole; empty: they are `ScriptedFile`s, described as above.
    std::function<Ox::Ptr<FileReadInstance>(OpenCall const&)> make;
    /// The script of the files that are opened.
    FileScriptPtr const script;

    [[nodiscard]] unsigned openCount() const { return openCount_; }
    /// Files of this reader that are alive.
    [[nodiscard]] unsigned aliveCount() const { return made_ - script->destroyedCount; }

private:
    std::shared_ptr<CallLog> const calls_;
    std::string const name_;
    std::atomic<unsigned> openCount_{0};
    std::atomic<unsigned> made_{0};
};
