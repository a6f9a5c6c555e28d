#include "text/TagScanner.h"

#include "text/FoldedSearch.h"
#include "text/Spans.h"
#include "text/UnitSearch.h"

#include <algorithm>

namespace quarry {

namespace {

struct Span {
    QStringView begin;
    QStringView end;
};

// In this order.
constexpr Span unwantedSpans[] = {
    {u"<style", u"</style>"}, {u"<script", u"</script>"}, {u"<a ", u"</a>"}, {u"<!--", u"-->"}, {u"<form", u"</form>"},
};
constexpr QStringView bodyMarker = u"<body";

constexpr QStringView lineBreakingTags[] = {u"<br>", u"<p>", u"</p>", u"<hr>"};
constexpr QStringView noBreakSpace = u"&nbsp;";

constexpr bool isBlank(char16_t c)
{
    return c == u' ' || c == u'\t' || c == u'\n' || c == u'\r';
}

/// True when the text at a "<" may begin something that goes with its content. Says so rather too often: what
/// stands behind "<a" can still become a space.
bool mayBeginUnwanted(QStringView text)
{
    if (text.size() < 3)
        return false;
    const auto begins = [&](const Span& span) { return standsFoldedAt(text, 0, span.begin); };
    switch (foldedUnit(text[1].unicode())) {
    case u'a':
        return isBlank(text[2].unicode()) || text[2] == u'<' || text[2] == u'&';
    case u'b':
        return standsFoldedAt(text, 0, bodyMarker);
    case u's':
    case u'f':
    case u'!':
        return std::any_of(std::begin(unwantedSpans), std::end(unwantedSpans), begins);
    default:
        return false;
    }
}

/// Tells most other tags from the line-breaking ones by their first letter.
bool mayBreakLine(QStringView text)
{
    const char16_t c = text.size() > 2 ? foldedUnit(text[1].unicode()) : u'\0';
    return c == u'b' || c == u'p' || c == u'/' || c == u'h';
}

// What the passes over HTML, over HTML made ready for the tag scanner, and for tags only do not share.

struct HtmlRules {
    static constexpr bool normalises = true;
    static constexpr bool quotesCountInText = false;

    /// With something before `p`.
    static const char16_t* findTextEvent(const char16_t* p, const char16_t* end)
    {
        return findUnitPair(p, end, [](auto unit, auto previous) {
            return (unit == u'<') | (unit == u'&') | (unit == u'\t') | (unit == u'\n') | (unit == u'\r') |
                   ((unit == u' ') & (previous == u' '));
        });
    }
    static bool begins(QStringView text, QStringView marker) { return standsFoldedAt(text, 0, marker); }
    static bool isBeyond(QStringView text) { return mayBeginUnwanted(text); }
};

struct PreparedHtmlRules {
    static constexpr bool normalises = false;
    static constexpr bool quotesCountInText = false;

    static const char16_t* findTextEvent(const char16_t* p, const char16_t* end) { return findUnit(p, end, u'<'); }
    static bool begins(QStringView, QStringView) { return false; }
    static bool isBeyond(QStringView) { return false; }
};

struct TagsOnlyRules {
    static constexpr bool normalises = false;
    static constexpr bool quotesCountInText = true;

    static const char16_t* findTextEvent(const char16_t* p, const char16_t* end)
    {
        return findUnit(p, end, [](auto unit) { return (unit == u'<') | (unit == u'"'); });
    }
    static bool begins(QStringView text, QStringView marker) { return standsAt(text, 0, marker); }
    static bool isBeyond(QStringView) { return false; }
};

/// One pass from a text to another: blanks, line-breaking tags and all other tags at once. What stands in a tag is
/// written like everything else and taken back at the tag's end, so that a tag left open stays.
template <typename Rules>
class OnePass final {
public:
    explicit OnePass(const QString& text)
        : _text(text), _begin(QStringView(text).utf16()), _in(_begin), _end(_begin + text.size())
    {
    }

    /// False when the text holds what one pass cannot do.
    [[nodiscard]] bool run(QString& plain)
    {
        if (findEvent() == _end) {
            plain = _text;
            return true;
        }
        QString result(_text.size(), Qt::Uninitialized);
        _out = writableUnits(result);
        const char16_t* const outBegin = _out;
        while (_in != _end) {
            copyPlain();
            if (_in != _end && !takeEvent())
                return false;
        }
        result.truncate(_out - outBegin);
        plain = std::move(result);
        return true;
    }

private:
    [[nodiscard]] const char16_t* findEvent() const
    {
        // The tests look at what stands before, so the first unit is a case of its own.
        const bool atBegin = _in == _begin && _in != _end;
        if (atBegin && isTagEvent(*_in))
            return _in;
        return Rules::findTextEvent(_in + (atBegin ? 1 : 0), _end);
    }

    static bool isTagEvent(char16_t c)
    {
        return c == u'<' || c == u'>' || c == u'"' || (Rules::normalises && (c == u'&' || isBlank(c)));
    }

    void copyPlain()
    {
        if (_tag == nullptr) {
            const char16_t* const event = findEvent();
            _out = std::copy(_in, event, _out);
            _in = event;
            return;
        }
        while (_in != _end && !isTagEvent(*_in))
            *_out++ = *_in++;
    }

    [[nodiscard]] bool takeEvent()
    {
        const QStringView rest(_in, _end);
        switch (*_in) {
        case u'<':
            return takeTagBegin(rest);
        case u'>':
            takeTagEnd();
            break;
        case u'"':
            _inQuotes ^= _tag != nullptr || Rules::quotesCountInText;
            *_out++ = *_in++;
            break;
        case u'&':
            takeMarkerOrUnit(Rules::begins(rest, noBreakSpace) ? noBreakSpace.size() : 0);
            break;
        default:
            takeBlanks();
        }
        return true;
    }

    bool takeTagBegin(QStringView rest)
    {
        if (mayBreakLine(rest)) {
            for (const QStringView marker : lineBreakingTags) {
                if (Rules::begins(rest, marker)) {
                    takeMarkerOrUnit(marker.size());
                    return true;
                }
            }
        }
        if (Rules::isBeyond(rest))
            return false;
        if (_tag == nullptr && !_inQuotes)
            _tag = _out;
        *_out++ = *_in++;
        return true;
    }

    void takeTagEnd()
    {
        *_out++ = *_in++;
        if (_tag != nullptr && !_inQuotes) {
            _out = _tag;
            _tag = nullptr;
        }
    }

    /// A space for a marker of that length, or the unit itself when there is none.
    void takeMarkerOrUnit(qsizetype length)
    {
        *_out++ = length > 0 ? u' ' : *_in;
        _in += std::max<qsizetype>(length, 1);
    }

    /// One space for a run of blanks, unless it stands at the beginning or its first one was copied already.
    void takeBlanks()
    {
        if (_in != _begin && !isBlank(_in[-1]))
            *_out++ = u' ';
        while (_in != _end && isBlank(*_in))
            ++_in;
    }

    const QString& _text;
    const char16_t* const _begin;
    const char16_t* _in;
    const char16_t* const _end;
    char16_t* _out = nullptr;
    char16_t* _tag = nullptr; ///< Where the open tag's "<" was written.
    bool _inQuotes = false;
};

/// Puts one space in the place of every line-breaking tag and no-break space, whatever its case. None of them is
/// part of another, so one pass does for all.
void replaceBySpaces(QString& text)
{
    const auto isCandidate = [](auto unit) { return (unit == u'<') | (unit == u'&'); };
    char16_t* const begin = writableUnits(text);
    const char16_t* const end = begin + text.size();
    char16_t* out = begin;
    const char16_t* in = begin;
    while (in != end) {
        const char16_t* const candidate = findUnit(in, end, isCandidate);
        out = moveUnits(out, in, candidate);
        in = candidate;
        if (in == end)
            break;
        const QStringView rest(in, end);
        qsizetype length = standsFoldedAt(rest, 0, noBreakSpace) ? noBreakSpace.size() : 0;
        for (const QStringView marker : lineBreakingTags)
            length = standsFoldedAt(rest, 0, marker) ? marker.size() : length;
        *out++ = length > 0 ? u' ' : *in;
        in += std::max<qsizetype>(length, 1);
    }
    text.truncate(out - begin);
}

} // namespace

bool scanHtmlInOnePass(const QString& text, QString& plain)
{
    return OnePass<HtmlRules>(text).run(plain);
}

QString scanHtmlStepByStep(const QString& normalisedText)
{
    QString text = normalisedText;
    replaceBySpaces(text);
    const qsizetype body = indexOfFolded(text, bodyMarker);
    if (body > 0)
        text.remove(0, body);
    for (const Span& span : unwantedSpans)
        removeFoldedSpans(text, span.begin, span.end);
    QString plain;
    (void)OnePass<PreparedHtmlRules>(text).run(plain);
    return plain;
}

QString scanTagsOnly(const QString& text)
{
    QString plain;
    (void)OnePass<TagsOnlyRules>(text).run(plain);
    return plain;
}

} // namespace quarry
