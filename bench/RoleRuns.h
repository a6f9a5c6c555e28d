#pragma once

#include <QCoreApplication>
#include <QProcess>

#include <CLI/CLI.hpp>
#include <optional>
#include <string>

namespace quarry::bench {

/// What a benchmark over a made tree is told. It starts itself again for each measurement, with a role.
struct TreeOptions {
    int queries = 1000;
    int results = 1000;
    int runs = 5;
    std::string role;
    std::string folder;

    void addTo(CLI::App& arguments)
    {
        arguments.add_option("--queries", queries, "Number of queries");
        arguments.add_option("--results", results, "Results of each query");
        arguments.add_option("--runs", runs, "Runs of each measurement; the median counts");
        arguments.add_option("--role", role, "One measurement, in this process")->group("");
        arguments.add_option("--folder", folder, "Where the files of a measurement are")->group("");
    }
};

/// What a process of this program prints in that role; none when it failed.
inline std::optional<QByteArray> outputOfRole(const TreeOptions& options, const char* role, const QString& folder,
                                              const QStringList& more = {})
{
    QProcess child;
    child.setProcessChannelMode(QProcess::ForwardedErrorChannel);
    child.start(QCoreApplication::applicationFilePath(),
                QStringList{QStringLiteral("--role"), QString::fromLatin1(role), QStringLiteral("--folder"), folder,
                            QStringLiteral("--queries"), QString::number(options.queries), QStringLiteral("--results"),
                            QString::number(options.results)} +
                    more);
    const bool hasEnded = child.waitForFinished(-1) && child.exitStatus() == QProcess::NormalExit;
    return hasEnded && child.exitCode() == 0 ? std::optional(child.readAllStandardOutput()) : std::nullopt;
}

} // namespace quarry::bench
