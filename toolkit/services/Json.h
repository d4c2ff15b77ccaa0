#pragma once

#include <map>
#include <string>
#include <vector>

#include "ole/Ox/OxObject.h"
#include "ole/Ox/OxString.h"

/// Settings as text in the JavaScript object notation (RFC 8259).
namespace JSON {

/// Writes objects of texts, indented for people.
///
/// Threads  One at a time.
class Builder {
public:
    /// Begins an object, inside the one that is open or as the outermost.
    ///
    /// @param name  its key in the object that is open; null: it has none
    void startChild(char const* name);
    /// @param isText  false writes the value as it stands, as a number is
    void add(char const* key, LightweightString<char> const& value, bool isText);
    void add(char const* key, LightweightString<wchar_t> const& value, bool isText);
    /// Ends the object that was begun last.
    void endChild();

    /// What has been written, in UTF-8.
    [[nodiscard]] LightweightString<char> asString() const { return LightweightString<char>(text_); }

private:
    void beginValue(char const* key);

    std::string text_;
    /// Of every object that is open, whether something stands in it.
    std::vector<bool> areFilled_;
};

/// An object that was read.
///
/// Threads  Constant.
class Element : public virtual iObject {
public:
    /// Reads one object and nothing behind it but white space; empty for a text of another form.
    [[nodiscard]] static Ox::Ptr<Element> parse(LightweightString<char> const& text);

    /// The text under a key; empty if there is none, and for a value that is no text. Of a key that is there twice the
    /// last one counts.
    [[nodiscard]] LightweightString<char> getString(char const* key) const;
    [[nodiscard]] LightweightString<wchar_t> getWString(char const* key) const;
    /// The object under a key; empty if there is none.
    [[nodiscard]] Ox::Ptr<Element> getChild(char const* key) const;

private:
    friend class Parser;

    std::map<std::string, std::string> texts_;
    std::map<std::string, Ox::Ptr<Element>> children_;
};

/// Something that can be kept as an object.
class iPersistable {
public:
    virtual ~iPersistable() = default;
    virtual void write(Builder& builder) const = 0;
    /// @return false if what was read isn't enough
    virtual bool read(Ox::Ptr<Element> const& element) = 0;
};

}  // namespace JSON
