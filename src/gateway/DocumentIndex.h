#pragma once

#include "gateway/SearchSource.h"
#include "gateway/Sqlite.h"
#include "platform/FileStore.h"

#include <QByteArray>
#include <QString>

#include <cstdint>
#include <optional>
#include <vector>

namespace quarry {

/// The full-text index of a folder's files. It knows every file by path and stamp, documents or not, so that only
/// what changed has to be read again. Every function throws SqliteError. One thread at a time.
class DocumentIndex final {
public:
    struct File {
        std::int64_t id = 0;
        QByteArray name;
        FileStamp stamp;
    };
    struct Text {
        QByteArray title;
        QByteArray body;
    };

    /// In that file, or in memory when its name is empty. A file made for another folder is emptied; one that is
    /// something else altogether is left alone, and the error says so.
    DocumentIndex(const QString& file, const QString& folder);

    [[nodiscard]] SqliteTransaction begin() { return SqliteTransaction(_database); }
    [[nodiscard]] std::vector<File> filesIn(const QByteArray& folder);
    /// Every folder that has files, the given one and those below it.
    [[nodiscard]] std::vector<QByteArray> foldersBelow(const QByteArray& folder);
    /// Without a text the file is known as no document.
    void add(const QByteArray& folder, const QByteArray& name, const FileStamp& stamp, const std::optional<Text>& text);
    void remove(std::int64_t id);
    /// The files of that folder, not those of folders below it.
    void removeFolder(const QByteArray& folder);

    [[nodiscard]] std::int64_t documentCount();
    [[nodiscard]] SearchAnswer search(const SearchRequest& request);

private:
    void createTables(const QString& folder);
    void fill(FoundDocument& document, std::int64_t id, const QByteArray& expression);

    SqliteDatabase _database;
    std::optional<SqliteStatement> _addFile, _addText, _removeFile, _removeText, _filesIn, _excerpt;
};

} // namespace quarry
