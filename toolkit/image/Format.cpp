#include "toolkit/image/Format.h"

#include <initializer_list>
#include <map>
#include <mutex>
#include <shared_mutex>
#include <string>

#include "ole/os/Immortal.h"

namespace Ox::Image {
namespace {

/// The known formats. Entries are never taken out, so a pointer to one is good for ever.
struct Table {
    Table();
    std::shared_mutex lock;
    std::map<Format, FormatDescription> formats;

    void add(FormatDescription const& description) {
        formats.emplace(formatFor(description.name.view()), description);
    }
    void addPacked(char const* name, unsigned bitsPerComponent, unsigned bitsPerPixel, unsigned bitsApart);
    void addPlanar(std::string const& name, unsigned bits, unsigned planes, unsigned log2Width,
                   unsigned log2Height);
    void addYuv(std::string const& name, unsigned log2Width, unsigned log2Height,
                std::initializer_list<unsigned> depths);
    void addGbr(unsigned bits, char const* kind);
    void addGray();
    void addSpecial();
};

std::string depthSuffix(unsigned bits) {
    return bits == 8 ? std::string() : std::to_string(bits) + "le";
}

void Table::addPacked(char const* name, unsigned bitsPerComponent, unsigned bitsPerPixel,
                      unsigned bitsApart) {
    FormatDescription description;
    description.name = name;
    description.bitsPerComponent = static_cast<std::uint16_t>(bitsPerComponent);
    description.bitsPerPixel = static_cast<std::uint16_t>(bitsPerPixel);
    description.planeCount = 1;
    description.sampleBits[0] = static_cast<std::uint8_t>(bitsApart);
    add(description);
}

/// Planes 1 and 2 are the ones with fewer samples; a fourth plane is as large as the first.
void Table::addPlanar(std::string const& name, unsigned bits, unsigned planes, unsigned log2Width,
                      unsigned log2Height) {
    FormatDescription description;
    description.name = LightweightString<char>(name);
    description.bitsPerComponent = static_cast<std::uint16_t>(bits);
    description.planeCount = planes;
    unsigned pixelBits = 0;
    for (unsigned plane = 0; plane < planes; ++plane) {
        bool const isSmall = plane == 1 || plane == 2;
        description.sampleBits[plane] = bits > 16 ? 32 : (bits > 8 ? 16 : 8);
        description.log2Width[plane] = static_cast<std::uint8_t>(isSmall ? log2Width : 0);
        description.log2Height[plane] = static_cast<std::uint8_t>(isSmall ? log2Height : 0);
        pixelBits += isSmall ? bits >> (log2Width + log2Height) : bits;
    }
    description.bitsPerPixel = static_cast<std::uint16_t>(pixelBits);
    add(description);
}

void Table::addYuv(std::string const& name, unsigned log2Width, unsigned log2Height,
                   std::initializer_list<unsigned> depths) {
    for (unsigned const bits : depths) {
        addPlanar("yuv" + name + "p" + depthSuffix(bits), bits, 3, log2Width, log2Height);
    }
    for (unsigned const bits : {8U, 9U, 10U, 12U, 16U}) {
        addPlanar("yuva" + name + "p" + depthSuffix(bits), bits, 4, log2Width, log2Height);
    }
}

void Table::addGbr(unsigned bits, char const* kind) {
    std::string const suffix = bits == 32 ? "f32le" : depthSuffix(bits);
    addPlanar(std::string(kind) + suffix, bits, std::string(kind) == "gbrap" ? 4 : 3, 0, 0);
}

void Table::addGray() {
    for (unsigned const bits : {8U, 9U, 10U, 12U, 14U, 16U}) {
        addPlanar("gray" + depthSuffix(bits), bits, 1, 0, 0);
    }
    addPlanar("grayf32le", 32, 1, 0, 0);
    addPacked("ya8", 8, 16, 16);
    addPacked("ya16le", 16, 32, 32);
    addPacked("monow", 1, 1, 1);
    addPacked("monob", 1, 1, 1);
}

void Table::addSpecial() {
    for (char const* const name : {"nv12", "nv21", "p010le", "p016le"}) {
        bool const isWide = name[0] == 'p';
        FormatDescription description;
        description.name = name;
        description.bitsPerComponent = isWide ? (name[2] == '1' && name[3] == '0' ? 10 : 16) : 8;
        description.bitsPerPixel = static_cast<std::uint16_t>(description.bitsPerComponent * 3 / 2);
        description.planeCount = 2;
        description.sampleBits = {std::uint8_t(isWide ? 16 : 8), std::uint8_t(isWide ? 32 : 16), 0, 0};
        description.log2Width[1] = 1;
        description.log2Height[1] = 1;
        add(description);
    }
    FormatDescription palette;
    palette.name = "pal8";
    palette.bitsPerComponent = 8;
    palette.bitsPerPixel = 8;
    palette.planeCount = 2;
    palette.sampleBits[0] = 8;
    palette.paletteBytes = 1024;
    add(palette);
}

Table::Table() {
    addGray();
    addYuv("420", 1, 1, {8, 9, 10, 12, 14, 16});
    addYuv("422", 1, 0, {8, 9, 10, 12, 14, 16});
    addYuv("444", 0, 0, {8, 9, 10, 12, 14, 16});
    addYuv("440", 0, 1, {8, 10, 12});
    addPlanar("yuv411p", 8, 3, 2, 0);
    addPlanar("yuv410p", 8, 3, 2, 2);
    addPlanar("yuvj420p", 8, 3, 1, 1);
    addPlanar("yuvj422p", 8, 3, 1, 0);
    addPlanar("yuvj444p", 8, 3, 0, 0);
    addPlanar("yuvj440p", 8, 3, 0, 1);
    for (unsigned const bits : {8U, 9U, 10U, 12U, 14U, 16U, 32U}) {
        addGbr(bits, "gbrp");
        addGbr(bits, "gbrap");
    }
    for (char const* const name : {"rgb24", "bgr24"}) {
        addPacked(name, 8, 24, 24);
    }
    for (char const* const name : {"rgba", "bgra", "argb", "abgr"}) {
        addPacked(name, 8, 32, 32);
    }
    for (char const* const name : {"rgb0", "bgr0", "0rgb", "0bgr"}) {
        addPacked(name, 8, 24, 32);
    }
    for (char const* const name : {"rgb48le", "rgb48be", "bgr48le", "bgr48be"}) {
        addPacked(name, 16, 48, 48);
    }
    for (char const* const name : {"rgba64le", "rgba64be", "bgra64le", "bgra64be"}) {
        addPacked(name, 16, 64, 64);
    }
    for (char const* const name : {"yuyv422", "uyvy422", "yvyu422"}) {
        addPacked(name, 8, 16, 16);
    }
    addSpecial();
}

Table& table() {
    return immortal<Table>();
}

}  // namespace

void registerFormat(FormatDescription const& description) {
    std::lock_guard const scope(table().lock);
    table().add(description);
}

FormatDescription const* describeFormat(Format format) {
    std::shared_lock const scope(table().lock);
    auto const found = table().formats.find(format);
    return found == table().formats.end() ? nullptr : &found->second;
}

std::uint32_t planeRowBytes(FormatDescription const& description, unsigned plane, std::uint32_t width) {
    if (plane >= description.planeCount) {
        return 0;
    }
    if (plane == 1 && description.paletteBytes != 0) {
        return description.paletteBytes;
    }
    std::uint64_t const round = (1U << description.log2Width[plane]) - 1U;
    std::uint64_t const samples = (width + round) >> description.log2Width[plane];
    return static_cast<std::uint32_t>((samples * description.sampleBits[plane] + 7) / 8);
}

std::uint32_t planeRows(FormatDescription const& description, unsigned plane, std::uint32_t height) {
    if (plane >= description.planeCount) {
        return 0;
    }
    if (plane == 1 && description.paletteBytes != 0) {
        return 1;
    }
    std::uint64_t const round = (1U << description.log2Height[plane]) - 1U;
    return static_cast<std::uint32_t>((height + round) >> description.log2Height[plane]);
}

}  // namespace Ox::Image
