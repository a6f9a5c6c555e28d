#include "gateway/FolderSource.h"

#include <QFileInfo>

namespace quarry {

namespace {

/// An index among the documents it is made from would change with every look at them.
bool isSeenIn(const ContainedFolder& folder, const QString& indexFile)
{
    const QFileInfo file(indexFile);
    const QString place = QFileInfo(file.absolutePath()).canonicalFilePath() + u'/';
    return !indexFile.isEmpty() && place.startsWith(folder.path() + u'/') && !file.fileName().startsWith(u'.') &&
           !place.mid(folder.path().size()).contains(QStringLiteral("/."));
}

} // namespace

std::unique_ptr<FolderSource> FolderSource::open(const Options& options, QString* error)
{
    error->clear();
    std::optional<ContainedFolder> folder = ContainedFolder::open(options.folder, error);
    if (!folder)
        return nullptr;
    if (isSeenIn(*folder, options.indexFile)) {
        *error =
            QStringLiteral("the index file \"%1\" lies among the documents; put it elsewhere, or let its name begin "
                           "with a dot")
                .arg(options.indexFile);
        return nullptr;
    }
    try {
        auto reader = std::make_unique<FolderReader>(*std::move(folder), options.indexFile);
        reader->readAll(options.progress);
        return std::unique_ptr<FolderSource>(new FolderSource(std::move(reader)));
    } catch (const FolderReader::GivenUp&) {
        return nullptr;
    } catch (const SqliteError& failure) {
        *error = QStringLiteral("cannot use the index %1: %2")
                     .arg(options.indexFile.isEmpty() ? QStringLiteral("in memory")
                                                      : QStringLiteral("file \"%1\"").arg(options.indexFile),
                          QString::fromUtf8(failure.what()));
        return nullptr;
    }
}

SearchAnswer FolderSource::search(const SearchRequest& request)
{
    const std::lock_guard lock(_mutex);
    try {
        _reader->readChanges();
        return _reader->index().search(request);
    } catch (const SqliteError& failure) {
        SearchAnswer answer;
        answer.error = QStringLiteral("the index failed: %1").arg(QString::fromUtf8(failure.what()));
        return answer;
    }
}

std::optional<DocumentPage> FolderSource::document(const QByteArray& path)
{
    // Straight from the folder: a page is always as the file is now.
    const std::optional<Document> document = _reader->document(path);
    if (!document)
        return std::nullopt;
    return DocumentPage{document->page()};
}

std::int64_t FolderSource::documentCount()
{
    const std::lock_guard lock(_mutex);
    try {
        return _reader->index().documentCount();
    } catch (const SqliteError&) {
        return 0; // Only shown to people; the next search tells what is wrong.
    }
}

} // namespace quarry
