#include "log/LogOperation.h"

namespace quarry {

LogOperation::LogOperation(QString text, LogFile& file) : _stringToLog(std::move(text)), _file(&file) {}

LogOperation LogOperation::initWithString(const QString& text, LogFile& file)
{
    return LogOperation(text, file);
}

void LogOperation::main(std::span<const LogOperation> following) const
{
    QStringList lines{_stringToLog};
    for (const LogOperation& operation : following)
        lines.append(operation._stringToLog);
    _file->append(lines);
}

} // namespace quarry
