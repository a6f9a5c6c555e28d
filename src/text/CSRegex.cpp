#include "text/CSRegex.h"

#include "text/RegexLimits.h"

#include <locale.h>
#include <regex.h>

#include <array>
#include <new>

namespace quarry {

namespace {

/// The calling thread's locale while it lives: C.UTF-8, so that answers are the same in every process.
class Utf8Locale final {
public:
    Utf8Locale() : _previous(uselocale(shared())) {}
    ~Utf8Locale() { uselocale(_previous); }
    Utf8Locale(const Utf8Locale&) = delete;
    Utf8Locale& operator=(const Utf8Locale&) = delete;

private:
    static locale_t shared()
    {
        static const locale_t locale = newlocale(LC_ALL_MASK, "C.UTF-8", nullptr);
        return locale;
    }
    locale_t _previous;
};

/// The C library's code as the product numbers it.
int productCode(int libraryCode)
{
    switch (libraryCode) {
    case 15: // "Regular expression too big": a count beyond what can be repeated
        return static_cast<int>(RegexError::BadRepetition);
    case 16: // "Unmatched ) or \)"
        return static_cast<int>(RegexError::UnbalancedParenthesis);
    default:
        return libraryCode;
    }
}

int libraryOptions(int options)
{
    return REG_EXTENDED | ((options & CSRegex::IgnoreCase) != 0 ? REG_ICASE : 0) |
           ((options & CSRegex::NoSubexpressions) != 0 ? REG_NOSUB : 0) |
           ((options & CSRegex::NewlineSensitive) != 0 ? REG_NEWLINE : 0);
}

std::function<QString(const QString&)>& messageLookup()
{
    static std::function<QString(const QString&)> lookup;
    return lookup;
}

[[noreturn]] void raise(int code, const QString& detail = {})
{
    QString reason = CSRegex::messageForCode(code);
    if (messageLookup() && !reason.isEmpty())
        reason = messageLookup()(reason);
    if (!detail.isEmpty())
        reason += QStringLiteral(" (%1)").arg(detail);
    throw CSRegexException(code, reason);
}

} // namespace

CSRegexException::CSRegexException(int code, QString reason)
    : _code(code), _reason(std::move(reason)), _utf8(_reason.toUtf8())
{
}

CSRegexRangeException::CSRegexRangeException(QString reason) : _reason(std::move(reason)), _utf8(_reason.toUtf8()) {}

struct CSRegex::Compiled {
    QString pattern;
    regex_t preg = {};
    bool compiled = false;
    std::vector<regmatch_t> matches;
    ByteRange matchrange;
    QByteArray currdata;

    Compiled(const QString& text, int options) : pattern(text)
    {
        const QByteArray bytes = text.toUtf8();
        if (const QString excess = RegexLimits::excess(bytes); !excess.isEmpty())
            raise(static_cast<int>(RegexError::OutOfMemory), excess);
        const Utf8Locale locale;
        if (const int code = regcomp(&preg, bytes.constData(), libraryOptions(options)); code != 0)
            raise(productCode(code));
        compiled = true;
        matches.resize(preg.re_nsub + 1);
    }
    ~Compiled()
    {
        if (compiled)
            regfree(&preg);
    }
    Compiled(const Compiled&) = delete;
    Compiled& operator=(const Compiled&) = delete;
};

CSRegex::CSRegex(const QString& pattern, int options) : _compiled(std::make_unique<Compiled>(pattern, options)) {}
CSRegex::~CSRegex() = default;
CSRegex::CSRegex(CSRegex&&) noexcept = default;
CSRegex& CSRegex::operator=(CSRegex&&) noexcept = default;

CSRegex CSRegex::regexWithPattern(const QString& pattern, int options)
{
    return CSRegex(pattern, options);
}

const QString& CSRegex::null()
{
    static const QString placeholder = QStringLiteral("");
    return placeholder;
}

void CSRegex::beginMatchingString(const QString& text)
{
    beginMatchingData(text.toUtf8());
}

void CSRegex::beginMatchingData(const QByteArray& bytes)
{
    beginMatchingData(bytes, {0, bytes.size()});
}

void CSRegex::beginMatchingData(const QByteArray& bytes, ByteRange range)
{
    const qsizetype location = std::clamp<qsizetype>(range.location, 0, bytes.size());
    _compiled->matchrange = {location, std::clamp<qsizetype>(range.length, 0, bytes.size() - location)};
    _compiled->currdata = bytes;
}

bool CSRegex::matchNext()
{
    Compiled& c = *_compiled;
    c.matches[0].rm_so = static_cast<regoff_t>(c.matchrange.location);
    c.matches[0].rm_eo = static_cast<regoff_t>(c.matchrange.location + c.matchrange.length);
    const Utf8Locale locale;
    if (regexec(&c.preg, c.currdata.constData(), c.matches.size(), c.matches.data(), REG_STARTEND) != 0) {
        finishMatching();
        return false;
    }
    const qsizetype end = c.matches[0].rm_eo;
    c.matchrange.length -= end - c.matchrange.location;
    c.matchrange.location = end;
    return true;
}

void CSRegex::finishMatching()
{
    _compiled->currdata.clear();
    _compiled->matchrange = {};
}

std::optional<QString> CSRegex::stringForMatch(int n) const
{
    const Compiled& c = *_compiled;
    if (n < 0 || static_cast<std::size_t>(n) > c.preg.re_nsub)
        throw CSRegexRangeException(QStringLiteral("Index %1 out of range for regex \"").arg(n) + c.pattern +
                                    QLatin1Char('"'));
    const regmatch_t& match = c.matches[static_cast<std::size_t>(n)];
    if ((match.rm_so == -1 && match.rm_eo == -1) || match.rm_eo > c.currdata.size())
        return std::nullopt;
    return QString::fromUtf8(c.currdata.constData() + match.rm_so, match.rm_eo - match.rm_so);
}

QStringList CSRegex::allMatches() const
{
    QStringList texts;
    for (std::size_t i = 0; i <= _compiled->preg.re_nsub; ++i)
        texts.append(stringForMatch(static_cast<int>(i)).value_or(null()));
    return texts;
}

bool CSRegex::matchesString(const QString& text)
{
    beginMatchingString(text);
    const bool matched = matchNext();
    finishMatching();
    return matched;
}

std::optional<QString> CSRegex::matchedSubstringOfString(const QString& text)
{
    beginMatchingString(text);
    std::optional<QString> whole = matchNext() ? stringForMatch(0) : std::nullopt;
    finishMatching();
    return whole;
}

std::optional<QStringList> CSRegex::capturedSubstringsOfString(const QString& text)
{
    beginMatchingString(text);
    std::optional<QStringList> groups = matchNext() ? std::optional(allMatches()) : std::nullopt;
    finishMatching();
    return groups;
}

QStringList CSRegex::allMatchedSubstringsOfString(const QString& text)
{
    QStringList all;
    beginMatchingString(text);
    while (matchNext())
        all.append(stringForMatch(0).value_or(null()));
    finishMatching();
    return all;
}

QList<QStringList> CSRegex::allCapturedSubstringsOfString(const QString& text)
{
    QList<QStringList> all;
    beginMatchingString(text);
    while (matchNext())
        all.append(allMatches());
    finishMatching();
    return all;
}

QStringList CSRegex::componentsOfSeparatedString(const QString& text)
{
    const QByteArray bytes = text.toUtf8();
    QStringList pieces;
    qsizetype start = 0;
    beginMatchingData(bytes);
    while (matchNext()) {
        const regmatch_t& match = _compiled->matches[0];
        pieces.append(QString::fromUtf8(bytes.constData() + start, match.rm_so - start));
        start = match.rm_eo;
    }
    pieces.append(QString::fromUtf8(bytes.constData() + start, bytes.size() - start));
    finishMatching();
    return pieces;
}

const QString& CSRegex::pattern() const
{
    return _compiled->pattern;
}

std::size_t CSRegex::subexpressionCount() const
{
    return _compiled->preg.re_nsub;
}

void CSRegex::setMessageLookup(std::function<QString(const QString&)> lookup)
{
    messageLookup() = std::move(lookup);
}

QString CSRegex::messageForCode(int code)
{
    // The second message joins two and the third is missing: programs and translations key on these very texts.
    static const std::array<const char*, 18> messages = {
        "",
        "The regexec() function failed to match",
        "Invalid regular expression REG_ECOLLATE invalid collating element",
        "",
        "Invalid character class",
        "'' applied to unescapable character",
        "Invalid backreference number",
        "Brackets '[ ]' not balanced",
        "Parentheses '( )' not balanced",
        "Braces '{ }' not balanced",
        "Invalid repetition count(s) in '{ }'",
        "Invalid character range in '[ ]'",
        "Ran out of memory",
        "'?', '*', or '+' operand invalid",
        "Empty (sub)expression",
        "Can't happen - you found a bug",
        "Invalid argument, e.g. negative-length string",
        "Illegal byte sequence (bad multibyte character)",
    };
    if (code < 0 || static_cast<std::size_t>(code) >= messages.size())
        return {};
    return QString::fromLatin1(messages[static_cast<std::size_t>(code)]);
}

bool matchedByPattern(const QString& text, const QString& pattern, int options)
{
    return CSRegex(pattern, options).matchesString(text);
}

std::optional<QString> substringMatchedByPattern(const QString& text, const QString& pattern, int options)
{
    return CSRegex(pattern, options).matchedSubstringOfString(text);
}

std::optional<QStringList> substringsCapturedByPattern(const QString& text, const QString& pattern, int options)
{
    return CSRegex(pattern, options).capturedSubstringsOfString(text);
}

QStringList allSubstringsMatchedByPattern(const QString& text, const QString& pattern, int options)
{
    return CSRegex(pattern, options).allMatchedSubstringsOfString(text);
}

QList<QStringList> allSubstringsCapturedByPattern(const QString& text, const QString& pattern, int options)
{
    return CSRegex(pattern, options).allCapturedSubstringsOfString(text);
}

QStringList componentsSeparatedByPattern(const QString& text, const QString& pattern, int options)
{
    return CSRegex(pattern, options).componentsOfSeparatedString(text);
}

QString escapedPattern(const QString& text)
{
    static const QString special = QStringLiteral("$()*+.?[\\^{|");
    QString escaped;
    escaped.reserve(text.size() * 2);
    for (const QChar c : text) {
        if (special.contains(c))
            escaped += QLatin1Char('\\');
        escaped += c;
    }
    return escaped;
}

} // namespace quarry
