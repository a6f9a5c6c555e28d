#pragma once

#include "archive/StringTable.h"

#include <QFrame>

class QLabel;

namespace quarry {

/// A line above everything that stays until it is closed: what went wrong, or what came in.
class NoticeBar final : public QFrame {
    Q_OBJECT

public:
    explicit NoticeBar(const StringTable& texts, QWidget* parent = nullptr);

    enum class Kind { Word, Warning };
    void say(Kind kind, const QString& text);
    /// Closes it if that is what it shows: the text is no longer true.
    void takeBack(const QString& text);

private:
    QLabel* _icon = nullptr;
    QLabel* _text = nullptr;
};

} // namespace quarry
