#include "apps/quarry/TerminalUpdateWindow.h"

#include "apps/quarry/Output.h"
#include "updater/LXUpdater.h"

#include <array>
#include <cstdio>
#include <utility>

namespace quarry {

namespace {

constexpr int standardInput = 0;
enum Answer { Later = 0, Install = 1 };

/// In the languages of the question.
bool meansYes(const QString& text)
{
    const QChar first = text.trimmed().left(1).toLower().isEmpty() ? QChar() : text.trimmed().at(0).toLower();
    return first == u'y' || first == u'o' || first == u'j';
}

} // namespace

TerminalUpdateWindow::TerminalUpdateWindow(Parts parts)
    : _parts(std::move(parts)), _progress(_parts.clock, _parts.texts)
{
}

TerminalUpdateWindow::~TerminalUpdateWindow()
{
    if (_input)
        writeOut(QStringLiteral("\n")); // What comes next is no answer to the question.
}

void TerminalUpdateWindow::showAskUpdate(const UpdateInfos& infos)
{
    _isShowing = true;
    QString offer = _parts.texts.text(QStringLiteral("Updater_1.0_NewVersionCheckTextWithVersions"));
    offer.replace(QLatin1String("^curVersion_"), _parts.version);
    offer.replace(QLatin1String("^newVersion_"), infos.curentVersion);
    if (_parts.offer != Offer::Tell)
        _parts.line.say(offer);
    if (!infos.productDownloadUrl.isEmpty() && _parts.offer == Offer::Ask)
        _parts.line.say(shown(infos.productDownloadUrl.absoluteString()));
    switch (_parts.offer) {
    case Offer::Accept:
        return _parts.events.post([this] { answer(Install); });
    case Offer::Ask:
        return ask();
    case Offer::Tell:
        _parts.line.say(QStringLiteral("QuarrySpotter %1 is available; you have %2. To install it: quarry update "
                                       "--install")
                            .arg(infos.curentVersion, _parts.version));
        return _parts.events.post([this] { answer(Later); });
    }
}

void TerminalUpdateWindow::ask()
{
    writeOut(QStringLiteral("[y/N] "));
    std::fflush(stdout);
    // The event loop goes on meanwhile: an interrupt ends the program, and so does another one's install.
    _input = std::make_unique<QSocketNotifier>(standardInput, QSocketNotifier::Read);
    QObject::connect(_input.get(), &QSocketNotifier::activated, _input.get(), [this] { takeAnswer(); });
}

void TerminalUpdateWindow::takeAnswer()
{
    std::array<char, 200> line{};
    const bool isThere = std::fgets(line.data(), static_cast<int>(line.size()), stdin) != nullptr;
    const bool isYes = isThere && meansYes(QString::fromLocal8Bit(line.data()));
    _input->setEnabled(false);
    _parts.events.post([this, isYes] {
        _input.reset();
        answer(isYes ? Install : Later);
    });
}

void TerminalUpdateWindow::answer(int result)
{
    if (result == Install)
        _master->controllerResult(Install);
    else
        _parts.declined();
}

void TerminalUpdateWindow::hide()
{
    _isShowing = false;
    _parts.line.clear();
}

void TerminalUpdateWindow::setStatus(const QString& text)
{
    _status = text;
    _parts.line.show(text);
}

void TerminalUpdateWindow::setProgressBarIndeterminate(bool, double minValue, double maxValue, double currentValue)
{
    _progress.set(minValue, maxValue, currentValue);
}

void TerminalUpdateWindow::incrementProgressBarValue(double bytes)
{
    _parts.line.show(_status + u' ' + _progress.increment(bytes));
}

} // namespace quarry
