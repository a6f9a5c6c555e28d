#include "platform/SystemVersion.h"

#include "platform/linux/SystemRelease.h"

#include <QFile>
#include <QList>

#include <algorithm>
#include <array>

namespace quarry {

namespace {

/// The newest rules apply to every system.
constexpr int LeastVersion = 101500;

/// The value of VERSION_ID without its quotes; empty when the system has no versions.
QByteArray versionText(const QByteArray& release)
{
    const QByteArray key("VERSION_ID=");
    for (const QByteArray& line : release.split('\n')) {
        if (line.startsWith(key))
            return line.mid(key.size()).trimmed().replace('"', QByteArray()).replace('\'', QByteArray());
    }
    return {};
}

} // namespace

int versionInRelease(const QByteArray& release)
{
    constexpr std::array<int, 3> Weights = {10000, 100, 1};
    constexpr std::array<int, 3> Greatest = {99999, 99, 99};
    const QList<QByteArray> parts = versionText(release).split('.');
    int version = 0;
    for (std::size_t i = 0; i < Weights.size() && qsizetype(i) < parts.size(); ++i)
        version += Weights[i] * std::clamp(parts[qsizetype(i)].toInt(), 0, Greatest[i]);
    return std::max(version, LeastVersion);
}

int operatingSystemVersion()
{
    for (const QString& path : {QStringLiteral("/etc/os-release"), QStringLiteral("/usr/lib/os-release")}) {
        QFile file(path);
        if (file.open(QIODevice::ReadOnly))
            return versionInRelease(file.readAll());
    }
    return LeastVersion;
}

} // namespace quarry
