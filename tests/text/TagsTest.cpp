#include "text/Tags.h"

#include "text/Entities.h"
#include "text/Spans.h"

#include <QList>

#include <gtest/gtest.h>

#include <random>

namespace quarry {
namespace {

struct Case {
    QString in, out;
};

template <size_t N>
void expectAll(QString (*operation)(const QString&), const Case (&cases)[N])
{
    for (const Case& c : cases)
        EXPECT_EQ(operation(c.in), c.out) << qPrintable(c.in);
}

TEST(Tags, RemovingHtmlLeavesPlainTrimmedText)
{
    expectAll(stringByRemovingHTML, {{u"  plain \t\n text "_qs, u"plain text"_qs},
                                     {u"a<BR>b<p>c</P>d<hr>e&NBSP;f"_qs, u"a b c d e f"_qs},
                                     {u"<head>x</head><BODY class=1>y"_qs, u"y"_qs},
                                     {u"x <a href=\"y\">gone</a> stays <A B>gone too</A>"_qs, u"x  stays"_qs},
                                     {u"1<style>a</STYLE>2<script>b</script>3<!--c-->4<form>d</form>5"_qs, u"12345"_qs},
                                     {u"a<!-->b"_qs, u"ab"_qs},
                                     {u"a<!-- b<i>c</i>"_qs, u"ac"_qs},
                                     {u"<img alt=\"a>b\">c \"<\" d>e"_qs, u"c \"<\" d>e"_qs},
                                     {u"1 < 2 <b>bold</b>"_qs, u"1 bold"_qs},
                                     {u"open <b title=\"x>y"_qs, u"open <b title=\"x>y"_qs},
                                     {u"a - - b - - - c"_qs, u"a  b  - c"_qs},
                                     {u"&lt;b&gt; &amp;eacute; &amp;amp;lt; &#233;&#x1F600;&hellip;&amp;"_qs,
                                      u"<b> \u00e9 &lt; \u00e9\U0001F600...&"_qs},
                                     {u"AT&T &eacute; &unknown; &#1;x&#XD800;"_qs, u"AT&T &eacute; &unknown;  x"_qs},
                                     {u"<scr<style></style>ipt>x</script>y"_qs, u"y"_qs},
                                     {u"<\u017fcript>x</script>y"_qs, u"y"_qs},
                                     {QString(), QString()}});
}

TEST(Tags, RemovingTagsOnlyKeepsLinksAndObeysQuotesEverywhere)
{
    expectAll(stringByRemovingTagOnly, {{u" a <a href=\"x\">link</a> &amp;&lt;\tb "_qs, u" a link &<\tb "_qs},
                                        {u"a<br>b<BR>c<p>d</p>e<hr>f"_qs, u"a bc d e f"_qs},
                                        {u"<b title=\"a>b\">c</b>"_qs, u"c"_qs},
                                        {u"5\" <b>x</b> 6\" <b>y</b>"_qs, u"5\" <b>x</b> 6\" y"_qs},
                                        {u"&eacute;&nbsp;"_qs, u"&eacute;&nbsp;"_qs},
                                        {u"a <b"_qs, u"a <b"_qs}});
}

TEST(Tags, NormalisingSummariesAndTitlesMakeOneLine)
{
    expectAll(normalised, {{u"a  \t\nb"_qs, u"a b"_qs},
                           {u" \r\n a\r\nb\t "_qs, u"a b "_qs},
                           {u"a\v\f b c"_qs, u"a\v\f b c"_qs},
                           {u"a \tb"_qs, u"a b"_qs},
                           {u" "_qs, u""_qs}});
    expectAll(summaryTextFromHTML, {{u"<b>a</b> &nbsp;&amp;#32; - -- - b"_qs, u"a b"_qs},
                                    {u"a -&#32;- b"_qs, u"a  b"_qs},
                                    {u"x &amp;#9; y"_qs, u"x y"_qs}});
    expectAll(titleTextFromHTML,
              {{u"<title>&#10; &#9; First &#13;Second</title>"_qs, u"First"_qs}, {u"<b></b>"_qs, u""_qs}});
}

TEST(Entities, AreMappedByName)
{
    expectAll(mapEntityToString, {{u"#65"_qs, u"A"_qs},
                                  {u"#x41"_qs, u"A"_qs},
                                  {u"#X41"_qs, u" "_qs},
                                  {u"#10"_qs, u" "_qs},
                                  {u"#65x"_qs, u"A"_qs},
                                  {u"#65601"_qs, u"A"_qs},
                                  {u"#18446744073709551681"_qs, u"A"_qs},
                                  {u"#"_qs, u"&#;"_qs},
                                  {u"sigma"_qs, u"\u0C3C"_qs},
                                  {u"Sigma"_qs, u"\u0CA3"_qs},
                                  {u"shy"_qs, u"&shy;"_qs},
                                  {u"Acirc"_qs, u"&Acirc;"_qs},
                                  {u"acirc"_qs, u"\u00e2"_qs},
                                  {u"nbsp"_qs, u" "_qs},
                                  {u"hellip"_qs, u"..."_qs},
                                  {u"rsquo"_qs, u"'"_qs},
                                  {u"not"_qs, u"\u00ac"_qs},
                                  {u"reg"_qs, u"\u00ae"_qs},
                                  {u"iquest"_qs, u"\u00bf"_qs},
                                  {u"szlig"_qs, u"\u00df"_qs},
                                  {u"thorn"_qs, u"\u00fe"_qs},
                                  {u"euro"_qs, u"\u20ac"_qs},
                                  {u"EURO"_qs, u"&EURO;"_qs},
                                  {u"averylongname"_qs, u"&averylongname;"_qs},
                                  {u""_qs, u"&;"_qs},
                                  {QString(), QString()}});
}

TEST(Entities, AreEscapedAndUnescaped)
{
    expectAll(stringByEscapingExtendedCharacters,
              {{u"a\u00e9b\u20ac\x7f"_qs, u"a&#233;b&#8364;\x7f"_qs}, {u"\U0001F600"_qs, u"&#55357;&#56832;"_qs}});
    expectAll(stringByUnescapingExtendedCharacters, {{u" &eacute;&&lt;&gt;; & &amp;x"_qs, u"\u00e9&&lt;>; & &amp;x"_qs},
                                                     {u"a&b"_qs, u"a&b"_qs},
                                                     {u"&#32;x&#10;"_qs, u"x"_qs}});
    const Case xml[] = {{u"&lt;&amp;lt;&apos;&quot;&gt;&LT;&nbsp;&#;&#x;&#X41;&#65&#66;"_qs,
                         u"<&lt;'\">&LT;&nbsp;&#;&#x;&#X41;&#65B"_qs},
                        {u"&#0;&#1;&#xD800;&#x110000;&#99999999999999999999;&#x10FFFF;"_qs,
                         u"&#0;&#1;&#xD800;&#x110000;&#99999999999999999999;\U0010FFFF"_qs}};
    for (const Case& c : xml) {
        QString text = c.in;
        unescapeXml(text);
        EXPECT_EQ(text, c.out);
    }
}

/// A text of pieces that make, cut and join markers.
QString generated(std::mt19937& random, const QList<QString>& pieces)
{
    QString text;
    for (auto count = random() % 40; count > 0; --count)
        text += pieces[static_cast<qsizetype>(random() % static_cast<unsigned>(pieces.size()))];
    return text;
}

/// The rule as it is told: every removal starts again at the beginning.
QString removedWithRestarts(QString text, const QString& begin, const QString& end)
{
    for (;;) {
        const qsizetype at = text.indexOf(begin, 0, Qt::CaseInsensitive);
        const qsizetype last = at < 0 ? -1 : text.indexOf(end, at, Qt::CaseInsensitive);
        if (last < 0)
            return text;
        text.remove(at, last + end.size() - at);
    }
}

TEST(Spans, OnePassRemovesWhatRestartsRemove)
{
    const std::pair<Case, QList<QString>> alphabets[] = {
        {{u"<!--"_qs, u"-->"_qs}, {u"<"_qs, u"!"_qs, u"-"_qs, u"--"_qs, u">"_qs, u"<!-"_qs, u"x"_qs}},
        {{u"<Script"_qs, u"</scripT>"_qs},
         {u"<script"_qs, u"</script>"_qs, u"<SCR"_qs, u"ipt"_qs, u"</"_qs, u">"_qs, u"\u017f"_qs}},
        {{u"ab"_qs, u"ba"_qs}, {u"a"_qs, u"B"_qs}},
        {{u"aab"_qs, u"a"_qs}, {u"a"_qs, u"b"_qs, u"A"_qs}},
    };
    std::mt19937 random(20011);
    for (const auto& [markers, pieces] : alphabets) {
        for (int i = 0; i < 5000; ++i) {
            const QString text = generated(random, pieces);
            QString once = text;
            removeHTMLTagBeginingWith(once, markers.in, markers.out);
            ASSERT_EQ(once, removedWithRestarts(text, markers.in, markers.out)) << qPrintable(text);
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
    for (const Case& span :
         {Case{u"<style"_qs, u"</style>"_qs}, Case{u"<script"_qs, u"</script>"_qs}, Case{u"<a "_qs, u"</a>"_qs},
          Case{u"<!--"_qs, u"-->"_qs}, Case{u"<form"_qs, u"</form>"_qs}})
        plain = removedWithRestarts(plain, span.in, span.out);
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
        {u"<"_qs, u">"_qs, u"\""_qs, u"x"_qs, u"<i>"_qs, u"eight or more"_qs},
        {u" "_qs, u"\t"_qs, u"\n"_qs, u"<BR>"_qs, u"<br>"_qs, u"&nbsp;"_qs, u"<a"_qs, u"<p>"_qs, u"</a>"_qs, u"- "_qs,
         u"-"_qs, u"\v"_qs, u"&"_qs},
        {u"<a "_qs, u"<A>"_qs, u"</a>"_qs, u"<!--"_qs, u"-->"_qs, u"<body"_qs, u"<script"_qs, u"</script>"_qs,
         u"<b title=\"a > b\">"_qs, u"bold"_qs, u"<form>"_qs, u"</form>"_qs, u"<st"_qs, u"yle>"_qs, u"</style>"_qs,
         u"&amp;"_qs, u"\r\n"_qs, u"<font>"_qs},
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
    for (const QString& piece : {u"<"_qs, u"&"_qs, u"<a "_qs, u"<!--"_qs, u"<!-->"_qs, u"&#1"_qs, u"\"<"_qs, u"- "_qs,
                                 u"<style></style>"_qs, u"&;"_qs, u"<scr<script></script>"_qs, u"<b>"_qs}) {
        const QString text = piece.repeated(1'000'000 / piece.size());
        EXPECT_LE(stringByRemovingHTML(text).size(), text.size());
        EXPECT_LE(stringByRemovingTagOnly(text).size(), text.size());
    }
}

} // namespace
} // namespace quarry
