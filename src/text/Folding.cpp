#include "text/Folding.h"

#include <QChar>
#include <QList>

#include <unicode/unistr.h>

#include <algorithm>

namespace quarry {

namespace {

bool isAscii(QStringView text)
{
    return std::all_of(text.begin(), text.end(), [](QChar c) { return c.unicode() < 0x80; });
}

/// Combining classes of Unicode: 1 strikes a letter through, 10 to 36 are the points of Hebrew, Arabic and Syriac,
/// from 200 on come the accents above, below and around a letter.
bool isDiacritic(char32_t character)
{
    if (QChar::category(character) != QChar::Mark_NonSpacing)
        return false;
    const int combining = QChar::combiningClass(character);
    return combining == 1 || (combining >= 10 && combining <= 36) || combining >= 200;
}

/// Full case folding ("ß" as "ss"), where QString folds only characters that keep their number.
QString caseFolded(const QString& text)
{
    icu::UnicodeString folded(reinterpret_cast<const char16_t*>(text.utf16()), static_cast<int32_t>(text.size()));
    folded.foldCase();
    return QString::fromUtf16(folded.getBuffer(), folded.length());
}

} // namespace

QString foldedText(QStringView text)
{
    if (isAscii(text))
        return text.toString().toLower();
    const QList<uint> characters = text.toString().normalized(QString::NormalizationForm_D).toUcs4();
    QString kept;
    kept.reserve(characters.size());
    for (const char32_t character : characters) {
        if (!isDiacritic(character))
            kept.append(QChar::fromUcs4(character));
    }
    // Composed again, so that a syllable of Hangul is a letter and not the beginning of a longer one.
    return caseFolded(kept).normalized(QString::NormalizationForm_C);
}

bool containsFoldedAscii(std::string_view text, std::string_view folded)
{
    const auto isSame = [](char a, char b) { return foldedAscii(a) == b; };
    return folded.empty() || std::search(text.begin(), text.end(), folded.begin(), folded.end(), isSame) != text.end();
}

FoldedNeedle::FoldedNeedle(QStringView needle)
    : _folded(foldedText(needle)), _isAscii(isAscii(_folded)), _ascii(_isAscii ? _folded.toStdString() : std::string())
{
}

bool FoldedNeedle::isIn(QStringView text) const
{
    if (_folded.isEmpty())
        return false;
    if (isAscii(text))
        return _isAscii && text.contains(_folded, Qt::CaseInsensitive);
    return foldedText(text).contains(_folded);
}

} // namespace quarry
