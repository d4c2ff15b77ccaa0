/// A small program that shows how values are searched for: each argument is a key, which is looked for in a
/// fixed text from the value that was found before on.
#include <cstdio>

#include "header/SavHeader.h"

namespace {

char text[] =
    "x f I am x and not f\n"
    "novalue \n"
    "the line after no value\n"
    "ef ef contains the substring f\n"
    "foo foo begins with the substring f\n"
    "f I really am f\n";

constexpr int notFound = 1;
constexpr int usageError = 2;

}  // namespace

/// 0 if the last key was found, 1 if it wasn't, whatever became of those before it.
int main(int argc, char** argv) {
    std::puts(argv[0]);
    if (argc < 2) {
        std::printf("Usage: %s <item>\n", argv[0]);
        return usageError;
    }
    char const* cursor = text;
    int result = notFound;
    for (int index = 1; index < argc; ++index) {
        char const* const value = PlayHdrString_seek_value(cursor, argv[index]);
        result = value != nullptr ? 0 : notFound;
        if (value != nullptr) {
            std::printf("Item \"%s\" = {%s}\n", argv[index], value);
            cursor = value;
        } else {
            std::printf("Item \"%s\" not found.\n", argv[index]);
        }
    }
    return result;
}
