#pragma once

#include <QString>
#include <QStringView>

#include <string>
#include <string_view>

namespace quarry {

/// Text reduced to what a search compares when case and accents do not count: decomposed, accents and vowel points
/// dropped, case folded. Marks that make another letter of a letter (Japanese voicing, the vowel signs and the
/// virama of Indian scripts) stay.
[[nodiscard]] QString foldedText(QStringView text);

/// ASCII with its letters made small.
[[nodiscard]] inline char foldedAscii(char c)
{
    return c >= 'A' && c <= 'Z' ? static_cast<char>(c + ('a' - 'A')) : c;
}
/// Whether the text contains the other one, which is folded already. Both are ASCII.
[[nodiscard]] bool containsFoldedAscii(std::string_view text, std::string_view folded);

/// A text looked for in many others, ignoring case and diacritics. A plain value.
class FoldedNeedle final {
public:
    explicit FoldedNeedle(QStringView needle);
    /// Whether the text contains it. The empty needle is in no text.
    [[nodiscard]] bool isIn(QStringView text) const;
    /// The same for ASCII bytes, as they are in a file.
    [[nodiscard]] bool isInAscii(std::string_view text) const
    {
        return _isAscii && !_ascii.empty() && containsFoldedAscii(text, _ascii);
    }
    /// Whether every text that contains this one contains the other one as well. A letter more can make another letter
    /// of the one before, so that is not so for every text that begins with the other.
    [[nodiscard]] bool contains(const FoldedNeedle& other) const
    {
        return !other._folded.isEmpty() && _folded.contains(other._folded);
    }

private:
    QString _folded;
    bool _isAscii = false;
    std::string _ascii; ///< The same, where it is ASCII.
};

} // namespace quarry
