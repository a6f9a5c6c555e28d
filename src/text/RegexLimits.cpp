#include "text/RegexLimits.h"

#include <algorithm>
#include <vector>

namespace quarry {

namespace {

/// The size of a piece of a pattern once its counts are written out.
struct Piece {
    qint64 size = 0;
    bool unbounded = false;
    bool mayBeEmpty = true; ///< It can match the empty text.
    bool refersBack = false;
    int emptyNesting = 0;     ///< Repetitions one inside the other, each of something that may be empty.
    bool copiesEmpty = false; ///< One of those is a count.
};

constexpr Piece OneCharacter = {1, false, false, false, 0, false};
constexpr Piece Anchor = {1, false, true, false, 0, false};

constexpr qint64 SizeCap = 1'000'000'000;

/// Walks a pattern once and adds up what it would cost. It is forgiving: what the compiler will refuse anyway is
/// read in some way or other.
class Meter {
public:
    explicit Meter(const QByteArray& pattern) : _pattern(pattern) {}

    QString run()
    {
        _open.push_back({});
        while (_at < _pattern.size() && _fault.isEmpty())
            step();
        if (_fault.isEmpty() && _backReferences > 0 && _copies > RegexLimits::CopiesBesideBackReferences)
            _fault = QStringLiteral("counts and back-references together");
        return _fault;
    }

private:
    struct Group {
        Piece body;
        Piece last;               ///< The atom that a repetition would apply to.
        bool emptyBranch = false; ///< An earlier branch can match the empty text.
        int number = 0;
    };
    /// What a back-reference must know of its group.
    struct Known {
        bool unbounded = true;
        bool mayBeEmpty = true;
    };

    void step()
    {
        const char c = _pattern[_at++];
        switch (c) {
        case '\\':
            escape();
            break;
        case '[':
            skipBracket();
            atom(OneCharacter);
            break;
        case '^':
        case '$':
            atom(Anchor);
            break;
        case '|':
            endBranch();
            break;
        case '(':
            openGroup();
            break;
        case ')':
            closeGroup();
            break;
        case '*':
        case '+':
            repeatWithoutEnd(c == '*');
            break;
        case '?':
            repeat(1, true);
            break;
        case '{':
            counted();
            break;
        default:
            atom(OneCharacter);
        }
    }

    void settle(Group& group)
    {
        group.body.size = std::min(SizeCap, group.body.size + group.last.size);
        group.body.unbounded = group.body.unbounded || group.last.unbounded;
        group.body.mayBeEmpty = group.body.mayBeEmpty && group.last.mayBeEmpty;
        group.body.refersBack = group.body.refersBack || group.last.refersBack;
        group.body.emptyNesting = std::max(group.body.emptyNesting, group.last.emptyNesting);
        group.body.copiesEmpty = group.body.copiesEmpty || group.last.copiesEmpty;
        group.last = {};
    }

    void endBranch()
    {
        Group& group = _open.back();
        settle(group);
        group.emptyBranch = group.emptyBranch || group.body.mayBeEmpty;
        group.body.mayBeEmpty = true; // the next branch begins empty
    }

    void atom(Piece piece)
    {
        settle(_open.back());
        _open.back().last = piece;
    }

    void escape()
    {
        const char c = _at < _pattern.size() ? _pattern[_at++] : '\0';
        if (c >= '1' && c <= '9')
            referBack(static_cast<std::size_t>(c - '0'));
        else
            atom(QByteArrayView("bB<>`'").contains(c) ? Anchor : OneCharacter);
    }

    void referBack(std::size_t number)
    {
        if (number >= _known.size()) { // no such group: the compiler says so
            atom(OneCharacter);
            return;
        }
        const Known group = _known[number];
        _backReferences += group.unbounded ? RegexLimits::BackReferences : 1;
        if (group.mayBeEmpty)
            _fault = QStringLiteral("a back-reference to a group that may be empty");
        else if (_backReferences > RegexLimits::BackReferences)
            _fault = QStringLiteral("too many back-references");
        atom({1, group.unbounded, false, true, 0, false});
    }

    void skipBracket()
    {
        if (_at < _pattern.size() && _pattern[_at] == '^')
            ++_at;
        if (_at < _pattern.size() && _pattern[_at] == ']')
            ++_at;
        while (_at < _pattern.size() && _pattern[_at] != ']') {
            const bool named = _pattern[_at] == '[' && _at + 1 < _pattern.size() &&
                               (_pattern[_at + 1] == ':' || _pattern[_at + 1] == '.' || _pattern[_at + 1] == '=');
            _at = named ? endOfNamed(_pattern[_at + 1]) : _at + 1;
        }
        ++_at;
    }

    /// Behind the ":]" that closes the "[:" at the current place, or behind the "[" when nothing closes it.
    [[nodiscard]] qsizetype endOfNamed(char kind) const
    {
        const char close[] = {kind, ']', '\0'};
        const qsizetype end = _pattern.indexOf(close, _at + 2);
        return end < 0 ? _at + 1 : end + 2;
    }

    void openGroup()
    {
        settle(_open.back());
        Group group;
        group.number = static_cast<int>(_known.size());
        _known.emplace_back(); // still growing while it is open
        _open.push_back(group);
        if (static_cast<int>(_open.size()) - 1 > RegexLimits::Depth)
            _fault = QStringLiteral("parentheses nested more than %1 deep").arg(RegexLimits::Depth);
        else if (group.number > RegexLimits::Groups)
            _fault = QStringLiteral("more than %1 groups").arg(RegexLimits::Groups);
    }

    void closeGroup()
    {
        if (_open.size() == 1) { // an unopened ")" stands for itself
            atom(OneCharacter);
            return;
        }
        endBranch();
        const Group closed = _open.back();
        _open.pop_back();
        _known[static_cast<std::size_t>(closed.number)] = {closed.body.unbounded, closed.emptyBranch};
        _open.back().last = closed.body;
        _open.back().last.size += 2;
        _open.back().last.mayBeEmpty = closed.emptyBranch;
    }

    void repeatWithoutEnd(bool mayBeNone)
    {
        repeat(1, mayBeNone);
        _open.back().last.unbounded = true;
    }

    void repeat(qint64 times, bool mayBeNone)
    {
        Piece& last = _open.back().last;
        if (++_repetitions > RegexLimits::Repetitions)
            _fault = QStringLiteral("more than %1 repetitions").arg(RegexLimits::Repetitions);
        nestEmpty(last, times);
        last.mayBeEmpty = last.mayBeEmpty || mayBeNone;
        if (last.refersBack)
            _fault = QStringLiteral("a repeated back-reference");
        const qint64 before = last.size;
        last.size = std::min(SizeCap, before * times + 1);
        // Every copy costs its optional branch too, so a repeated piece weighs one more than its parts.
        if (times > 1)
            _copies = std::min(SizeCap, _copies + last.size - before);
        if (_copies > RegexLimits::Copies)
            _fault = QStringLiteral("the counts in '{ }' multiply to more than %1 places").arg(RegexLimits::Copies);
    }

    /// Repeating what may be empty, over and over, with copies in between: the compiler walks every path there is.
    void nestEmpty(Piece& piece, qint64 times)
    {
        if (!piece.mayBeEmpty)
            return;
        ++piece.emptyNesting;
        piece.copiesEmpty = piece.copiesEmpty || times > 1;
        if (piece.copiesEmpty && piece.emptyNesting > 1)
            _fault = QStringLiteral("repetitions of something empty inside each other, with counts");
    }

    void counted()
    {
        qint64 low = 0;
        qint64 high = 0;
        const bool hasLow = number(low);
        bool open = false;
        if (_at < _pattern.size() && _pattern[_at] == ',') {
            ++_at;
            open = !number(high);
        }
        if (_at >= _pattern.size() || _pattern[_at] != '}' || (!hasLow && open)) {
            atom(OneCharacter); // no count: the compiler decides what it is
            return;
        }
        ++_at;
        repeat(std::max<qint64>({low, high, 1}), low == 0);
        if (open)
            _open.back().last.unbounded = true;
    }

    bool number(qint64& value)
    {
        const qsizetype start = _at;
        while (_at < _pattern.size() && _pattern[_at] >= '0' && _pattern[_at] <= '9')
            value = std::min(SizeCap, value * 10 + (_pattern[_at++] - '0'));
        return _at > start;
    }

    const QByteArray& _pattern;
    qsizetype _at = 0;
    std::vector<Group> _open;
    std::vector<Known> _known = {Known()}; // by number; 0 is the whole expression
    int _backReferences = 0;
    int _repetitions = 0;
    qint64 _copies = 0;
    QString _fault;
};

} // namespace

QString RegexLimits::excess(const QByteArray& pattern)
{
    if (pattern.size() > PatternBytes)
        return QStringLiteral("longer than %1 bytes").arg(PatternBytes);
    return Meter(pattern).run();
}

} // namespace quarry
