#include "host/sqlite/SqliteDatabase.h"

namespace {

/// How long a change waits for another process's.
constexpr int busyTimeoutMs = 10'000;
/// How long to wait before the change to WAL mode is tried again.
constexpr int retryDelayMs = 5;

/// Changes to WAL mode, which SQLite refuses at once, without its usual wait, while another process
/// makes that very change.
bool enterWalMode(SqliteDatabase& database) {
    for (int waitedMs = 0; !database.run("PRAGMA journal_mode=WAL"); waitedMs += retryDelayMs) {
        if (!database.isBusy() || waitedMs >= busyTimeoutMs) {
            return false;
        }
        sqlite3_sleep(retryDelayMs);
    }
    return true;
}

}  // namespace

void SqliteStatement::bind(int index, std::string_view text) {
    sqlite3_bind_text(statement_.get(), index, text.data(), static_cast<int>(text.size()), SQLITE_STATIC);
}

void SqliteStatement::bind(int index, std::int64_t number) {
    sqlite3_bind_int64(statement_.get(), index, number);
}

void SqliteStatement::bindCopy(int index, std::string_view text) {
    sqlite3_bind_text64(statement_.get(), index, text.data(), text.size(), SQLITE_TRANSIENT, SQLITE_UTF8);
}

void SqliteStatement::bindReal(int index, double number) {
    sqlite3_bind_double(statement_.get(), index, number);
}

int SqliteStatement::step() {
    return sqlite3_step(statement_.get());
}

void SqliteStatement::reset() {
    sqlite3_reset(statement_.get());
}

std::int64_t SqliteStatement::number(int column) const {
    return sqlite3_column_int64(statement_.get(), column);
}

double SqliteStatement::real(int column) const {
    return sqlite3_column_double(statement_.get(), column);
}

std::string SqliteStatement::text(int column) const {
    auto const* const bytes = reinterpret_cast<char const*>(sqlite3_column_text(statement_.get(), column));
    return bytes
               ? std::string(bytes, static_cast<std::size_t>(sqlite3_column_bytes(statement_.get(), column)))
               : std::string();
}

/// The flush to the medium is left to the system: what a process has committed survives its death, and
/// an open of a file must not wait for a disk.
SqliteDatabase::SqliteDatabase(std::string const& path) {
    sqlite3* database = nullptr;
    int const flags = SQLITE_OPEN_READWRITE | SQLITE_OPEN_CREATE | SQLITE_OPEN_NOMUTEX;
    int const outcome = sqlite3_open_v2(path.c_str(), &database, flags, nullptr);
    database_.reset(database);
    if (outcome == SQLITE_OK) {
        sqlite3_busy_timeout(database, busyTimeoutMs);
        isOpen_ = enterWalMode(*this) && run("PRAGMA synchronous=OFF");
    }
}

bool SqliteDatabase::run(char const* sql) {
    return sqlite3_exec(database_.get(), sql, nullptr, nullptr, nullptr) == SQLITE_OK;
}

SqliteStatement SqliteDatabase::prepare(char const* sql) {
    sqlite3_stmt* statement = nullptr;
    sqlite3_prepare_v3(database_.get(), sql, -1, SQLITE_PREPARE_PERSISTENT, &statement, nullptr);
    return SqliteStatement(statement);
}

SqliteDatabase::Cost SqliteDatabase::getCost() const {
    constexpr int keepCounting = 0;
    Cost cost;
    for (sqlite3_stmt* statement = sqlite3_next_stmt(database_.get(), nullptr); statement != nullptr;
         statement = sqlite3_next_stmt(database_.get(), statement)) {
        cost.fullScanSteps += sqlite3_stmt_status(statement, SQLITE_STMTSTATUS_FULLSCAN_STEP, keepCounting);
        cost.machineSteps += sqlite3_stmt_status(statement, SQLITE_STMTSTATUS_VM_STEP, keepCounting);
    }
    return cost;
}

bool SqliteDatabase::isWhole() {
    SqliteStatement check = prepare("PRAGMA integrity_check");
    return check && check.step() == SQLITE_ROW && check.text(0) == "ok";
}

bool SqliteDatabase::isDamaged() const {
    int const code = sqlite3_errcode(database_.get());
    return code == SQLITE_NOTADB || code == SQLITE_CORRUPT;
}

bool SqliteDatabase::isBusy() const {
    int const code = sqlite3_errcode(database_.get());
    return code == SQLITE_BUSY || code == SQLITE_LOCKED;
}

std::string SqliteDatabase::lastError() const {
    return sqlite3_errmsg(database_.get());
}
