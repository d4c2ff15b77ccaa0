#include "toolkit/catalogue/OpenType.h"

char const* OpenType::asString() const {
    switch (value_) {
        case unknown:
            return "unknown";
        case video:
            return "video";
        case audio:
            return "audio";
        case both:
            return "video and audio";
        default:
            return "other";
    }
}
