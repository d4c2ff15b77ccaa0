#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "host/sqlite/SqliteDatabase.h"
#include "toolkit/catalogue/Cookie.h"

/// One run of a statement: its values, in order, and then its rows. The statement is ready to run again when the
/// scope is left.
class StatementRun {
public:
    explicit StatementRun(SqliteStatement& statement) : statement_(statement) {}
    ~StatementRun() { statement_.reset(); }
    StatementRun(StatementRun const&) = delete;
    StatementRun& operator=(StatementRun const&) = delete;

    StatementRun& with(std::int64_t number) {
        statement_.bind(++place_, number);
        return *this;
    }
    StatementRun& withReal(double number) {
        statement_.bindReal(++place_, number);
        return *this;
    }
    StatementRun& with(std::string_view text) {
        statement_.bindCopy(++place_, text);
        return *this;
    }
    StatementRun& with(LightweightString<wchar_t> const& text) { return with(toUTF8(text).view()); }
    /// Three values: the 32 digits of the clip, the type and the channel.
    StatementRun& with(Cookie const& cookie) {
        return with(cookie.asString(true).view())
            .with(std::int64_t{cookie.type()})
            .with(std::int64_t{cookie.channel()});
    }

    [[nodiscard]] bool nextRow() { return statement_.step() == SQLITE_ROW; }
    [[nodiscard]] bool isDone() { return statement_.step() == SQLITE_DONE; }

    [[nodiscard]] std::int64_t number(int column) const { return statement_.number(column); }
    [[nodiscard]] std::uint32_t count(int column) const {
        return static_cast<std::uint32_t>(statement_.number(column));
    }
    [[nodiscard]] double real(int column) const { return statement_.real(column); }
    [[nodiscard]] LightweightString<char> text(int column) const {
        return LightweightString<char>(statement_.text(column));
    }
    [[nodiscard]] LightweightString<wchar_t> wideText(int column) const {
        std::string const text = statement_.text(column);
        return fromUTF8(text.c_str(), static_cast<int>(text.size()));
    }
    /// Of the three columns from this one on.
    [[nodiscard]] Cookie cookie(int column) const {
        return convertCookie(Cookie(wideText(column), true), static_cast<CookieType>(number(column + 1)),
                             static_cast<std::uint8_t>(number(column + 2)));
    }

private:
    SqliteStatement& statement_;
    int place_ = 0;
};
