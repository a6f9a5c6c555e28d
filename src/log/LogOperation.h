#pragma once

#include "log/LogFile.h"

#include <QString>

#include <span>

namespace quarry {

/// One line on its way to the log file. A plain value; the file must outlive it.
class LogOperation final {
public:
    [[nodiscard]] static LogOperation initWithString(const QString& text, LogFile& file);

    /// Writes the line on the calling thread, and those of the operations behind it in the same go: a reader of the
    /// file cannot tell.
    void main(std::span<const LogOperation> following = {}) const;
    [[nodiscard]] static constexpr bool isConcurrent() { return false; }

private:
    LogOperation(QString text, LogFile& file);

    QString _stringToLog;
    LogFile* _file;
};

} // namespace quarry
