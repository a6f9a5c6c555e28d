#include "window/QuerySheet.h"

#include "window/DialogButtons.h"
#include "window/ExpressionEdit.h"

#include <QComboBox>
#include <QDialogButtonBox>
#include <QFormLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QUrl>
#include <QVBoxLayout>

namespace quarry {

namespace {

constexpr int UsualWidth = 520;

/// People paste addresses where a host is wanted.
QString siteIn(const QString& typed)
{
    const QString text = typed.trimmed();
    const QString host = text.contains(QLatin1String("://")) ? QUrl(text).host() : QString();
    return host.isEmpty() ? text : host;
}

} // namespace

QuerySheet::QuerySheet(Form form, const Known& known, const StringTable& texts, QWidget* parent)
    : QDialog(parent), _form(form), _texts(texts)
{
    auto* const column = new QVBoxLayout(this);
    auto* const layout = new QFormLayout;
    layout->setFieldGrowthPolicy(QFormLayout::ExpandingFieldsGrow);
    if (form == Form::Combined) {
        _members = new MemberList(known.queries, texts, this);
        layout->addRow(texts.text(QStringLiteral("210_Label members")), _members);
        connect(_members, &MemberList::changed, this, [this] { judge(); });
    } else {
        makeWords(*layout);
    }
    makeName(*layout);
    if (form == Form::Advanced || form == Form::Combined)
        makeRestrictions(*layout, known.addresses);
    _objection = new QLabel(this);
    _objection->setObjectName(QStringLiteral("objection"));
    _objection->setWordWrap(true);
    auto* const buttons = okAndCancel(texts, this);
    _ok = buttons->button(QDialogButtonBox::Ok);
    column->addLayout(layout);
    column->addStretch(1);
    column->addWidget(_objection);
    column->addWidget(buttons);
    QueryDefinition empty;
    empty.isCombined = form == Form::Combined;
    setDefinition(empty, true);
    resize(UsualWidth, sizeHint().height());
}

void QuerySheet::makeWords(QFormLayout& layout)
{
    _line = new QLineEdit(this);
    _line->setObjectName(QStringLiteral("words"));
    _line->setPlaceholderText(_texts.text(QStringLiteral("210_Words example")));
    layout.addRow(_texts.text(QStringLiteral("210_Label words")), _line);
    connect(_line, &QLineEdit::textChanged, this, [this] { judge(); });
}

void QuerySheet::makeRestrictions(QFormLayout& layout, const QStringList& addresses)
{
    _words = new QComboBox(this);
    _words->setObjectName(QStringLiteral("order"));
    _words->addItem(_texts.text(QStringLiteral("210_Any order")), QueryDefinition::AnyOrder);
    _words->addItem(_texts.text(QStringLiteral("210_Side by side")), QueryDefinition::SideBySide);
    _words->addItem(_texts.text(QStringLiteral("210_In page")), QueryDefinition::InPage);
    layout.addRow(_texts.text(QStringLiteral("210_Label order")), _words);
    _site = new QLineEdit(this);
    _site->setObjectName(QStringLiteral("site"));
    _site->setPlaceholderText(_texts.text(QStringLiteral("210_Site example")));
    layout.addRow(_texts.text(QStringLiteral("210_Label site")), _site);
    _expression = new ExpressionEdit(addresses, _texts, this);
    layout.addRow(_texts.text(QStringLiteral("210_Label expression")), _expression);
    connect(_expression, &ExpressionEdit::changed, this, [this] { judge(); });
}

void QuerySheet::makeName(QFormLayout& layout)
{
    _name = new QLineEdit(this);
    _name->setObjectName(QStringLiteral("name"));
    _name->setPlaceholderText(_texts.text(QStringLiteral("210_Name example")));
    layout.addRow(_texts.text(QStringLiteral("210_Label name")), _name);
}

void QuerySheet::setDefinition(const QueryDefinition& definition, bool isNew)
{
    _isNew = isNew;
    _name->setText(definition.name);
    if (_line)
        _line->setText(definition.texts.value(0));
    if (_members)
        _members->setTexts(definition.texts);
    if (_words) {
        _words->setCurrentIndex(_words->findData(definition.words));
        _site->setText(definition.site);
        _expression->setText(definition.urlExpression);
    }
    const char16_t* const newTitles[] = {u"210_Title new query", u"210_Title new advanced query",
                                         u"210_Title new combined query"};
    setWindowTitle(
        _texts.text(isNew ? QString::fromUtf16(newTitles[int(_form)]) : QStringLiteral("210_Title edit query")));
    _ok->setText(_texts.text(isNew ? QStringLiteral("210_Add") : QStringLiteral("210_Change")));
    judge();
}

QueryDefinition QuerySheet::definition() const
{
    QueryDefinition definition;
    definition.isCombined = _form == Form::Combined;
    definition.name = _name->text().trimmed();
    if (_line)
        definition.texts = {_line->text().trimmed()};
    if (_members)
        definition.texts = _members->texts();
    if (_words) {
        definition.words = _words->currentData().toLongLong();
        definition.site = siteIn(_site->text());
        definition.urlExpression = _expression->text();
    }
    return definition;
}

std::optional<QString> QuerySheet::objection() const
{
    if (_line && _line->text().trimmed().isEmpty())
        return QString();
    if (_members && _members->texts().size() < (_isNew ? 2 : 1))
        return _texts.text(QStringLiteral("210_Two texts"));
    if (_expression && !_expression->isValid())
        return _texts.text(QStringLiteral("210_Expression faulty"));
    return std::nullopt;
}

void QuerySheet::judge()
{
    if (!_ok) // While the form is being made.
        return;
    const std::optional<QString> why = objection();
    _ok->setEnabled(!why);
    _objection->setText(why.value_or(QString()));
}

void QuerySheet::accept()
{
    if (!objection())
        QDialog::accept();
}

} // namespace quarry
