#include "window/DetailPane.h"

#include "exchange/Names.h"
#include "text/LocalisedFormat.h"
#include "window/Highlight.h"

#include <QDateTime>
#include <QHBoxLayout>
#include <QLabel>
#include <QLocale>
#include <QMenu>
#include <QTextBrowser>
#include <QToolButton>
#include <QVBoxLayout>

namespace quarry {

namespace {

QToolButton* buttonFor(QAction* action, QWidget* parent)
{
    auto* const button = new QToolButton(parent);
    button->setDefaultAction(action);
    button->setToolButtonStyle(Qt::ToolButtonTextBesideIcon);
    const auto follow = [button, action] { button->setVisible(action->isVisible()); };
    QObject::connect(action, &QAction::changed, button, follow);
    follow();
    return button;
}

/// Opens a menu of the ratings.
QToolButton* ratingButton(const WindowActions& actions, const QString& text, QWidget* parent)
{
    auto* const button = new QToolButton(parent);
    auto* const menu = new QMenu(button);
    for (QAction* const action : actions.rate)
        menu->addAction(action);
    button->setText(text);
    button->setMenu(menu);
    button->setPopupMode(QToolButton::InstantPopup);
    const QAction* const any = actions.rate.front();
    const auto follow = [button, any] { button->setEnabled(any->isEnabled()); };
    QObject::connect(any, &QAction::changed, button, follow);
    follow();
    return button;
}

} // namespace

DetailPane::DetailPane(WindowActions& actions, const StringTable& texts, QWidget* parent)
    : QWidget(parent), _texts(texts), _facts(new QLabel(this)), _text(new QTextBrowser(this)),
      _buttons(new QWidget(this))
{
    auto* const row = new QHBoxLayout(_buttons);
    row->setContentsMargins(0, 0, 0, 0);
    for (QAction* action :
         {actions.openResult, actions.markRead, actions.markUnread, actions.hideResult, actions.showAgain})
        row->addWidget(buttonFor(action, _buttons));
    row->addWidget(ratingButton(actions, texts.text(QStringLiteral("203_Rate")), _buttons));
    for (QAction* action : {actions.excludeHost, actions.blacklistAddress, actions.copyAddress})
        row->addWidget(buttonFor(action, _buttons));
    row->addStretch(1);
    _facts->setTextInteractionFlags(Qt::TextSelectableByMouse | Qt::TextSelectableByKeyboard);
    _facts->setTextFormat(Qt::PlainText);
    _facts->setWordWrap(true);
    _text->setOpenLinks(false); // Addresses open by the action, which marks the result as read.
    _text->setAccessibleName(texts.text(QStringLiteral("204_Detail")));
    connect(_text, &QTextBrowser::anchorClicked, actions.openResult, &QAction::trigger);
    auto* const layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(_buttons);
    layout->addWidget(_text, 1);
    layout->addWidget(_facts);
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
