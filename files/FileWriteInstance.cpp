#include "files/FileWriteInstance.h"

std::uint32_t FileWriteInstance::writeSurface(Ox::Ptr<CapturePacket>& packet) {
    std::uint32_t const status = writeFrameData(packet->getSurface());
    if (status != oxSuccess) {
        reportWriteError(status);
    }
    return status;
}

std::uint32_t FileWriteInstance::finish() {
    return oxSuccess;
}
