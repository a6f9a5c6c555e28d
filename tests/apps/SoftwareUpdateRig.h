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

using namespace Qt::Literals::StringLiterals;

/// Version 1 of the product installed in a folder, version 2 made by the maker's tool and served from this machine,
/// a user's home folder, and a desktop that notes what it is asked for. Programs are the built ones, without what only
/// a debugger reads.
class SoftwareUpdateRig {
public:
    SoftwareUpdateRig() : server(std::make_unique<ScriptServer>())
    {
        const QString made = output(QStringLiteral(QUARRY_RELEASE), {u"key"_s, _keyFile});
        _publicKey = made.section(u' ', -1).trimmed().toLatin1();
        writeScript(_tools.filePath(u"xdg-open"_s), "echo \"$1\" >>\"$HOME/browser\"");
        makeBundle(installed, "1.0");
        serveVersion2();
    }

    /// A bundle in which the main application only notes that it was started, and the agent does, too.
    void makeBundle(const QString& path, const QByteArray& version) const
    {
        const QString contents = path + u"/Contents/"_s;
        const QString agent = contents + u"Agents/QuarrySpotterAgent.app/Contents/"_s;
        QDir().mkpath(contents + u"bin"_s);
        QDir().mkpath(agent + u"bin"_s);
        QDir().mkpath(contents + u"Resources"_s);
        writeFile(contents + u"Info.plist"_s, infoOf("QuarrySpotter", version));
        writeFile(agent + u"Info.plist"_s, infoOf("QuarrySpotterAgent", version));
        writeScript(contents + u"bin/QuarrySpotter"_s, "echo " + version + " >>\"$HOME/started\"");
        writeScript(agent + u"bin/QuarrySpotterAgent"_s, "echo " + version + " >>\"$HOME/agents\"");
        for (const char* program : {"quarry", "DiskImageTool"})
            QProcess::execute(QStringLiteral(QUARRY_STRIP),
                              {u"-o"_s, contents + u"bin/"_s + QLatin1String(program),
                               QStringLiteral(QUARRY_BUNDLE_DIR "/bin/") + QLatin1String(program)});
        const QString resources = QStringLiteral(QUARRY_BUNDLE_DIR "/Resources/English.lproj");
        QProcess::execute(u"cp"_s, {u"-R"_s, resources, contents + u"Resources/"_s});
    }

    /// As the maker publishes it. Images are mounted under a name in a shared folder: the number keeps tests apart.
    void serveVersion2()
    {
        const QTemporaryDir maker;
        const QString bundle = maker.filePath(u"QuarrySpotter.app"_s);
        makeBundle(bundle, newVersion);
        output(QStringLiteral(QUARRY_RELEASE),
               {u"make"_s, bundle, u"--key"_s, _keyFile, u"--output"_s, maker.path(), u"--page"_s,
                u"https://updates.example/page"_s, u"--url"_s, QString::fromLatin1(server->address(""))});
        server->reply = contentOf(maker.filePath(u"update-reply.txt"_s));
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
        environment.insert(u"HOME"_s, home.path());
        environment.insert(u"LC_ALL"_s, u"C.UTF-8"_s);
        environment.insert(u"PATH"_s, _tools.path() + u':' + environment.value(u"PATH"_s));
        environment.insert(u"DISPLAY"_s, u":nowhere"_s);
        for (const char* name : {"XDG_DATA_HOME", "XDG_RUNTIME_DIR", "QUARRY_DEBUG", "LANGUAGE"})
            environment.remove(QLatin1String(name));
        process->setProcessEnvironment(environment);
        process->start(program, arguments);
        return process;
    }
    [[nodiscard]] Ran update(const QStringList& arguments) const
    {
        return ended(*start(quarry(), QStringList{u"update"_s} + arguments));
    }
    [[nodiscard]] static Ran ended(QProcess& process)
    {
        const bool isEnded = process.waitForFinished(60000) && process.exitStatus() == QProcess::NormalExit;
        return {isEnded ? process.exitCode() : -1, QString::fromUtf8(process.readAllStandardOutput()),
                QString::fromUtf8(process.readAllStandardError())};
    }
    [[nodiscard]] QString quarry() const { return installed + u"/Contents/bin/quarry"_s; }

    /// What the installed main application says when it is started.
    [[nodiscard]] QByteArray startedVersion() const
    {
        QFile::remove(inHome("started"));
        (void)ended(*start(installed + u"/Contents/bin/QuarrySpotter"_s, {}));
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
        names.removeAll(u"QuarrySpotter.app"_s);
        return names + namesIn(inHome("Downloads")) +
               namesIn(u"/tmp"_s, {u"QuarrySpotter-%1*"_s.arg(QLatin1String(newVersion))});
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
    QString _keyFile = _tools.filePath(u"release.key"_s);
    QByteArray _publicKey;

public:
    TemporaryHome home;
    SessionBusDaemon bus;
    QString installed = _place.filePath(u"QuarrySpotter.app"_s);
    QByteArray newVersion = "2." + QByteArray::number(QCoreApplication::applicationPid());
    QByteArray image = "/QuarrySpotter-" + newVersion + ".iso";
    std::unique_ptr<ScriptServer> server;
};

} // namespace quarry::test
