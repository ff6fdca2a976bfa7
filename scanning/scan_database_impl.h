#pragma once

#include "scanning/database_lock.h"
#include "scanning/scan_database.h"

#include <QString>

#include <memory>
#include <mutex>

struct sqlite3;

namespace scanning {

namespace scandb {
class Statement;
// Binds the thirteen columns of the insert, in table order.
void bindObservation(Statement& insert, const ObservationRow& row);
} // namespace scandb

// The connection state shared by the files that implement ScanDatabase.
struct ScanDatabase::Impl {
    QString path;
    sqlite3* db = nullptr;
    std::unique_ptr<DatabaseLock> lock;
    QString openError;
    QString lastError;
    // Whether this SQLite build reads a double-quoted word that names no column as a string.
    // The delete by name relies on it; without it that delete fails in every form.
    bool doubleQuotedTextIsLiteral = false;
    // Scans are stored on their own thread while the window may empty the table for a new test:
    // each operation runs whole, never interleaved with another's statements or transaction.
    std::recursive_mutex mutex;
};

} // namespace scanning
