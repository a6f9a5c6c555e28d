#include "window/MemberList.h"

#include <QComboBox>
#include <QCompleter>
#include <QGridLayout>
#include <QKeyEvent>
#include <QLineEdit>
#include <QListWidget>
#include <QPushButton>

namespace quarry {

namespace {

constexpr int LinesOfList = 5;

} // namespace

MemberList::MemberList(const QList<Known>& queries, const StringTable& texts, QWidget* parent)
    : QWidget(parent), _list(new QListWidget(this)), _entry(new QComboBox(this)),
      _add(new QPushButton(texts.text(QStringLiteral("210_Add member")), this)),
      _remove(new QPushButton(texts.text(QStringLiteral("210_Remove member")), this))
{
    _list->setObjectName(QStringLiteral("members"));
    _list->setAccessibleName(texts.text(QStringLiteral("210_Members")));
    _list->setSelectionMode(QAbstractItemView::ExtendedSelection);
    _list->setFixedHeight(LinesOfList * fontMetrics().lineSpacing() + 2 * _list->frameWidth() + 12);
    _entry->setObjectName(QStringLiteral("member"));
    _entry->setAccessibleName(texts.text(QStringLiteral("210_Member")));
    _entry->setEditable(true);
    _entry->setInsertPolicy(QComboBox::NoInsert);
    _entry->setSizeAdjustPolicy(QComboBox::AdjustToMinimumContentsLengthWithIcon);
    for (const Known& query : queries)
        _entry->addItem(query.title, query.texts);
    _entry->completer()->setFilterMode(Qt::MatchContains);
    _entry->completer()->setCompletionMode(QCompleter::PopupCompletion);
    _entry->setCurrentIndex(-1);
    _entry->lineEdit()->setPlaceholderText(texts.text(QStringLiteral("210_Member example")));
    for (QObject* const watched : std::initializer_list<QObject*>{_list, _entry, _entry->lineEdit()})
        watched->installEventFilter(this);
    for (QPushButton* const button : {_add, _remove})
        button->setAutoDefault(false);
    auto* const grid = new QGridLayout(this);
    grid->setContentsMargins(0, 0, 0, 0);
    grid->addWidget(_entry, 0, 0);
    grid->addWidget(_add, 0, 1);
    grid->addWidget(_list, 1, 0);
    grid->addWidget(_remove, 1, 1, Qt::AlignTop);
    grid->setColumnStretch(0, 1);
    setFocusProxy(_entry);
    connect(_add, &QPushButton::clicked, this, [this] { addEntered(); });
    connect(_remove, &QPushButton::clicked, this, [this] { removeSelected(); });
    connect(_entry, &QComboBox::editTextChanged, this, [this] { Q_EMIT changed(); });
    connect(_entry, &QComboBox::textActivated, this, [this] { addEntered(); });
    connect(_list->model(), &QAbstractItemModel::dataChanged, this, [this] { Q_EMIT changed(); });
    const auto updateRemove = [this] { _remove->setEnabled(!_list->selectedItems().isEmpty()); };
    connect(_list, &QListWidget::itemSelectionChanged, this, updateRemove);
    updateRemove();
}

void MemberList::setTexts(const QStringList& members)
{
    _list->clear();
    add(members);
}

QStringList MemberList::texts() const
{
    QStringList members;
    for (int row = 0; row < _list->count(); ++row)
        members.append(_list->item(row)->text().trimmed());
    members += entered();
    members.removeAll(QString());
    members.removeDuplicates();
    return members;
}

/// What is chosen stands for the query's own texts, as long as nothing else was typed.
QStringList MemberList::entered() const
{
    const QString text = _entry->currentText();
    const int chosen = _entry->findText(text);
    return chosen >= 0 ? _entry->itemData(chosen).toStringList() : QStringList{text.trimmed()};
}

void MemberList::addEntered()
{
    const QStringList members = entered();
    _entry->setCurrentIndex(-1);
    _entry->clearEditText();
    add(members);
}

void MemberList::add(const QStringList& members)
{
    const QStringList there = texts();
    for (const QString& member : members) {
        if (member.isEmpty() || there.contains(member))
            continue;
        auto* const item = new QListWidgetItem(member, _list); // The list's own.
        item->setFlags(item->flags() | Qt::ItemIsEditable);
    }
    Q_EMIT changed();
}

void MemberList::removeSelected()
{
    qDeleteAll(_list->selectedItems());
    Q_EMIT changed();
}

/// Return adds what was entered and goes no further: it would accept the sheet.
bool MemberList::eventFilter(QObject* watched, QEvent* event)
{
    if (event->type() != QEvent::KeyPress)
        return false;
    const int key = static_cast<QKeyEvent*>(event)->key();
    const bool isReturn = key == Qt::Key_Return || key == Qt::Key_Enter;
    if (watched == _list && key == Qt::Key_Delete) {
        removeSelected();
        return true;
    }
    if (watched != _list && isReturn && !_entry->currentText().trimmed().isEmpty()) {
        addEntered();
        return true;
    }
    return false;
}

} // namespace quarry
