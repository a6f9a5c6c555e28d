#include "SqliteTree.h"

#include "model/RecordData.h"

#include <QFile>

#include <sqlite3.h>

#include <memory>

namespace quarry::bench {

namespace {

struct CloseDatabase {
    void operator()(sqlite3* database) const { sqlite3_close(database); }
};
struct FinalizeStatement {
    void operator()(sqlite3_stmt* statement) const { sqlite3_finalize(statement); }
};
using Database = std::unique_ptr<sqlite3, CloseDatabase>;
using Statement = std::unique_ptr<sqlite3_stmt, FinalizeStatement>;

Database openDatabase(const QString& path)
{
    sqlite3* database = nullptr;
    sqlite3_open(path.toUtf8().constData(), &database);
    return Database(database);
}

Statement prepare(const Database& database, const char* text)
{
    sqlite3_stmt* statement = nullptr;
    sqlite3_prepare_v2(database.get(), text, -1, &statement, nullptr);
    return Statement(statement);
}

bool run(const Database& database, const char* text)
{
    return sqlite3_exec(database.get(), text, nullptr, nullptr, nullptr) == SQLITE_OK;
}

constexpr const char* Schema = "CREATE TABLE query(id INTEGER PRIMARY KEY, parent INTEGER, uuid TEXT, text TEXT);"
                               "CREATE TABLE result(query INTEGER, title TEXT, url TEXT, page TEXT, parentUuid TEXT, "
                               "uuid TEXT, engine TEXT, checksum TEXT, saw INTEGER, visible INTEGER, new INTEGER, "
                               "date REAL, rank INTEGER, rating INTEGER)";

class Writer final {
public:
    explicit Writer(const Database& database)
        : _query(prepare(database, "INSERT INTO query VALUES(?,?,?,?)")),
          _result(prepare(database, "INSERT INTO result VALUES(?,?,?,?,?,?,?,?,?,?,?,?,?,?)"))
    {
    }

    bool write(const QueryCorePtr& node, int parent)
    {
        const int id = ++_lastId;
        const QueryCore::Snapshot state = node->snapshot();
        sqlite3_bind_int(_query.get(), 1, id);
        sqlite3_bind_int(_query.get(), 2, parent);
        const QByteArray uuid = state.fields._uuid.toUtf8();
        const QByteArray text = state.fields._query.value_or(QString()).toUtf8();
        sqlite3_bind_text(_query.get(), 3, uuid.constData(), int(uuid.size()), SQLITE_STATIC);
        sqlite3_bind_text(_query.get(), 4, text.constData(), int(text.size()), SQLITE_STATIC);
        bool ok = step(_query);
        for (const ResultRecord& record : state.fields._currentResult.value_or(ResultList()))
            ok = ok && writeRecord(record.data(), id);
        for (const QueryCorePtr& child : state.childs.value_or(QList<QueryCorePtr>()))
            ok = ok && write(child, id);
        return ok;
    }

private:
    static bool step(const Statement& statement)
    {
        const bool ok = sqlite3_step(statement.get()) == SQLITE_DONE;
        sqlite3_reset(statement.get());
        return ok;
    }

    bool writeRecord(const RecordData& data, int query)
    {
        sqlite3_stmt* row = _result.get();
        sqlite3_bind_int(row, 1, query);
        std::array<QByteArray, RecordTextCount> converted;
        for (std::size_t i = 0; i < RecordTextCount; ++i) {
            const StoredText& text = data.texts[i];
            std::string_view bytes = text.bytes();
            if (text.encoding() != StoredText::Encoding::Ascii) {
                converted[i] = text.toString().toUtf8();
                bytes = {converted[i].constData(), static_cast<std::size_t>(converted[i].size())};
            }
            sqlite3_bind_text(row, int(i) + 2, bytes.data(), int(bytes.size()), SQLITE_STATIC);
        }
        sqlite3_bind_int(row, 9, data.flag(RecordKey::UserSaw));
        sqlite3_bind_int(row, 10, data.flag(RecordKey::Visible));
        sqlite3_bind_int(row, 11, data.flag(RecordKey::NewSincePrevious));
        sqlite3_bind_double(row, 12, data.date);
        sqlite3_bind_int64(row, 13, data.rank);
        sqlite3_bind_int64(row, 14, data.rating);
        return step(_result);
    }

    Statement _query;
    Statement _result;
    int _lastId = 0;
};

ResultRecord recordOf(sqlite3_stmt* row)
{
    auto data = std::make_unique<RecordData>();
    for (std::size_t i = 0; i < RecordTextCount; ++i) {
        const int column = int(i) + 1;
        const auto* text = reinterpret_cast<const char*>(sqlite3_column_text(row, column));
        const auto size = static_cast<std::size_t>(sqlite3_column_bytes(row, column));
        data->setText(static_cast<RecordKey>(i), StoredText::copyOfUtf8({text, size}));
    }
    data->setFlag(RecordKey::UserSaw, sqlite3_column_int(row, 8) != 0);
    data->setFlag(RecordKey::Visible, sqlite3_column_int(row, 9) != 0);
    data->setFlag(RecordKey::NewSincePrevious, sqlite3_column_int(row, 10) != 0);
    data->setDate(sqlite3_column_double(row, 11));
    data->setInteger(RecordKey::Rank, sqlite3_column_int64(row, 12));
    data->setInteger(RecordKey::Rating, sqlite3_column_int64(row, 13));
    return ResultRecord(std::move(data));
}

} // namespace

bool saveToSqlite(const QueryCorePtr& root, const QString& path)
{
    QFile::remove(path);
    const Database database = openDatabase(path);
    if (!run(database, Schema) || !run(database, "BEGIN"))
        return false;
    return Writer(database).write(root, 0) && run(database, "COMMIT");
}

ResultList readFromSqlite(const QString& path)
{
    const Database database = openDatabase(path);
    const Statement rows = prepare(database, "SELECT * FROM result");
    ResultList records;
    while (sqlite3_step(rows.get()) == SQLITE_ROW)
        records.append(recordOf(rows.get()));
    return records;
}

bool indexSqlite(const QString& path)
{
    return run(openDatabase(path), "CREATE INDEX ofQuery ON result(query, date, saw, new)");
}

int countInSqlite(const QString& path)
{
    const Database database = openDatabase(path);
    const Statement rows =
        prepare(database, "SELECT query, count(*), sum(saw = 0), sum(new) FROM result GROUP BY query");
    int queries = 0;
    while (sqlite3_step(rows.get()) == SQLITE_ROW)
        queries += sqlite3_column_int64(rows.get(), 1) > 0;
    return queries;
}

int listFromSqlite(const QString& path, int query)
{
    const Database database = openDatabase(path);
    const Statement rows = prepare(database, "SELECT * FROM result WHERE query = ? ORDER BY date DESC");
    sqlite3_bind_int(rows.get(), 1, query);
    ResultList records;
    while (sqlite3_step(rows.get()) == SQLITE_ROW)
        records.append(recordOf(rows.get()));
    return static_cast<int>(records.size());
}

} // namespace quarry::bench
