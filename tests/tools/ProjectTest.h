#pragma once

#include <sqlite3.h>

#include <nlohmann/json.hpp>

#include <fstream>

#include "tests/tools/ToolTest.h"

namespace tooltest {

/// A test of `playfile project` in a folder with a project and whatever media it makes.
class ProjectTest : public ToolTest {
protected:
    using Json = nlohmann::json;

    ProjectTest() {
        environment["no_proxy"] = "127.0.0.1";
        created_ = run({"project", "create", project()});
    }

    [[nodiscard]] std::string project() const { return path("a.project"); }
    /// Runs `playfile project COMMAND` on the project.
    [[nodiscard]] Ended on(std::string const& command, Arguments const& arguments = {}) const {
        Arguments all{"project", command, project()};
        all.insert(all.end(), arguments.begin(), arguments.end());
        return run(all);
    }
    /// The same, as JSON.
    [[nodiscard]] Json ask(std::string const& command, Arguments arguments = {}) const {
        arguments.emplace_back("--json");
        return Json::parse(on(command, arguments).out, nullptr, false);
    }
    /// Makes a file and the folders above it; its path.
    std::string make(std::string const& name, std::string const& contents = "media") const {
        std::filesystem::create_directories(std::filesystem::path(path(name)).parent_path());
        return writeFile(name, contents);
    }
    /// Changes a database as another program could.
    static void tamper(std::string const& file, std::string const& sql) {
        sqlite3* database = nullptr;
        ASSERT_EQ(sqlite3_open(file.c_str(), &database), SQLITE_OK);
        EXPECT_EQ(sqlite3_exec(database, sql.c_str(), nullptr, nullptr, nullptr), SQLITE_OK)
            << sqlite3_errmsg(database);
        sqlite3_close(database);
    }
    void tamper(std::string const& sql) const { tamper(project(), sql); }
    [[nodiscard]] std::vector<std::string> names() const {
        std::vector<std::string> names;
        for (Json const& clip : ask("ls")) {
            names.push_back(clip["name"].get<std::string>());
        }
        return names;
    }
    [[nodiscard]] std::string stateOf(std::string const& name, Arguments const& arguments = {}) const {
        for (Json const& clip : ask("ls", arguments)) {
            if (clip["name"] == name) {
                return clip["state"].get<std::string>();
            }
        }
        return "not listed";
    }
    /// The files of a clip.
    [[nodiscard]] Json filesOf(std::string const& clip) const { return ask("where", {clip})["files"]; }
    [[nodiscard]] std::string reasonFor(std::string const& clip) const {
        Json const files = filesOf(clip);
        return files[0]["reason"].is_null() ? "" : files[0]["reason"].get<std::string>();
    }

    Ended created_;
};

}  // namespace tooltest
