#pragma once

#include "archive/StringTable.h"
#include "blacklist/BlacklistRule.h"
#include "model/QueryFields.h"
#include "platform/Worker.h"

#include <QStringList>
#include <QWidget>

#include <atomic>
#include <memory>

class QCheckBox;
class QComboBox;
class QLabel;
class QLineEdit;
class QPushButton;
class QTreeWidget;

namespace quarry {

/// A query's own rules: added, changed, removed, and tried on the addresses the query knows, on a thread of its own,
/// where a newer rule ends the older one's run.
class FilterList final : public QWidget {
    Q_OBJECT

public:
    /// `texts` must outlive the widget.
    FilterList(QStringList addresses, const StringTable& texts, QWidget* parent = nullptr);
    ~FilterList() override;

    void setFilters(const QList<FilterObject>& filters);
    /// Those that are no rules are among them, at the end: they are carried along unseen.
    [[nodiscard]] QList<FilterObject> filters() const;

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    struct Entry {
        BlacklistRule rule;
        FilterObject object;
    };

    void makeControls();
    void show();
    [[nodiscard]] BlacklistRule entered() const;
    [[nodiscard]] int currentRow() const;
    void add();
    void replaceCurrent();
    void removeCurrent();
    void showCurrent();
    /// What the entered rule would catch, or what is wrong with it.
    void judge();
    void tryOut(const BlacklistRule& rule);
    [[nodiscard]] QString textOfType(qint64 type) const;

    const StringTable& _texts;
    const QStringList _addresses;
    QList<Entry> _entries;
    QList<FilterObject> _carried;
    QTreeWidget* _list = nullptr;
    QComboBox* _type = nullptr;
    QLineEdit* _rule = nullptr;
    QCheckBox* _case = nullptr;
    QPushButton* _add = nullptr;
    QPushButton* _replace = nullptr;
    QPushButton* _remove = nullptr;
    QLabel* _verdict = nullptr;
    std::shared_ptr<std::atomic<bool>> _cancelled;
    Worker _worker; ///< Last: it ends before what its jobs call goes away.
};

} // namespace quarry
