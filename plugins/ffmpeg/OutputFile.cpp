#include "plugins/ffmpeg/OutputFile.h"

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <new>
#include <utility>

#include "ole/os/OS.h"
#include "toolkit/services/Paths.h"
#include "toolkit/services/WriteProblem.h"

namespace playfile_ffmpeg {
namespace {

constexpr int bufferBytes = 1 << 20;

}  // namespace

std::unique_ptr<OutputFile> OutputFile::open(LightweightString<wchar_t> const& name, std::string& error) {
    iFileManager& files = OS()->getFileManager();
    bool const hasFolder = getPath(name).empty() || files.createDirectory(getPath(name));
    Ox::Ptr<iFile> const file = hasFolder ? files.openFile(name, iFile::readAccess | iFile::writeAccess,
                                                           iFile::createAlways, iFile::shared)
                                          : Ox::Ptr<iFile>();
    if (!file) {
        error = writeProblemText(lastWriteError()).c_str();
        return nullptr;
    }
    return std::make_unique<OutputFile>(name, file);
}

OutputFile::OutputFile(LightweightString<wchar_t> const& name, Ox::Ptr<iFile> file)
    : name_(name), file_(std::move(file)) {
    auto* const buffer = static_cast<uint8_t*>(av_malloc(bufferBytes));
    io_.reset(buffer == nullptr ? nullptr
                                : avio_alloc_context(buffer, bufferBytes, 1, this, nullptr, &write, &seek));
    if (!io_) {
        av_free(buffer);
        throw std::bad_alloc();
    }
}

OutputFile::~OutputFile() = default;

void OutputFile::IoDeleter::operator()(AVIOContext* io) const {
    av_freep(&io->buffer);
    avio_context_free(&io);
}

bool OutputFile::flush() {
    avio_flush(io_.get());
    return result_ == oxSuccess;
}

std::string OutputFile::problem() const {
    return result_ == oxSuccess ? "" : writeProblemText(result_).c_str();
}

void OutputFile::remove() {
    file_ = nullptr;
    OS()->getFileManager().deleteFile(name_);
}

int OutputFile::write(void* self, uint8_t* bytes, int byteCount) {
    auto& file = *static_cast<OutputFile*>(self);
    auto const wanted = static_cast<std::uint32_t>(byteCount);
    if (file.result_ != oxSuccess || !file.file_) {
        return AVERROR(EIO);
    }
    bool const isPlaced = file.file_->setPosition(static_cast<std::uint64_t>(file.position_));
    if (!isPlaced || file.file_->write(bytes, wanted) != wanted) {
        return file.fail();
    }
    file.position_ += byteCount;
    file.byteCount_ = std::max(file.byteCount_, file.position_);
    return byteCount;
}

/// Only notes the place: each write goes there itself.
int64_t OutputFile::seek(void* self, int64_t offset, int whence) {
    auto& file = *static_cast<OutputFile*>(self);
    switch (whence & ~AVSEEK_FORCE) {
        case AVSEEK_SIZE:
            return file.byteCount_;
        case SEEK_SET:
            file.position_ = offset;
            return offset;
        case SEEK_CUR:
            return file.position_ += offset;
        case SEEK_END:
            return file.position_ = file.byteCount_ + offset;
        default:
            return AVERROR(EINVAL);
    }
}

int OutputFile::fail() {
    result_ = lastWriteError();
    return result_ > iErrorService::systemErrorBase
               ? AVERROR(static_cast<int>(result_ - iErrorService::systemErrorBase))
               : AVERROR(EIO);
}

}  // namespace playfile_ffmpeg
