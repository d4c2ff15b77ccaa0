#pragma once

#include <CLI/CLI.hpp>
#include <string>
#include <vector>

#include "toolkit/catalogue/Cookie.h"
#include "toolkit/catalogue/OpenType.h"

class SqliteProject;

namespace cli {

/// What all commands that transfer a project's media are told: the project, which clips, and which of their media.
class TransferOptions {
public:
    /// Adds the options to a command.
    void declare(CLI::App& command);

    [[nodiscard]] std::string const& project() const { return project_; }
    /// The clips that are named, or all.
    ///
    /// @throws CommandError  for a name that no clip or more than one has, and if none is named
    [[nodiscard]] CookieVec clips(SqliteProject& project) const;
    [[nodiscard]] eMediaTypes media() const;

    /// The mask of "originals", "proxies" or "all".
    [[nodiscard]] static eMediaTypes mediaOf(std::string const& name);

private:
    std::string project_;
    std::vector<std::string> names_;
    std::string media_ = "all";
    bool isForAll_ = false;
};

}  // namespace cli
