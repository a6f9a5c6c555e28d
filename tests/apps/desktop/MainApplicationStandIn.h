#pragma once

#include <QString>
#include <QStringList>

namespace quarry::test {

/// The test program under the main application's name: tells over the bus that it was opened, and with what, and
/// leaves as the main application does when it is told to.
class MainApplicationStandIn final {
public:
    /// "arguments" of its user-info: what it was opened with, joined by line ends.
    static QString openedNotification() { return QStringLiteral("test: the main application was opened"); }
    static QString leaveNotification() { return QStringLiteral("test: the main application is to leave"); }

    [[nodiscard]] static bool isMeant(const QString& program) { return program == QLatin1String("QuarrySpotter"); }
    static int run(int argc, char** argv);
};

} // namespace quarry::test
