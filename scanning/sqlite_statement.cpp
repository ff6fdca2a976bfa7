#include "scanning/sqlite_statement.h"

namespace scanning {

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

void Statement::bind(int placeholder, const QVariant& value)
{
    switch (value.typeId()) {
    case QMetaType::Int:
    case QMetaType::LongLong:
        sqlite3_bind_int64(stmt_, placeholder, value.toLongLong());
        break;
    case QMetaType::Double:
        sqlite3_bind_double(stmt_, placeholder, value.toDouble());
        break;
    default:
        bindText(placeholder, value.toString());
        break;
    }
}

void Statement::bindAll(const QVariantList& values, int firstPlaceholder)
{
    for (qsizetype i = 0; i < values.size(); ++i)
        bind(firstPlaceholder + static_cast<int>(i), values.at(i));
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

} // namespace scanning
