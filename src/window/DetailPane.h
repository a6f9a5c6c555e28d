#pragma once

#include "archive/StringTable.h"
#include "model/QueryCore.h"
#include "model/ResultRecord.h"
#include "window/WindowActions.h"

#include <QWidget>

class QLabel;
class QTextBrowser;

namespace quarry {

/// The selected result: title, address, what the page says, where it came from, and the buttons.
class DetailPane final : public QWidget {
    Q_OBJECT

public:
    /// `actions` and `texts` must outlive the pane.
    DetailPane(WindowActions& actions, const StringTable& texts, QWidget* parent = nullptr);

    /// `query` is the one that found it; its highlight words are marked.
    void show(const ResultRecord& record, const QueryCore& query);
    /// Nothing, or several: a text instead of a result.
    void showText(const QString& text);

private:
    const StringTable& _texts;
    QLabel* _facts = nullptr;
    QTextBrowser* _text = nullptr;
    QWidget* _buttons = nullptr;
};

} // namespace quarry
