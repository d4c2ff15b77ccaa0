/// A small but whole reader plug-in: PPM pictures ("P6"), one after the other in one file.
///
/// Put the built "reader_plugin.so" into a folder of the plug-in path, and every program that reads
/// through the library reads PPM files. A file may hold many pictures of one size; picture n is frame n.
#include <cstring>
#include <string_view>
#include <utility>
#include <vector>

#include "files/FileReadInstance.h"
#include "ole/Ox/OxMemHolder.h"
#include "ole/os/OS.h"
#include "toolkit/plugins/Plugin.h"
#include "toolkit/services/Log.h"
#include "toolkit/services/Paths.h"
#include "video/VideoReadRequest.h"

namespace {

/// Widths and heights beyond it are taken for damage.
constexpr std::uint32_t maxSide = 32768;
constexpr std::uint32_t maxHeaderBytes = 512;
constexpr std::uint32_t bytesPerPixel = 3;
/// The only maximum that is read: 8 bits a component.
constexpr std::uint32_t maxComponent = 255;
constexpr int triedBeforeOthers = 50;

/// The pixels of one picture.
class Pixels : public iMemHolder {
public:
    explicit Pixels(std::uint32_t byteCount) : bytes_(byteCount) {}

    [[nodiscard]] void* getBuffer() const override { return bytes_.data(); }
    [[nodiscard]] std::uint32_t getSize() const override { return static_cast<std::uint32_t>(bytes_.size()); }
    [[nodiscard]] std::uint32_t getUsed() const override { return getSize(); }
    std::uint32_t setUsed(std::uint32_t) override { return getUsed(); }

private:
    mutable std::vector<std::uint8_t> bytes_;
};

/// What the text before a picture's pixels says.
struct Header {
    std::uint32_t width = 0;
    std::uint32_t height = 0;
    std::uint32_t maximum = 0;
    /// Bytes of the text itself.
    std::uint32_t length = 0;

    [[nodiscard]] std::uint64_t pixelBytes() const { return std::uint64_t(width) * height * bytesPerPixel; }
    [[nodiscard]] bool isReadable() const {
        return width >= 1 && width <= maxSide && height >= 1 && height <= maxSide &&
               maximum == maxComponent && pixelBytes() <= UINT32_MAX;
    }
};

/// Reads the words of a header: numbers between white space, and comments from '#' to the line's end.
class HeaderParser {
public:
    HeaderParser(char const* text, std::uint32_t length) : text_(text), length_(length) {}

    /// False if this is no header that can be read.
    bool parse(Header& header) {
        if (length_ < 2 || std::memcmp(text_, "P6", 2) != 0) {
            return false;
        }
        at_ = 2;
        bool const hasNumbers = number(header.width) && number(header.height) && number(header.maximum);
        // One character of white space separates the header from the pixels.
        header.length = at_ + 1;
        return hasNumbers && isAtSpace() && header.isReadable();
    }

private:
    [[nodiscard]] bool isAtSpace() const {
        return at_ < length_ && std::string_view(" \t\r\n").find(text_[at_]) != std::string_view::npos;
    }
    [[nodiscard]] bool isAtDigit() const { return at_ < length_ && text_[at_] >= '0' && text_[at_] <= '9'; }

    void skipSpaceAndComments() {
        while (isAtSpace() || (at_ < length_ && text_[at_] == '#')) {
            bool const isComment = text_[at_] == '#';
            while (isComment && at_ + 1 < length_ && text_[at_] != '\n') {
                ++at_;
            }
            ++at_;
        }
    }

    bool number(std::uint32_t& value) {
        skipSpaceAndComments();
        bool const isThere = isAtDigit();
        for (value = 0; isAtDigit() && value < UINT32_MAX / 100; ++at_) {
            value = value * 10 + static_cast<std::uint32_t>(text_[at_] - '0');
        }
        return isThere && !isAtDigit();
    }

    char const* text_;
    std::uint32_t length_;
    std::uint32_t at_ = 0;
};

/// One open PPM file.
///
/// Threads  `readVideo` comes on one thread at a time, so the open file needs no lock.
class PpmFile : public FileReadInstance {
public:
    PpmFile(LightweightString<wchar_t> const& name, DecodeFormat const& format, Ox::Ptr<iFile> file)
        : FileReadInstance(name, format, OpenType::video), file_(std::move(file)) {}

    /// Finds the pictures and describes them; false if there is none.
    bool readIndex(std::uint64_t fileSize) {
        std::uint64_t offset = 0;
        Header header;
        while (headerAt(offset, header) && offset + header.length + header.pixelBytes() <= fileSize) {
            if (!pictures_.empty() && !isLikeTheFirst(header)) {
                Log("\"%ls\": picture %d has another size, it and what follows is left out\n",
                    filename.c_str(), static_cast<int>(pictures_.size()));
                break;
            }
            describe(header);
            pictures_.push_back(offset + header.length);
            offset = pictures_.back() + header.pixelBytes();
        }
        metadata->videoSampleCount = static_cast<std::uint32_t>(pictures_.size());
        return !pictures_.empty();
    }

    /// A request that states a size of its own gets the stored size all the same: the surface says what
    /// was delivered.
    using FileReadInstance::readVideo;
    unsigned int readVideo(Ox::Ptr<FrameBufferRep>& buffer, Ox::Ptr<VideoReadRequest>& request) override {
        // A file of one picture is asked for any frame.
        std::uint32_t const picture = pictures_.size() == 1 ? 0 : request->frame;
        if (picture >= pictures_.size() || !file_->setPosition(pictures_[picture])) {
            return noFrame;
        }
        auto const pixels = Ox::makePtr<Pixels>(metadata->bufferFormat.stride * metadata->image.height);
        if (file_->read(pixels->getBuffer(), pixels->getSize()) != pixels->getSize()) {
            return noFrame;
        }
        buffer = request->setUncompressedResult(pixels);
        return frameRead;
    }

    [[nodiscard]] LightweightString<char> getDescription() const override {
        return LightweightString<char>("PPM pictures");
    }

private:
    bool headerAt(std::uint64_t offset, Header& header) {
        char text[maxHeaderBytes];
        if (!file_->setPosition(offset)) {
            return false;
        }
        return HeaderParser(text, file_->read(text, maxHeaderBytes)).parse(header);
    }

    [[nodiscard]] bool isLikeTheFirst(Header const& header) const {
        return header.width == metadata->image.width && header.height == metadata->image.height;
    }

    void describe(Header const& header) {
        metadata->videoInfoCount = 1;
        metadata->image.width = header.width;
        metadata->image.height = header.height;
        metadata->image.dataFormat = Ox::Image::rgb24;
        metadata->image.bitsPerComponent = 8;
        metadata->image.bitsPerPixel = 8 * bytesPerPixel;
        metadata->image.coreDataSet = true;
        metadata->bufferFormat.stride = header.width * bytesPerPixel;
        metadata->videoSequence.frameRate = {25, 1};
    }

    Ox::Ptr<iFile> file_;
    /// Where the pixels of each picture begin.
    std::vector<std::uint64_t> pictures_;
};

/// Opens what is called "*.ppm" and begins like one.
class PpmReaderInfo : public Ox::FileReaderInfo {
public:
    PpmReaderInfo() { readerName = LightweightString<char>("PPM example"); }

    [[nodiscard]] Ox::Ptr<FileReadInstance> openFile(LightweightString<wchar_t> const& filename,
                                                     DecodeFormat const& format, OpenType type) override {
        iFileManager& files = OS()->getFileManager();
        Ox::Ptr<iFile> const file =
            files.openFile(filename, iFile::readAccess, iFile::existingOnly, iFile::shared);
        if (!file || !canOpen(filename, type)) {
            return {};
        }
        auto const opened = Ox::makePtr<PpmFile>(filename, format, file);
        if (!opened->readIndex(files.getFileSize(filename))) {
            Log("\"%ls\" holds no PPM picture of 8 bits a component\n", filename.c_str());
            return {};
        }
        return opened;
    }

    [[nodiscard]] bool canOpen(LightweightString<wchar_t> const& filename, OpenType type) override {
        return type == OpenType::video && getExtension(filename) == LightweightString<wchar_t>(L"ppm");
    }

    [[nodiscard]] std::uint32_t getReadableTypes(LightweightString<wchar_t> const& filename, OpenType type,
                                                 PlayFileMetadataRep*, Aud::Metadata const&) override {
        return canOpen(filename, type) ? OpenType(OpenType::video).mask() : 0;
    }
};

}  // namespace

/// A plug-in that was built for another interface offers nothing.
extern "C" int playfile_registerPlugin(std::uint32_t interfaceVersion, iPluginRegistrar& registrar) {
    if (interfaceVersion != pluginInterfaceVersion) {
        return 0;
    }
    registrar.addFileReader(Ox::makePtr<PpmReaderInfo>(), triedBeforeOthers);
    return 1;
}
