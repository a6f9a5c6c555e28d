#pragma once

#include <QByteArray>
#include <QString>

#include <cstdint>
#include <memory>
#include <stdexcept>

struct sqlite3;
struct sqlite3_stmt;

namespace quarry {

/// Whatever goes wrong in the index; caught where the gateway's classes meet the outside.
class SqliteError final : public std::runtime_error {
public:
    SqliteError(sqlite3* database, int code);
    explicit SqliteError(const char* reason) : std::runtime_error(reason) {}
};

/// One prepared statement. Parameters count from 1, columns from 0.
class SqliteStatement final {
public:
    SqliteStatement(sqlite3* database, const char* sql);

    SqliteStatement& bind(int index, std::int64_t value);
    SqliteStatement& bind(int index, double value);
    /// As text: it has to be UTF-8.
    SqliteStatement& bindText(int index, const QByteArray& utf8);
    SqliteStatement& bindBytes(int index, const QByteArray& bytes);

    /// True while there is a row; false at the end, and then the statement is ready to be bound again.
    bool step();
    /// For what gives no rows.
    void run();

    [[nodiscard]] std::int64_t number(int column) const;
    [[nodiscard]] QByteArray bytes(int column) const;

private:
    void check(int code) const;

    struct Finalizer {
        void operator()(sqlite3_stmt* statement) const;
    };
    sqlite3* _database;
    std::unique_ptr<sqlite3_stmt, Finalizer> _statement;
};

/// A database in a file, or in memory when the file's name is empty. One thread at a time.
class SqliteDatabase final {
public:
    explicit SqliteDatabase(const QString& file);

    void run(const char* sql);
    [[nodiscard]] std::int64_t number(const char* sql);
    [[nodiscard]] SqliteStatement prepare(const QByteArray& sql) { return {_database.get(), sql.constData()}; }
    [[nodiscard]] std::int64_t lastInsertedId() const;

private:
    struct Closer {
        void operator()(sqlite3* database) const;
    };
    std::unique_ptr<sqlite3, Closer> _database;
};

/// Everything between making and commit() happens or nothing does.
class SqliteTransaction final {
public:
    explicit SqliteTransaction(SqliteDatabase& database);
    SqliteTransaction(const SqliteTransaction&) = delete;
    SqliteTransaction& operator=(const SqliteTransaction&) = delete;
    ~SqliteTransaction();
    void commit();

private:
    SqliteDatabase& _database;
    bool _open = true;
};

} // namespace quarry
