#pragma once

#include <CLI/CLI.hpp>

#include "tools/playfile/Session.h"

namespace cli {

/// One sub-command: it declares its part of the command line and does its work.
class Command {
public:
    virtual ~Command() = default;

    /// Adds the sub-command to the program; called once.
    virtual void declare(CLI::App& program) = 0;

    /// True once the command line has named it.
    [[nodiscard]] virtual bool isChosen() const = 0;

    /// Does what the command line says.
    ///
    /// @return an `eExitCode`
    /// @throws CommandError  with the message for the user
    /// @throws Stopped       if it is to end at once
    [[nodiscard]] virtual int run(SessionOptions const& options) = 0;
};

}  // namespace cli
