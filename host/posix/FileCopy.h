#pragma once

#include <sys/stat.h>

#include <cstdint>
#include <memory>
#include <string>

#include "host/posix/FileDescriptor.h"
#include "ole/os/FileManager.h"

/// Copies one file, once.
///
/// The quickest way that source and destination allow is taken: a shared clone, a copy inside the
/// kernel, or reading and writing. The last two go in pieces, with a call of the progress function
/// after each, and each piece is sent on to the device as soon as it is written, so that the closing
/// flush is short.
///
/// Units   Bytes.
/// Errors  The reason of every failure is kept for the error service.
class FileCopy {
public:
    /// @param progress  may be null
    FileCopy(std::string source, std::string destination, iFileManager::CopyProgress progress, void* context);

    /// See `iFileManager::copyFile`.
    [[nodiscard]] iFileManager::eCopyRC run(bool replaceExisting);

private:
    using Code = iFileManager::eCopyRC;
    /// What one piece has come to: its bytes, 0 at the end, or negative on an error.
    using Piece = long (FileCopy::*)();

    bool openSource();
    bool openDestination(bool replaceExisting);
    bool openExistingDestination();
    Code fill();
    bool clone();
    Code copyPieces();
    long copyPieceInKernel();
    long copyPieceByBuffer();
    bool writeBuffer(long byteCount);
    void sendToDevice(std::uint64_t from, std::uint64_t byteCount);
    bool mayGoOn();
    void removeDestination();

    std::string const sourcePath_;
    std::string const destinationPath_;
    iFileManager::CopyProgress const progress_;
    void* const context_;

    FileDescriptor source_;
    FileDescriptor destination_;
    struct stat sourceStatus_ {};
    std::uint64_t copied_ = 0;
    Piece copyPiece_ = &FileCopy::copyPieceInKernel;
    std::unique_ptr<char[]> buffer_;
};
