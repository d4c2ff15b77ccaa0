#pragma once

#include <utility>
#include <vector>

#include "ole/Ox/OxString.h"

/// Settings as keys and values, in the order in which the keys were first set.
///
/// Threads  Like a container: readers together, a writer alone.
class configb {
public:
    using Entry = std::pair<LightweightString<char>, LightweightString<char>>;

    /// Looks `key` up: 0 when found, with `value` set; else 1 with `value` untouched.
    [[nodiscard]] int in(LightweightString<char> const& key, LightweightString<char>& value) const {
        for (Entry const& entry : entries_) {
            if (entry.first == key) {
                value = entry.second;
                return 0;
            }
        }
        return 1;
    }

    /// Sets `key`, which keeps its place if it was there.
    void set(LightweightString<char> const& key, LightweightString<char> const& value) {
        for (Entry& entry : entries_) {
            if (entry.first == key) {
                entry.second = value;
                return;
            }
        }
        entries_.emplace_back(key, value);
    }

    [[nodiscard]] bool empty() const { return entries_.empty(); }
    [[nodiscard]] std::size_t size() const { return entries_.size(); }
    [[nodiscard]] auto begin() const { return entries_.begin(); }
    [[nodiscard]] auto end() const { return entries_.end(); }

private:
    std::vector<Entry> entries_;
};
