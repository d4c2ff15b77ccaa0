/// A reader whose opens can be held, to be killed in the middle of one.
///
/// It takes files that end in ".slow". It says "inside NAME" when an open begins and "left NAME" before it
/// ends, on standard output, each in one write. If a FIFO of the file's name and ".gate" is there, the open
/// waits for a byte from it; if a file of the name and ".crash" is there, the open brings the process down.
#include <fcntl.h>
#include <unistd.h>

#include <cstdlib>
#include <string>

#include "files/FileReadInstance.h"
#include "toolkit/plugins/Plugin.h"

namespace {

void say(std::string const& text) {
    std::string const line = text + "\n";
    [[maybe_unused]] ssize_t const written = write(STDOUT_FILENO, line.data(), line.size());
}

/// Opened for both directions, so that the open itself never waits.
void passGate(std::string const& path) {
    int const gate = open((path + ".gate").c_str(), O_RDWR | O_CLOEXEC);
    if (gate != -1) {
        char byte = 0;
        [[maybe_unused]] ssize_t const count = read(gate, &byte, 1);
        close(gate);
    }
}

class SlowFile : public FileReadInstance {
public:
    using FileReadInstance::FileReadInstance;
    LightweightString<char> getDescription() const override { return "slow"; }
};

class SlowReader : public Ox::FileReaderInfo {
public:
    SlowReader() { readerName = LightweightString<char>("slow"); }

    Ox::Ptr<FileReadInstance> openFile(LightweightString<wchar_t> const& filename, DecodeFormat const& format,
                                       OpenType type) override {
        std::string const path = toUTF8(filename).str();
        std::string const name = path.substr(path.rfind('/') + 1);
        say("inside " + name);
        passGate(path);
        if (access((path + ".crash").c_str(), F_OK) == 0) {
            std::abort();
        }
        auto const file = Ox::makePtr<SlowFile>(filename, format, type);
        file->metadata->videoSampleCount = 1;
        file->metadata->videoInfoCount = 1;
        file->metadata->audioInfoCount = 1;
        say("left " + name);
        return file;
    }
    bool canOpen(LightweightString<wchar_t> const& filename, OpenType) override {
        return filename.view().ends_with(L".slow");
    }
    std::uint32_t getReadableTypes(LightweightString<wchar_t> const&, OpenType, PlayFileMetadataRep*,
                                   Aud::Metadata const&) override {
        return OpenType::both;
    }
};

}  // namespace

extern "C" int playfile_registerPlugin(std::uint32_t interfaceVersion, iPluginRegistrar& registrar) {
    if (interfaceVersion != pluginInterfaceVersion) {
        return 0;
    }
    registrar.addFileReader(Ox::makePtr<SlowReader>(), 100);
    return 1;
}
