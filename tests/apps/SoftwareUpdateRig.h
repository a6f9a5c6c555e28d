#pragma once

#include "support/EventWait.h"
#include "support/QtPrinting.h"
#include "support/QuarryProcess.h"
#include "support/ScriptServer.h"
#include "support/SessionBusDaemon.h"
#include "support/TemporaryHome.h"
#include "updater/ImageSignature.h"

#include <QCoreApplication>
#include <QDir>
#include <QProcess>
#include <QStandardPaths>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <memory>

namespace quarry::test {

/// Version 1 of the product installed in a folder, version 2 made by the maker's tool and served from this machine,
/// a user's home folder, and a desktop that notes what it is asked for. Programs are the built ones, without what only
/// a debugger reads.
class SoftwareUpdateRig {
public:
    SoftwareUpdateRig() : server(std::make_unique<ScriptServer>())
    {
        const QString made = output(QStringLiteral(QUARRY_RELEASE), {QStringLiteral("key"), _keyFile});
        _publicKey = made.section(u' ', -1).trimmed().toLatin1();
        writeScript(_tools.filePath(QStringLiteral("xdg-open")), "echo \"$1\" >>\"$HOME/browser\"");
        makeBundle(installed, "1.0");
        serveVersion2();
    }

    /// A bundle in which the main application only notes that it was started, and the agent does, too.
    void makeBundle(const QString& path, const QByteArray& version) const
    {
        const QString contents = path + QStringLiteral("/Contents/");
        const QString agent = contents + QStringLiteral("Agents/QuarrySpotterAgent.app/Contents/");
        QDir().mkpath(contents + QStringLiteral("bin"));
        QDir().mkpath(agent + QStringLiteral("bin"));
        QDir().mkpath(contents + QStringLiteral("Resources"));
        writeFile(contents + QStringLiteral("Info.plist"), infoOf("QuarrySpotter", version));
        writeFile(agent + QStringLiteral("Info.plist"), infoOf("QuarrySpotterAgent", version));
        writeScript(contents + QStringLiteral("bin/QuarrySpotter"), "echo " + version + " >>\"$HOME/started\"");
        writeScript(agent + QStringLiteral("bin/QuarrySpotterAgent"), "echo " + version + " >>\"$HOME/agents\"");
        for (const char* program : {"quarry", "DiskImageTool"})
            QProcess::execute(QStringLiteral(QUARRY_STRIP),
                              {QStringLiteral("-o"), contents + QStringLiteral("bin/") + QLatin1String(program),
                               QStringLiteral(QUARRY_BUNDLE_DIR "/bin/") + QLatin1String(program)});
        const QString resources = QStringLiteral(QUARRY_BUNDLE_DIR "/Resources/English.lproj");
        QProcess::execute(QStringLiteral("cp"),
                          {QStringLiteral("-R"), resources, contents + QStringLiteral("Resources/")});
    }

    /// As the maker publishes it. Images are mounted under a name in a shared folder: the number keeps tests apart.
    void serveVersion2()
    {
        const QTemporaryDir maker;
        const QString bundle = maker.filePath(QStringLiteral("QuarrySpotter.app"));
        makeBundle(bundle, newVersion);
        output(QStringLiteral(QUARRY_RELEASE),
               {QStringLiteral("make"), bundle, QStringLiteral("--key"), _keyFile, QStringLiteral("--output"),
                maker.path(), QStringLiteral("--page"), QStringLiteral("https://updates.example/page"),
                QStringLiteral("--url"), QString::fromLatin1(server->address(""))});
        server->reply = contentOf(maker.filePath(QStringLiteral("update-reply.txt")));
        for (const QByteArray& file : {image, image + ".sig"})
            server->files[file] = contentOf(maker.path() + QString::fromLatin1(file));
    }
    /// The same address with another image, which the maker has signed all the same.
    void serveSigned(const QByteArray& bytes)
    {
        const QByteArray seed = QByteArray::fromBase64(contentOf(_keyFile).trimmed());
        server->files[image] = bytes;
        server->files[image + ".sig"] = signatureOf(bytes, seed).value_or(QByteArray());
    }

    /// Version 1's `quarry`, over this home folder and desktop.
    [[nodiscard]] std::unique_ptr<QProcess> start(const QString& program, const QStringList& arguments) const
    {
        auto process = std::make_unique<QProcess>();
        QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
        environment.insert(QStringLiteral("HOME"), home.path());
        environment.insert(QStringLiteral("LC_ALL"), QStringLiteral("C.UTF-8"));
        environment.insert(QStringLiteral("PATH"), _tools.path() + u':' + environment.value(QStringLiteral("PATH")));
        environment.insert(QStringLiteral("DISPLAY"), QStringLiteral(":nowhere"));
        for (const char* name : {"XDG_DATA_HOME", "XDG_RUNTIME_DIR", "QUARRY_DEBUG", "LANGUAGE"})
            environment.remove(QLatin1String(name));
        process->setProcessEnvironment(environment);
        process->start(program, arguments);
        return process;
    }
    [[nodiscard]] Ran update(const QStringList& arguments) const
    {
        return ended(*start(quarry(), QStringList{QStringLiteral("update")} + arguments));
    }
    [[nodiscard]] static Ran ended(QProcess& process)
    {
        const bool isEnded = process.waitForFinished(60000) && process.exitStatus() == QProcess::NormalExit;
        return {isEnded ? process.exitCode() : -1, QString::fromUtf8(process.readAllStandardOutput()),
                QString::fromUtf8(process.readAllStandardError())};
    }
    [[nodiscard]] QString quarry() const { return installed + QStringLiteral("/Contents/bin/quarry"); }

    /// What the installed main application says when it is started.
    [[nodiscard]] QByteArray startedVersion() const
    {
        QFile::remove(inHome("started"));
        (void)ended(*start(installed + QStringLiteral("/Contents/bin/QuarrySpotter"), {}));
        return contentOf(inHome("started")).trimmed();
    }
    [[nodiscard]] QString inHome(const char* name) const { return home.path() + u'/' + QLatin1String(name); }
    static QStringList namesIn(const QString& folder, const QStringList& filters = {})
    {
        return QDir(folder).entryList(filters, QDir::AllEntries | QDir::Hidden | QDir::System | QDir::NoDotAndDotDot);
    }
    /// What should not be there: beside the bundle, among the downloads, where images are mounted.
    [[nodiscard]] QStringList leftOver() const
    {
        QStringList names = namesIn(QFileInfo(installed).path());
        names.removeAll(QStringLiteral("QuarrySpotter.app"));
        return names + namesIn(inHome("Downloads")) +
               namesIn(QStringLiteral("/tmp"), {QStringLiteral("QuarrySpotter-%1*").arg(QLatin1String(newVersion))});
    }

private:
    [[nodiscard]] QByteArray infoOf(const QByteArray& program, const QByteArray& version) const
    {
        const auto entry = [](const QByteArray& key, const QByteArray& value) {
            return "<key>" + key + "</key><string>" + value + "</string>";
        };
        return "<plist version=\"1.0\"><dict>" + entry("CFBundleVersion", version) +
               entry("CFBundleExecutable", program) + entry("QSUpdateScriptURL", server->address()) +
               entry("QSUpdatePublicKey", _publicKey) + "</dict></plist>";
    }
    static void writeScript(const QString& path, const QByteArray& line)
    {
        writeFile(path, "#!/bin/sh\n" + line + '\n');
        QFile::setPermissions(path, QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
    }
    static QString output(const QString& program, const QStringList& arguments)
    {
        QProcess process;
        process.setProcessChannelMode(QProcess::MergedChannels);
        process.start(program, arguments);
        process.waitForFinished();
        QString text = QString::fromUtf8(process.readAll());
        EXPECT_EQ(process.exitCode(), 0) << text.toStdString();
        return text;
    }

    int _argumentCount = 1;
    char _programName[5] = "test";
    char* _arguments[2] = {_programName, nullptr};
    QCoreApplication _application{_argumentCount, _arguments}; ///< For its event loop.
    QTemporaryDir _tools;
    QTemporaryDir _place;
    QString _keyFile = _tools.filePath(QStringLiteral("release.key"));
    QByteArray _publicKey;

public:
    TemporaryHome home;
    SessionBusDaemon bus;
    QString installed = _place.filePath(QStringLiteral("QuarrySpotter.app"));
    QByteArray newVersion = "2." + QByteArray::number(QCoreApplication::applicationPid());
    QByteArray image = "/QuarrySpotter-" + newVersion + ".iso";
    std::unique_ptr<ScriptServer> server;
};

} // namespace quarry::test
