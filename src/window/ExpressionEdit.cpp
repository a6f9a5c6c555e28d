#include "window/ExpressionEdit.h"

#include "text/CSRegex.h"
#include "text/LocalisedFormat.h"
#include "text/RegexFault.h"

#include <QFontDatabase>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QLocale>
#include <QVBoxLayout>

#include <utility>

namespace quarry {

namespace {

constexpr int LinesOfTester = 6;

bool matches(CSRegex& regex, const QString& address)
{
    try {
        return regex.matchesString(address);
    } catch (const std::exception&) { // No memory for this one: the tester is no reason to end.
        return false;
    }
}

} // namespace

ExpressionEdit::ExpressionEdit(QStringList addresses, const StringTable& texts, QWidget* parent)
    : QWidget(parent), _texts(texts), _addresses(std::move(addresses)), _line(new QLineEdit(this)),
      _fault(new QLabel(this)), _pointer(new QLabel(this)), _count(new QLabel(this)), _list(new QListWidget(this))
{
    const QFont fixed = QFontDatabase::systemFont(QFontDatabase::FixedFont);
    for (QWidget* const widget : std::initializer_list<QWidget*>{_line, _pointer}) {
        widget->setFont(fixed);
        widget->setLayoutDirection(Qt::LeftToRight); // Expressions are read that way in every language.
    }
    _line->setAccessibleName(texts.text(QStringLiteral("211_Expression")));
    _line->setPlaceholderText(texts.text(QStringLiteral("211_Example")));
    _pointer->setTextFormat(Qt::PlainText);
    _pointer->setObjectName(QStringLiteral("pointer"));
    _fault->setTextFormat(Qt::PlainText);
    _fault->setObjectName(QStringLiteral("fault"));
    _fault->setWordWrap(true);
    _count->setObjectName(QStringLiteral("count"));
    _list->setLayoutDirection(Qt::LeftToRight);
    _list->setAccessibleName(texts.text(QStringLiteral("211_Known addresses")));
    _list->setSelectionMode(QAbstractItemView::NoSelection);
    _list->setUniformItemSizes(true);
    _list->setFixedHeight(LinesOfTester * fontMetrics().lineSpacing() + 2 * _list->frameWidth() + 8);
    auto* const column = new QVBoxLayout(this);
    column->setContentsMargins(0, 0, 0, 0);
    for (QWidget* const widget : std::initializer_list<QWidget*>{_line, _pointer, _fault, _count, _list})
        column->addWidget(widget);
    setFocusProxy(_line);
    connect(_line, &QLineEdit::textChanged, this, [this] { judge(); });
    judge();
}

ExpressionEdit::~ExpressionEdit()
{
    if (_cancelled)
        *_cancelled = true;
}

void ExpressionEdit::setText(const QString& expression)
{
    _line->setText(expression);
}

QString ExpressionEdit::text() const
{
    return _line->text();
}

void ExpressionEdit::judge()
{
    const QString expression = text();
    if (_cancelled)
        *_cancelled = true;
    sayFault(expression);
    _list->setVisible(_isValid && !_addresses.isEmpty());
    _count->setVisible(_isValid);
    if (!_isValid || _addresses.isEmpty())
        _list->clear();
    if (_addresses.isEmpty())
        _count->setText(_texts.text(QStringLiteral("211_Nothing to try")));
    else if (expression.isEmpty())
        showMatches(_addresses, {});
    else if (_isValid)
        tryOut(expression);
    Q_EMIT changed();
}

void ExpressionEdit::sayFault(const QString& expression)
{
    const std::optional<RegexFault> fault = expression.isEmpty() ? std::nullopt : regexFault(expression);
    _isValid = !fault;
    const bool isPointed = fault && fault->place >= 0;
    _fault->setVisible(!_isValid);
    _pointer->setVisible(isPointed);
    if (!fault)
        return;
    const QString reason = fault->reason.isEmpty() ? _texts.text(QStringLiteral("211_Not valid")) : fault->reason;
    _fault->setText(isPointed ? filledFormat(_texts.text(QStringLiteral("211_Fault at")),
                                             {reason, QLocale().toString(fault->place + 1)})
                              : reason);
    if (isPointed)
        _pointer->setText(expression + u'\n' + QString(fault->place, u' ') + u'^');
}

void ExpressionEdit::tryOut(const QString& expression)
{
    _cancelled = std::make_shared<Cancelled>(false);
    _worker.add([this, expression, addresses = _addresses, cancelled = _cancelled] {
        std::optional<CSRegex> regex;
        try {
            regex.emplace(expression);
        } catch (const std::exception&) { // It compiled a moment ago.
            return;
        }
        QStringList matching;
        QStringList others;
        for (const QString& address : addresses) {
            if (*cancelled)
                return;
            (matches(*regex, address) ? matching : others).append(address);
        }
        // A call that is queued for a widget that went is dropped by Qt.
        QMetaObject::invokeMethod(this, [this, matching, others, cancelled] {
            if (!*cancelled)
                showMatches(matching, others);
        });
    });
}

void ExpressionEdit::showMatches(const QStringList& matching, const QStringList& others)
{
    const QLocale locale;
    _count->setText(text().isEmpty()
                        ? _texts.text(QStringLiteral("211_Every address"))
                        : filledFormat(_texts.text(QStringLiteral("211_Matches")),
                                       {locale.toString(matching.size()), locale.toString(_addresses.size())}));
    _list->clear();
    _list->addItems(matching);
    const QBrush faint = palette().brush(QPalette::Disabled, QPalette::Text);
    for (const QString& address : others) {
        auto* const item = new QListWidgetItem(address, _list); // The list's own.
        item->setForeground(faint);
        QFont crossed = font();
        crossed.setStrikeOut(true);
        item->setFont(crossed);
        item->setData(Qt::AccessibleTextRole, filledFormat(_texts.text(QStringLiteral("211_Left out")), {address}));
    }
}

} // namespace quarry
