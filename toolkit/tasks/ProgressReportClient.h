#pragma once

#include "ole/Ox/OxString.h"

/// Somebody who wants to know how far a piece of work has come.
///
/// Threads  Any may ask; the worker reports.
class ProgressReportClient {
public:
    /// The first virtual operation: those who are handed a client as plain memory call it so.
    ///
    /// @param text      what is being done; empty leaves what was said before
    /// @param fraction  of the piece that is worked on, from 0 to 1
    virtual void reportProgress(LightweightString<wchar_t> const& text, double fraction) = 0;

    /// How much of the whole work is done, from 0 to 1.
    [[nodiscard]] virtual double calcAggregateProgress() const = 0;

protected:
    ~ProgressReportClient() = default;
};
