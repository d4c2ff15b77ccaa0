#include "tests/plugins_ffmpeg/MovBoxes.h"

namespace test {
namespace {

template <typename Number>
std::string bigEndian(std::initializer_list<Number> numbers) {
    std::string bytes;
    for (Number const number : numbers) {
        for (unsigned shift = sizeof(Number) * 8; shift > 0; shift -= 8) {
            bytes.push_back(static_cast<char>(number >> (shift - 8) & 0xff));
        }
    }
    return bytes;
}

}  // namespace

std::string be32(std::initializer_list<std::uint32_t> numbers) {
    return bigEndian(numbers);
}

std::string be64(std::initializer_list<std::uint64_t> numbers) {
    return bigEndian(numbers);
}

std::string box(std::string const& type, std::string const& content) {
    return be32({static_cast<std::uint32_t>(content.size() + 8)}) + type + content;
}

std::string longBox(std::string const& type, std::string const& content) {
    return be32({1}) + type + be64({content.size() + 16}) + content;
}

std::string rows(std::uint32_t count, std::string const& table) {
    return be32({0, count}) + table;
}

SampleTable fourSamples() {
    return {{"stsd", rows(1, "")},
            {"stsz", be32({0, 0, 4, 10, 20, 30, 40})},
            {"stco", rows(2, be32({100, 200}))},
            {"stsc", rows(1, be32({1, 2, 1}))}};
}

std::string track(std::uint32_t id, SampleTable const& table, std::string const& information) {
    std::string boxes;
    for (auto const& [type, content] : table) {
        boxes += box(type, content);
    }
    std::string const header = box("tkhd", be32({0, 0, 0, id}));
    return box("trak", header + box("mdia", box("minf", information + box("stbl", boxes))));
}

std::string references(std::vector<std::string> const& boxes) {
    std::string all;
    for (std::string const& each : boxes) {
        all += each;
    }
    return box("dinf", box("dref", rows(static_cast<std::uint32_t>(boxes.size()), all)));
}

/// The reference to the file itself gives way to a longer one, by which all boxes around it grow.
std::string referringElsewhere(std::string movie) {
    std::string const own = box("url ", be32({1}));
    std::string const other = box("url ", be32({0}) + std::string("file:elsewhere.mov\0", 19));
    std::size_t const at = movie.find(own, movie.rfind("moov"));
    movie.replace(at, own.size(), other);
    for (char const* const name : {"dref", "dinf", "minf", "mdia", "trak", "moov"}) {
        std::size_t const sizeAt = movie.rfind(name, at) - 4;
        std::uint32_t size = 0;
        for (std::size_t i = 0; i < 4; ++i) {
            size = size << 8 | static_cast<std::uint8_t>(movie[sizeAt + i]);
        }
        movie.replace(sizeAt, 4, be32({size + static_cast<std::uint32_t>(other.size() - own.size())}));
    }
    return movie;
}

std::string movie(std::string const& content) {
    return box("moov", content);
}

}  // namespace test
