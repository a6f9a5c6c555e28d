#pragma once

#include "archive/StringTable.h"

#include <QList>
#include <QStringList>
#include <QWidget>

class QComboBox;
class QListWidget;
class QPushButton;

namespace quarry {

/// The texts of a combined query: chosen from the queries there are, or typed.
class MemberList final : public QWidget {
    Q_OBJECT

public:
    /// A query that can be chosen.
    struct Known {
        QString title;
        QStringList texts;
    };

    /// `texts` must outlive the widget.
    MemberList(const QList<Known>& queries, const StringTable& texts, QWidget* parent = nullptr);

    void setTexts(const QStringList& members);
    /// Each once, without blanks around it; with what stands in the entry and was not added yet.
    [[nodiscard]] QStringList texts() const;

Q_SIGNALS:
    void changed();

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void add(const QStringList& members);
    void addEntered();
    void removeSelected();
    [[nodiscard]] QStringList entered() const;

    QListWidget* _list = nullptr;
    QComboBox* _entry = nullptr;
    QPushButton* _add = nullptr;
    QPushButton* _remove = nullptr;
};

} // namespace quarry
