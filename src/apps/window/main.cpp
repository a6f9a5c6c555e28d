#include "agent/DesktopSession.h"
#include "apps/RegexMessages.h"
#include "apps/window/WindowOptions.h"
#include "apps/window/WindowProgram.h"
#include "platform/HomeFolder.h"
#include "platform/StopSignals.h"
#include "platform/SystemLog.h"
#include "platform/Terminal.h"

#include <QApplication>
#include <QFile>
#include <QLibraryInfo>
#include <QTranslator>

#include <thread>

namespace {

using namespace quarry;

constexpr int Failed = 1;

int run(const WindowOptions& options, bool isOwnHome, StopSignals& signals)
{
    WindowProgram program(isOwnHome);
    switch (program.start(options.files)) {
    case WindowProgram::Start::Runs:
        break;
    case WindowProgram::Start::HandedOver:
        return 0;
    case WindowProgram::Start::Failed:
        return Failed;
    }
    std::thread watcher([&] {
        if (signals.wait())
            QMetaObject::invokeMethod(
                &program, [&program] { program.quit(); }, Qt::QueuedConnection);
    });
    const int status = QCoreApplication::exec();
    signals.cancel();
    watcher.join();
    return status;
}

} // namespace

int main(int argc, char** argv)
{
    StopSignals signals; // Before any thread.
    ignoreBrokenPipes();
    int status = 0;
    const auto options = WindowOptions::fromCommandLine(argc, argv, &status);
    if (!options)
        return status;
    const bool isOwnHome = options->home.isEmpty() || options->home == HomeFolder::ofUser().path();
    // For what the window starts, too.
    if (!isOwnHome)
        qputenv("HOME", QFile::encodeName(options->home));
    if (const QString missing = whyNoScreen(); !missing.isEmpty()) {
        systemLog(missing);
        return Failed;
    }
    QApplication application(argc, argv);
    QApplication::setApplicationName(QStringLiteral("QuarrySpotter"));
    QApplication::setApplicationVersion(QStringLiteral(QUARRY_VERSION));
    QGuiApplication::setDesktopFileName(QStringLiteral("com.zep.QuarrySpotter"));
    QApplication::setQuitOnLastWindowClosed(false);
    // The texts of Qt's own buttons and menus.
    QTranslator translator;
    if (translator.load(QLocale(), QStringLiteral("qtbase"), QStringLiteral("_"),
                        QLibraryInfo::path(QLibraryInfo::TranslationsPath)))
        QApplication::installTranslator(&translator);
    localiseRegexMessages();
    return run(*options, isOwnHome, signals);
}
