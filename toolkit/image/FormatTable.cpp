#include "toolkit/image/FormatTable.h"

#include <initializer_list>
#include <string>

namespace Ox::Image {

namespace {

using Name = LightweightString<char>;

constexpr std::uint32_t paletteBytes = 256 * 4;
constexpr unsigned bitsOfByte = 8;

/// Bits from sample to sample of values of that depth.
std::uint8_t storedBits(unsigned depth) {
    return static_cast<std::uint8_t>(depth <= bitsOfByte ? bitsOfByte : (depth <= 16 ? 16 : 32));
}

class Table {
public:
    /// One plane of which a sample of `sampleBits` describes 2^`log2Pixels` pixels.
    void addPacked(std::string const& name, unsigned depth, unsigned bitsPerPixel, unsigned sampleBits,
                   unsigned log2Pixels = 0) {
        FormatDescription format = begin(name, depth, bitsPerPixel);
        addPlane(format, sampleBits, log2Pixels, 0);
        formats.push_back(format);
    }

    /// The same in the little-endian and the big-endian form of the name.
    void addPackedBothWays(std::string const& name, unsigned depth, unsigned bitsPerPixel,
                           unsigned sampleBits, unsigned log2Pixels = 0) {
        addPacked(name + "le", depth, bitsPerPixel, sampleBits, log2Pixels);
        addPacked(name + "be", depth, bitsPerPixel, sampleBits, log2Pixels);
    }

    /// Planes of full size.
    void addPlanes(std::string const& name, unsigned planeCount, unsigned depth) {
        FormatDescription format = begin(name, depth, planeCount * depth);
        for (unsigned plane = 0; plane < planeCount; ++plane) {
            addPlane(format, storedBits(depth), 0, 0);
        }
        formats.push_back(format);
    }

    /// Luma, two planes of chroma, perhaps alpha.
    void addYuv(std::string const& name, unsigned depth, unsigned log2Width, unsigned log2Height,
                bool hasAlpha) {
        unsigned const chromaBits = 2 * depth >> (log2Width + log2Height);
        FormatDescription format = begin(name, depth, depth + chromaBits + (hasAlpha ? depth : 0));
        addPlane(format, storedBits(depth), 0, 0);
        addPlane(format, storedBits(depth), log2Width, log2Height);
        addPlane(format, storedBits(depth), log2Width, log2Height);
        if (hasAlpha) {
            addPlane(format, storedBits(depth), 0, 0);
        }
        formats.push_back(format);
    }

    /// Luma, and a plane of chroma pairs.
    void addSemiPlanar(std::string const& name, unsigned depth, unsigned log2Width, unsigned log2Height) {
        unsigned const chromaBits = 2 * depth >> (log2Width + log2Height);
        FormatDescription format = begin(name, depth, depth + chromaBits);
        addPlane(format, storedBits(depth), 0, 0);
        addPlane(format, 2U * storedBits(depth), log2Width, log2Height);
        formats.push_back(format);
    }

    void addPalette(std::string const& name) {
        FormatDescription format = begin(name, bitsOfByte, bitsOfByte);
        addPlane(format, bitsOfByte, 0, 0);
        format.planeCount = 2;
        format.paletteBytes = paletteBytes;
        formats.push_back(format);
    }

    std::vector<FormatDescription> formats;

private:
    static FormatDescription begin(std::string const& name, unsigned depth, unsigned bitsPerPixel) {
        FormatDescription format;
        format.name = Name(name);
        format.bitsPerComponent = static_cast<std::uint16_t>(depth);
        format.bitsPerPixel = static_cast<std::uint16_t>(bitsPerPixel);
        return format;
    }

    static void addPlane(FormatDescription& format, unsigned sampleBits, unsigned log2Width,
                         unsigned log2Height) {
        format.sampleBits[format.planeCount] = static_cast<std::uint8_t>(sampleBits);
        format.log2Width[format.planeCount] = static_cast<std::uint8_t>(log2Width);
        format.log2Height[format.planeCount] = static_cast<std::uint8_t>(log2Height);
        ++format.planeCount;
    }
};

/// What the names of a family end in at a depth: "10le" and "10be", nothing for 8 bits.
std::vector<std::string> nameEndings(unsigned depth) {
    if (depth == bitsOfByte) {
        return {""};
    }
    return {std::to_string(depth) + "le", std::to_string(depth) + "be"};
}

struct YuvFamily {
    char const* name;
    unsigned log2Width;
    unsigned log2Height;
    bool hasAlpha;
    std::initializer_list<unsigned> depths;
};

void addYuvFamilies(Table& table) {
    static YuvFamily const families[] = {
        {"yuv410p", 2, 2, false, {8}},
        {"yuv411p", 2, 0, false, {8}},
        {"yuv420p", 1, 1, false, {8, 9, 10, 12, 14, 16}},
        {"yuv422p", 1, 0, false, {8, 9, 10, 12, 14, 16}},
        {"yuv440p", 0, 1, false, {8, 10, 12}},
        {"yuv444p", 0, 0, false, {8, 9, 10, 12, 14, 16}},
        {"yuva420p", 1, 1, true, {8, 9, 10, 16}},
        {"yuva422p", 1, 0, true, {8, 9, 10, 12, 16}},
        {"yuva444p", 0, 0, true, {8, 9, 10, 12, 16}},
        {"yuvj411p", 2, 0, false, {8}},
        {"yuvj420p", 1, 1, false, {8}},
        {"yuvj422p", 1, 0, false, {8}},
        {"yuvj440p", 0, 1, false, {8}},
        {"yuvj444p", 0, 0, false, {8}},
    };
    for (YuvFamily const& family : families) {
        for (unsigned const depth : family.depths) {
            for (std::string const& ending : nameEndings(depth)) {
                table.addYuv(family.name + ending, depth, family.log2Width, family.log2Height,
                             family.hasAlpha);
            }
        }
    }
}

void addSemiPlanarFormats(Table& table) {
    for (char const* name : {"nv12", "nv21"}) {
        table.addSemiPlanar(name, 8, 1, 1);
    }
    table.addSemiPlanar("nv16", 8, 1, 0);
    table.addSemiPlanar("nv24", 8, 0, 0);
    table.addSemiPlanar("nv42", 8, 0, 0);
    for (std::string const byteOrder : {"le", "be"}) {
        table.addSemiPlanar("p010" + byteOrder, 10, 1, 1);
        table.addSemiPlanar("p016" + byteOrder, 16, 1, 1);
        table.addSemiPlanar("nv20" + byteOrder, 10, 1, 0);
        table.addSemiPlanar("p210" + byteOrder, 10, 1, 0);
        table.addSemiPlanar("p216" + byteOrder, 16, 1, 0);
        table.addSemiPlanar("p410" + byteOrder, 10, 0, 0);
        table.addSemiPlanar("p416" + byteOrder, 16, 0, 0);
    }
}

void addPlanarRgb(Table& table) {
    for (unsigned const depth : {8U, 9U, 10U, 12U, 14U, 16U}) {
        for (std::string const& ending : nameEndings(depth)) {
            table.addPlanes("gbrp" + ending, 3, depth);
        }
    }
    for (unsigned const depth : {8U, 10U, 12U, 16U}) {
        for (std::string const& ending : nameEndings(depth)) {
            table.addPlanes("gbrap" + ending, 4, depth);
        }
    }
    for (std::string const& ending : nameEndings(32)) {
        table.addPlanes("gbrpf" + ending, 3, 32);
        table.addPlanes("gbrapf" + ending, 4, 32);
    }
}

void addGray(Table& table) {
    table.addPacked("gray", 8, 8, 8);
    table.addPacked("ya8", 8, 16, 16);
    for (unsigned const depth : {9U, 10U, 12U, 14U, 16U}) {
        table.addPackedBothWays("gray" + std::to_string(depth), depth, depth, 16);
    }
    table.addPackedBothWays("ya16", 16, 32, 32);
    table.addPackedBothWays("grayf32", 32, 32, 32);
    table.addPacked("monow", 1, 1, 1);
    table.addPacked("monob", 1, 1, 1);
    table.addPalette("pal8");
}

void addPackedRgb(Table& table) {
    table.addPacked("rgb24", 8, 24, 24);
    table.addPacked("bgr24", 8, 24, 24);
    for (char const* name : {"rgba", "bgra", "argb", "abgr"}) {
        table.addPacked(name, 8, 32, 32);
    }
    for (char const* name : {"rgb0", "bgr0", "0rgb", "0bgr"}) {
        table.addPacked(name, 8, 24, 32);
    }
    for (std::string const order : {"rgb", "bgr"}) {
        table.addPackedBothWays(order + "48", 16, 48, 48);
        table.addPackedBothWays(order + "a64", 16, 64, 64);
        table.addPackedBothWays(order + "565", 6, 16, 16);
        table.addPackedBothWays(order + "555", 5, 15, 16);
        table.addPackedBothWays("x2" + order + "10", 10, 30, 32);
    }
    table.addPackedBothWays("xyz12", 12, 36, 48);
}

void addPackedYuv(Table& table) {
    for (char const* name : {"yuyv422", "yvyu422", "uyvy422"}) {
        table.addPacked(name, 8, 16, 32, 1);
    }
    table.addPacked("uyyvyy411", 8, 12, 48, 2);
    table.addPackedBothWays("y210", 10, 20, 64, 1);
    table.addPackedBothWays("ayuv64", 16, 64, 64);
}

}  // namespace

std::vector<FormatDescription> usualFormats() {
    Table table;
    addYuvFamilies(table);
    addSemiPlanarFormats(table);
    addPlanarRgb(table);
    addGray(table);
    addPackedRgb(table);
    addPackedYuv(table);
    return table.formats;
}

}  // namespace Ox::Image
