#include "agent/DesktopSession.h"
#include "apps/DesktopLoop.h"
#include "apps/DesktopOptions.h"
#include "apps/RegexMessages.h"
#include "apps/window/WindowProgram.h"
#include "blacklist/ui/AnswerColor.h"
#include "platform/HomeFolder.h"
#include "platform/SystemLog.h"
#include "platform/Terminal.h"

#include <QApplication>
#include <QFile>
#include <QLibraryInfo>
#include <QMessageBox>
#include <QPalette>
#include <QTranslator>

namespace {

using namespace quarry;

constexpr int Failed = 1;

constexpr DesktopOptions::Help Help = {"QuarrySpotter",
                                       "Watches web searches: keeps them fresh and shows what is new.\n"
                                       "One window a user: a second start brings the first to the front.",
                                       "Exported files (.qsexport) or lists of searches (OPML) to import",
                                       "An interrupt or SIGTERM saves and ends it.\n"};

/// Some platform themes leave what is written in an empty field black, on their dark ground too.
void makePlaceholdersLegible()
{
    constexpr double LeastContrast = 3.0;
    QPalette palette = QApplication::palette();
    if (contrastRatio(palette.color(QPalette::PlaceholderText), palette.color(QPalette::Base)) >= LeastContrast)
        return;
    QColor colour = palette.color(QPalette::Text);
    colour.setAlphaF(0.5F);
    palette.setColor(QPalette::PlaceholderText, colour);
    QApplication::setPalette(palette);
}

/// Who started it from a menu reads no standard error.
int showFault(const QString& fault, StopSignals& signals)
{
    const auto end = [] { QCoreApplication::exit(Failed); };
    QMessageBox box(QMessageBox::Critical, QApplication::applicationName(), fault);
    QObject::connect(&box, &QDialog::finished, end);
    box.show();
    return runEventLoop(signals, end);
}

int run(const DesktopOptions& options, bool isOwnHome, StopSignals& signals)
{
    WindowProgram program(isOwnHome);
    switch (program.start(options.files)) {
    case WindowProgram::Start::Runs:
        break;
    case WindowProgram::Start::HandedOver:
        return 0;
    case WindowProgram::Start::Failed:
        systemLog(program.fault());
        return isTerminal(stderr) ? Failed : showFault(program.fault(), signals);
    }
    return runEventLoop(signals, [&program] { program.quit(); });
}

} // namespace

int main(int argc, char** argv)
{
    StopSignals signals; // Before any thread.
    ignoreBrokenPipes();
    int status = 0;
    const auto options = DesktopOptions::fromCommandLine(argc, argv, Help, &status);
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
    makePlaceholdersLegible();
    localiseRegexMessages();
    return run(*options, isOwnHome, signals);
}
