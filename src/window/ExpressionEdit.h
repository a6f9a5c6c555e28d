#pragma once

#include "archive/StringTable.h"
#include "platform/Worker.h"

#include <QStringList>
#include <QWidget>

#include <atomic>
#include <memory>

class QLabel;
class QLineEdit;
class QListWidget;

namespace quarry {

/// An expression for addresses: says at once what is wrong with it and where, and tries it on known addresses. They are
/// matched on a thread of its own, where a newer expression ends the older one's run.
class ExpressionEdit final : public QWidget {
    Q_OBJECT

public:
    /// `texts` must outlive the widget.
    ExpressionEdit(QStringList addresses, const StringTable& texts, QWidget* parent = nullptr);
    ~ExpressionEdit() override;

    void setText(const QString& expression);
    [[nodiscard]] QString text() const;
    /// Empty, or compiles.
    [[nodiscard]] bool isValid() const { return _isValid; }

Q_SIGNALS:
    void changed();

private:
    using Cancelled = std::atomic<bool>;

    void judge();
    void sayFault(const QString& expression);
    void tryOut(const QString& expression);
    void showMatches(const QStringList& matching, const QStringList& others);

    const StringTable& _texts;
    const QStringList _addresses;
    QLineEdit* _line = nullptr;
    QLabel* _fault = nullptr;
    QLabel* _pointer = nullptr;
    QLabel* _count = nullptr;
    QListWidget* _list = nullptr;
    bool _isValid = true;
    std::shared_ptr<Cancelled> _cancelled;
    Worker _worker; ///< Last: it ends before what its jobs call goes away.
};

} // namespace quarry
