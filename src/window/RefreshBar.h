#pragma once

#include "archive/StringTable.h"
#include "session/RefreshRun.h"

#include <QWidget>

class QLabel;
class QProgressBar;
class QToolButton;

namespace quarry {

/// How far a refresh is, with the button that stops it; afterwards how it ended.
class RefreshBar final : public QWidget {
    Q_OBJECT

public:
    /// `health` shows how the services did, in full.
    RefreshBar(const StringTable& texts, QAction* stop, QAction* health, QWidget* parent = nullptr);
    void show(const RefreshState& state);
    /// What has to be said louder than here: why a refresh came to nothing; empty otherwise.
    [[nodiscard]] QString warning(const RefreshState& state) const;

private:
    [[nodiscard]] QString runningText(const RefreshState& state) const;
    [[nodiscard]] QString endText(const RefreshState& state) const;
    /// "blocked: Bing, Yahoo": the services that brought nothing and should have.
    [[nodiscard]] QString troubles(const RefreshState& state) const;

    const StringTable& _texts;
    QLabel* _text = nullptr;
    QProgressBar* _progress = nullptr;
    QToolButton* _stop = nullptr;
    QToolButton* _health = nullptr;
};

} // namespace quarry
