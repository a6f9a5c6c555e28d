#include "window/HealthWords.h"

#include "text/LocalisedFormat.h"

#include <QLocale>

namespace quarry {

namespace {

QString pagesWords(const StringTable& texts, const char16_t* key, int some, int all)
{
    return filledFormat(texts.text(QString::fromUtf16(key)), {QLocale().toString(some), QLocale().toString(all)});
}

} // namespace

QString verdictWords(const StringTable& texts, ServiceVerdict verdict)
{
    switch (verdict) {
    case ServiceVerdict::Results:
        return texts.text(QStringLiteral("221_Verdict results"));
    case ServiceVerdict::NothingFound:
        return texts.text(QStringLiteral("221_Verdict nothing found"));
    case ServiceVerdict::Blocked:
        return texts.text(QStringLiteral("221_Verdict blocked"));
    case ServiceVerdict::NotRecognised:
        return texts.text(QStringLiteral("221_Verdict not recognised"));
    case ServiceVerdict::Unreachable:
        break;
    }
    return texts.text(QStringLiteral("221_Verdict unreachable"));
}

QString healthWords(const StringTable& texts, const ServiceHealth& health)
{
    const ServiceVerdict verdict = health.verdict();
    const ServiceHealth::Judged& judged = health.judgedAs(verdict);
    QStringList details;
    if (verdict == ServiceVerdict::Results) {
        if (health.pagesMissed() > 0)
            details.append(pagesWords(texts, u"221_Pages missed", health.pagesMissed(), health.pages()));
    } else if (verdict != ServiceVerdict::NothingFound) {
        if (!judged.error.isEmpty())
            details.append(texts.text(judged.error));
        else if (verdict == ServiceVerdict::Blocked)
            details.append(texts.text(QStringLiteral("221_Challenge")));
        if (judged.pages < health.pages())
            details.append(pagesWords(texts, u"221_Pages", judged.pages, health.pages()));
    }
    const QString words = verdictWords(texts, verdict);
    return details.isEmpty() ? words : words + QStringLiteral(" (") + details.join(QLatin1String("; ")) + u')';
}

} // namespace quarry
