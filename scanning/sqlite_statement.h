#pragma once

#include <QByteArray>
#include <QString>
#include <QVariant>
#include <QVariantList>

#include <sqlite3.h>

namespace scanning {

// A prepared SQLite statement that finalises itself, plus the text helpers every database
// operation shares. Private to the scan database.
namespace scandb {

class Statement {
public:
    Statement(sqlite3* db, const QString& text);
    ~Statement() { sqlite3_finalize(stmt_); }
    Statement(const Statement&) = delete;
    Statement& operator=(const Statement&) = delete;

    bool isPrepared() const { return stmt_ != nullptr; }
    // The connection's message at the moment the prepare failed; later calls overwrite it.
    const QString& prepareError() const { return prepareError_; }
    sqlite3_stmt* get() const { return stmt_; }

    int step() { return sqlite3_step(stmt_); }
    void reset()
    {
        sqlite3_reset(stmt_);
        sqlite3_clear_bindings(stmt_);
    }
    void bindText(int column, const QString& value);
    // Integers, reals and texts; the first placeholder is 1.
    void bind(int placeholder, const QVariant& value);
    void bindAll(const QVariantList& values, int firstPlaceholder = 1);
    QString columnText(int column) const;

private:
    sqlite3_stmt* stmt_ = nullptr;
    QString prepareError_;
};

QString errorMessage(sqlite3* db);
// Prepares, steps once and finalises; the result code of the step, or of a failed prepare.
int runOnce(sqlite3* db, const QString& text);

} // namespace scandb

} // namespace scanning
