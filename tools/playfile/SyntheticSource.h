#pragma once

#include <cstdint>
#include <string>

namespace cli {

/// What a made source shows and sounds like.
struct SyntheticShape {
    double seconds = 10.0;
    std::uint32_t width = 640;
    std::uint32_t height = 360;
    std::string rate = "25";
    std::uint32_t channels = 2;
    std::uint32_t bits = 24;
};

/// A source that comes from no camera: each picture bears its number, each channel a tone of its own. It is a
/// file of the synth plug-in, which lies in a folder of its own and goes with the object.
///
/// Errors  CommandError, if it can't be made.
class SyntheticSource {
public:
    explicit SyntheticSource(SyntheticShape const& shape);
    ~SyntheticSource();
    SyntheticSource(SyntheticSource const&) = delete;
    SyntheticSource& operator=(SyntheticSource const&) = delete;

    [[nodiscard]] std::string const& path() const { return path_; }

private:
    std::string folder_;
    std::string path_;
};

}  // namespace cli
