#pragma once

#include <QString>
#include <QStringView>

namespace quarry {

/// A text to be searched for without regard to case, by plain Unicode case folding and without locale: so the long s
/// and the Kelvin sign count as "s" and "k". Made for patterns of a few ASCII characters searched in long texts.
class CaselessPattern final {
public:
    explicit CaselessPattern(QStringView pattern);

    [[nodiscard]] qsizetype size() const { return _folded.size(); }
    /// The first position at or after `from` where the pattern stands, -1 when there is none.
    [[nodiscard]] qsizetype find(QStringView text, qsizetype from = 0) const;
    /// False where the pattern does not fit before the text's end.
    [[nodiscard]] bool matchesAt(QStringView text, qsizetype position) const;

private:
    /// A character of the pattern that is looked for many units at a time.
    struct Anchor {
        qsizetype offset = 0;
        char16_t unit = 0;
        /// A letter other than "s" and "k": it has just the two ASCII forms.
        bool isLetter = false;
    };
    void chooseAnchors();
    [[nodiscard]] qsizetype findByAnchors(QStringView text, qsizetype from) const;

    QString _folded;
    bool _isAscii = true;
    /// Whether there are two characters that the block search can look for.
    bool _hasAnchors = false;
    Anchor _first, _second;
};

} // namespace quarry
