#include "ProcessFigures.h"

#include <QFile>

namespace quarry::bench {

namespace {

constexpr double BytesOfKilobyte = 1024.0;
constexpr double BytesOfMegabyte = 1024.0 * 1024.0;
constexpr double HundredthsOfSecond = 100.0;

QByteArray fileOf(qint64 process, const char* name)
{
    QFile file(QStringLiteral("/proc/%1/%2").arg(process).arg(QLatin1String(name)));
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

/// The number behind "name:".
double valueIn(const QByteArray& text, const QByteArray& name)
{
    const qsizetype at = text.indexOf(name + ':');
    const QByteArray line = at < 0 ? QByteArray() : text.mid(at + name.size() + 1);
    return line.left(line.indexOf('\n')).simplified().split(' ').first().toDouble();
}

/// Of all its threads, also of those that ended, in the hundredths of a second that the kernel tells.
double processorSecondsOf(const QByteArray& stat)
{
    // Behind the program's name, which may hold anything: the state is the first, the two times are the 12th and 13th.
    const QList<QByteArray> fields = stat.mid(stat.lastIndexOf(')') + 2).split(' ');
    return (fields.value(11).toDouble() + fields.value(12).toDouble()) / HundredthsOfSecond;
}

} // namespace

std::optional<ProcessFigures> figuresOf(qint64 process)
{
    const QByteArray status = fileOf(process, "status");
    const QByteArray io = fileOf(process, "io");
    if (process <= 0 || status.isEmpty() || io.isEmpty())
        return std::nullopt;
    return ProcessFigures{processorSecondsOf(fileOf(process, "stat")),
                          valueIn(status, "VmRSS") * BytesOfKilobyte / BytesOfMegabyte, valueIn(io, "write_bytes")};
}

} // namespace quarry::bench
