#pragma once

#include <QString>
#include <QStringView>

namespace quarry {

/// Text reduced to what a search compares when case and accents do not count: decomposed, accents and vowel points
/// dropped, case folded. Marks that make another letter of a letter (Japanese voicing, the vowel signs and the
/// virama of Indian scripts) stay.
[[nodiscard]] QString foldedText(QStringView text);

/// A text looked for in many others, ignoring case and diacritics. A plain value.
class FoldedNeedle final {
public:
    explicit FoldedNeedle(QStringView needle);
    /// Whether the text contains it. The empty needle is in no text.
    [[nodiscard]] bool isIn(QStringView text) const;
    /// Whether every text that contains this one contains the other one as well. A letter more can make another letter
    /// of the one before, so that is not so for every text that begins with the other.
    [[nodiscard]] bool contains(const FoldedNeedle& other) const
    {
        return !other._folded.isEmpty() && _folded.contains(other._folded);
    }

private:
    QString _folded;
    bool _isAscii = false;
};

} // namespace quarry
