#pragma once

#include <cstdint>

#include "host/sqlite/SqliteDatabase.h"

/// The version of a project's tables that this program reads and writes.
[[nodiscard]] std::int64_t projectSchemaVersion();

/// Brings the tables of a project from a version, 0 for an empty file, to this program's. Requires a transaction.
[[nodiscard]] bool migrateProject(SqliteDatabase& database, std::int64_t version);
