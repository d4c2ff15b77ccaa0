#include "bench/sound/SndfileSide.h"

#include <sndfile.h>

#include <algorithm>
#include <memory>

namespace bench {
namespace {

using Samples = std::vector<int>;

/// One open file, and the place that it stands at.
class Handle {
public:
    explicit Handle(std::string const& path) : file_(sf_open(path.c_str(), SFM_READ, &info_)) {}

    [[nodiscard]] bool isOpen() const { return file_ != nullptr; }
    [[nodiscard]] std::size_t channels() const { return static_cast<std::size_t>(info_.channels); }

    /// All channels of a block, as they lie in the file.
    bool read(SoundBlock const& block, Samples& interleaved) {
        interleaved.resize(block.count * channels());
        auto const first = static_cast<sf_count_t>(block.first);
        if (first != position_ && sf_seek(file_.get(), first, SEEK_SET) != first) {
            return false;
        }
        position_ = first + block.count;
        return sf_readf_int(file_.get(), interleaved.data(), block.count) == block.count;
    }

private:
    struct Closer {
        void operator()(SNDFILE* file) const { sf_close(file); }
    };

    SF_INFO info_{};
    std::unique_ptr<SNDFILE, Closer> file_;
    sf_count_t position_ = 0;
};

void pick(Samples const& interleaved, std::size_t channel, std::size_t channels, Samples& samples) {
    samples.resize(interleaved.size() / channels);
    for (std::size_t i = 0; i < samples.size(); ++i) {
        samples[i] = interleaved[i * channels + channel];
    }
}

bool readOnePass(std::vector<Handle>& handles, SoundBlock const& block, Samples& interleaved,
                 std::vector<Samples>& channels) {
    if (!handles.front().read(block, interleaved)) {
        return false;
    }
    for (std::size_t channel = 0; channel < channels.size(); ++channel) {
        pick(interleaved, channel, channels.size(), channels[channel]);
    }
    return true;
}

bool readPerChannel(std::vector<Handle>& handles, SoundBlock const& block, Samples& interleaved,
                    std::vector<Samples>& channels) {
    for (std::size_t channel = 0; channel < channels.size(); ++channel) {
        if (!handles[channel].read(block, interleaved)) {
            return false;
        }
        pick(interleaved, channel, channels.size(), channels[channel]);
    }
    return true;
}

}  // namespace

Sample runSndfile(std::string const& path, eSndfileWay way, std::vector<SoundBlock> const& blocks) {
    Sample sample;
    std::vector<Handle> handles;
    handles.emplace_back(path);
    if (!handles.front().isOpen()) {
        return sample;
    }
    std::vector<Samples> channels(handles.front().channels());
    while (way == eSndfileWay::handlePerChannel && handles.size() < channels.size()) {
        handles.emplace_back(path);
    }
    auto const readBlock = way == eSndfileWay::onePass ? &readOnePass : &readPerChannel;
    Samples interleaved;
    measureTime(sample, [&] {
        return std::all_of(blocks.begin(), blocks.end(), [&](SoundBlock const& block) {
            return readBlock(handles, block, interleaved, channels);
        });
    });
    sample.reads = static_cast<std::uint32_t>(blocks.size());
    sample.peakBytes = peakResidentBytes();
    return sample;
}

bool canSndfileRead(std::string const& path) {
    return Handle(path).isOpen();
}

}  // namespace bench
