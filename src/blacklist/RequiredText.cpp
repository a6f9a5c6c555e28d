#include "blacklist/RequiredText.h"

#include <algorithm>
#include <optional>
#include <string_view>

namespace quarry {

namespace {

using Texts = std::vector<std::string>; ///< Any one of them; empty: nothing is required.

constexpr std::size_t MostTexts = 32;
constexpr int MostDepth = 50;

/// How much a text tells apart: its length, unless it is one that nearly every address holds.
std::size_t worthOf(const std::string& text)
{
    static constexpr std::string_view common[] = {"http://www.", "https://www.", ".com/", ".org/", ".net/", ".html"};
    for (const std::string_view word : common) {
        if (word.find(text) != std::string_view::npos)
            return 1;
    }
    return text.size() + 1;
}

/// A set is worth what the worst of it is.
std::size_t worthOf(const Texts& texts)
{
    std::size_t worth = texts.empty() ? 0 : worthOf(texts.front());
    for (const std::string& text : texts)
        worth = std::min(worth, worthOf(text));
    return worth;
}

bool isLetterOrDigit(char c)
{
    return (c >= '0' && c <= '9') || (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z');
}

char folded(char c, bool ignoreCase)
{
    return ignoreCase && c >= 'A' && c <= 'Z' ? static_cast<char>(c + ('a' - 'A')) : c;
}

/// Reads a pattern from left to right. Gives up (failed) at whatever it does not know for sure.
class PatternReader final {
public:
    PatternReader(std::string_view pattern, bool ignoreCase) : _pattern(pattern), _ignoreCase(ignoreCase) {}

    Texts read()
    {
        Texts texts = readAlternatives(0);
        return _failed || _at != _pattern.size() ? Texts() : texts;
    }

private:
    /// One element of a branch, without its repetition.
    struct Atom {
        std::optional<char> character; ///< It matches exactly this one.
        Texts inner;                   ///< Of a group.
        bool isAnchor = false;
    };

    [[nodiscard]] bool atEnd() const { return _failed || _at >= _pattern.size(); }

    Texts readAlternatives(int depth)
    {
        Texts all;
        bool isRequired = depth <= MostDepth;
        _failed = _failed || !isRequired;
        for (;;) {
            const Texts branch = readBranch(depth);
            isRequired = isRequired && !branch.empty() && all.size() + branch.size() <= MostTexts;
            if (isRequired)
                all.insert(all.end(), branch.begin(), branch.end());
            if (atEnd() || _pattern[_at] != '|')
                break;
            ++_at;
        }
        return isRequired ? all : Texts();
    }

    /// The best of what the branch's elements require one after the other.
    Texts readBranch(int depth)
    {
        Texts best;
        std::string run; // Characters that follow one another in every match.
        const auto offer = [&best](Texts texts) {
            if (worthOf(texts) > worthOf(best))
                best = std::move(texts);
        };
        const auto endRun = [&] {
            if (!run.empty())
                offer({std::exchange(run, {})});
        };
        while (!atEnd() && _pattern[_at] != '|' && _pattern[_at] != ')') {
            const Atom atom = readAtom(depth);
            const Repeat repeat = readRepeat(atom);
            if (repeat == Repeat::Optional || !atom.character)
                endRun();
            if (repeat != Repeat::Optional && !atom.inner.empty())
                offer(atom.inner);
            if (repeat == Repeat::Optional || !atom.character)
                continue;
            run += folded(*atom.character, _ignoreCase);
            if (repeat == Repeat::OnceOrMore) {
                endRun();
                run += folded(*atom.character, _ignoreCase); // The last of them, before what follows.
            }
        }
        endRun();
        return best;
    }

    Atom readAtom(int depth)
    {
        const char c = _pattern[_at++];
        switch (c) {
        case '(':
            return readGroup(depth);
        case '[':
            return readBracket();
        case '\\':
            return readEscape();
        case '^':
        case '$':
            return {std::nullopt, {}, true};
        case '.':
            return {};
        case '*':
        case '+':
        case '?':
        case '{':
            _failed = true;
            return {};
        default:
            return static_cast<unsigned char>(c) < 0x80 ? Atom{c, {}, false} : Atom{};
        }
    }

    Atom readGroup(int depth)
    {
        Atom group;
        group.inner = readAlternatives(depth + 1);
        if (atEnd() || _pattern[_at] != ')')
            _failed = true;
        ++_at;
        return group;
    }

    Atom readEscape()
    {
        if (atEnd()) {
            _failed = true;
            return {};
        }
        const char c = _pattern[_at++];
        if (std::string_view("bB<>`'").find(c) != std::string_view::npos)
            return {std::nullopt, {}, true};
        // Word and space classes, references back, and letters whose meaning is the library's affair.
        if (isLetterOrDigit(c) || static_cast<unsigned char>(c) >= 0x80)
            return {};
        return {c, {}, false};
    }

    /// Past the closing bracket. A bracket around one plain character is that character.
    Atom readBracket()
    {
        const std::size_t begin = _at;
        if (_at < _pattern.size() && _pattern[_at] == '^')
            ++_at;
        if (_at < _pattern.size() && _pattern[_at] == ']')
            ++_at;
        while (_at < _pattern.size() && _pattern[_at] != ']') {
            if (_pattern[_at] == '[' && _at + 1 < _pattern.size() &&
                std::string_view(":.=").find(_pattern[_at + 1]) != std::string_view::npos)
                skipNamed();
            else
                ++_at;
        }
        if (_at >= _pattern.size()) {
            _failed = true;
            return {};
        }
        const std::string_view content = _pattern.substr(begin, _at++ - begin);
        const bool isPlain = content.size() == 1 && static_cast<unsigned char>(content[0]) < 0x80 && content[0] != '^';
        return isPlain ? Atom{content[0], {}, false} : Atom{};
    }

    /// Past "[:name:]" and its like.
    void skipNamed()
    {
        const char end[] = {_pattern[_at + 1], ']'};
        const std::size_t close = _pattern.find(std::string_view(end, 2), _at + 2);
        _failed = _failed || close == std::string_view::npos;
        _at = _failed ? _pattern.size() : close + 2;
    }

    enum class Repeat { Once, OnceOrMore, Optional };

    Repeat readRepeat(const Atom& atom)
    {
        Repeat repeat = Repeat::Once;
        while (!atEnd() && std::string_view("*+?{").find(_pattern[_at]) != std::string_view::npos) {
            const char c = _pattern[_at++];
            const bool mayBeNone = c == '*' || c == '?' || (c == '{' && readCountIsZero());
            if (mayBeNone || repeat == Repeat::Optional)
                repeat = Repeat::Optional;
            else
                repeat = Repeat::OnceOrMore;
            _failed = _failed || atom.isAnchor;
        }
        return repeat;
    }

    /// Past the braces; whether they allow none at all.
    bool readCountIsZero()
    {
        const std::size_t close = _pattern.find('}', _at);
        if (close == std::string_view::npos) {
            _failed = true;
            return true;
        }
        const std::string_view counts = _pattern.substr(_at, close - _at);
        const std::string_view least = counts.substr(0, counts.find(','));
        _at = close + 1;
        _failed = _failed || counts.find_first_not_of("0123456789,") != std::string_view::npos;
        return least.find_first_not_of('0') == std::string_view::npos;
    }

    std::string_view _pattern;
    std::size_t _at = 0;
    bool _ignoreCase;
    bool _failed = false;
};

} // namespace

std::vector<std::string> requiredTexts(const QByteArray& pattern, bool ignoreCase)
{
    // The library reads up to the first zero.
    return PatternReader(std::string_view(pattern.constData()), ignoreCase).read();
}

} // namespace quarry
