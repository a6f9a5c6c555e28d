#include "engines/HtmlScanning.h"

#include "engines/NaiveScanning.h"
#include "support/TextTable.h"

#include <random>

namespace quarry {
namespace {

QStringList texts(const QList<QStringView>& views)
{
    QStringList list;
    for (const QStringView view : views)
        list += view.toString();
    return list;
}

/// Texts that are little else than markers and pieces of markers.
class MarkerSoup final {
public:
    explicit MarkerSoup(unsigned seed) : _random(seed) {}

    QString text(int pieces)
    {
        static const QStringList Pieces =
            u"<|>|-|--|!|/|\n|\r|\t| |x|\U0001F600|<scr|ipt>|<script>|</script>|</scr|<\u017Fcript|</SCRIPT>|<!--|-->|"
            u"<!|<wbr />|<wb|r />|<WBR\t/>|<w|<li|<li>|</li>|</LI| class=\"g\"| CLASS=g| class='g'| id='k'| id=\u212A|"
            u" id=\"k\"|<a href=\"u| href='v| ourl=\"w|\"|'|some filling text that is longer than one block"_qs.split(
                u'|');
        QString text;
        for (int i = 0; i < pieces; ++i)
            text += Pieces.at(std::uniform_int_distribution<qsizetype>(0, Pieces.size() - 1)(_random));
        return text;
    }

private:
    std::mt19937 _random;
};

TEST(ScanCopy, EqualsTheSixPassesOnMarkerSoup)
{
    MarkerSoup soup(1);
    for (int round = 0; round < 6000; ++round) {
        const QString page = soup.text(round % 60);
        const QString copy = ScanCopy(page).text().toString() + QLatin1Char(' ');
        ASSERT_EQ(copy, naive::scanCopy(page)) << qPrintable(page);
    }
}

TEST(ScanCopy, ForgetsAndRemovesWhatRemovalsJoined)
{
    const ScanCopy copy(u"<scrip<scrip<script></script>t></script>t></script>x<!--y<!--z-->w"_qs);
    EXPECT_EQ(copy.text(), u"xw");
    const ScanCopy joined(u"<p>a<scr<!-- -->ipt>x</script>b<!<!-- x -->-- y --></p>"_qs);
    EXPECT_EQ(joined.text(), u"<p>a<script>x</script>b</p>");
    EXPECT_EQ(joined.part(joined.text().mid(3)).text(), u"ab</p>");
}

TEST(HtmlScanning, ElementsEqualTheNaiveWalkOnMarkerSoup)
{
    MarkerSoup soup(2);
    qsizetype found = 0;
    for (int round = 0; round < 4000; ++round) {
        const QString page = soup.text(40);
        const ScanCopy copy(page);
        const std::tuple<QStringList, const char16_t*> scans[] = {
            {texts(contentsOfTagWithAttribute(u"li", u"class", u"g", copy, true)), u" class=\"g\""},
            {texts(contentsOfTagWithAttribute(u"li", u"class", u"g", copy, false)), u" class=g"},
            {texts(contentsOfTagWithAttribute(u"li", u"id", u"k", copy, true, u'\'')), u" id='k'"},
            {texts(contentsOfTagWithAttribute(u"li", u"id", u"k", copy, false, u'\'')), u" id=k"},
        };
        for (const auto& [real, opening] : scans) {
            const QStringList expected = naive::elements(u"li"_qs, QString::fromUtf16(opening), page);
            ASSERT_EQ(real, expected) << qPrintable(page);
            found += expected.size();
        }
        // A scan within a part is a scan of the part's text.
        const QStringList outer = texts(contentsOfTagWithClass(u"li", std::nullopt, copy, false));
        const QStringList outerExpected = naive::elements(u"li"_qs, u"<li"_qs, page);
        ASSERT_EQ(outer, outerExpected.isEmpty() ? QStringList{QString()} : outerExpected);
        const QList<QStringView> parts = contentsOfTagWithClass(u"li", std::nullopt, copy, false);
        const ScanCopy part = copy.part(parts.first());
        ASSERT_EQ(texts(contentsOfTagWithAttribute(u"li", u"class", u"g", part, true)),
                  naive::elements(u"li"_qs, u" class=\"g\""_qs, parts.first().toString()));
    }
    EXPECT_GT(found, 4000);
}

TEST(HtmlScanning, TargetsEqualTheNaiveWalkOnMarkerSoup)
{
    MarkerSoup soup(3);
    int found = 0;
    for (int round = 0; round < 6000; ++round) {
        const QString page = soup.text(30);
        const ScanCopy copy(page);
        const std::tuple<QStringView, QString> scans[] = {
            {targetOfLinkWithClass(std::nullopt, copy), naive::target({u"a href"_qs}, u"href=\""_qs, u'"', page)},
            {targetOfLinkWithClass(u"g", copy),
             naive::target({u" class=\"g\""_qs, u" class=g"_qs}, u"href=\""_qs, u'"', page)},
            {targetOfLinkWithClass(u"", copy),
             naive::target({u" class=\"\""_qs, u" class="_qs}, u"href=\""_qs, u'"', page)},
            {targetOfLinkWithId(u"k", copy, u'\''), naive::target({u" id='k'"_qs}, u"href='"_qs, u'\'', page)},
            {targetOfLinkWithId(u"k", copy, 0), naive::target({u" id=k"_qs}, u"href=\""_qs, u'"', page)},
            {targetOfYahooLinkWithClass(u"g", copy),
             naive::target({u" class=\"g\""_qs, u" class=g"_qs}, u"ourl=\""_qs, u'"', page)},
        };
        for (const auto& [real, expected] : scans) {
            ASSERT_EQ(real, expected) << qPrintable(page);
            found += expected.isEmpty() ? 0 : 1;
        }
    }
    EXPECT_GT(found, 1000);
}

TEST(HtmlScanning, CollectsElementsByTheirRules)
{
    const auto items = [](const QString& page) {
        return texts(contentsOfTagWithClass(u"li", u"g", ScanCopy(page), true)).join(u'|');
    };
    // A tag's name is a prefix, an empty element ends the list, one that is not closed counts, quotes are not looked
    // at.
    expectAll(items,
              u"<li class=\"g\">A<li class=\"x\">B</li>C</li><li class=\"g\">D</li>→A<li class=\"x\">B</li>C|D¦"
              u"<LI CLASS=\"G\">A</LI>→A¦<p class=\"g\">A<link></li>B</li>→A<link></li>B¦"
              u"<li class=\"g\"></li><li class=\"g\">B</li>→¦<li class=\"g\">A<b>B→A<b>B¦<li class=\"g\"→¦nothing→¦"
              u"<li class=\"g\" title=\"a>b\">A</li>→b\">A");
    EXPECT_TRUE(contentsOfTagWithAttribute(u"li", u"class", u"g", ScanCopy(u"nothing"_qs), true).isEmpty());
    EXPECT_EQ(extractDIVNamed(u"web", ScanCopy(u"<div id=\"web\">A<div>B</div></div>C"_qs)), u"A<div>B</div>");
    EXPECT_EQ(extractDIVNamed(u"web", ScanCopy(u"<div id=\"we\">A</div>"_qs)), u"");
}

TEST(HtmlScanning, CleansRedirectingLinks)
{
    const auto cleaned = [](const QString& text) {
        const auto link = Url::fromText(text);
        const auto url = link ? cleanGoogleLink(*link) : std::nullopt;
        return url ? url->absoluteString() : u"none"_qs;
    };
    expectAll(cleaned,
              u"/url?q=http://a.org/x%20y&amp;sa=U&amp;ei=1→http://a.org/x%20y¦"
              u"/URL?Q=http://a.org/%3Fb%3D1&AMP;sa=U→http://a.org/?b=1¦/url?q=http://a.org/&sa=U→none¦"
              u"/url?q=&amp;sa=U→none¦http://a.org/%C3%A9→http://a.org/%C3%A9¦http://a.org/%7Eb→http://a.org/~b¦"
              u"http://a.org/%FF→http://a.org/%FF");
}

} // namespace
} // namespace quarry
