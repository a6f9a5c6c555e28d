#pragma once

#include "support/QtPrinting.h"

#include <QJsonDocument>
#include <QJsonObject>
#include <QProcess>
#include <QProcessEnvironment>
#include <QString>
#include <QStringList>

namespace quarry::test {

/// How a real `quarry` process ended.
struct Ran {
    int status = -1; ///< -1 when it crashed or did not end.
    QString out;
    QString err;
    [[nodiscard]] QJsonObject json() const { return QJsonDocument::fromJson(out.toUtf8()).object(); }
};

/// A `quarry` process over a home folder, in UTC.
class QuarryProcess final {
public:
    QuarryProcess(const QString& home, const QStringList& arguments, const QString& workingFolder = QString())
    {
        QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
        environment.insert(QStringLiteral("TZ"), QStringLiteral("UTC"));
        environment.remove(QStringLiteral("QUARRY_DEBUG"));
        _process.setProcessEnvironment(environment);
        _process.setWorkingDirectory(workingFolder);
        _process.start(QStringLiteral(QUARRY_BUNDLE_DIR "/bin/quarry"),
                       home.isEmpty() ? arguments : arguments + QStringList{QStringLiteral("--home"), home});
    }
    [[nodiscard]] QProcess& process() { return _process; }
    [[nodiscard]] Ran wait()
    {
        const bool isOver = _process.state() == QProcess::NotRunning || _process.waitForFinished(120000);
        const bool ended = isOver && _process.exitStatus() == QProcess::NormalExit;
        return {ended ? _process.exitCode() : -1, QString::fromUtf8(_process.readAllStandardOutput()),
                QString::fromUtf8(_process.readAllStandardError())};
    }

private:
    QProcess _process;
};

[[nodiscard]] inline Ran runQuarry(const QString& home, const QStringList& arguments)
{
    return QuarryProcess(home, arguments).wait();
}

/// Starts the gateway over a folder of documents. Its address; empty when it does not come up.
[[nodiscard]] inline QString startGateway(QProcess& gateway, const QString& folder)
{
    gateway.start(QStringLiteral(QUARRY_BUNDLE_DIR "/bin/quarry-gateway"), {QStringLiteral("--folder"), folder});
    QString address =
        gateway.waitForReadyRead(60000) ? QString::fromUtf8(gateway.readLine()).section(u' ', 2, 2) : QString();
    address.chop(1);
    return address;
}

} // namespace quarry::test
