#pragma once

#include <compare>
#include <cstdint>
#include <cstring>
#include <cwchar>
#include <new>
#include <string>
#include <string_view>

#include "ole/Ox/OxPtr.h"
#include "ole/os/Memory.h"

/// A counted string of `char` (UTF-8) or `wchar_t` (UTF-32), copied on write.
///
/// A copy is one atomic increment and no allocation. No block and a block of length 0 are both the
/// empty string. The text is always NUL-terminated, so the C string functions work on it.
///
/// Ownership  The strings that share a block own it together; it comes from the memory service.
/// Threads    A string may be handed to another thread by copy. One variable must not be assigned on
///            two threads at once.
/// Units      Lengths and positions count characters, the terminator not included.
template <class CharT>
class LightweightString {
public:
    /// The shared block: this header and, right behind it, the characters.
    struct Impl {
        /// Gives the block back to the memory service; the characters need no destructor.
        struct DtorTraits {
            static void destroy(Impl* block) noexcept { memoryService().release(block); }
        };

        CharT* text;
        std::uint32_t length;
        /// Characters that fit, the terminator included.
        std::uint32_t capacity;
        Ox::RefCount count;

        [[nodiscard]] Ox::RefCount& refCount() noexcept { return count; }
    };
    using value_type = CharT;
    using View = std::basic_string_view<CharT>;

    /// Stands for "up to the end" where a length is asked for.
    static constexpr std::uint32_t npos = 0xFFFFFFFF;

    LightweightString() noexcept = default;

    /// A null pointer or an empty text gives the empty string.
    LightweightString(CharT const* text) : LightweightString(text ? View(text) : View()) {}
    LightweightString(CharT const* text, std::uint32_t length) : LightweightString(View(text, length)) {}
    explicit LightweightString(View text) { assign(text, smallestPowerAbove(lengthOf(text), 2)); }
    explicit LightweightString(std::basic_string<CharT> const& text) : LightweightString(View(text)) {}

    [[nodiscard]] CharT const* c_str() const noexcept { return block_ ? block_->text : emptyText(); }
    [[nodiscard]] std::uint32_t length() const noexcept { return block_ ? block_->length : 0; }
    [[nodiscard]] std::uint32_t capacity() const noexcept { return block_ ? block_->capacity : 0; }
    [[nodiscard]] bool empty() const noexcept { return length() == 0; }
    [[nodiscard]] View view() const noexcept { return View(c_str(), length()); }
    [[nodiscard]] std::basic_string<CharT> str() const { return std::basic_string<CharT>(view()); }
    CharT operator[](std::uint32_t index) const noexcept { return c_str()[index]; }

    /// The block's characters, for a caller that has just made it its own (`createImpl`, `resizeFor`,
    /// `unshare`); null for the empty string.
    [[nodiscard]] CharT* data() noexcept { return block_ ? block_->text : nullptr; }

    /// How many strings share the block, 0 for a string without one.
    [[nodiscard]] std::uint32_t shareCount() const noexcept { return block_.useCount(); }

    /// Puts a new block for `length` characters in the string; with 0 the string is empty.
    ///
    /// @param roundUp  true makes the capacity the smallest power of two greater than `length`,
    ///                 false makes it `length` + 1
    void createImpl(std::uint32_t length, bool roundUp) {
        block_ =
            length == 0 ? Block() : newBlock(length, roundUp ? smallestPowerAbove(length, 1) : length + 1);
    }

    /// Makes room for `length` characters that the caller will overwrite; with 0 the block goes.
    ///
    /// A block that this string alone holds is cut or stretched in place if it fits. Otherwise a new
    /// block comes, whose capacity is the smallest power of two greater than `length`, from 2 on.
    ///
    /// Deliberate  The old contents aren't copied into a new block.
    void resizeFor(std::uint32_t length) {
        if (length == 0) {
            block_ = nullptr;
        } else if (block_.useCount() == 1 && length < block_->capacity) {
            block_->text[length] = CharT();
            block_->length = length;
        } else {
            block_ = newBlock(length, smallestPowerAbove(length, 2));
        }
    }

    /// A new string of two runs end to end, with the capacity rule of `resizeFor`.
    [[nodiscard]] static LightweightString join(CharT const* first, std::uint32_t firstLength,
                                                CharT const* second, std::uint32_t secondLength) {
        LightweightString result;
        result.resizeFor(firstLength + secondLength);
        if (result.block_) {
            copyCharacters(result.block_->text, first, firstLength);
            copyCharacters(result.block_->text + firstLength, second, secondLength);
        }
        return result;
    }

    /// Gives this string a block of its own if it shares one; the capacity is the smallest power of
    /// two greater than the length, from 1 on.
    void unshare() {
        if (block_.useCount() > 1) {
            LightweightString const shared(*this);
            assign(shared.view(), smallestPowerAbove(shared.length(), 1));
        }
    }

    /// Replaces every `what` by `with`, in place. Other holders of the block keep their text.
    ///
    /// The inserted text is never searched again. An empty `what` changes nothing. Both texts may lie in
    /// this string's own.
    ///
    /// @param whatLength  characters to cut at each place found, `npos` for all that follows it
    void substitute(CharT const* what, std::uint32_t whatLength, CharT const* with,
                    std::uint32_t withLength) {
        if (empty() || !what || *what == CharT() || whatLength == 0) {
            return;
        }
        LightweightString const before(*this);
        CharT const* found = find(c_str(), what);
        while (found) {
            auto const position = static_cast<std::uint32_t>(found - c_str());
            if (position < length()) {
                replaceAt(position, whatLength, with, withLength);
            }
            std::uint32_t const next = position + withLength;
            found = next < length() ? find(c_str() + next, what) : nullptr;
        }
    }

    /// A copy with every `what` replaced; a null `what` gives the copy unchanged.
    [[nodiscard]] LightweightString substitute(CharT const* what, LightweightString const& with) const {
        LightweightString result(*this);
        if (what) {
            result.substitute(what, lengthOf(View(what)), with.c_str(), with.length());
        }
        return result;
    }

    /// A copy with every `what` replaced.
    [[nodiscard]] LightweightString substitute(LightweightString const& what,
                                               LightweightString const& with) const {
        return substitute(what.c_str(), with);
    }

    LightweightString& operator+=(LightweightString const& other) {
        if (empty()) {
            return *this = other;
        }
        std::uint32_t const oldLength = length();
        std::uint32_t const newLength = oldLength + other.length();
        LightweightString const appended(other);
        if (block_.useCount() == 1 && newLength < block_->capacity) {
            copyCharacters(block_->text + oldLength, appended.c_str(), appended.length());
            resizeFor(newLength);
        } else {
            *this = join(c_str(), oldLength, appended.c_str(), appended.length());
        }
        return *this;
    }

    friend LightweightString operator+(LightweightString const& a, LightweightString const& b) {
        return join(a.c_str(), a.length(), b.c_str(), b.length());
    }
    friend bool operator==(LightweightString const& a, LightweightString const& b) {
        return compare(a.c_str(), b.c_str()) == 0;
    }
    /// The order of strcmp and wcscmp; an unset string orders like the empty one.
    friend std::strong_ordering operator<=>(LightweightString const& a, LightweightString const& b) {
        return compare(a.c_str(), b.c_str()) <=> 0;
    }

private:
    using Block = Ox::Ptr<Impl, typename Impl::DtorTraits>;

    static CharT const* emptyText() noexcept {
        static constexpr CharT text[1] = {};
        return text;
    }
    static std::uint32_t lengthOf(View text) { return static_cast<std::uint32_t>(text.size()); }
    static void copyCharacters(CharT* to, CharT const* from, std::uint32_t count) {
        if (count != 0) {
            std::memcpy(to, from, count * sizeof(CharT));
        }
    }
    static int compare(char const* a, char const* b) { return std::strcmp(a, b); }
    static int compare(wchar_t const* a, wchar_t const* b) { return std::wcscmp(a, b); }
    static char const* find(char const* in, char const* what) { return std::strstr(in, what); }
    static wchar_t const* find(wchar_t const* in, wchar_t const* what) { return std::wcsstr(in, what); }

    static std::uint32_t smallestPowerAbove(std::uint32_t length, std::uint32_t start) {
        std::uint64_t power = start;
        while (power <= length) {
            power *= 2;
        }
        return power > npos ? npos : static_cast<std::uint32_t>(power);
    }

    /// A block with its length and terminator set and its characters not.
    static Block newBlock(std::uint32_t length, std::uint32_t capacity) {
        std::size_t const byteCount = sizeof(Impl) + std::size_t(capacity) * sizeof(CharT);
        void* memory = memoryService().allocate(byteCount);
        auto* text = reinterpret_cast<CharT*>(static_cast<char*>(memory) + sizeof(Impl));
        text[length] = CharT();
        return Block(::new (memory) Impl{text, length, capacity, 0});
    }

    void assign(View text, std::uint32_t capacity) {
        if (text.empty()) {
            block_ = nullptr;
            return;
        }
        Block block = newBlock(lengthOf(text), capacity);
        copyCharacters(block->text, text.data(), lengthOf(text));
        block_ = std::move(block);
    }

    void replaceAt(std::uint32_t position, std::uint32_t whatLength, CharT const* with,
                   std::uint32_t withLength) {
        std::uint32_t const rest = length() - position;
        std::uint32_t const cut = whatLength > rest ? rest : whatLength;
        LightweightString const old(*this);
        LightweightString result;
        result.resizeFor(old.length() - cut + withLength);
        if (result.block_) {
            CharT* text = result.block_->text;
            copyCharacters(text, old.c_str(), position);
            copyCharacters(text + position, with, withLength);
            copyCharacters(text + position + withLength, old.c_str() + position + cut, rest - cut);
        }
        *this = result;
    }

    Block block_;
};

static_assert(sizeof(wchar_t) == 4, "wide text is UTF-32");

/// The text as UTF-8; a code point that no text may hold becomes U+FFFD.
[[nodiscard]] LightweightString<char> toUTF8(LightweightString<wchar_t> const& text);

/// UTF-8 as wide text; a malformed byte becomes U+FFFD. A null pointer gives the empty string.
///
/// @param byteCount  the bytes to read, -1 for all up to the NUL
[[nodiscard]] LightweightString<wchar_t> fromUTF8(char const* text, int byteCount = -1);
