/// Writing samples, and stating their length often enough.
///
/// The header has the same size from the first byte on, with room for the sizes of a long file. Samples are
/// written behind those that are there, and only then does the header count them, so that a process that dies
/// in between leaves a file that is whole up to what its header says.
#include "plugins/wave/WaveWriter.h"

#include <algorithm>
#include <utility>

#include "ole/os/OS.h"
#include "plugins/wave/BroadcastChunk.h"
#include "toolkit/services/Log.h"
#include "toolkit/services/Paths.h"
#include "toolkit/services/WriteProblem.h"
#include "toolkit/sound/SampleFormat.h"

namespace playfile_wave {
namespace {

/// Of a second of sound, at most so much waits to be written and stated. A quarter is left for the buffer that the
/// recorder itself fills.
constexpr double secondsWaiting = 0.75;
constexpr std::uint64_t fewestBytes = 4096;
/// Most that is written before the header may have to count it.
constexpr std::uint64_t mostBytesAtOnce = 1 << 20;
constexpr std::uint32_t mostChannels = 0xFFFF;

OxResult refuse(LightweightString<wchar_t> const& name, char const* reason, OxResult result) {
    LogBoth("Wave: \"%ls\" can't be written: %s\n", name.c_str(), reason);
    return result;
}

OxResult refuse(LightweightString<wchar_t> const& name, OxResult error) {
    return refuse(name, writeProblemText(error).c_str(), error);
}

std::uint64_t bytesWaitingOf(Aud::WaveLayout const& layout) {
    double const bytesPerSecond = layout.format.sampleRate * layout.bytesPerFrame();
    return std::max(static_cast<std::uint64_t>(bytesPerSecond * secondsWaiting), fewestBytes);
}

/// False if a file of the family can't hold such samples.
bool makeLayout(Ox::FileWriterParams const& params, Aud::WaveLayout& layout) {
    if (params.audioMetadata.size() != 1) {
        return false;
    }
    layout.format = params.audioMetadata.front();
    layout.channels = layout.format.channels;
    layout.format.bytesPerSample = Aud::bytesPerSampleOf(layout.format.sampleFormat);
    layout.reservesLongSizes = true;
    if (params.format.view() == "bwf") {
        layout.chunks = makeBroadcastChunk(params.options);
    }
    return layout.channels >= 1 && layout.channels <= mostChannels && layout.format.bytesPerSample != 0 &&
           layout.format.sampleRate >= 1.0 && layout.format.sampleRate <= UINT32_MAX;
}

}  // namespace

OxResult WaveWriter::open(LightweightString<wchar_t> const& name, Ox::FileWriterParams const& params,
                          Ox::Ptr<FileWriteInstance>& file) {
    Aud::WaveLayout layout;
    if (!makeLayout(params, layout)) {
        return refuse(name, "it holds one stream of 1 to 65535 channels of uncompressed sound", oxFailure);
    }
    iFileManager& files = OS()->getFileManager();
    static_cast<void>(files.createDirectory(getPath(name)));
    Ox::Ptr<iFile> const opened =
        files.openFile(name, iFile::readAccess | iFile::writeAccess, iFile::createAlways, iFile::shared);
    if (!opened) {
        return refuse(name, lastWriteError());
    }
    auto const writer = Ox::makePtr<WaveWriter>(name, std::move(layout), opened);
    if (!writer->writeHeader()) {
        OxResult const error = refuse(name, lastWriteError());
        files.deleteFile(name);
        return error;
    }
    file = writer;
    return oxSuccess;
}

WaveWriter::WaveWriter(LightweightString<wchar_t> const& name, Aud::WaveLayout layout, Ox::Ptr<iFile> file)
    : FileWriteInstance(name),
      layout_(std::move(layout)),
      file_(std::move(file)),
      dataOffset_(layout_.header(0).size()),
      bytesBetweenHeaders_(bytesWaitingOf(layout_) / 2),
      spool_(std::make_unique<WriteSpool>(bytesWaitingOf(layout_), bytesBetweenHeaders_,
                                          [this] { return settle(); })) {
    metadata->audioStreams = {layout_.format};
    metadata->audioInfoCount = 1;
}

WaveWriter::~WaveWriter() {
    static_cast<void>(finish());
}

std::uint32_t WaveWriter::finish() {
    if (spool_) {
        result_ = spool_->waitUntilWritten();
        spool_ = nullptr;
        file_ = nullptr;
    }
    return result_;
}

LightweightString<char> WaveWriter::getDescription() const {
    return "WAVE";
}

std::uint32_t WaveWriter::writeAudioSamples(Ox::Ptr<iMemHolder>& data, Callback callback) {
    WriteSpool::Told told;
    if (callback != nullptr) {
        told = [callback](bool isWritten) { callback(isWritten ? requestComplete : requestFailed); };
    }
    if (!spool_) {
        return oxFailure;
    }
    return spool_->put(
        data->getUsed(), [this, data] { return append(*data); }, std::move(told));
}

void WaveWriter::reportWriteError(std::uint32_t status) {
    static_cast<void>(refuse(filename, status));
}

std::uint32_t WaveWriter::writeFrameData(Ox::Image::Surface const&) {
    return oxFailure;
}

OxResult WaveWriter::append(iMemHolder const& buffer) {
    auto const* bytes = static_cast<std::uint8_t const*>(buffer.getBuffer());
    std::uint64_t left = buffer.getUsed();
    while (left != 0) {
        std::uint64_t const part = std::min({left, bytesBetweenHeaders_, mostBytesAtOnce});
        if (!writeAt(dataOffset_ + dataBytes_, bytes, part)) {
            return fail();
        }
        dataBytes_ += part;
        bytes += part;
        left -= part;
        if (dataBytes_ - statedBytes_ >= bytesBetweenHeaders_ && !stateLength()) {
            return fail();
        }
    }
    return oxSuccess;
}

/// What a failure has left is stated, too, where that can be done.
OxResult WaveWriter::settle() {
    return statedBytes_ == dataBytes_ || stateLength() ? oxSuccess : fail();
}

OxResult WaveWriter::fail() {
    OxResult const error = lastWriteError();
    if (!hasFailed_) {
        hasFailed_ = true;
        reportWriteError(error);
    }
    return error;
}

bool WaveWriter::writeAt(std::uint64_t offset, void const* bytes, std::uint64_t byteCount) {
    if (position_ != offset && !file_->setPosition(offset)) {
        return false;
    }
    std::uint32_t const written = file_->write(bytes, static_cast<std::uint32_t>(byteCount));
    position_ = offset + written;
    return written == byteCount;
}

/// A chunk of odd length has a byte behind it, which the next samples take the place of.
bool WaveWriter::stateLength() {
    std::uint8_t const nothing = 0;
    if (dataBytes_ % 2 != 0 && !writeAt(dataOffset_ + dataBytes_, &nothing, 1)) {
        return false;
    }
    return writeHeader();
}

bool WaveWriter::writeHeader() {
    std::vector<std::uint8_t> const header = layout_.header(dataBytes_);
    if (!writeAt(0, header.data(), header.size())) {
        return false;
    }
    statedBytes_ = dataBytes_;
    return true;
}

}  // namespace playfile_wave
