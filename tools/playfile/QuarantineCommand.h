#pragma once

#include "tools/playfile/Command.h"

namespace cli {

/// `playfile quarantine`: shows and forgets the files whose opening once began and never ended well.
class QuarantineCommand : public Command {
public:
    void declare(CLI::App& program) override;
    [[nodiscard]] bool isChosen() const override { return list_->parsed() || release_->parsed(); }
    [[nodiscard]] int run(SessionOptions const& options) override;

private:
    [[nodiscard]] int list() const;
    [[nodiscard]] int release() const;

    CLI::App* list_ = nullptr;
    CLI::App* release_ = nullptr;
    std::string file_;
    bool isAll_ = false;
};

}  // namespace cli
