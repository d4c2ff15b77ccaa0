#pragma once

#include "toolkit/edit/Edit.h"

/// A change of a clip: its end tells the clip database that it is made.
///
/// Ownership  It holds the clip open by itself.
/// Threads    One at a time.
class EditModifier {
public:
    /// @param description  of the change, for those who undo it; may be empty
    EditModifier(EditPtr const& edit, LightweightString<char> const& description)
        : edit_(edit), description_(description) {}
    ~EditModifier() {
        if (edit_) {
            iEditStore::instance()->modified(*edit_.get(), description_);
        }
    }
    EditModifier(EditModifier const&) = delete;
    EditModifier& operator=(EditModifier const&) = delete;

    /// False without a clip.
    explicit operator bool() const { return static_cast<bool>(edit_); }
    Edit* operator->() const { return edit_.get(); }

private:
    EditPtr const edit_;
    LightweightString<char> const description_;
};

/// What the clip database keeps of the project's clips for searching.
class projdb {
public:
    /// One clip.
    struct Record {
        Cookie cookie;
    };

    /// The clips that a search for these kinds finds; `iEditStore::search` tells what the numbers mean.
    [[nodiscard]] std::vector<Record> search(std::uint32_t source, std::uint32_t kinds) const {
        std::vector<Record> records;
        for (Cookie const& cookie : iEditStore::instance()->search(source, kinds)) {
            records.push_back({cookie});
        }
        return records;
    }
};

/// The clip database as a whole.
class EditManager {
public:
    /// Brings up to date what is kept of a clip for searching.
    static void updateProjdbRec(Cookie const& cookie) { iEditStore::instance()->updateRecord(cookie); }
    [[nodiscard]] static projdb getProjdb() { return {}; }
};
