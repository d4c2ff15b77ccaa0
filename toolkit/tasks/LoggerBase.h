#pragma once

#include <cstdint>
#include <vector>

#include "ole/Ox/OxString.h"

/// What can be written to for the people who wait for a task.
class LoggerBase {
public:
    /// What a line is.
    enum eOutputType : std::uint32_t { plainLine = 0, errorLine = 4, stageLine = 5, closingLine = 6 };

    /// A text that leads to files when somebody clicks on it.
    class HyperLink {
    public:
        HyperLink(LightweightString<wchar_t> const& label,
                  std::vector<LightweightString<wchar_t>> const& targets)
            : label_(label), targets_(targets) {}

        /// `[label](target)(target)`, with a backslash before each of "[]()\" in them.
        [[nodiscard]] LightweightString<wchar_t> asString() const;

    private:
        LightweightString<wchar_t> label_;
        std::vector<LightweightString<wchar_t>> targets_;
    };

    virtual void write(LightweightString<wchar_t> const& text, eOutputType type) = 0;

    /// Formats like printf, in UTF-8, and writes a plain line.
    void Out(char const* format, ...) __attribute__((format(printf, 2, 3)));

protected:
    ~LoggerBase() = default;
};
