#include "blacklist/BlacklistRule.h"

#include "text/CSRegex.h"
#include "text/Url.h"

namespace quarry {

namespace {

/// An empty text is found nowhere.
bool occursIn(const QString& text, const QString& part, Qt::CaseSensitivity option)
{
    if (part.isEmpty())
        return false;
    return option == Qt::CaseSensitive ? text.contains(part) : caseFolded(text).contains(caseFolded(part));
}

bool testDomain(const QString& rule, const QString& address, Qt::CaseSensitivity option)
{
    const QString addressHost = hostForBlacklist(address);
    const QString ruleHost = addressHost.isEmpty() ? QString() : hostForBlacklist(rule);
    if (ruleHost.isEmpty())
        return false;
    return ruleHost.size() >= addressHost.size() ? occursIn(ruleHost, addressHost, option)
                                                 : occursIn(addressHost, ruleHost, option);
}

bool testFileType(const QString& rule, const QString& address, Qt::CaseSensitivity option)
{
    const QStringView extension = fileExtension(address);
    const QString dotted = dottedRule(rule);
    return !extension.isEmpty() && dotted.size() == extension.size() + 1 && occursIn(address, dotted, option);
}

bool testExpression(const QString& rule, const QString& address, Qt::CaseSensitivity option, Logger& log)
{
    try {
        return CSRegex(rule, option == Qt::CaseSensitive ? CSRegex::None : CSRegex::IgnoreCase).matchesString(address);
    } catch (const CSRegexException& exception) {
        log.logString(regexFaultLine(rule, exception.reason()));
        return false;
    }
}

} // namespace

bool testRule(const BlacklistRule& rule, const QString& address, Qt::CaseSensitivity option, Logger& log)
{
    if (!rule.rule)
        return false;
    switch (rule.type) {
    case BlacklistType::Text:
        return occursIn(address, *rule.rule, option);
    case BlacklistType::Domain:
        return testDomain(*rule.rule, address, option);
    case BlacklistType::FileType:
        return testFileType(*rule.rule, address, option);
    case BlacklistType::RegularExpression:
        return testExpression(*rule.rule, address, option, log);
    default:
        return false;
    }
}

QString caseFolded(QStringView text)
{
    QString folded(text.size(), Qt::Uninitialized);
    for (qsizetype i = 0; i < text.size(); ++i) {
        const char16_t unit = text[i].unicode();
        if (QChar::isHighSurrogate(unit) && i + 1 < text.size() && text[i + 1].isLowSurrogate()) {
            const char32_t c = QChar::toCaseFolded(QChar::surrogateToUcs4(text[i], text[i + 1]));
            folded[i] = QChar(QChar::highSurrogate(c));
            folded[++i] = QChar(QChar::lowSurrogate(c));
        } else {
            folded[i] = QChar(static_cast<char16_t>(QChar::toCaseFolded(char32_t{unit})));
        }
    }
    return folded;
}

QString hostForBlacklist(const QString& text)
{
    std::optional<Url> url = Url::fromText(text);
    if (url && url->scheme().isEmpty())
        url = Url::fromText(QStringLiteral("http://") + text);
    return url ? url->host().toString() : QString();
}

QStringView fileExtension(QStringView address)
{
    while (address.endsWith(u'/'))
        address.chop(1);
    const QStringView name = address.mid(address.lastIndexOf(u'/') + 1);
    const qsizetype dot = name.lastIndexOf(u'.');
    return dot > 0 ? name.mid(dot + 1) : QStringView();
}

QString dottedRule(const QString& rule)
{
    return rule.contains(u'.') ? rule : u'.' + rule;
}

QString regexFaultLine(const QString& rule, const QString& reason)
{
    return QStringLiteral("Error in Regexp '") + rule + QStringLiteral("': ") + reason;
}

} // namespace quarry
