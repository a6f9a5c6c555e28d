#include "window/FilterList.h"

#include "blacklist/BlacklistArchive.h"
#include "text/LocalisedFormat.h"
#include "text/RegexFault.h"

#include <QCheckBox>
#include <QComboBox>
#include <QGridLayout>
#include <QHeaderView>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QLocale>
#include <QPushButton>
#include <QTreeWidget>

#include <algorithm>

namespace quarry {

namespace {

constexpr int LinesOfList = 6;

/// What is wrong with an expression is said beside it.
class SilentLog final : public Logger {
public:
    void logString(const QString&) override {}
};

} // namespace

FilterList::FilterList(QStringList addresses, const StringTable& texts, QWidget* parent)
    : QWidget(parent), _texts(texts), _addresses(std::move(addresses)), _list(new QTreeWidget(this)),
      _type(new QComboBox(this)), _rule(new QLineEdit(this)),
      _case(new QCheckBox(texts.text(QStringLiteral("212_Match case")), this)),
      _add(new QPushButton(texts.text(QStringLiteral("212_Add")), this)),
      _replace(new QPushButton(texts.text(QStringLiteral("212_Replace")), this)),
      _remove(new QPushButton(texts.text(QStringLiteral("212_Remove")), this)), _verdict(new QLabel(this))
{
    makeControls();
    for (QPushButton* const button : {_add, _replace, _remove})
        button->setAutoDefault(false);
    auto* const grid = new QGridLayout(this);
    grid->setContentsMargins(0, 0, 0, 0);
    grid->addWidget(_list, 0, 0, 3, 2);
    grid->addWidget(_replace, 0, 2);
    grid->addWidget(_remove, 1, 2);
    grid->addWidget(_type, 3, 0);
    grid->addWidget(_rule, 3, 1);
    grid->addWidget(_add, 3, 2);
    grid->addWidget(_case, 4, 1);
    grid->addWidget(_verdict, 5, 0, 1, 3);
    grid->setColumnStretch(1, 1);
    setFocusProxy(_rule);
    connect(_add, &QPushButton::clicked, this, [this] { add(); });
    connect(_replace, &QPushButton::clicked, this, [this] { replaceCurrent(); });
    connect(_remove, &QPushButton::clicked, this, [this] { removeCurrent(); });
    connect(_list, &QTreeWidget::currentItemChanged, this, [this] { showCurrent(); });
    connect(_rule, &QLineEdit::textChanged, this, [this] { judge(); });
    connect(_type, &QComboBox::currentIndexChanged, this, [this] { judge(); });
    connect(_case, &QCheckBox::toggled, this, [this] { judge(); });
    judge();
}

FilterList::~FilterList()
{
    if (_cancelled)
        *_cancelled = true;
}

void FilterList::makeControls()
{
    _list->setObjectName(QStringLiteral("filters"));
    _list->setAccessibleName(_texts.text(QStringLiteral("212_Filters")));
    _list->setHeaderLabels({_texts.text(QStringLiteral("212_Column type")),
                            _texts.text(QStringLiteral("212_Column rule")),
                            _texts.text(QStringLiteral("212_Column case"))});
    _list->header()->setStretchLastSection(false);
    _list->header()->setSectionResizeMode(1, QHeaderView::Stretch);
    _list->setRootIsDecorated(false);
    _list->setMinimumHeight(LinesOfList * fontMetrics().lineSpacing());
    _list->installEventFilter(this);
    for (const qint64 type :
         {BlacklistType::Text, BlacklistType::Domain, BlacklistType::FileType, BlacklistType::RegularExpression})
        _type->addItem(textOfType(type), type);
    _type->setAccessibleName(_texts.text(QStringLiteral("212_Column type")));
    _rule->setObjectName(QStringLiteral("rule"));
    _rule->setAccessibleName(_texts.text(QStringLiteral("212_Column rule")));
    _rule->setPlaceholderText(_texts.text(QStringLiteral("212_Rule example")));
    _rule->installEventFilter(this);
    _verdict->setObjectName(QStringLiteral("verdict"));
    _verdict->setTextFormat(Qt::PlainText);
    _verdict->setWordWrap(true);
}

QString FilterList::textOfType(qint64 type) const
{
    switch (type) {
    case BlacklistType::Text:
        return _texts.text(QStringLiteral("212_Type text"));
    case BlacklistType::Domain:
        return _texts.text(QStringLiteral("212_Type domain"));
    case BlacklistType::FileType:
        return _texts.text(QStringLiteral("212_Type file"));
    case BlacklistType::RegularExpression:
        return _texts.text(QStringLiteral("212_Type expression"));
    default:
        return QLocale().toString(type);
    }
}

void FilterList::setFilters(const QList<FilterObject>& filters)
{
    _entries.clear();
    _carried.clear();
    for (const FilterObject& filter : filters) {
        if (const std::optional<BlacklistRule> rule = filter ? blacklistRuleOf(*filter) : std::nullopt)
            _entries.append({*rule, filter});
        else
            _carried.append(filter);
    }
    show();
}

QList<FilterObject> FilterList::filters() const
{
    QList<FilterObject> filters;
    for (const Entry& entry : _entries)
        filters.append(entry.object);
    return filters + _carried;
}

void FilterList::show()
{
    const int row = currentRow();
    const QSignalBlocker quiet(_list);
    _list->clear();
    for (const Entry& entry : std::as_const(_entries)) {
        const QString cased = entry.rule.caseSensitive ? _texts.text(QStringLiteral("212_Yes")) : QString();
        new QTreeWidgetItem(_list, // The list's own.
                            {textOfType(entry.rule.type), entry.rule.rule.value_or(QString()), cased});
    }
    _list->setCurrentItem(_list->topLevelItem(std::min(row, _list->topLevelItemCount() - 1)));
    judge();
}

BlacklistRule FilterList::entered() const
{
    return {_rule->text().trimmed(), _type->currentData().toLongLong(), true, _case->isChecked()};
}

int FilterList::currentRow() const
{
    return _list->indexOfTopLevelItem(_list->currentItem());
}

void FilterList::add()
{
    const BlacklistRule rule = entered();
    _entries.append({rule, objectOfBlacklistRule(rule)});
    _rule->clear();
    show();
}

void FilterList::replaceCurrent()
{
    const BlacklistRule rule = entered();
    if (const int row = currentRow(); row >= 0)
        _entries[row] = {rule, objectOfBlacklistRule(rule)};
    show();
}

void FilterList::removeCurrent()
{
    if (const int row = currentRow(); row >= 0)
        _entries.removeAt(row);
    show();
}

void FilterList::showCurrent()
{
    const int row = currentRow();
    if (row >= 0) {
        const BlacklistRule rule = _entries.at(row).rule;
        _rule->setText(rule.rule.value_or(QString()));
        _type->setCurrentIndex(std::max(0, _type->findData(rule.type)));
        _case->setChecked(rule.caseSensitive);
    }
    judge();
}

void FilterList::judge()
{
    const BlacklistRule rule = entered();
    const bool isExpression = rule.type == BlacklistType::RegularExpression;
    const auto fault = isExpression && !rule.rule->isEmpty() ? regexFault(*rule.rule) : std::nullopt;
    const bool isThere =
        std::any_of(_entries.begin(), _entries.end(), [&rule](const Entry& entry) { return entry.rule == rule; });
    const bool isUsable = !rule.rule->isEmpty() && !fault;
    _add->setEnabled(isUsable && !isThere);
    _replace->setEnabled(isUsable && !isThere && currentRow() >= 0);
    _remove->setEnabled(currentRow() >= 0);
    if (_cancelled)
        *_cancelled = true;
    if (fault) {
        const QString reason = fault->reason.isEmpty() ? _texts.text(QStringLiteral("211_Not valid")) : fault->reason;
        _verdict->setText(fault->place < 0 ? reason
                                           : filledFormat(_texts.text(QStringLiteral("211_Fault at")),
                                                          {reason, QLocale().toString(fault->place + 1)}));
    } else if (!isUsable || _addresses.isEmpty()) {
        _verdict->clear();
    } else {
        tryOut(rule);
    }
}

void FilterList::tryOut(const BlacklistRule& rule)
{
    _cancelled = std::make_shared<std::atomic<bool>>(false);
    _worker.add([this, rule, addresses = _addresses, cancelled = _cancelled] {
        SilentLog log;
        const auto option = rule.caseSensitive ? Qt::CaseSensitive : Qt::CaseInsensitive;
        qint64 caught = 0;
        for (const QString& address : addresses) {
            if (*cancelled)
                return;
            caught += testRule(rule, address, option, log) ? 1 : 0;
        }
        // A call that is queued for a widget that went is dropped by Qt.
        QMetaObject::invokeMethod(this, [this, caught, cancelled] {
            const QLocale locale;
            if (!*cancelled)
                _verdict->setText(filledFormat(_texts.text(QStringLiteral("212_Catches")),
                                               {locale.toString(caught), locale.toString(_addresses.size())}));
        });
    });
}

/// Return in the entry adds the rule, and does not accept the sheet.
bool FilterList::eventFilter(QObject* watched, QEvent* event)
{
    if (event->type() != QEvent::KeyPress)
        return false;
    const int key = static_cast<QKeyEvent*>(event)->key();
    if (watched == _rule && (key == Qt::Key_Return || key == Qt::Key_Enter) && !_rule->text().trimmed().isEmpty()) {
        if (_add->isEnabled())
            add();
        return true;
    }
    if (watched == _list && key == Qt::Key_Delete) {
        removeCurrent();
        return true;
    }
    return false;
}

} // namespace quarry
