#include "updater/ui/LXUpdaterController.h"

#include "platform/Bundle.h"
#include "updater/LXUpdater.h"
#include "updater/ReleaseNotes.h"
#include "updater/ui/ui_Updater.h"

#include <QGuiApplication>
#include <QIcon>
#include <QPushButton>
#include <QScreen>

#include <algorithm>
#include <utility>

namespace quarry {

namespace {

enum Answer { Later = 0, Install = 1 };

constexpr int iconSize = 64;
/// A bar counts in int, and nobody sees more steps.
constexpr int barSteps = 1000;

QIcon productIcon()
{
    if (QIcon own = QGuiApplication::windowIcon(); !own.isNull())
        return own;
    const QString resources = Bundle::ofProgram().resourcesFolder();
    QIcon icon;
    for (const int size : {64, 128})
        icon.addFile(QStringLiteral("%1/appicon-%2.png").arg(resources).arg(size));
    return icon;
}

/// What looks like a shortcut's mark is none.
QString buttonText(QString text)
{
    return text.replace(u'&', QLatin1String("&&"));
}

} // namespace

LXUpdaterController::LXUpdaterController(Parts parts)
    : _parts(std::move(parts)), _progress(_parts.clock, _parts.texts), _ui(std::make_unique<Ui::Updater>())
{
    _ui->setupUi(&_window);
    const StringTable& texts = _parts.texts;
    const QIcon icon = productIcon();
    _window.setWindowTitle(QStringLiteral("QuarrySpotter"));
    _window.setWindowIcon(icon);
    _ui->imageView->setPixmap(icon.pixmap(iconSize));
    _ui->titleTF->setText(texts.text(QStringLiteral("Updater_1.0_NewVersionCheckTitle")));
    _ui->disclosureButton->setText(texts.text(QStringLiteral("Updater_1.0_ReleaseNotesButton")));
    _ui->releaseNotesView->setAccessibleName(_ui->disclosureButton->text());
    _ui->cancelButton->setText(buttonText(texts.text(QStringLiteral("Updater_1.0_CancelButton"))));
    makeButtons();
    connect(_ui->disclosureButton, &QToolButton::toggled, this, [this] { disclosureChange(); });
    connect(_ui->cancelButton, &QPushButton::clicked, this, [this] { cancelUpdate(); });
    connect(&_window, &QDialog::rejected, this, [this] { closed(); });
}

LXUpdaterController::~LXUpdaterController()
{
    if (_notesLoader)
        _notesLoader->stop();
}

void LXUpdaterController::makeButtons()
{
    const auto add = [this](const QString& key, QDialogButtonBox::ButtonRole role) {
        return _ui->answerButtons->addButton(buttonText(_parts.texts.text(key)), role);
    };
    QPushButton* const install =
        add(QStringLiteral("Updater_1.0_NewVersionCheckGoToButton"), QDialogButtonBox::AcceptRole);
    QPushButton* const later =
        add(QStringLiteral("Updater_1.0_NewVersionCheckCancelButton"), QDialogButtonBox::RejectRole);
    _more = add(QStringLiteral("Updater_1.0_NewVersionMoreInfoButton"), QDialogButtonBox::HelpRole);
    install->setDefault(true);
    install->setFocus();
    connect(install, &QPushButton::clicked, this, [this] { warningAction(Install); });
    connect(later, &QPushButton::clicked, this, [this] { warningAction(Later); });
    connect(_more, &QPushButton::clicked, this, [this] {
        if (_parts.openAddress)
            _parts.openAddress(_updateInfos.productDownloadUrl.absoluteString());
    });
}

// --- Offer ----------------------------------------------------------------------------------------------------------

void LXUpdaterController::showAskUpdate(const UpdateInfos& infos)
{
    _updateInfos = infos;
    QString message = _parts.texts.text(QStringLiteral("Updater_1.0_NewVersionCheckTextWithVersions"));
    message.replace(QLatin1String("^curVersion_"), _parts.version);
    message.replace(QLatin1String("^newVersion_"), infos.curentVersion);
    _ui->messageTF->setText(message);
    _more->setVisible(!infos.productDownloadUrl.isEmpty());
    offerReleaseNotes();
    showPanel(_ui->offerPanel);
    shrinkWindow();
    center();
}

void LXUpdaterController::offerReleaseNotes()
{
    const QString address = _parts.texts.text(QStringLiteral("130_ReleaseNoteRTFUrl"));
    const std::optional<Url> url = address.isEmpty() ? std::nullopt : Url::fromText(address);
    _ui->disclosureButton->setVisible(url.has_value());
    _ui->disclosureButton->setChecked(url.has_value());
    if (!url || _notes)
        return;
    _notesLoader = _parts.makeLoader();
    _notes = std::make_unique<LoopWorker>(_parts.events);
    _notes->run([this, loader = _notesLoader, url = *url] {
        return [this, html = fetchReleaseNotes(*loader, url)] { showReleaseNotes(html); };
    });
}

void LXUpdaterController::showReleaseNotes(const std::optional<QString>& html)
{
    _notes.reset();
    if (html)
        _ui->releaseNotesView->setHtml(*html);
    else
        _ui->releaseNotesView->setPlainText(_parts.texts.text(QStringLiteral("Updater_1.0_ImpossibleToDownloadRN")));
}

void LXUpdaterController::disclosureChange()
{
    _ui->disclosureButton->setArrowType(_ui->disclosureButton->isChecked() ? Qt::DownArrow : Qt::RightArrow);
    shrinkWindow();
}

void LXUpdaterController::shrinkWindow()
{
    _ui->releaseNotesScrollView->setVisible(_ui->disclosureButton->isChecked());
    fit(*_ui->offerPanel);
}

void LXUpdaterController::fit(const QWidget& panel)
{
    // From the inside out: each layout tells the next one what it needs.
    panel.layout()->activate();
    _window.layout()->activate();
    _window.adjustSize();
}

void LXUpdaterController::warningAction(int result)
{
    _window.hide();
    if (_master)
        _master->controllerResult(result);
}

void LXUpdaterController::closed()
{
    if (_ui->updatePanel->isVisibleTo(&_window))
        cancelUpdate();
    else
        warningAction(Later);
}

// --- Progress -------------------------------------------------------------------------------------------------------

void LXUpdaterController::center()
{
    const QScreen* const screen = _window.screen() ? _window.screen() : QGuiApplication::primaryScreen();
    if (!screen)
        return;
    QRect frame(QPoint(), _window.size());
    frame.moveCenter(screen->availableGeometry().center());
    _window.move(frame.topLeft());
}

void LXUpdaterController::orderFrontRegardless()
{
    _ui->cancelButton->setEnabled(true);
    showPanel(_ui->updatePanel);
    fit(*_ui->updatePanel);
    center();
    _ui->cancelButton->setFocus();
}

void LXUpdaterController::showPanel(QWidget* panel)
{
    _ui->offerPanel->setVisible(panel == _ui->offerPanel);
    _ui->updatePanel->setVisible(panel == _ui->updatePanel);
    bringToFront();
}

void LXUpdaterController::bringToFront()
{
    _window.show();
    _window.raise();
    _window.activateWindow();
}

void LXUpdaterController::setStatus(const QString& text)
{
    _ui->statusTF->setText(text);
    // What a screen reader says of the bar and of the window that has come up.
    _ui->pBar->setAccessibleName(text);
    _window.setAccessibleDescription(text);
}

void LXUpdaterController::setProgressBarIndeterminate(bool indeterminate)
{
    // Without steps a bar shows that something goes on.
    const bool isBusy = indeterminate || _progress.maximum() <= 0;
    _ui->pBar->setRange(0, isBusy ? 0 : barSteps);
    if (indeterminate)
        _ui->progresssTF->clear();
    if (!isBusy)
        showBarValue();
}

void LXUpdaterController::setProgressBarIndeterminate(bool indeterminate, double minValue, double maxValue,
                                                      double currentValue)
{
    _progress.set(minValue, maxValue, currentValue);
    if (minValue == 0)
        _ui->progresssTF->clear();
    setProgressBarIndeterminate(indeterminate);
}

void LXUpdaterController::incrementProgressBarValue(double bytes)
{
    _ui->cancelButton->setEnabled(true);
    _ui->progresssTF->setText(_progress.increment(bytes));
    showBarValue();
}

void LXUpdaterController::showBarValue()
{
    if (_progress.maximum() > 0)
        _ui->pBar->setValue(static_cast<int>(std::min(_progress.value() / _progress.maximum(), 1.0) * barSteps));
}

void LXUpdaterController::cancelUpdate()
{
    _progress.clearDownloadStartTime();
    _ui->cancelButton->setEnabled(false);
    if (_master)
        _master->cancelUpdate();
}

} // namespace quarry
