#include "gateway/DocumentIndex.h"

namespace quarry {

namespace {

/// Marks a database file as ours ("QSgw"), and which form of it this is.
constexpr std::int64_t applicationId = 0x51536777;
constexpr std::int64_t formVersion = 1;

constexpr const char* tables = R"(
    CREATE TABLE source(folder TEXT NOT NULL);
    CREATE TABLE files(
        id INTEGER PRIMARY KEY, folder BLOB NOT NULL, name BLOB NOT NULL, path BLOB NOT NULL,
        inode INTEGER NOT NULL, size INTEGER NOT NULL, modified INTEGER NOT NULL, document INTEGER NOT NULL,
        UNIQUE(folder, name));
    CREATE VIRTUAL TABLE texts USING fts5(title, path, body, tokenize = 'unicode61 remove_diacritics 2');
)";

/// What the rank of a match is multiplied with: 1 to 1.5. Looks at nothing that changes by itself, the time of day
/// included, so that the pages of one search fit together.
const char* factorOf(Ranking::Liking liking)
{
    switch (liking) {
    case Ranking::Liking::Newer: // 0 for the year 2000, in nanoseconds; 1 for thirty years later.
        return "(1 + 0.5 * max(0, min(1, (files.modified - 946684800e9) / 946684800e9)))";
    case Ranking::Liking::Shorter:
        return "(1 + 0.5 * 4096 / (4096 + files.size))";
    case Ranking::Liking::Longer:
        return "(1 + 0.5 * files.size / (4096 + files.size))";
    case Ranking::Liking::ShorterPath:
        return "(1 + 0.5 * 10 / (10 + length(files.path)))";
    case Ranking::Liking::Nothing:
        break;
    }
    return "1";
}

/// "FROM ... WHERE ..." of a search, its parameters ?1 for the expression, ?10 and up for the places.
QByteArray conditions(const SearchRequest& request, bool hasExpression)
{
    QByteArray sql = hasExpression ? " FROM texts JOIN files ON files.id = texts.rowid WHERE texts MATCH ?1"
                                   : " FROM files WHERE document";
    for (qsizetype i = 0; i < request.places.size(); ++i) {
        const QByteArray place = '?' + QByteArray::number(10 + i);
        sql += " AND (files.path = " + place + " OR substr(files.path, 1, length(" + place + ") + 1) = CAST(" + place +
               " || '/' AS BLOB))";
    }
    return sql;
}

void bindConditions(SqliteStatement& statement, const SearchRequest& request, const QByteArray& expression)
{
    if (!expression.isEmpty())
        statement.bindText(1, expression);
    for (qsizetype i = 0; i < request.places.size(); ++i)
        statement.bindBytes(static_cast<int>(10 + i), request.places[i]);
}

} // namespace

DocumentIndex::DocumentIndex(const QString& file, const QString& folder) : _database(file)
{
    // The index can always be made again, but a kill must not leave a file that is half old, half new.
    _database.run("PRAGMA locking_mode = EXCLUSIVE; PRAGMA journal_mode = TRUNCATE; PRAGMA synchronous = NORMAL;"
                  "PRAGMA cache_size = -16000; PRAGMA temp_store = MEMORY;");
    createTables(folder);
    _addFile.emplace(_database.prepare("INSERT INTO files(folder, name, path, inode, size, modified, document) "
                                       "VALUES(?1, ?2, ?3, ?4, ?5, ?6, ?7)"));
    _addText.emplace(_database.prepare("INSERT INTO texts(rowid, title, path, body) VALUES(?1, ?2, ?3, ?4)"));
    _removeFile.emplace(_database.prepare("DELETE FROM files WHERE id = ?1"));
    _removeText.emplace(_database.prepare("DELETE FROM texts WHERE rowid = ?1"));
    _filesIn.emplace(
        _database.prepare("SELECT id, name, inode, size, modified FROM files WHERE folder = ?1 ORDER BY name"));
    _excerpt.emplace(_database.prepare("SELECT title, snippet(texts, 2, char(2), char(3), '\u2026', 32) FROM texts "
                                       "WHERE texts MATCH ?1 AND rowid = ?2"));
}

void DocumentIndex::createTables(const QString& folder)
{
    SqliteTransaction transaction(_database);
    const std::int64_t id = _database.number("PRAGMA application_id");
    const bool isEmpty = _database.number("SELECT count(*) FROM sqlite_master") == 0;
    if (!isEmpty && id != applicationId)
        throw SqliteError("it is a database of another program");
    if (!isEmpty && _database.number("PRAGMA user_version") == formVersion) {
        SqliteStatement same = _database.prepare("SELECT count(*) FROM source WHERE folder = ?1");
        same.bindText(1, folder.toUtf8());
        if (same.step() && same.number(0) == 1)
            return;
    }
    _database.run("DROP TABLE IF EXISTS source; DROP TABLE IF EXISTS files; DROP TABLE IF EXISTS texts;");
    _database.run(tables);
    _database.run("PRAGMA application_id = 1364420471; PRAGMA user_version = 1;");
    static_assert(applicationId == 1364420471 && formVersion == 1);
    _database.prepare("INSERT INTO source VALUES(?1)").bindText(1, folder.toUtf8()).run();
    transaction.commit();
}

std::vector<DocumentIndex::File> DocumentIndex::filesIn(const QByteArray& folder)
{
    std::vector<File> files;
    _filesIn->bindBytes(1, folder);
    while (_filesIn->step()) {
        files.push_back({_filesIn->number(0),
                         _filesIn->bytes(1),
                         {static_cast<std::uint64_t>(_filesIn->number(2)), _filesIn->number(3), _filesIn->number(4)}});
    }
    return files;
}

std::vector<QByteArray> DocumentIndex::foldersBelow(const QByteArray& folder)
{
    // "0" is the character after "/": the range holds exactly the paths that go on with a "/".
    SqliteStatement statement = _database.prepare(
        folder.isEmpty() ? "SELECT DISTINCT folder FROM files"
                         : "SELECT DISTINCT folder FROM files WHERE folder = ?1 OR (folder > ?2 AND folder < ?3)");
    if (!folder.isEmpty())
        statement.bindBytes(1, folder).bindBytes(2, folder + '/').bindBytes(3, folder + '0');
    std::vector<QByteArray> folders;
    while (statement.step())
        folders.push_back(statement.bytes(0));
    return folders;
}

void DocumentIndex::add(const QByteArray& folder, const QByteArray& name, const FileStamp& stamp,
                        const std::optional<Text>& text)
{
    const QByteArray path = folder.isEmpty() ? name : folder + '/' + name;
    _addFile->bindBytes(1, folder).bindBytes(2, name).bindBytes(3, path);
    _addFile->bind(4, static_cast<std::int64_t>(stamp.inode)).bind(5, stamp.size).bind(6, stamp.modifiedNanoseconds);
    _addFile->bind(7, std::int64_t{text ? 1 : 0}).run();
    if (!text)
        return;
    // The bytes of a name need not be UTF-8; the index's texts have to be.
    _addText->bind(1, _database.lastInsertedId()).bindText(2, text->title);
    _addText->bindText(3, QString::fromUtf8(path).toUtf8()).bindText(4, text->body).run();
}

void DocumentIndex::remove(std::int64_t id)
{
    _removeText->bind(1, id).run();
    _removeFile->bind(1, id).run();
}

void DocumentIndex::removeFolder(const QByteArray& folder)
{
    for (const File& file : filesIn(folder))
        remove(file.id);
}

std::int64_t DocumentIndex::documentCount()
{
    return _database.number("SELECT count(*) FROM files WHERE document");
}

SearchAnswer DocumentIndex::search(const SearchRequest& request)
{
    SearchAnswer answer;
    const QByteArray expression = request.text.indexExpression();
    if (expression.isEmpty() && (request.places.isEmpty() || !request.text.terms.isEmpty()))
        return answer;
    const QByteArray from = conditions(request, !expression.isEmpty());
    SqliteStatement counted = _database.prepare("SELECT count(*)" + from);
    bindConditions(counted, request, expression);
    answer.total = counted.step() ? counted.number(0) : 0;

    const QByteArray order = expression.isEmpty()
                                 ? QByteArray("files.modified DESC")
                                 : QByteArray("bm25(texts, ?2, ?3, ?4) * ") + factorOf(request.ranking.liking);
    SqliteStatement ranked = _database.prepare("SELECT files.id, files.path" + from + " ORDER BY " + order +
                                               ", files.path LIMIT ?5 OFFSET ?6");
    bindConditions(ranked, request, expression);
    if (!expression.isEmpty())
        ranked.bind(2, request.ranking.title).bind(3, request.ranking.path).bind(4, request.ranking.body);
    ranked.bind(5, std::int64_t{request.count}).bind(6, std::int64_t{request.first});
    while (ranked.step()) {
        FoundDocument& document = answer.found.emplace_back();
        document.path = ranked.bytes(1);
        fill(document, ranked.number(0), expression);
    }
    return answer;
}

/// Apart from the ranking: an excerpt is made for the documents of one page only, not for all that match.
void DocumentIndex::fill(FoundDocument& document, std::int64_t id, const QByteArray& expression)
{
    if (expression.isEmpty()) {
        SqliteStatement plain = _database.prepare("SELECT title, substr(body, 1, 200) FROM texts WHERE rowid = ?1");
        plain.bind(1, id);
        if (plain.step()) {
            document.title = plain.bytes(0);
            document.excerpt = plain.bytes(1);
        }
        return;
    }
    _excerpt->bindText(1, expression).bind(2, id);
    while (_excerpt->step()) {
        document.title = _excerpt->bytes(0);
        document.excerpt = _excerpt->bytes(1);
    }
}

} // namespace quarry
