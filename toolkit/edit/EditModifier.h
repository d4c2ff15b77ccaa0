#pragma once

#include "toolkit/edit/Edit.h"

/// A change of a clip: its end tells the clip database that it is made.
///
/// Threads  One at a time, in the scope in which the clip is open.
class EditModifier {
public:
    /// @param description  of the change, for those who undo it; may be empty
    EditModifier(EditPtr const& edit, LightweightString<char> const& description)
        : edit_(edit.get()), description_(description) {}
    ~EditModifier() {
        if (edit_ != nullptr) {
            iEditStore::instance()->modified(*edit_, description_);
        }
    }
    EditModifier(EditModifier const&) = delete;
    EditModifier& operator=(EditModifier const&) = delete;

    /// False without a clip.
    explicit operator bool() const { return edit_ != nullptr; }

private:
    Edit* const edit_;
    LightweightString<char> const description_;
};

/// The clip database as a whole.
class EditManager {
public:
    /// Brings up to date what is kept of a clip for searching.
    static void updateProjdbRec(Cookie const& cookie) { iEditStore::instance()->updateRecord(cookie); }
};
