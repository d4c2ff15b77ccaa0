#include "tools/playfile/PngWriter.h"

#include <png.h>

namespace cli {

/// Speed goes before size: the pictures are looked at and thrown away.
bool writePng(Picture const& picture, std::FILE* stream, std::string& error) {
    if (picture.empty()) {
        error = "the picture has no pixels";
        return false;
    }
    png_image image{};
    image.version = PNG_IMAGE_VERSION;
    image.width = picture.width();
    image.height = picture.height();
    image.format = PNG_FORMAT_RGB;
    image.flags = PNG_IMAGE_FLAG_FAST;
    bool const isWritten = png_image_write_to_stdio(&image, stream, 0, picture.at(0, 0), 0, nullptr) != 0;
    if (!isWritten) {
        error = image.message;
    }
    png_image_free(&image);
    return isWritten;
}

}  // namespace cli
