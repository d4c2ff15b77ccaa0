#include "tests/plugins_wave/WaveFixture.h"

using playfile_wave::WaveReader;

void WaveFixture::open(std::string const& bytes) {
    folder.write(fileName, bytes);
    openAgain();
}

void WaveFixture::openAgain() {
    reader = WaveReader::open(folder.name(fileName), DecodeFormat(), OpenType::audio);
}

void WaveFixture::openGood(std::string const& bytes) {
    open(bytes);
    ASSERT_TRUE(reader) << complaint();
}

WaveFixture::Block WaveFixture::readBlock(std::uint64_t first, std::uint32_t count) {
    Block block;
    unsigned int skipStart = 0;
    unsigned int skipEnd = 0;
    auto buffer = Ox::makePtr<ByteBufferImpl>(0);
    block.result = reader->readAudioSamples(0, first, count, buffer, block.samplesRead, skipStart, skipEnd);
    if (buffer->getUsed() != 0) {
        block.bytes.assign(static_cast<char const*>(buffer->getBuffer()), buffer->getUsed());
    }
    return block;
}

std::string WaveFixture::readChannel(std::uint32_t channel, std::uint64_t first, std::uint32_t count) {
    AudioRequest wanted;
    wanted.channelInStream = wanted.channel = channel;
    wanted.startSample = first;
    wanted.numSamples = count;
    Ox::Ptr<FileReadInstance> file(reader);
    auto request = Ox::makePtr<AudioReadRequest>(file, wanted, count, nullptr);
    reader->readAudio(request);
    status = request->getRequestStatus();
    return request->getBuffer()
               ? std::string(static_cast<char const*>(request->getBuffer()), request->getUsed())
               : std::string();
}

std::string WaveFixture::complaint() const {
    std::string const start = "Wave: \"" + path() + "\" ";
    std::string text;
    for (std::string const& line : log.log()) {
        EXPECT_EQ(line.rfind(start, 0), 0U) << line;
        text += line.substr(std::min(start.size(), line.size()));
    }
    return text;
}

std::string WaveFixture::text(char const* key) const {
    LightweightString<char> value;
    return reader->metadata->extraConfig.in(key, value) == 0 ? value.str() : std::string("(none)");
}
