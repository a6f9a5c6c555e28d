#include "window/PreferencesSheet.h"

#include "database/Schedule.h"
#include "engines/SearchServices.h"
#include "engines/SearchServicesFile.h"
#include "text/LocalisedFormat.h"
#include "window/DialogButtons.h"

#include <QCheckBox>
#include <QDialogButtonBox>
#include <QFormLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QSpinBox>
#include <QVBoxLayout>

namespace quarry {

namespace {

constexpr int UsualWidth = 560;
constexpr int MostResults = 1000000;

} // namespace

PreferencesSheet::PreferencesSheet(Parts parts, QWidget* parent) : QDialog(parent), _parts(std::move(parts))
{
    setWindowTitle(_parts.texts.text(QStringLiteral("213_Title")));
    auto* const layout = new QFormLayout;
    layout->setFieldGrowthPolicy(QFormLayout::ExpandingFieldsGrow);
    makeSchedule(*layout);
    makeLimits(*layout);
    makeServices(*layout);
    _fault = new QLabel(this);
    _fault->setObjectName(QStringLiteral("fault"));
    _fault->setTextFormat(Qt::PlainText);
    _fault->setWordWrap(true);
    auto* const buttons = okAndCancel(_parts.texts, this);
    _ok = buttons->button(QDialogButtonBox::Ok);
    auto* const column = new QVBoxLayout(this);
    column->addLayout(layout);
    column->addStretch(1);
    column->addWidget(_fault);
    column->addWidget(buttons);
    _before = ProductSettings::read(_parts.home, _parts.files, _parts.clock.now());
    show(_before);
    resize(UsualWidth, sizeHint().height());
}

void PreferencesSheet::makeSchedule(QFormLayout& layout)
{
    const StringTable& texts = _parts.texts;
    _automatic = new QCheckBox(texts.text(QStringLiteral("213_Automatic")), this);
    _automatic->setObjectName(QStringLiteral("automatic"));
    _minutes = new QSpinBox(this);
    _minutes->setObjectName(QStringLiteral("minutes"));
    _minutes->setRange(1, int(Schedule::MostMinutes));
    _minutes->setSuffix(texts.text(QStringLiteral("213_Minutes")));
    _checkForUpdates = new QCheckBox(texts.text(QStringLiteral("213_Check for updates")), this);
    _checkForUpdates->setObjectName(QStringLiteral("checkForUpdates"));
    layout.addRow(_automatic);
    layout.addRow(texts.text(QStringLiteral("213_Label period")), _minutes);
    layout.addRow(_checkForUpdates);
    connect(_automatic, &QCheckBox::toggled, _minutes, &QWidget::setEnabled);
}

void PreferencesSheet::makeLimits(QFormLayout& layout)
{
    const StringTable& texts = _parts.texts;
    _resultsPerService = new QSpinBox(this);
    _resultsPerService->setObjectName(QStringLiteral("resultsPerService"));
    _resultsPerService->setRange(1, MostResults);
    _newLinks = new QSpinBox(this);
    _newLinks->setObjectName(QStringLiteral("newLinks"));
    _newLinks->setRange(0, MostResults);
    _newLinks->setSpecialValueText(texts.text(QStringLiteral("213_No limit")));
    layout.addRow(texts.text(QStringLiteral("213_Label results")), _resultsPerService);
    layout.addRow(texts.text(QStringLiteral("213_Label new links")), _newLinks);
}

void PreferencesSheet::makeServices(QFormLayout& layout)
{
    const StringTable& texts = _parts.texts;
    auto* const word = new QLabel(texts.text(QStringLiteral("213_Services")), this);
    word->setWordWrap(true);
    layout.addRow(word);
    const SearchServices publicOnes;
    for (const SearchService service : AllSearchServices) {
        const QString name = searchServiceName(service);
        auto* const isAsked = new QCheckBox(name, this);
        isAsked->setObjectName(QStringLiteral("ask") + name);
        isAsked->setAccessibleName(filledFormat(texts.text(QStringLiteral("213_Ask")), {name}));
        auto* const address = new QLineEdit(this);
        address->setObjectName(QStringLiteral("address") + name);
        address->setAccessibleName(filledFormat(texts.text(QStringLiteral("213_Address of")), {name}));
        address->setPlaceholderText(publicOnes.origin(service));
        address->setLayoutDirection(Qt::LeftToRight);
        connect(isAsked, &QCheckBox::toggled, address, &QWidget::setEnabled);
        connect(address, &QLineEdit::textChanged, this, [this] { judge(); });
        layout.addRow(isAsked, address);
        _services.append({service, isAsked, address});
    }
}

void PreferencesSheet::show(const ProductSettings& settings)
{
    _automatic->setChecked(settings.automatic);
    _minutes->setEnabled(settings.automatic);
    _minutes->setValue(int(settings.minutes));
    _checkForUpdates->setChecked(settings.checkForUpdates);
    _resultsPerService->setValue(int(settings.resultsPerService));
    _newLinks->setValue(int(settings.newLinks));
    for (const ServiceRow& row : std::as_const(_services)) {
        const ProductSettings::Service service = settings.services.value(row.service);
        row.isAsked->setChecked(service.isAsked);
        row.address->setEnabled(service.isAsked);
        row.address->setText(service.address);
    }
    judge();
}

ProductSettings PreferencesSheet::entered() const
{
    ProductSettings settings;
    settings.automatic = _automatic->isChecked();
    settings.minutes = _minutes->value();
    settings.checkForUpdates = _checkForUpdates->isChecked();
    settings.resultsPerService = _resultsPerService->value();
    settings.newLinks = _newLinks->value();
    for (const ServiceRow& row : _services)
        settings.services.insert(row.service, {row.isAsked->isChecked(), row.address->text().trimmed()});
    return settings;
}

void PreferencesSheet::judge()
{
    QString fault;
    for (const ServiceRow& row : std::as_const(_services)) {
        const QString address = row.address->text().trimmed();
        if (!address.isEmpty() && !SearchServicesFile::entryForAddress(address))
            fault = filledFormat(_parts.texts.text(QStringLiteral("213_No address")), {address});
    }
    _fault->setText(fault);
    _ok->setEnabled(fault.isEmpty() && !_isSaving);
}

void PreferencesSheet::accept()
{
    if (!_ok->isEnabled())
        return;
    _isSaving = true;
    judge();
    _worker.add([this, settings = entered(), before = _before, home = _parts.home, &files = _parts.files] {
        const QString error = saveSettings(settings, before, home, files);
        // A call that is queued for a sheet that went is dropped by Qt.
        QMetaObject::invokeMethod(this, [this, settings, error] { saved(settings, error); });
    });
}

/// While it is being written there is nothing to take back.
void PreferencesSheet::reject()
{
    if (!_isSaving)
        QDialog::reject();
}

void PreferencesSheet::saved(const ProductSettings& settings, const QString& error)
{
    _isSaving = false;
    judge();
    if (!error.isEmpty()) {
        _fault->setText(error);
        return;
    }
    const bool isSameSchedule = settings.automatic == _before.automatic && settings.minutes == _before.minutes;
    if (!isSameSchedule && _parts.followSchedule)
        _parts.followSchedule(settings.automatic, settings.minutes);
    QDialog::accept();
}

} // namespace quarry
