#pragma once

#include <cstdint>

#include "ole/os/Errors.h"
#include "ole/os/FileManager.h"

/// Base of the readers of chunked container files, RIFF and its relatives: one open file with the block
/// size of its volume, positioning, raw reads and writes, and the reading of chunk headers.
///
/// Four-character codes and lengths are taken as they lie in the file, little-endian.
///
/// Threads  One at a time.
/// Units    Bytes.
/// Errors   Short reads show in the results alone. Every operation but `openFile` requires an open file.
class MaterialFile : public iVirtual {
public:
    /// In force until the volume of a file is known.
    static constexpr std::uint32_t defaultBlockSize = 512;

    MaterialFile() = default;
    MaterialFile(MaterialFile const&) = delete;
    MaterialFile& operator=(MaterialFile const&) = delete;

    /// Opens a file in place of the one that was open, and goes to its start.
    ///
    /// @param access  mask of `iFile::readAccess` and `iFile::writeAccess`
    /// @return 1, or the OS object's last error
    [[nodiscard]] OxResult openFile(LightweightString<wchar_t> const& name, unsigned int access,
                                    iFile::eOpenBehaviour behaviour, iFile::eShareMode share);

    /// Goes to an absolute offset; false if the system refuses it.
    bool positionAt(unsigned long offset) { return file->setPosition(offset); }
    /// How many bytes were read.
    unsigned int read(void* buffer, unsigned int size) { return file->read(buffer, size); }
    /// How many bytes were written.
    unsigned int write(void* buffer, unsigned int size) { return file->write(buffer, size); }
    [[nodiscard]] std::uint64_t getPosition() const { return file->getPosition(); }

    /// Reads a four-character code; false at the end of the file.
    ///
    /// Deliberate  A read of 1 to 3 bytes is true, and leaves the rest of `fourCC` as it was.
    bool readNextFourCC(unsigned int& fourCC);
    /// Reads a code and a length, which is rounded up to an even number; false where either is missing.
    ///
    /// Deliberate  Without a code `size` is rounded all the same; without a length it isn't.
    bool readNextFourCCAndSize(unsigned int& fourCC, unsigned int& size);
    /// Reads a chunk's code and length, unrounded; false, with both untouched, if not all 8 bytes are
    /// there.
    ///
    /// Deliberate  A length of 0xFF000000 is logged and answered with false, with both set.
    bool readRIFFChunkHeader(unsigned int& fourCC, unsigned int& length);

    /// Reads what the file says about itself, from its start; false if it isn't of the subclass's format.
    [[nodiscard]] virtual bool readHeaders() = 0;

protected:
    std::uint32_t blockSize = defaultBlockSize;
    /// True once `openFile` has succeeded.
    bool isOpen = false;
    Ox::Ptr<iFile> file;
};
