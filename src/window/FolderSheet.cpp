#include "window/FolderSheet.h"

#include <QDialogButtonBox>
#include <QLabel>
#include <QTreeWidget>
#include <QVBoxLayout>

namespace quarry {

namespace {

constexpr QSize UsualSize(360, 400);

QTreeWidgetItem* makeItem(const QString& title, const QString& uuid)
{
    auto* const item = new QTreeWidgetItem({title}); // The tree's, once it is added.
    item->setData(0, Qt::UserRole, uuid);
    return item;
}

void addFolders(const QueryCorePtr& below, const QStringList& moved, QTreeWidgetItem& to)
{
    const QList<QueryCorePtr> childs = below->childs().value_or(QList<QueryCorePtr>());
    for (const QueryCorePtr& child : childs) {
        if (!child->isQueryFolder() || moved.contains(child->UUID()))
            continue;
        QTreeWidgetItem* const item = makeItem(child->title(), child->UUID());
        to.addChild(item);
        addFolders(child, moved, *item);
    }
}

} // namespace

FolderSheet::FolderSheet(const QueryCorePtr& root, const QStringList& moved, const StringTable& texts, QWidget* parent)
    : QDialog(parent), _folders(new QTreeWidget(this))
{
    setWindowTitle(texts.text(QStringLiteral("215_Title")));
    auto* const label = new QLabel(texts.text(QStringLiteral("215_Label")), this);
    label->setBuddy(_folders);
    QTreeWidgetItem* const top = makeItem(texts.text(QStringLiteral("215_Top")), {});
    addFolders(root, moved, *top);
    _folders->setHeaderHidden(true);
    _folders->setRootIsDecorated(false);
    _folders->addTopLevelItem(top);
    _folders->expandAll();
    _folders->setCurrentItem(top);
    auto* const buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel, this);
    connect(buttons, &QDialogButtonBox::accepted, this, &QDialog::accept);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
    connect(_folders, &QTreeWidget::itemActivated, this, &QDialog::accept);
    auto* const column = new QVBoxLayout(this);
    column->addWidget(label);
    column->addWidget(_folders);
    column->addWidget(buttons);
    resize(UsualSize);
}

QString FolderSheet::folderUuid() const
{
    const QTreeWidgetItem* const chosen = _folders->currentItem();
    return chosen ? chosen->data(0, Qt::UserRole).toString() : QString();
}

} // namespace quarry
