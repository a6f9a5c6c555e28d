#include "engines/PageSigns.h"

#include "text/PercentEscapes.h"
#include "text/Tags.h"

#include <algorithm>
#include <array>

namespace quarry {

namespace {

// Both tables are without blanks, as what they are compared with.

/// What services write when they found nothing, in the languages that they are asked in. The gateway's is the first.
constexpr std::array NoResultPhrases = {
    QStringView(u"nodocumentmatches"),
    QStringView(u"didnotmatchanydocument"),
    QStringView(u"nodocumentsmatch"),
    QStringView(u"noresultsfound"),
    QStringView(u"noresultswerefound"),
    QStringView(u"noresultsfor"),
    QStringView(u"nowebresults"),
    QStringView(u"notfindresults"),
    QStringView(u"notfindanyresult"),
    QStringView(u"returnednoresults"),
    QStringView(u"aucundocumentnecorrespond"),
    QStringView(u"aucunr\u00e9sultat"),
    QStringView(u"pasder\u00e9sultat"),
    QStringView(u"keineergebnisse"),
    QStringView(u"keinetreffer"),
    QStringView(u"keinemitihrersuchanfrage"),
};

/// What stands, in words or in the markup, on pages that hold up whoever may be no person.
constexpr std::array ChallengeMarkers = {
    QStringView(u"captcha-form"),       QStringView(u"id=\"captcha"),   QStringView(u"id='captcha"),
    QStringView(u"name=\"captcha"),     QStringView(u"name='captcha"),  QStringView(u"recaptcha"),
    QStringView(u"hcaptcha"),           QStringView(u"h-captcha"),      QStringView(u"challenge-form"),
    QStringView(u"challenge-platform"), QStringView(u"unusualtraffic"), QStringView(u"automatedqueries"),
    QStringView(u"automatedrequests"),  QStringView(u"notarobot"),      QStringView(u"areyouarobot"),
    QStringView(u"youarehuman"),        QStringView(u"areyouhuman"),    QStringView(u"checkingyourbrowser"),
    QStringView(u"traficexceptionnel"), QStringView(u"pasunrobot"),     QStringView(u"ungew\u00f6hnlichendatenverkehr"),
    QStringView(u"keinroboter"),
};

/// What a page has to say stands near its beginning; the rest of a huge one is not worth the time.
constexpr qsizetype LongestText = qsizetype(1) << 20;

QStringView beginningOf(QStringView text)
{
    return text.first(std::min(text.size(), LongestText));
}

QString withoutBlanks(QStringView text)
{
    QString kept;
    kept.reserve(text.size());
    for (const QChar unit : text) {
        if (!unit.isSpace())
            kept.append(unit.toCaseFolded());
    }
    return kept;
}

/// What was asked for, in the form of the tables: in an address a blank may be a "+".
QString askedText(const QString& address)
{
    return withoutBlanks(percentUnescaped(address).value_or(address)).remove(u'+');
}

template <std::size_t count>
bool holdsOneOf(const std::array<QStringView, count>& markers, QStringView text, QStringView asked)
{
    return std::any_of(markers.begin(), markers.end(),
                       [&](QStringView marker) { return text.contains(marker) && !asked.contains(marker); });
}

bool isChallenge(QStringView text, QStringView words, QStringView asked)
{
    return holdsOneOf(ChallengeMarkers, withoutBlanks(text), asked) || holdsOneOf(ChallengeMarkers, words, asked);
}

} // namespace

PageSign signOfPage(QStringView page, const QString& address)
{
    const QStringView text = beginningOf(page);
    const QString words = withoutBlanks(stringByRemovingHTML(text.toString()));
    const QString asked = askedText(address);
    // First the words: such a page may hold a form with a challenge for something else.
    if (holdsOneOf(NoResultPhrases, words, asked))
        return PageSign::NoResults;
    return isChallenge(text, words, asked) ? PageSign::Challenge : PageSign::Nothing;
}

PageSign signOfRefusal(QStringView page, const QString& address)
{
    const QStringView text = beginningOf(page);
    const QString words = withoutBlanks(stringByRemovingHTML(text.toString()));
    return isChallenge(text, words, askedText(address)) ? PageSign::Challenge : PageSign::Nothing;
}

} // namespace quarry
