#include "engines/ScanCopy.h"

#include "engines/CaselessPattern.h"
#include "engines/UnitBlock.h"

#include <cstring>
#include <vector>

namespace quarry {

namespace {

constexpr QStringView LineBreakHint = u"<wbr />";
/// The longest beginning of something removable that a removal can leave before it: "</script" without its ">".
constexpr qsizetype LongestStump = 8;

const CaselessPattern& scriptBegin()
{
    static const CaselessPattern pattern(u"<script");
    return pattern;
}

const CaselessPattern& scriptEnd()
{
    static const CaselessPattern pattern(u"</script>");
    return pattern;
}

const CaselessPattern& commentBegin()
{
    static const CaselessPattern pattern(u"<!--");
    return pattern;
}

const CaselessPattern& commentEnd()
{
    static const CaselessPattern pattern(u"-->");
    return pattern;
}

bool isLineEnd(char16_t unit)
{
    return unit == u'\n' || unit == u'\r';
}

/// Whether a text that ends here ends within a tag's first characters, so that what follows could complete them to
/// something removable.
bool endsInStump(const char16_t* begin, const char16_t* end)
{
    for (const char16_t* at = end; at != begin && end - at < LongestStump;) {
        --at;
        if (*at == u'>')
            return false;
        if (*at == u'<')
            return true;
    }
    return false;
}

/// The first pass: deals with tabs, line ends and line break hints, in place, and notes on the way where a script or a
/// comment may begin.
class Cleaner final {
public:
    Cleaner(char16_t* units, qsizetype length, std::vector<qsizetype>& spanStarts)
        : _units(units), _length(length), _spanStarts(spanStarts)
    {
    }

    /// The number of units that are left.
    qsizetype run()
    {
        while (_read < _length)
            takeBlock();
        return _written;
    }
    [[nodiscard]] bool leftStump() const { return _leftStump; }

private:
    void takeBlock()
    {
        const qsizetype count = std::min(_length - _read, UnitBlock::Size);
        char16_t padded[UnitBlock::Size] = {};
        const bool isWhole = count == UnitBlock::Size;
        if (!isWhole)
            std::memcpy(padded, _units + _read, static_cast<std::size_t>(count) * sizeof(char16_t));
        const UnitBlock block(isWhole ? _units + _read : padded);
        const unsigned lineEnds = block.equalEither(u'\n', u'\r');
        for (unsigned mask = lineEnds | block.equal(u'<'); mask != 0; mask &= mask - 1) {
            const int bit = std::countr_zero(mask);
            const bool isLineEnd = (lineEnds >> bit & 1U) != 0;
            const qsizetype skipped = isLineEnd ? 1 : takeTagStart(bit);
            if (skipped > 0) {
                keep(block, bit);
                _read += skipped;
                _leftStump = _leftStump || (!isLineEnd && endsInStump(_units, _units + _written));
                return;
            }
        }
        if (isWhole) {
            block.storeReplacing(_units + _written, u'\t', u' ');
            _written += count;
            _read += count;
        } else {
            keep(block, count);
        }
    }

    /// Writes the first units of a block. Those behind them are still to be read, perhaps from where they would go.
    void keep(const UnitBlock& block, qsizetype count)
    {
        char16_t cleaned[UnitBlock::Size];
        block.storeReplacing(cleaned, u'\t', u' ');
        std::memcpy(_units + _written, cleaned, static_cast<std::size_t>(count) * sizeof(char16_t));
        _written += count;
        _read += count;
    }

    /// For the "<" that many units ahead: how many units of the page are to be left out from there.
    qsizetype takeTagStart(int ahead)
    {
        const qsizetype hint = lineBreakHintAt(_read + ahead);
        if (hint == 0 && mayBeginSpan(_read + ahead))
            _spanStarts.push_back(_written + ahead);
        return hint;
    }

    [[nodiscard]] char16_t unitAt(qsizetype position) const
    {
        return position < _length ? _units[position] : char16_t(0);
    }

    /// The number of units that make up a line break hint there, line ends within it counted; 0: there is none.
    [[nodiscard]] qsizetype lineBreakHintAt(qsizetype at) const
    {
        const char16_t next = unitAt(at + 1);
        if ((next | 0x20) != u'w' && !isLineEnd(next))
            return 0;
        qsizetype position = at;
        for (const QChar wanted : LineBreakHint) {
            while (isLineEnd(unitAt(position)))
                ++position;
            const char16_t unit = unitAt(position++);
            const bool isSame = wanted.isLetter() ? (unit | 0x20) == wanted.unicode()
                                                  : unit == wanted.unicode() || (unit == u'\t' && wanted == u' ');
            if (!isSame)
                return 0;
        }
        return position - at;
    }

    /// Generous: something that is removed in between may still stand where the marker's next character is to be.
    [[nodiscard]] bool mayBeginSpan(qsizetype at) const
    {
        const auto isGap = [](char16_t unit) { return unit == u'<' || isLineEnd(unit); };
        const char16_t first = unitAt(at + 1);
        if (isGap(first))
            return true;
        const char16_t second = unitAt(at + 2);
        if (first == u'!')
            return second == u'-' || isGap(second);
        if ((first | 0x20) == u's' || first == 0x17F)
            return (second | 0x20) == u'c' || isGap(second);
        return false;
    }

    char16_t* _units;
    qsizetype _length;
    qsizetype _read = 0;
    qsizetype _written = 0;
    std::vector<qsizetype>& _spanStarts;
    bool _leftStump = false;
};

/// Removes, in place, every span from `begin` to the next `end`. Where a removal joins its surroundings to a new
/// begin, that one is taken as well; a begin without end ends the work. The same as searching from the text's start
/// after every removal, in one walk.
class SpanRemover final {
public:
    SpanRemover(char16_t* units, qsizetype length, const CaselessPattern& begin, const CaselessPattern& end)
        : _units(units), _length(length), _begin(begin), _end(end)
    {
    }

    /// `starts`: every place where a begin may stand, in order; brought up to date for the text that is left. Returns
    /// that text's length.
    qsizetype run(std::vector<qsizetype>& starts)
    {
        for (const qsizetype start : starts) {
            if (start < _read)
                continue;
            if (_done || !_begin.matchesAt(all(), start) || !removeAt(start))
                _kept.push_back(start - (_read - _written));
        }
        moveUpTo(_length);
        starts = std::move(_kept);
        return _written;
    }
    [[nodiscard]] bool leftStump() const { return _leftStump; }

private:
    [[nodiscard]] QStringView all() const { return {_units, _length}; }

    void moveUpTo(qsizetype position)
    {
        if (_read != _written)
            std::memmove(_units + _written, _units + _read,
                         static_cast<std::size_t>(position - _read) * sizeof(char16_t));
        _written += position - _read;
        _read = position;
    }

    bool removeAt(qsizetype start)
    {
        const qsizetype end = _end.find(all(), start);
        if (end < 0) {
            _done = true;
            return false;
        }
        moveUpTo(start);
        continueAt(end + _end.size());
        while (takeJoined()) {
        }
        return true;
    }

    void continueAt(qsizetype position)
    {
        _read = position;
        _leftStump = _leftStump || endsInStump(_units, _units + _written);
        while (!_kept.empty() && _kept.back() >= _written)
            _kept.pop_back();
    }

    /// Looks whether the end of what is written and the start of what is left make a begin. If so, its first part is
    /// put back before the rest, for which there is room since a removed span is longer than any marker, and the span
    /// is removed.
    bool takeJoined()
    {
        for (qsizetype tail = std::min(_begin.size() - 1, _written); tail > 0; --tail) {
            if (_units[_written - tail] != u'<')
                continue;
            const qsizetype start = _read - tail;
            std::memcpy(_units + start, _units + _written - tail, static_cast<std::size_t>(tail) * sizeof(char16_t));
            if (!_begin.matchesAt(all(), start))
                continue;
            const qsizetype end = _end.find(all(), start);
            _done = end < 0;
            if (_done)
                return false;
            _written -= tail;
            continueAt(end + _end.size());
            return true;
        }
        return false;
    }

    char16_t* _units;
    qsizetype _length;
    const CaselessPattern& _begin;
    const CaselessPattern& _end;
    qsizetype _read = 0;
    qsizetype _written = 0;
    /// Starts of something else, in the text that is written.
    std::vector<qsizetype> _kept;
    bool _done = false;
    bool _leftStump = false;
};

} // namespace

ScanCopy::ScanCopy(QString code) : _buffer(std::move(code))
{
    auto* units = reinterpret_cast<char16_t*>(_buffer.data());
    std::vector<qsizetype> spanStarts;
    Cleaner cleaner(units, _buffer.size(), spanStarts);
    qsizetype length = cleaner.run();
    _settled = !cleaner.leftStump();
    // Scripts first, in the whole text: what looks like a comment inside one goes with it.
    for (const bool scripts : {true, false}) {
        if (spanStarts.empty())
            break;
        SpanRemover remover(units, length, scripts ? scriptBegin() : commentBegin(),
                            scripts ? scriptEnd() : commentEnd());
        length = remover.run(spanStarts);
        _settled = _settled && !remover.leftStump();
    }
    _buffer.truncate(length);
    _text = _buffer;
}

ScanCopy ScanCopy::part(QStringView stretch) const
{
    if (!_settled)
        return ScanCopy(stretch.toString());
    ScanCopy shared;
    shared._buffer = _buffer;
    shared._text = stretch;
    return shared;
}

} // namespace quarry
