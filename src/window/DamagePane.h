#pragma once

#include "archive/StringTable.h"

#include <QWidget>

class QLabel;
class QPushButton;

namespace quarry {

/// What stands in the window while the database cannot be read: why, where its copy is, and what can be done. Nothing
/// is written over it until the user decides.
class DamagePane final : public QWidget {
    Q_OBJECT

public:
    explicit DamagePane(const StringTable& texts, QWidget* parent = nullptr);

    /// `copy` is empty where there is none; `mayBegin`: an empty database can be begun in its place.
    void show(const QString& reason, const QString& copy, bool mayBegin);

Q_SIGNALS:
    void beginWanted();
    void quitWanted();

private:
    const StringTable& _texts;
    QLabel* _text = nullptr;
    QPushButton* _begin = nullptr;
};

} // namespace quarry
