#include "text/Tags.h"

#include "engines/NaiveScanning.h"
#include "support/TextTable.h"
#include "text/Entities.h"
#include "text/Spans.h"

#include <random>

namespace quarry {
namespace {

TEST(Tags, RemovingHtmlLeavesPlainTrimmedText)
{
    expectAll(stringByRemovingHTML,
              u"  plain \t\n text →plain text¦a<BR>b<p>c</P>d<hr>e&NBSP;f→a b c d e f¦"
              u"<head>x</head><BODY class=1>y→y¦x <a href=\"y\">gone</a> stays <A B>gone too</A>→x  stays¦"
              u"1<style>a</STYLE>2<script>b</script>3<!--c-->4<form>d</form>5→12345¦a<!-->b→ab¦a<!-- b<i>c</i>→ac¦"
              u"<img alt=\"a>b\">c \"<\" d>e→c \"<\" d>e¦1 < 2 <b>bold</b>→1 bold¦"
              u"open <b title=\"x>y→open <b title=\"x>y¦a - - b - - - c→a  b  - c¦"
              u"&lt;b&gt; &amp;eacute; &amp;amp;lt; &#233;&#x1F600;&hellip;&amp;→<b> \u00e9 &lt; \u00e9\U0001F600...&¦"
              u"AT&T &eacute; &unknown; &#1;x&#XD800;→AT&T &eacute; &unknown;  x¦"
              u"<scr<style></style>ipt>x</script>y→y¦<\u017fcript>x</script>y→y¦→");
}

TEST(Tags, RemovingTagsOnlyKeepsLinksAndObeysQuotesEverywhere)
{
    expectAll(stringByRemovingTagOnly,
              u" a <a href=\"x\">link</a> &amp;&lt;\tb → a link &<\tb ¦a<br>b<BR>c<p>d</p>e<hr>f→a bc d e f¦"
              u"<b title=\"a>b\">c</b>→c¦5\" <b>x</b> 6\" <b>y</b>→5\" <b>x</b> 6\" y¦&eacute;&nbsp;→&eacute;&nbsp;¦"
              u"a <b→a <b");
}

TEST(Tags, NormalisingSummariesAndTitlesMakeOneLine)
{
    expectAll(normalised, u"a  \t\nb→a b¦ \r\n a\r\nb\t →a b ¦a\v\f b c→a\v\f b c¦a \tb→a b¦ →");
    expectAll(summaryTextFromHTML, u"<b>a</b> &nbsp;&amp;#32; - -- - b→a b¦a -&#32;- b→a  b¦x &amp;#9; y→x y");
    expectAll(titleTextFromHTML, u"<title>&#10; &#9; First &#13;Second</title>→First¦<b></b>→");
}

TEST(Entities, AreMappedByName)
{
    expectAll(mapEntityToString,
              u"#65→A¦#x41→A¦#X41→ ¦#10→ ¦#65x→A¦#65601→A¦#18446744073709551681→A¦#→&#;¦sigma→\u0C3C¦Sigma→\u0CA3¦"
              u"shy→&shy;¦Acirc→&Acirc;¦acirc→\u00e2¦nbsp→ ¦hellip→...¦rsquo→'¦not→\u00ac¦reg→\u00ae¦iquest→\u00bf¦"
              u"szlig→\u00df¦thorn→\u00fe¦euro→\u20ac¦EURO→&EURO;¦averylongname→&averylongname;¦→&;");
    EXPECT_EQ(mapEntityToString(QString()), QString());
}

TEST(Entities, AreEscapedAndUnescaped)
{
    expectAll(stringByEscapingExtendedCharacters,
              u"a\u00e9b\u20ac\x7f→a&#233;b&#8364;\x7f¦\U0001F600→&#55357;&#56832;");
    expectAll(stringByUnescapingExtendedCharacters,
              u" &eacute;&&lt;&gt;; & &amp;x→\u00e9&&lt;>; & &amp;x¦a&b→a&b¦&#32;x&#10;→x");
    const auto unescaped = [](QString text) {
        unescapeXml(text);
        return text;
    };
    expectAll(unescaped, u"&lt;&amp;lt;&apos;&quot;&gt;&LT;&nbsp;&#;&#x;&#X41;&#65&#66;→"
                         u"<&lt;'\">&LT;&nbsp;&#;&#x;&#X41;&#65B¦"
                         u"&#0;&#1;&#xD800;&#x110000;&#99999999999999999999;&#x10FFFF;→"
                         u"&#0;&#1;&#xD800;&#x110000;&#99999999999999999999;\U0010FFFF");
}

QList<QString> split(QStringView all)
{
    return all.toString().split(u'¦');
}

/// A text of pieces that make, cut and join markers.
QString generated(std::mt19937& random, const QList<QString>& pieces)
{
    QString text;
    for (auto count = random() % 40; count > 0; --count)
        text += pieces[static_cast<qsizetype>(random() % static_cast<unsigned>(pieces.size()))];
    return text;
}

TEST(Spans, OnePassRemovesWhatRestartsRemove)
{
    const std::tuple<QString, QString, QList<QString>> alphabets[] = {
        {u"<!--"_qs, u"-->"_qs, split(u"<¦!¦-¦--¦>¦<!-¦x")},
        {u"<Script"_qs, u"</scripT>"_qs, split(u"<script¦</script>¦<SCR¦ipt¦</¦>¦\u017f")},
        {u"ab"_qs, u"ba"_qs, split(u"a¦B")},
        {u"aab"_qs, u"a"_qs, split(u"a¦b¦A")},
    };
    std::mt19937 random(20011);
    for (const auto& [begin, end, pieces] : alphabets) {
        for (int i = 0; i < 5000; ++i) {
            const QString text = generated(random, pieces);
            QString once = text;
            QString restarted = text;
            removeHTMLTagBeginingWith(once, begin, end);
            naive::removeSpans(restarted, begin, end);
            ASSERT_EQ(once, restarted) << qPrintable(text);
        }
    }
}

/// The tag scanner as it is told, with a count of the tag's characters and deletions in place.
QString scannedByCounting(QString text, bool quotesEverywhere)
{
    bool inTag = false;
    bool inQuotes = false;
    qsizetype n = 0;
    for (qsizetype i = 0; i < text.size(); ++i) {
        n += inTag ? 1 : 0;
        if (text[i] == u'<' && !inQuotes) {
            inTag = true;
        } else if (text[i] == u'>' && inTag && !inQuotes) {
            text.remove(i - n, n + 1);
            i -= n + 1;
            inTag = false;
            n = 0;
        } else if (text[i] == u'"' && (quotesEverywhere || inTag)) {
            inQuotes = !inQuotes;
        }
    }
    return text;
}

/// `normalised` as it is told, a character at a time.
QString normalisedByFlag(const QString& text)
{
    QString out;
    bool previousWasSpace = true;
    for (const QChar c : text) {
        const bool isBlank = c == u' ' || c == u'\t' || c == u'\n' || c == u'\r';
        if (!isBlank)
            out += c;
        else if (!previousWasSpace)
            out += u' ';
        previousWasSpace = isBlank;
    }
    return out;
}

/// The removal of HTML as it is told, a step after the other.
QString plainBySteps(const QString& text)
{
    QString plain = normalisedByFlag(text);
    for (const QString& marker : {u"&nbsp;"_qs, u"<br>"_qs, u"<p>"_qs, u"</p>"_qs, u"<hr>"_qs})
        plain.replace(marker, u" "_qs, Qt::CaseInsensitive);
    plain.remove(0, std::max<qsizetype>(0, plain.indexOf(u"<body"_qs, 0, Qt::CaseInsensitive)));
    for (const QString& name : {u"style"_qs, u"script"_qs, u"a "_qs, u"!--"_qs, u"form"_qs})
        naive::removeSpans(plain, u'<' + name, name == u"!--" ? u"-->"_qs : u"</"_qs + name.trimmed() + u'>');
    plain = scannedByCounting(plain, false).remove(u"- -"_qs);
    unescapeXml(plain);
    return stringByUnescapingExtendedCharacters(plain);
}

QString tagsBySteps(QString text)
{
    for (const QString& marker : {u"<br>"_qs, u"<p>"_qs, u"</p>"_qs, u"<hr>"_qs})
        text.replace(marker, u" "_qs);
    text = scannedByCounting(text, true);
    unescapeXml(text);
    return text;
}

TEST(Tags, OnePassGivesWhatTheStepsGive)
{
    const QList<QString> alphabets[] = {
        split(u"<¦>¦\"¦x¦<i>¦eight or more"),
        split(u" ¦\t¦\n¦<BR>¦<br>¦&nbsp;¦<a¦<p>¦</a>¦- ¦-¦\v¦&"),
        split(u"<a ¦<A>¦</a>¦<!--¦-->¦<body¦<script¦</script>¦<b title=\"a > b\">¦bold¦<form>¦</form>¦<st¦yle>¦"
              u"</style>¦&amp;¦\r\n¦<font>"),
    };
    std::mt19937 random(7);
    for (const QList<QString>& pieces : alphabets) {
        for (int i = 0; i < 10000; ++i) {
            const QString text = generated(random, pieces);
            ASSERT_EQ(normalised(text), normalisedByFlag(text)) << qPrintable(text);
            ASSERT_EQ(stringByRemovingTagOnly(text), tagsBySteps(text)) << qPrintable(text);
            ASSERT_EQ(stringByRemovingHTML(text), plainBySteps(text)) << qPrintable(text);
        }
    }
}

TEST(Spans, ReplacingIsLiteralAndOnePass)
{
    QString text = u"aaa.A"_qs;
    replaceString(text, u"aa"_qs, u"a"_qs);
    replaceString(text, u"."_qs, u".."_qs);
    replaceString(text, u""_qs, u"x"_qs);
    EXPECT_EQ(text, u"aa..A"_qs);
}

TEST(Tags, AMegabyteOfMarkersIsNoTrouble)
{
    // Quadratic work on any of these would take minutes and run into the limit of the whole test run.
    for (const QString& piece : split(u"<¦&¦<a ¦<!--¦<!-->¦&#1¦\"<¦- ¦<style></style>¦&;¦<scr<script></script>¦<b>")) {
        const QString text = piece.repeated(1'000'000 / piece.size());
        EXPECT_LE(stringByRemovingHTML(text).size(), text.size());
        EXPECT_LE(stringByRemovingTagOnly(text).size(), text.size());
    }
}

} // namespace
} // namespace quarry
