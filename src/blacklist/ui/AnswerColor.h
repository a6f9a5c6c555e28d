#pragma once

#include <QColor>

namespace quarry {

enum class AnswerTone {
    Green,  ///< The address is caught.
    Orange, ///< It is not, or there is no telling.
};

/// The shade of the tone that is read best on that background.
[[nodiscard]] QColor answerColor(AnswerTone tone, const QColor& background);

/// How well the one color stands out from the other: 1 not at all, 21 black on white; small text needs 4.5.
[[nodiscard]] double contrastRatio(const QColor& a, const QColor& b);

} // namespace quarry
