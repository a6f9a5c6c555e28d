#pragma once

#include "text/FoldedSearch.h"

#include <QString>
#include <QStringView>

namespace quarry {

/// A text to be searched for without regard to case, by plain Unicode case folding of each UTF-16 unit: so the long s
/// and the Kelvin sign count as "s" and "k". Made for patterns of a few ASCII characters searched in long texts.
class CaselessPattern final {
public:
    /// A pattern that is not empty.
    explicit CaselessPattern(QStringView pattern);

    [[nodiscard]] qsizetype size() const { return _folded.size(); }
    /// The first position at or after `from` where the pattern stands, -1 when there is none.
    [[nodiscard]] qsizetype find(QStringView text, qsizetype from = 0) const;
    /// False where the pattern does not fit before the text's end.
    [[nodiscard]] bool matchesAt(QStringView text, qsizetype position) const
    {
        return position + _folded.size() <= text.size() &&
               foldedUnit(text.utf16()[position]) == _folded.front().unicode() && restMatches(text.utf16() + position);
    }

private:
    /// A character of the pattern that is looked for in many units at a time.
    struct Anchor {
        qsizetype offset = -1;
        char16_t unit = 0;
        /// A letter other than "s" and "k": it has just the two ASCII forms.
        bool isLetter = false;
    };
    void chooseAnchors();
    [[nodiscard]] bool restMatches(const char16_t* units) const;
    [[nodiscard]] static unsigned hits(const Anchor& anchor, const char16_t* units);

    QString _folded;
    /// The same one twice where there is only one; no offset where there is none.
    Anchor _first, _second;
};

} // namespace quarry
