#include "text/CSRegex.h"

#include "platform/PosixRegex.h"
#include "text/RegexLimits.h"

#include <array>
#include <new>

namespace quarry {

namespace {

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

static_assert(int(CSRegex::IgnoreCase) == PosixRegex::IgnoreCase &&
              int(CSRegex::NoSubexpressions) == PosixRegex::NoSubexpressions &&
              int(CSRegex::NewlineSensitive) == PosixRegex::NewlineSensitive);

struct CSRegex::Compiled {
    QString pattern;
    std::unique_ptr<PosixRegex> regex;
    std::vector<PosixRegex::Range> matches;
    ByteRange matchrange;
    QByteArray currdata;

    Compiled(const QString& text, int options) : pattern(text)
    {
        const QByteArray bytes = text.toUtf8();
        if (const QString excess = RegexLimits::excess(bytes); !excess.isEmpty())
            raise(static_cast<int>(RegexError::OutOfMemory), excess);
        int error = 0;
        regex = PosixRegex::compile(bytes, options, error);
        if (!regex)
            raise(productCode(error));
        matches.resize(regex->groupCount() + 1);
    }
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
    const qsizetype begin = c.matchrange.location;
    if (!c.regex->match(c.currdata, {begin, begin + c.matchrange.length}, c.matches)) {
        finishMatching();
        return false;
    }
    const qsizetype end = c.matches[0].end;
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
    if (n < 0 || static_cast<std::size_t>(n) > c.regex->groupCount())
        throw CSRegexRangeException(QStringLiteral("Index %1 out of range for regex \"").arg(n) + c.pattern +
                                    QLatin1Char('"'));
    const PosixRegex::Range& match = c.matches[static_cast<std::size_t>(n)];
    if ((match.begin == -1 && match.end == -1) || match.end > c.currdata.size())
        return std::nullopt;
    return QString::fromUtf8(c.currdata.constData() + match.begin, match.end - match.begin);
}

QStringList CSRegex::allMatches() const
{
    QStringList texts;
    for (std::size_t i = 0; i <= _compiled->regex->groupCount(); ++i)
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
        const PosixRegex::Range& match = _compiled->matches[0];
        pieces.append(QString::fromUtf8(bytes.constData() + start, match.begin - start));
        start = match.end;
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
    return _compiled->regex->groupCount();
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
