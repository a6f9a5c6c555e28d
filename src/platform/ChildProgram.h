#pragma once

#include <QByteArray>
#include <QString>
#include <QStringList>

#include <functional>

namespace quarry {

/// How a program that was run ended.
struct ChildEnd {
    QString error;            ///< Why it could not be started, or what killed it: one line for a person; else empty.
    int exitStatus = -1;      ///< Meaningful without an error.
    bool interrupted = false; ///< This process was asked to stop meanwhile, and passed that on.
    [[nodiscard]] bool ok() const { return error.isEmpty(); }
};

/// Runs a program to its end and hands over its standard output line by line, without the newlines; a line longer
/// than 1 MiB comes in pieces. Standard input is empty, standard error is shared.
///
/// An interrupt (SIGINT, SIGTERM, SIGHUP) that reaches this process meanwhile is passed on to the program as SIGINT
/// instead of ending this process. One call at a time, on the main thread.
[[nodiscard]] ChildEnd runProgram(const QString& program, const QStringList& arguments,
                                  const std::function<void(const QByteArray& line)>& onLine);

} // namespace quarry
