#include "scanning/sqlite_statement.h"

namespace scandb {

Statement::Statement(sqlite3* db, const QString& text)
{
    if (sqlite3_prepare_v2(db, text.toUtf8().constData(), -1, &stmt_, nullptr) != SQLITE_OK) {
        prepareError_ = errorMessage(db);
        sqlite3_finalize(stmt_);
        stmt_ = nullptr;
    }
}

void Statement::bindText(int column, const QString& value)
{
    const QByteArray utf8 = value.toUtf8();
    sqlite3_bind_text(stmt_, column, utf8.constData(), -1, SQLITE_TRANSIENT);
}

QString Statement::columnText(int column) const
{
    const auto* text = reinterpret_cast<const char*>(sqlite3_column_text(stmt_, column));
    return text ? QString::fromUtf8(text, sqlite3_column_bytes(stmt_, column)) : QString();
}

QString errorMessage(sqlite3* db) { return QString::fromUtf8(sqlite3_errmsg(db)); }

int runOnce(sqlite3* db, const QString& text)
{
    Statement statement(db, text);
    return statement.isPrepared() ? statement.step() : SQLITE_ERROR;
}

} // namespace scandb
