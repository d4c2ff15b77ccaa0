#pragma once

#include <cstddef>

#include "header/SavHeader.h"

/// Puts a word into a field of a record, as much of it as the field holds beside its NUL.
template <std::size_t size>
void setField(char (&field)[size], char const* text) {
    hdr_string_copy(field, text, static_cast<int>(size) - 1);
}
