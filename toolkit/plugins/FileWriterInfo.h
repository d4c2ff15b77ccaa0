#pragma once

#include <vector>

#include "ole/Ox/OxObject.h"
#include "ole/Ox/OxString.h"
#include "ole/os/Errors.h"
#include "toolkit/catalogue/MaterialFilename.h"
#include "toolkit/image/ShotVideoMetadata.h"
#include "toolkit/services/ConfigB.h"
#include "toolkit/sound/AudioMetadata.h"

class FileWriteInstance;

namespace Ox {

/// What a new file is to be.
class FileWriterParams {
public:
    /// Its format, by the name under which a writer offers it ("wav", "mov-prores").
    LightweightString<char> format;
    DriveId drive;
    /// Of each stream of sound; empty for a file without.
    std::vector<Aud::Metadata> audioMetadata;
    /// Of its pictures; without a rate for a file that has none.
    ShotVideoMetadata video;
    /// What else the writer understands.
    configb options;
};

/// One writer of media files, and the registry of all of them.
///
/// Threads  Its operations come on any thread, several at once, for different files. They must not throw.
class FileWriterInfo : public virtual iObject {
public:
    /// The extensions of files of a format, without full stop, the usual one first; empty if the writer
    /// doesn't write it or doesn't mind what its files are called.
    [[nodiscard]] virtual std::vector<LightweightString<wchar_t>> getExtensions(
        LightweightString<char> const& format) const = 0;
    /// A cheap test whether it writes such a file.
    [[nodiscard]] virtual bool canWrite(FileWriterParams const& params) const = 0;
    /// Makes the file, in place of one of that name.
    ///
    /// @param file  set on success
    /// @return      1, or what went wrong
    [[nodiscard]] virtual OxResult openFile(LightweightString<wchar_t> const& filename,
                                            FileWriterParams const& params, Ptr<FileWriteInstance>& file) = 0;

    /// The extensions that the first writer has which knows the format; empty if none has any.
    [[nodiscard]] static std::vector<LightweightString<wchar_t>> getExtensionsForFormat(
        LightweightString<char> const& format);
    /// The first that can write such a file: by its priority number, those of one number in the order in
    /// which they were added. Empty if none can.
    [[nodiscard]] static Ptr<FileWriterInfo> getFileWriterFor(FileWriterParams const& params);
    /// False if there is none, or the registry holds it already.
    static bool add(Ptr<FileWriterInfo> const& writer, int priority);
    static bool remove(Ptr<FileWriterInfo> const& writer);
};

}  // namespace Ox
