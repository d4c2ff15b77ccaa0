/// Records sound through the cache until it is killed, and says after each buffer how many samples the writer
/// has taken:  PLUGINS FOLDER. First it says the file's name.
#include <unistd.h>

#include <cstring>
#include <string>

#include "files/FileWriteInstance.h"
#include "files/PlayFileCache.h"
#include "files/PlayUtil.h"
#include "tests/support/WaveMaker.h"
#include "toolkit/catalogue/DiskManager.h"
#include "toolkit/plugins/Plugin.h"
#include "toolkit/sound/ByteBufferImpl.h"

namespace {

constexpr test::wave::Shape shape{1, Aud::sampleS24, 48000};
constexpr std::uint64_t bufferSamples = 1000;

void say(std::string const& text) {
    std::string const line = text + "\n";
    [[maybe_unused]] ssize_t const written = write(STDOUT_FILENO, line.data(), line.size());
}

Ox::FileWriterParams params() {
    Ox::FileWriterParams params;
    params.format = "wav";
    params.drive = DriveId('R');
    Aud::Metadata stream;
    stream.channels = 1;
    stream.sampleFormat = shape.format;
    stream.bytesPerSample = shape.sampleBytes();
    stream.bitsPerSample = 24;
    stream.sampleRate = shape.rate;
    params.audioMetadata = {stream};
    return params;
}

}  // namespace

int main(int, char** arguments) {
    loadPlugins(fromUTF8(arguments[1]));
    DiskManager::instance().setDriveRoot('R', fromUTF8(arguments[2]));
    Ox::Ptr<FileWriteInstance> file = PlayFileCache::create(Cookie(Ox::UUID::generate(), 'S', 1), params());
    if (!file) {
        return 1;
    }
    say(toUTF8(file->filename).c_str());
    for (std::uint64_t first = 0;; first += bufferSamples) {
        std::string const bytes = test::wave::samples(shape, first, bufferSamples);
        auto const buffer = Ox::makePtr<ByteBufferImpl>(static_cast<std::uint32_t>(bytes.size()));
        buffer->append(bytes.data(), static_cast<std::uint32_t>(bytes.size()));
        Ox::Ptr<iMemHolder> data = buffer;
        if (PlayUtil::OxAudioSamples_write(file, data, nullptr) != oxSuccess) {
            return 1;
        }
        say(std::to_string(first + bufferSamples));
    }
}
