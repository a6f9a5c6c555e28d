#include "text/Spans.h"

#include "text/FoldedSearch.h"
#include "text/UnitSearch.h"

#include <algorithm>
#include <cstring>

namespace quarry {

namespace {

QString foldedMarker(QStringView marker)
{
    QString folded = marker.toString();
    for (QChar& c : folded)
        c = QChar(foldedUnit(c.unicode()));
    return folded;
}

/// A text with a gap: what was kept stands before it, what was not looked at yet behind it. Positions are those
/// of the text without the gap. The kept part never holds a whole begin marker, so after a removal only the few
/// positions around the gap can hold a new one.
class GappedText final {
public:
    explicit GappedText(QString& text) : _text(text), _data(text.data()) {}

    /// The first position at or after `from` where the marker stands, or -1.
    [[nodiscard]] qsizetype find(QStringView marker, qsizetype from) const
    {
        const qsizetype rest = _text.size() - _gapEnd;
        for (qsizetype at = from; at < _kept; ++at) {
            if (at + marker.size() <= _kept + rest && standsAt(marker, at))
                return at;
        }
        const qsizetype found = indexOfFolded(_text, marker, _gapEnd + std::max<qsizetype>(0, from - _kept));
        return found < 0 ? -1 : found - _gapEnd + _kept;
    }

    /// The first position where the marker stands, given that none stands wholly before the gap.
    [[nodiscard]] qsizetype findAnywhere(QStringView marker) const
    {
        return find(marker, std::max<qsizetype>(0, _kept - marker.size() + 1));
    }

    /// Takes out what stands from `begin` up to `end`; the gap is then at `begin`.
    void remove(qsizetype begin, qsizetype end)
    {
        if (begin > _kept)
            moveGapTo(begin);
        if (end < _kept) {
            const qsizetype back = _kept - end;
            std::memmove(_data + _gapEnd - back, _data + end, sizeof(QChar) * static_cast<size_t>(back));
            _gapEnd -= back;
        } else {
            _gapEnd += end - _kept;
        }
        _kept = begin;
    }

    void close()
    {
        moveGapTo(_text.size() - _gapEnd + _kept);
        _text.truncate(_kept);
    }

private:
    [[nodiscard]] bool standsAt(QStringView marker, qsizetype at) const
    {
        for (qsizetype i = 0; i < marker.size(); ++i) {
            const qsizetype p = at + i;
            const QChar c = _data[p < _kept ? p : p - _kept + _gapEnd];
            if (foldedUnit(c.unicode()) != marker[i].unicode())
                return false;
        }
        return true;
    }

    void moveGapTo(qsizetype position)
    {
        const qsizetype count = position - _kept;
        if (_kept != _gapEnd)
            std::memmove(_data + _kept, _data + _gapEnd, sizeof(QChar) * static_cast<size_t>(count));
        _kept += count;
        _gapEnd += count;
    }

    QString& _text;
    QChar* _data;
    qsizetype _kept = 0;
    qsizetype _gapEnd = 0;
};

} // namespace

void removeHTMLTagBeginingWith(QString& text, QStringView begin, QStringView endingTag)
{
    removeFoldedSpans(text, foldedMarker(begin), foldedMarker(endingTag));
}

void removeFoldedSpans(QString& text, QStringView foldedBegin, QStringView foldedEnd)
{
    if (foldedEnd.isEmpty() || indexOfFolded(text, foldedBegin) < 0)
        return;
    GappedText gapped(text);
    for (;;) {
        const qsizetype at = gapped.findAnywhere(foldedBegin);
        if (at < 0)
            break;
        const qsizetype end = gapped.find(foldedEnd, at);
        if (end < 0)
            break;
        gapped.remove(at, end + foldedEnd.size());
    }
    gapped.close();
}

void replaceString(QString& text, const QString& a, const QString& withString)
{
    if (!a.isEmpty())
        text.replace(a, withString);
}

} // namespace quarry
