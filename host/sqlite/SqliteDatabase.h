#pragma once

#include <sqlite3.h>

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>

/// A prepared statement, to be run again and again.
///
/// Threads  One at a time.
class SqliteStatement {
public:
    SqliteStatement() = default;
    explicit SqliteStatement(sqlite3_stmt* statement) : statement_(statement) {}

    explicit operator bool() const { return statement_ != nullptr; }

    /// Puts a value in the place `index`, from 1. The text must live until the statement is reset.
    void bind(int index, std::string_view text);
    void bind(int index, std::int64_t number);
    /// The same with a text that is copied, and with a number of another kind.
    void bindCopy(int index, std::string_view text);
    void bindReal(int index, double number);

    /// SQLITE_ROW, SQLITE_DONE or an error.
    [[nodiscard]] int step();
    /// Makes it ready to run again.
    void reset();
    /// A column of the row, from 0.
    [[nodiscard]] std::int64_t number(int column) const;
    [[nodiscard]] double real(int column) const;
    [[nodiscard]] std::string text(int column) const;

private:
    struct Finalize {
        void operator()(sqlite3_stmt* statement) const { sqlite3_finalize(statement); }
    };
    std::unique_ptr<sqlite3_stmt, Finalize> statement_;
};

/// One database file, in WAL mode: several processes may have it open, and a killed process leaves it
/// whole with everything that it had committed.
///
/// Threads  One at a time.
/// Errors   Every operation answers false or an empty statement; `lastError` says why.
class SqliteDatabase {
public:
    /// Opens the file, made if need be; `isOpen` tells whether it worked.
    explicit SqliteDatabase(std::string const& path);

    [[nodiscard]] bool isOpen() const { return isOpen_; }
    [[nodiscard]] bool run(char const* sql);
    [[nodiscard]] SqliteStatement prepare(char const* sql);
    /// The work of the statements that are there.
    struct Cost {
        /// Rows that were stepped over for want of an index.
        std::int64_t fullScanSteps = 0;
        /// Steps of SQLite's machine, of which each row that is visited takes some.
        std::int64_t machineSteps = 0;
    };
    [[nodiscard]] Cost getCost() const;
    /// Whether SQLite finds the file's structure sound.
    [[nodiscard]] bool isWhole();
    /// True if the last error says that the file isn't a sound database at all.
    [[nodiscard]] bool isDamaged() const;
    /// True if the last error says that another process is in the way.
    [[nodiscard]] bool isBusy() const;
    [[nodiscard]] std::string lastError() const;

private:
    struct Close {
        void operator()(sqlite3* database) const { sqlite3_close_v2(database); }
    };
    std::unique_ptr<sqlite3, Close> database_;
    bool isOpen_ = false;
};
