#pragma once

#include "archive/StringTable.h"
#include "model/QueryCore.h"
#include "model/ResultRecord.h"
#include "window/WindowActions.h"

#include <QWidget>

class QLabel;
class QTextBrowser;
class QToolBar;

namespace quarry {

/// The selected result: title, address, what the page says, where it came from, and the buttons. Several selected ones
/// have the buttons alone.
class DetailPane final : public QWidget {
    Q_OBJECT

public:
    /// `actions` and `texts` must outlive the pane.
    DetailPane(WindowActions& actions, const StringTable& texts, QWidget* parent = nullptr);

    /// `query` is the one that found it; its highlight words are marked. What is shown already stays as the user
    /// scrolled and selected it.
    void show(const ResultRecord& record, const QueryCore& query);
    void showSeveral(qsizetype count);
    void showNothing();
    [[nodiscard]] QTextBrowser& text() { return *_text; }

private:
    void setText(const QString& html);

    const StringTable& _texts;
    QString _html; ///< What the text was made of.
    QLabel* _facts = nullptr;
    QTextBrowser* _text = nullptr;
    QToolBar* _buttons = nullptr;
};

} // namespace quarry
