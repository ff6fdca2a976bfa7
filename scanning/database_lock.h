#pragma once

#include <QString>

#include <memory>

namespace scanning {

// One database, one scanner: starting a test empties the observation table, so two processes
// scanning into one file would destroy each other's rows. The lock is an advisory flock on
// "<database>.lock", which names its holder (pid and program) for the refusal message and is
// released by the kernel when the holder ends, however it ends.
class DatabaseLock {
public:
    // nullptr with *error set ("in use by skyvane-cli (pid 1234)", or why the lock file cannot
    // be made) when the database may not be used by this process.
    static std::unique_ptr<DatabaseLock> acquire(const QString& databasePath, QString* error);
    ~DatabaseLock();
    DatabaseLock(const DatabaseLock&) = delete;
    DatabaseLock& operator=(const DatabaseLock&) = delete;

    static QString lockPathFor(const QString& databasePath);

private:
    explicit DatabaseLock(int fd) : fd_(fd) {}
    int fd_;
};

} // namespace scanning
