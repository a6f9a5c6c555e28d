#include "text/UrlSplit.h"

#include "text/PercentEscapes.h"

#include <QByteArray>
#include <QUrl>

#include <algorithm>
#include <array>

namespace quarry {

namespace {

constexpr bool isLetter(char16_t c)
{
    return (c >= u'a' && c <= u'z') || (c >= u'A' && c <= u'Z');
}

constexpr bool isDigit(char16_t c)
{
    return c >= u'0' && c <= u'9';
}

/// The ASCII characters that a test accepts, looked up.
template <typename Test>
constexpr std::array<bool, 128> charactersThat(Test test)
{
    std::array<bool, 128> accepted = {};
    for (char16_t c = 0; c < 128; ++c)
        accepted[c] = test(c);
    return accepted;
}

bool isSchemeCharacter(char16_t c)
{
    static constexpr auto Accepted = charactersThat(
        [](char16_t each) { return isLetter(each) || isDigit(each) || each == u'+' || each == u'-' || each == u'.'; });
    return c < Accepted.size() && Accepted[c];
}

bool endsAuthority(char16_t c)
{
    return c == u'/' || c == u'?' || c == u'#';
}

bool isHostCharacter(char16_t c)
{
    static constexpr auto Accepted = charactersThat([](char16_t each) {
        return isAddressCharacter(each) && each != u'/' && each != u'?' && each != u':' && each != u'@';
    });
    return c < Accepted.size() && Accepted[c];
}

bool isLiteralHostCharacter(char16_t c)
{
    return hexDigitValue(c) >= 0 || c == u':' || c == u'.';
}

QString textOf(const char16_t* begin, const char16_t* end)
{
    return QString::fromUtf16(begin, end - begin);
}

QString textOf(const unsigned char* begin, const unsigned char* end)
{
    return QString(QLatin1String(reinterpret_cast<const char*>(begin), end - begin));
}

/// The split of a text of UTF-16 units or of ASCII bytes.
template <typename Unit>
class Splitter final {
public:
    Splitter(const Unit* text, qsizetype size) : _begin(text), _at(text), _end(text + size) {}

    UrlParts run()
    {
        takeScheme();
        if (_end - _at >= 2 && _at[0] == u'/' && _at[1] == u'/') {
            _at += 2;
            const Unit* authority = _at;
            _at = std::find_if(_at, _end, endsAuthority);
            takeAuthority(authority, _at);
        }
        const Unit* end = std::find(_at, _end, Unit(u'#'));
        const Unit* question = std::find(_at, end, Unit(u'?'));
        _parts.path = range(_at, question);
        if (question != end)
            _parts.query = range(question + 1, end);
        return _parts;
    }

private:
    [[nodiscard]] UrlParts::Range range(const Unit* begin, const Unit* end) const
    {
        return {begin - _begin, end - begin};
    }

    void takeScheme()
    {
        const Unit* end = std::find_if_not(_at, _end, isSchemeCharacter);
        if (end == _at || end == _end || *end != u':' || !isLetter(*_at))
            return;
        _parts.scheme = range(_at, end);
        _at = end + 1;
    }

    void takeAuthority(const Unit* begin, const Unit* end)
    {
        for (const Unit* c = begin; c != end; ++c) {
            if (*c == u'@')
                begin = c + 1;
        }
        const bool isLiteral = begin != end && *begin == u'[';
        const Unit* close = isLiteral ? std::find(begin, end, Unit(u']')) : begin;
        const Unit* colon = std::find(close, end, Unit(u':'));
        _parts.isReadable = isReadableHost(begin, colon) && (colon == end || isReadablePort(colon + 1, end));
        if (_parts.isReadable)
            _parts.host = range(begin, colon);
    }

    static bool isReadableHost(const Unit* begin, const Unit* end)
    {
        if (begin != end && *begin == u'[')
            return end - begin > 2 && end[-1] == u']' && std::all_of(begin + 1, end - 1, isLiteralHostCharacter);
        return std::all_of(begin, end, isHostCharacter) || !asciiHost(textOf(begin, end)).isEmpty();
    }

    static bool isReadablePort(const Unit* begin, const Unit* end)
    {
        unsigned value = 0;
        for (const Unit* c = begin; c != end; ++c) {
            if (!isDigit(*c) || value > 65535)
                return false;
            value = value * 10 + (*c - u'0');
        }
        return value <= 65535;
    }

    const Unit* const _begin;
    const Unit* _at;
    const Unit* const _end;
    UrlParts _parts;
};

} // namespace

UrlParts splitUrl(QStringView text)
{
    return Splitter<char16_t>(text.utf16(), text.size()).run();
}

UrlParts splitUrl(QLatin1String text)
{
    return Splitter<unsigned char>(reinterpret_cast<const unsigned char*>(text.data()), text.size()).run();
}

QByteArray asciiHost(QStringView host)
{
    const std::optional<QString> plain = percentUnescaped(host.toString());
    if (!plain)
        return {};
    if (std::all_of(plain->begin(), plain->end(), [](QChar c) { return isHostCharacter(c.unicode()); }))
        return plain->toLatin1();
    return QUrl::toAce(*plain);
}

} // namespace quarry
