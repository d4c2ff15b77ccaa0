/// How every value of a text is found.
#include <cstring>

#include "header/SavHeader.h"

namespace {

/// White space of the "C" locale, whichever the process has.
bool isBlank(char c) {
    return c == ' ' || (c >= '\t' && c <= '\r');
}

bool isLineEnd(char c) {
    return c == '\n' || c == '\r';
}

char const* skipBlanks(char const* cursor) {
    while (isBlank(*cursor)) {
        ++cursor;
    }
    return cursor;
}

char const* skipLine(char const* cursor) {
    while (*cursor != '\0' && !isLineEnd(*cursor)) {
        ++cursor;
    }
    return cursor;
}

/// The value on the line whose key ends at `cursor`; null if there is none.
char const* findValue(char const* cursor) {
    while (isBlank(*cursor) && !isLineEnd(*cursor)) {
        ++cursor;
    }
    return *cursor == '\0' || isLineEnd(*cursor) ? nullptr : cursor;
}

}  // namespace

char const* PlayHdrString_seek_value(char const* text, char const* key) {
    std::size_t const keyLength = std::strlen(key);
    for (char const* cursor = skipBlanks(text); *cursor != '\0'; cursor = skipBlanks(skipLine(cursor))) {
        if (std::strncmp(cursor, key, keyLength) != 0) {
            continue;
        }
        char const behind = cursor[keyLength];
        if (isBlank(behind)) {
            return findValue(cursor + keyLength);
        }
        if (behind == '\0') {
            return nullptr;
        }
    }
    return nullptr;
}

void hdr_string_copy(char* destination, char const* source, int limit) {
    int count = 0;
    while (count < limit && source[count] != '\0' && !isLineEnd(source[count]) && source[count] != ' ') {
        destination[count] = source[count];
        ++count;
    }
    destination[count] = '\0';
}
