/// A reader whose reads end without a call of their issuers, as for one that joins a read late: only the
/// request's status says that it is over. It takes files that end in ".late" and fails those of them that
/// hold the word "fail".
#include <fstream>
#include <string>

#include "files/FileReadInstance.h"
#include "toolkit/plugins/Plugin.h"
#include "video/VideoReadRequest.h"

namespace {

constexpr std::uint32_t width = 5;
constexpr std::uint32_t height = 3;

class LateFile : public FileReadInstance {
public:
    LateFile(LightweightString<wchar_t> const& name, DecodeFormat const& format, OpenType type)
        : FileReadInstance(name, format, type) {
        metadata->videoSampleCount = 1;
        metadata->videoInfoCount = 1;
    }
    LightweightString<char> getDescription() const override { return "late"; }

    using FileReadInstance::readVideo;
    unsigned int readVideo(Ox::Ptr<FrameBufferRep>&, Ox::Ptr<VideoReadRequest>& request) override {
        std::ifstream file(toUTF8(filename).str());
        std::string word;
        file >> word;
        Ox::Image::Surface const picture(width, height, Ox::Image::rgb24, 8, 24, Ox::Image::layoutTopDown,
                                         Ox::Image::allocateOwn, 0);
        request->setResultBuffer(Ox::makePtr<FrameBufferRep>(picture, request->frame));
        request->setRequestStatus(word == "fail" ? requestFailed : requestComplete);
        return takenOver;
    }
};

class LateReader : public Ox::FileReaderInfo {
public:
    LateReader() { readerName = LightweightString<char>("late"); }

    Ox::Ptr<FileReadInstance> openFile(LightweightString<wchar_t> const& filename, DecodeFormat const& format,
                                       OpenType type) override {
        return Ox::makePtr<LateFile>(filename, format, type);
    }
    bool canOpen(LightweightString<wchar_t> const& filename, OpenType) override {
        return filename.view().ends_with(L".late");
    }
    std::uint32_t getReadableTypes(LightweightString<wchar_t> const&, OpenType, PlayFileMetadataRep*,
                                   Aud::Metadata const&) override {
        return OpenType::video;
    }
};

}  // namespace

extern "C" int playfile_registerPlugin(std::uint32_t interfaceVersion, iPluginRegistrar& registrar) {
    if (interfaceVersion != pluginInterfaceVersion) {
        return 0;
    }
    registrar.addFileReader(Ox::makePtr<LateReader>(), 100);
    return 1;
}
