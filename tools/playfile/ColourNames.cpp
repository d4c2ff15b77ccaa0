#include "tools/playfile/ColourNames.h"

#include <map>

namespace cli {
namespace {

using Names = std::map<std::uint8_t, char const*>;

std::string nameIn(Names const& names, std::uint8_t code) {
    auto const found = names.find(code);
    return found == names.end() ? std::to_string(code) : found->second;
}

char const* const notStated = "not stated";

}  // namespace

std::string primariesName(std::uint8_t code) {
    static Names const names{{1, "bt709"},     {2, notStated},   {4, "bt470m"},    {5, "bt470bg"},
                             {6, "smpte170m"}, {7, "smpte240m"}, {8, "film"},      {9, "bt2020"},
                             {10, "smpte428"}, {11, "smpte431"}, {12, "smpte432"}, {22, "ebu3213"}};
    return nameIn(names, code);
}

std::string transferName(std::uint8_t code) {
    static Names const names{
        {1, "bt709"},     {2, notStated},       {4, "gamma22"},    {5, "gamma28"},    {6, "smpte170m"},
        {7, "smpte240m"}, {8, "linear"},        {9, "log100"},     {10, "log316"},    {11, "iec61966-2-4"},
        {12, "bt1361e"},  {13, "iec61966-2-1"}, {14, "bt2020-10"}, {15, "bt2020-12"}, {16, "smpte2084"},
        {17, "smpte428"}, {18, "arib-std-b67"}};
    return nameIn(names, code);
}

std::string matrixName(std::uint8_t code) {
    static Names const names{{0, "rgb"},
                             {1, "bt709"},
                             {2, notStated},
                             {4, "fcc"},
                             {5, "bt470bg"},
                             {6, "smpte170m"},
                             {7, "smpte240m"},
                             {8, "ycgco"},
                             {9, "bt2020nc"},
                             {10, "bt2020c"},
                             {11, "smpte2085"},
                             {12, "chroma-derived-nc"},
                             {13, "chroma-derived-c"},
                             {14, "ictcp"}};
    return nameIn(names, code);
}

std::string rangeName(Ox::Image::ColourDescription const& colour) {
    std::string const range = colour.isFullRange ? "full" : "limited";
    return colour.isRangeStated ? range : "not stated (read as " + range + ")";
}

std::string chromaLocationName(std::uint8_t code) {
    static Names const names{{0, notStated}, {1, "left"},        {2, "centre"}, {3, "top left"},
                             {4, "top"},     {5, "bottom left"}, {6, "bottom"}};
    return nameIn(names, code);
}

std::string fieldOrderName(Ox::Image::eFieldOrder order) {
    switch (order) {
        case Ox::Image::eFieldOrder::progressive:
            return "progressive";
        case Ox::Image::eFieldOrder::topFirst:
            return "interlaced, top field first";
        case Ox::Image::eFieldOrder::bottomFirst:
            return "interlaced, bottom field first";
        default:
            return "not known";
    }
}

std::string orientationName(Ox::Image::Orientation orientation) {
    static Names const names{{1, "upright"},
                             {2, "mirror left and right"},
                             {3, "turn by 180 degrees"},
                             {4, "mirror top and bottom"},
                             {5, "mirror left and right, then turn by 270 degrees clockwise"},
                             {6, "turn by 90 degrees clockwise"},
                             {7, "mirror left and right, then turn by 90 degrees clockwise"},
                             {8, "turn by 270 degrees clockwise"}};
    return nameIn(names, orientation);
}

}  // namespace cli
