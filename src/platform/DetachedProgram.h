#pragma once

#include <QString>
#include <QStringList>

namespace quarry {

/// Starts a program that lives on when this one ends, and of which nothing is left to wait for. It gets this process's
/// environment, but none of its terminal, pipes, held-back signals or current folder, so that nobody who waits for this
/// program's output waits for that one too. A name without a path is looked for in $PATH. False when it cannot be
/// started. Returns as soon as it runs; thread-safe.
[[nodiscard]] bool launchDetached(const QString& program, const QStringList& arguments);

} // namespace quarry
