#include "window/HealthDialog.h"

#include "window/HealthWords.h"
#include "window/ServiceIcons.h"

#include <QDateTime>
#include <QDialogButtonBox>
#include <QHeaderView>
#include <QLabel>
#include <QLocale>
#include <QPushButton>
#include <QStyle>
#include <QTableWidget>
#include <QVBoxLayout>

namespace quarry {

namespace {

constexpr QSize UsualSize(680, 300);

QIcon verdictIcon(const QStyle& style, ServiceVerdict verdict)
{
    const bool isWell = verdict == ServiceVerdict::Results || verdict == ServiceVerdict::NothingFound;
    return style.standardIcon(isWell ? QStyle::SP_DialogApplyButton : QStyle::SP_MessageBoxWarning);
}

} // namespace

HealthDialog::HealthDialog(const StringTable& texts, QWidget* parent)
    : QDialog(parent), _texts(texts), _table(new QTableWidget(this))
{
    const auto text = [&texts](const char16_t* key) { return texts.text(QString::fromUtf16(key)); };
    setWindowTitle(text(u"221_Title"));
    _table->setColumnCount(5);
    _table->setHorizontalHeaderLabels({text(u"202_Column service"), text(u"221_Column state"),
                                       text(u"221_Column results"), text(u"221_Column pages"),
                                       text(u"221_Column asked")});
    _table->setAccessibleName(text(u"221_Title"));
    _table->setEditTriggers(QAbstractItemView::NoEditTriggers);
    _table->setSelectionBehavior(QAbstractItemView::SelectRows);
    _table->setTabKeyNavigation(false);
    _table->verticalHeader()->hide();
    _table->horizontalHeader()->setSectionResizeMode(QHeaderView::ResizeToContents);
    _table->horizontalHeader()->setSectionResizeMode(1, QHeaderView::Stretch);
    auto* const note = new QLabel(text(u"221_Note"), this);
    note->setWordWrap(true);
    auto* const buttons = new QDialogButtonBox(QDialogButtonBox::Close, this);
    buttons->button(QDialogButtonBox::Close)->setText(text(u"221_Close"));
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
    auto* const column = new QVBoxLayout(this);
    column->addWidget(note);
    column->addWidget(_table, 1);
    column->addWidget(buttons);
    resize(UsualSize);
}

void HealthDialog::show(const QList<ServiceState>& states)
{
    _table->setRowCount(static_cast<int>(states.size()));
    for (int row = 0; row < _table->rowCount(); ++row)
        setRow(row, states.at(row));
    QDialog::show();
}

void HealthDialog::setRow(int row, const ServiceState& state)
{
    const auto put = [&](int column, const QString& text, const QIcon& icon = {}) {
        auto* const item = new QTableWidgetItem(icon, text); // The table's.
        item->setToolTip(text);
        _table->setItem(row, column, item);
    };
    put(0, searchServiceName(state.service), serviceIcon(state.service));
    if (!state.asked) {
        put(1, _texts.text(state.isEnabled ? QStringLiteral("221_Never asked") : QStringLiteral("221_Off")));
        for (const int column : {2, 3, 4})
            put(column, {});
        return;
    }
    put(1, healthWords(_texts, state.health), verdictIcon(*style(), state.health.verdict()));
    put(2, QLocale().toString(state.health.results));
    put(3, QLocale().toString(state.health.pages()));
    put(4, QLocale().toString(QDateTime::fromMSecsSinceEpoch(qint64(state.asked->unixSeconds() * 1000.0)),
                              QLocale::ShortFormat));
}

} // namespace quarry
