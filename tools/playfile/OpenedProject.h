#pragma once

#include <memory>
#include <string>

#include "host/remote/RemoteStores.h"
#include "host/sqlite/SqliteProject.h"
#include "tools/playfile/Session.h"

namespace cli {

/// A project that serves the process: its catalogue, clips, drives and spaces are in force, and remote stores are
/// reached.
///
/// Ownership  There is one at a time; its end takes everything out again.
/// Errors     CommandError, which names the project's file and what helps.
class OpenedProject {
public:
    /// Opens a project that is there.
    OpenedProject(SessionOptions const& options, std::string const& file);
    ~OpenedProject();
    OpenedProject(OpenedProject const&) = delete;
    OpenedProject& operator=(OpenedProject const&) = delete;

    /// Makes the file of a new project, in place of nothing but an empty file. Requires a session.
    [[nodiscard]] static std::unique_ptr<SqliteProject> create(std::string const& file);

    [[nodiscard]] Session& session() { return session_; }
    [[nodiscard]] SqliteProject& project() { return *project_; }
    /// Absolute.
    [[nodiscard]] std::string const& path() const { return path_; }
    /// Ends a command that couldn't change the project, with the reason that was logged.
    [[noreturn]] void refuseChange() const;

private:
    Session session_;
    RemoteStores stores_;
    std::string const path_;
    std::unique_ptr<SqliteProject> const project_;
};

}  // namespace cli
