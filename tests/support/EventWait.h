#pragma once

#include <QCoreApplication>
#include <QDeadlineTimer>
#include <QEventLoop>
#include <QTimer>

namespace quarry::test {

/// Runs the event loop until the condition holds; false when it never does.
template <typename Condition>
[[nodiscard]] bool waitFor(Condition condition)
{
    const QDeadlineTimer deadline(60000);
    QTimer looks;
    looks.start(5);
    while (!condition()) {
        if (deadline.hasExpired())
            return false;
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
    }
    return true;
}

} // namespace quarry::test
