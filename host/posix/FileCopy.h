#pragma once

#include <sys/stat.h>

#include <cstdint>
#include <memory>
#include <string>

#include "host/posix/CopyDestination.h"
#include "host/posix/FileDescriptor.h"
#include "ole/os/FileManager.h"

/// Copies one file, once.
///
/// The quickest way that source and destination allow is taken: a shared clone, a copy inside the
/// kernel, or reading and writing. The last two go in pieces, with a call of the progress function
/// after each.
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
    Code fill();
    bool clone();
    Code copyPieces();
    long copyPieceInKernel();
    long copyPieceByBuffer();
    bool mayGoOn();

    std::string const sourcePath_;
    iFileManager::CopyProgress const progress_;
    void* const context_;

    FileDescriptor source_;
    CopyDestination destination_;
    struct stat sourceStatus_ {};
    std::uint64_t copied_ = 0;
    Piece copyPiece_ = &FileCopy::copyPieceInKernel;
    std::unique_ptr<char[]> buffer_;
};
