#include "gateway/Sqlite.h"

#include <QFile>

#include <sqlite3.h>

namespace quarry {

namespace {

const char* reasonOf(sqlite3* database, int code)
{
    if (code == SQLITE_BUSY)
        return "another program is using it";
    return database != nullptr ? sqlite3_errmsg(database) : sqlite3_errstr(code);
}

} // namespace

SqliteError::SqliteError(sqlite3* database, int code) : std::runtime_error(reasonOf(database, code)) {}

SqliteStatement::SqliteStatement(sqlite3* database, const char* sql) : _database(database)
{
    sqlite3_stmt* statement = nullptr;
    check(sqlite3_prepare_v3(database, sql, -1, SQLITE_PREPARE_PERSISTENT, &statement, nullptr));
    _statement.reset(statement);
}

SqliteStatement& SqliteStatement::bind(int index, std::int64_t value)
{
    check(sqlite3_bind_int64(_statement.get(), index, value));
    return *this;
}

SqliteStatement& SqliteStatement::bind(int index, double value)
{
    check(sqlite3_bind_double(_statement.get(), index, value));
    return *this;
}

SqliteStatement& SqliteStatement::bindText(int index, const QByteArray& utf8)
{
    check(sqlite3_bind_text64(_statement.get(), index, utf8.constData(), static_cast<sqlite3_uint64>(utf8.size()),
                              SQLITE_TRANSIENT, SQLITE_UTF8));
    return *this;
}

SqliteStatement& SqliteStatement::bindBytes(int index, const QByteArray& bytes)
{
    check(sqlite3_bind_blob64(_statement.get(), index, bytes.constData(), static_cast<sqlite3_uint64>(bytes.size()),
                              SQLITE_TRANSIENT));
    return *this;
}

bool SqliteStatement::step()
{
    const int code = sqlite3_step(_statement.get());
    if (code == SQLITE_ROW)
        return true;
    sqlite3_reset(_statement.get());
    if (code != SQLITE_DONE)
        throw SqliteError(_database, code);
    return false;
}

void SqliteStatement::run()
{
    while (step()) {
    }
}

std::int64_t SqliteStatement::number(int column) const
{
    return sqlite3_column_int64(_statement.get(), column);
}

QByteArray SqliteStatement::bytes(int column) const
{
    const auto* data = static_cast<const char*>(sqlite3_column_blob(_statement.get(), column));
    return data == nullptr ? QByteArray() : QByteArray(data, sqlite3_column_bytes(_statement.get(), column));
}

void SqliteStatement::check(int code) const
{
    if (code != SQLITE_OK)
        throw SqliteError(_database, code);
}

void SqliteStatement::Finalizer::operator()(sqlite3_stmt* statement) const
{
    sqlite3_finalize(statement);
}

SqliteDatabase::SqliteDatabase(const QString& file)
{
    sqlite3* database = nullptr;
    const QByteArray name = file.isEmpty() ? QByteArray(":memory:") : QFile::encodeName(file);
    const int code = sqlite3_open_v2(name.constData(), &database,
                                     SQLITE_OPEN_READWRITE | SQLITE_OPEN_CREATE | SQLITE_OPEN_NOMUTEX, nullptr);
    _database.reset(database);
    if (code != SQLITE_OK)
        throw SqliteError(database, code);
}

void SqliteDatabase::run(const char* sql)
{
    const int code = sqlite3_exec(_database.get(), sql, nullptr, nullptr, nullptr);
    if (code != SQLITE_OK)
        throw SqliteError(_database.get(), code);
}

std::int64_t SqliteDatabase::number(const char* sql)
{
    SqliteStatement statement = prepare(sql);
    return statement.step() ? statement.number(0) : 0;
}

std::int64_t SqliteDatabase::lastInsertedId() const
{
    return sqlite3_last_insert_rowid(_database.get());
}

void SqliteDatabase::Closer::operator()(sqlite3* database) const
{
    sqlite3_close_v2(database);
}

SqliteTransaction::SqliteTransaction(SqliteDatabase& database) : _database(database)
{
    _database.run("BEGIN IMMEDIATE");
}

SqliteTransaction::~SqliteTransaction()
{
    if (!_open)
        return;
    try {
        _database.run("ROLLBACK");
    } catch (const SqliteError&) {
        // The failure that led here may have rolled back already.
    }
}

void SqliteTransaction::commit()
{
    _database.run("COMMIT");
    _open = false;
}

} // namespace quarry
