#include "window/DetailPane.h"

#include "exchange/Names.h"
#include "text/LocalisedFormat.h"
#include "window/Highlight.h"

#include <QApplication>
#include <QDateTime>
#include <QLabel>
#include <QLocale>
#include <QMenu>
#include <QTextBrowser>
#include <QToolBar>
#include <QToolButton>
#include <QVBoxLayout>

#include <utility>

namespace quarry {

namespace {

/// Opens a menu of the ratings.
QAction* ratingAction(const WindowActions& actions, const QString& text, QToolBar* bar)
{
    auto* const menu = new QMenu(bar);
    for (QAction* const action : actions.rate)
        menu->addAction(action);
    QAction* const rating = menu->menuAction();
    rating->setText(text);
    const QAction* const any = actions.rate.front();
    const auto follow = [rating, any] { rating->setEnabled(any->isEnabled()); };
    QObject::connect(any, &QAction::changed, rating, follow);
    follow();
    return rating;
}

/// A tool bar leaves its buttons out of what Tab reaches. A click still leaves the focus in the list, where keys go on.
void reachByTab(const QToolBar& bar, QWidget* next)
{
    QList<QToolButton*> buttons = bar.findChildren<QToolButton*>();
    buttons.append(buttons.takeFirst()); // The one for what finds no room is made first, and shown last.
    for (QToolButton* const button : std::as_const(buttons))
        button->setFocusPolicy(Qt::TabFocus);
    for (qsizetype i = 0; i + 1 < buttons.size(); ++i)
        QWidget::setTabOrder(buttons.at(i), buttons.at(i + 1));
    QWidget::setTabOrder(buttons.constLast(), next);
}

/// Two actions that take turns: the button of the one that comes has the focus of the one that goes. Else that would be
/// with the next button, which a second Space would press.
void passFocus(const QToolBar& bar, QAction* one, QAction* other)
{
    QObject::connect(qApp, &QApplication::focusChanged, &bar, [&bar, one, other](const QWidget* from) {
        for (const auto& [going, coming] : {std::pair(one, other), std::pair(other, one)}) {
            if (!from || from != bar.widgetForAction(going) || going->isVisible() || !coming->isVisible())
                continue;
            QWidget* const next = bar.widgetForAction(coming);
            next->show(); // As the tool bar will in a moment.
            next->setFocus(Qt::OtherFocusReason);
        }
    });
}

} // namespace

DetailPane::DetailPane(WindowActions& actions, const StringTable& texts, QWidget* parent)
    : QWidget(parent), _texts(texts), _facts(new QLabel(this)), _text(new QTextBrowser(this)),
      _buttons(new QToolBar(this))
{
    // What finds no room goes into the menu at its end.
    _buttons->setToolButtonStyle(Qt::ToolButtonTextOnly);
    QAction* const rating = ratingAction(actions, texts.text(QStringLiteral("203_Rate")), _buttons);
    _buttons->addActions({actions.openResult, actions.markRead, actions.markUnread, actions.hideResult,
                          actions.showAgain, rating, actions.excludeHost, actions.blacklistAddress,
                          actions.copyAddress});
    qobject_cast<QToolButton*>(_buttons->widgetForAction(rating))->setPopupMode(QToolButton::InstantPopup);
    _facts->setTextInteractionFlags(Qt::TextSelectableByMouse | Qt::TextSelectableByKeyboard);
    _facts->setTextFormat(Qt::PlainText);
    _facts->setWordWrap(true);
    _facts->setIndent(fontMetrics().averageCharWidth());
    _text->setOpenLinks(false); // Addresses open by the action, which marks the result as read.
    _text->setPlaceholderText(texts.text(QStringLiteral("204_Nothing selected")));
    _text->setAccessibleName(texts.text(QStringLiteral("204_Detail")));
    connect(_text, &QTextBrowser::anchorClicked, actions.openResult, &QAction::trigger);
    auto* const layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(_buttons);
    layout->addWidget(_text, 1);
    layout->addWidget(_facts);
    reachByTab(*_buttons, _text);
    QWidget::setTabOrder(_text, _facts);
    passFocus(*_buttons, actions.markRead, actions.markUnread);
    showNothing();
}

void DetailPane::show(const ResultRecord& record, const QueryCore& query)
{
    const QStringList words = query.isHighlightActive() ? highlightWords(query.highlight()) : QStringList();
    const QString address = record.urlText().value_or(QString());
    const QString title = record.title().value_or(QString());
    setText(QStringLiteral("<h3>%1</h3><p><a href=\"quarry:open\">%2</a></p><p>%3</p>")
                .arg(highlighted(title.isEmpty() ? address : title, words), address.toHtmlEscaped(),
                     highlighted(record.textFromPage().value_or(QString()), words)));
    QStringList facts = {query.title(), engineName(record.engineId().value_or(QString()))};
    if (record.dateOfFind())
        facts.append(filledFormat(
            _texts.text(QStringLiteral("204_Found on")),
            {QLocale().toString(QDateTime::fromMSecsSinceEpoch(qint64(record.dateOfFind()->unixSeconds() * 1000.0)),
                                QLocale::LongFormat)}));
    const bool hasDigest = !record.checksum().value_or(QString()).isEmpty();
    facts.append(_texts.text(hasDigest ? QStringLiteral("204_Digest kept") : QStringLiteral("204_No digest")));
    facts.removeAll(QString());
    _facts->setText(facts.join(QStringLiteral(" · ")));
    _buttons->show();
}

void DetailPane::showSeveral(qsizetype count)
{
    setText(
        filledFormat(_texts.text(QStringLiteral("204_Several selected")), {QLocale().toString(count)}).toHtmlEscaped());
    _facts->clear();
    _buttons->show();
}

void DetailPane::showNothing()
{
    setText(QString());
    _facts->clear();
    _buttons->hide();
}

void DetailPane::setText(const QString& html)
{
    if (html == _html)
        return;
    _html = html;
    _text->setHtml(html);
}

} // namespace quarry
