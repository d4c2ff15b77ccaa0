#include "header/MaterialFile.h"

#include <array>
#include <cstring>

#include "ole/os/OS.h"
#include "toolkit/services/Log.h"

namespace {

/// What a broken recorder leaves where a length should be.
constexpr std::uint32_t impossibleLength = 0xFF000000;

}  // namespace

OxResult MaterialFile::openFile(LightweightString<wchar_t> const& name, unsigned int access,
                                iFile::eOpenBehaviour behaviour, iFile::eShareMode share) {
    file = OS()->getFileManager().openFile(name, access, behaviour, share);
    if (!file) {
        return OS()->getErrors().getLastError();
    }
    positionAt(0);
    isOpen = true;
    if (Ox::Ptr<iVolume> const volume = OS()->getFileManager().getVolume(name)) {
        blockSize = volume->getBlockSize();
    }
    return oxSuccess;
}

bool MaterialFile::readNextFourCC(unsigned int& fourCC) {
    return read(&fourCC, sizeof(fourCC)) != 0;
}

bool MaterialFile::readNextFourCCAndSize(unsigned int& fourCC, unsigned int& size) {
    bool const hasCode = readNextFourCC(fourCC);
    if (hasCode && read(&size, sizeof(size)) == 0) {
        return false;
    }
    size = (size + 1) & ~1U;
    return hasCode;
}

bool MaterialFile::readRIFFChunkHeader(unsigned int& fourCC, unsigned int& length) {
    std::array<std::uint32_t, 2> header{};
    if (read(header.data(), sizeof(header)) < sizeof(header)) {
        return false;
    }
    fourCC = header[0];
    length = header[1];
    if (length == impossibleLength) {
        Log("found chunk length 0xFF000000\n");
        return false;
    }
    return true;
}
