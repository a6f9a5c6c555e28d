#pragma once

#include "platform/FileStore.h"
#include "platform/HomeFolder.h"

#include <QStringList>

#include <mutex>
#include <optional>

namespace quarry {

/// The log's text file: lines are added at its end, and it is kept to its last MostPieces pieces between newlines,
/// the empty one after the last newline included. Several processes may add at once; no line is lost or torn.
///
/// A file that nobody else changed since the last time is not read back to be counted. Thread-safe.
class LogFile final {
public:
    static constexpr qsizetype MostPieces = 5000;

    /// `files` must outlive the object.
    LogFile(HomeFolder home, FileStore& files);

    [[nodiscard]] const QString& path() const { return _path; }
    /// Adds the lines in order and ends each with a newline, making file and folder when they are missing. What
    /// cannot be written is dropped: a log has nowhere to complain.
    void append(const QStringList& lines);

private:
    /// What is known of the file as one of our own writes left it.
    struct Known {
        FileStamp stamp;
        qsizetype newlines = 0;
    };
    [[nodiscard]] std::optional<qsizetype> newlinesNow() const;
    void trim();

    HomeFolder _home;
    QString _path;
    FileStore& _files;
    std::mutex _mutex;
    std::optional<Known> _known;
};

} // namespace quarry
