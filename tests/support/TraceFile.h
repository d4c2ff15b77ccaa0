#pragma once

#include <gtest/gtest.h>

#include <cstdlib>
#include <nlohmann/json.hpp>
#include <string>
#include <vector>

#include "playfile/Trace.h"
#include "tests/support/TemporaryFolder.h"

/// The trace of the test's process, asked for before the first event.
class TraceFile {
protected:
    using Json = nlohmann::json;
    using Events = std::vector<Json>;

    explicit TraceFile(std::string const& fileName = "trace.json") {
        setenv("PLAYFILE_TRACE", folder.file(fileName).c_str(), 1);
    }

    [[nodiscard]] std::string text() const { return folder.read("trace.json"); }
    /// Ends the trace and gives what is in it.
    [[nodiscard]] Json allEvents() const {
        PlayFileTrace::finish();
        return Json::parse(text());
    }
    /// The events of a name, in the order of the file; ends the trace.
    [[nodiscard]] Events named(std::string const& name) const {
        Events found;
        for (Json const& event : allEvents()) {
            if (event["name"] == name) {
                found.push_back(event);
            }
        }
        return found;
    }
    /// The only event of a name; fails the test if there isn't exactly one.
    [[nodiscard]] Json only(std::string const& name) const {
        Events const found = named(name);
        EXPECT_EQ(found.size(), 1U) << name << " in " << text();
        return found.size() == 1 ? found.front() : Json::object();
    }

    test::TemporaryFolder const folder;
};
