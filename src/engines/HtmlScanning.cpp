#include "engines/HtmlScanning.h"

#include "engines/CaselessPattern.h"
#include "engines/UnitBlock.h"

namespace quarry {

namespace {

CaselessPattern attributePattern(QStringView attribute, QStringView value, bool protect, char16_t protectionCharacter)
{
    QString pattern = QLatin1Char(' ') + attribute.toString() + QLatin1Char('=');
    const QString quote = protect ? QString(QChar(protectionCharacter == 0 ? u'"' : protectionCharacter)) : QString();
    return CaselessPattern(pattern + quote + value.toString() + quote);
}

/// Collects the inner texts of elements of one tag name.
class ElementScan final {
public:
    ElementScan(QStringView tag, QStringView text)
        : _text(text), _name(tag), _closeTag(QString(QLatin1String("</") + tag.toString()))
    {
    }

    [[nodiscard]] QList<QStringView> collect(const CaselessPattern& opening) const
    {
        QList<QStringView> contents;
        qsizetype start = 0;
        for (;;) {
            const qsizetype match = opening.find(_text, start);
            if (match < 0)
                return contents;
            const qsizetype tagEnd = _text.indexOf(u'>', match);
            const qsizetype begin = tagEnd + 1;
            // An empty element ends the scan, and so does one without room for a content.
            const qsizetype end = tagEnd < 0 ? 0 : contentEnd(begin);
            if (end <= begin)
                return contents;
            contents.append(_text.mid(begin, end - begin));
            start = end - 1;
        }
    }

private:
    /// Where the close tag of an element stands whose content begins there; the text's end when it has none.
    [[nodiscard]] qsizetype contentEnd(qsizetype begin) const
    {
        qsizetype depth = 0;
        UnitHunt tags(_text, u'<', begin);
        for (qsizetype at = tags.next(); at >= 0; at = tags.next()) {
            if (_name.matchesAt(_text, at + 1)) {
                ++depth;
            } else if (_closeTag.matchesAt(_text, at)) {
                if (depth == 0)
                    return at;
                --depth;
            }
        }
        return _text.size();
    }

    QStringView _text;
    CaselessPattern _name;
    CaselessPattern _closeTag;
};

/// The text after the first `marker` from the start of the tag on that holds the position, up to the next quote.
QStringView targetFrom(qsizetype position, const CaselessPattern& marker, char16_t quote, QStringView text)
{
    const qsizetype tag = position < 0 ? -1 : text.lastIndexOf(u'<', position);
    if (tag < 0)
        return u"";
    const qsizetype found = marker.find(text, tag);
    if (found < 0)
        return u"";
    const qsizetype begin = found + marker.size();
    const qsizetype end = text.indexOf(QChar(quote), begin);
    return end < 0 ? QStringView(u"") : text.mid(begin, end - begin);
}

qsizetype findClass(QStringView className, QStringView text)
{
    const qsizetype quoted = attributePattern(u"class", className, true, 0).find(text);
    return quoted >= 0 ? quoted : attributePattern(u"class", className, false, 0).find(text);
}

} // namespace

QList<QStringView> contentsOfTagWithClass(QStringView tag, std::optional<QStringView> className, const ScanCopy& code,
                                          bool protectClass, char16_t protectionCharacter)
{
    const CaselessPattern opening = className
                                        ? attributePattern(u"class", *className, protectClass, protectionCharacter)
                                        : CaselessPattern(QString(QLatin1Char('<') + tag.toString()));
    QList<QStringView> contents = ElementScan(tag, code.text()).collect(opening);
    if (contents.isEmpty())
        contents.append(u"");
    return contents;
}

QList<QStringView> contentsOfTagWithAttribute(QStringView tag, QStringView attribute, QStringView attributeValue,
                                              const ScanCopy& code, bool protectClass, char16_t protectionCharacter)
{
    return ElementScan(tag, code.text())
        .collect(attributePattern(attribute, attributeValue, protectClass, protectionCharacter));
}

QStringView targetOfLinkWithClass(std::optional<QStringView> className, const ScanCopy& code)
{
    const QStringView text = code.text();
    const qsizetype position = className ? findClass(*className, text) : CaselessPattern(u"a href").find(text);
    return targetFrom(position, CaselessPattern(u"href=\""), u'"', text);
}

QStringView targetOfLinkWithId(QStringView id, const ScanCopy& code, char16_t protectionCharacter)
{
    const QStringView text = code.text();
    const char16_t quote = protectionCharacter == 0 ? u'"' : protectionCharacter;
    const qsizetype position = attributePattern(u"id", id, protectionCharacter != 0, protectionCharacter).find(text);
    return targetFrom(position, CaselessPattern(QString(QLatin1String("href=") + QChar(quote))), quote, text);
}

QStringView targetOfYahooLinkWithClass(QStringView className, const ScanCopy& code)
{
    return targetFrom(findClass(className, code.text()), CaselessPattern(u"ourl=\""), u'"', code.text());
}

QStringView extractDIVNamed(QStringView name, const ScanCopy& code)
{
    const QList<QStringView> contents = contentsOfTagWithAttribute(u"div", u"id", name, code, true);
    return contents.isEmpty() ? QStringView(u"") : contents.first();
}

std::optional<Url> cleanGoogleLink(const Url& link)
{
    const QLatin1String redirect("/url?q=");
    QString text = link.absoluteString();
    if (!text.contains(redirect, Qt::CaseInsensitive)) {
        const auto unescaped = percentUnescaped(text);
        const auto url = unescaped ? Url::fromText(*unescaped) : std::nullopt;
        return url ? url : link;
    }
    text.remove(redirect, Qt::CaseInsensitive);
    const qsizetype end = text.indexOf(QLatin1String("&amp;"), 0, Qt::CaseInsensitive);
    const auto unescaped = end < 0 ? std::nullopt : percentUnescaped(text.left(end));
    return unescaped ? Url::fromText(*unescaped) : std::nullopt;
}

} // namespace quarry
