#include "engines/PageExtraction.h"
#include "support/ServicePages.h"
#include "support/TemporaryHome.h"

#include <QDir>

#include <gtest/gtest.h>

// Whole pages of every service, good ones and one for each way a page can be broken. Beside each page stands what is
// to be found in it: a line a link, with title, address and description between tabs.
namespace quarry {
namespace {

const DescriptionPlaceholders placeholders = {u"No description"_qs, u"PDF extract"_qs};

/// "ixquick-good@10.html": the service, a name, and the offset the page was asked for if it is not 0.
struct Fixture {
    QString name;
    SearchService service = SearchService::Google;
    qint64 start = 0;
    QByteArray page;
    QString expected;
};

Fixture fixture(const QString& file)
{
    const QDir folder(QStringLiteral(QUARRY_TEST_DATA "/pages"));
    Fixture f;
    f.name = file.chopped(5);
    for (const SearchService service : AllSearchServices) {
        if (file.startsWith(searchServiceName(service), Qt::CaseInsensitive))
            f.service = service;
    }
    f.start = f.name.section(u'@', 1).toLongLong();
    f.page = test::contentOf(folder.filePath(file));
    f.expected = QString::fromUtf8(test::contentOf(folder.filePath(f.name + u".expected"_qs)));
    return f;
}

QStringList fixtures()
{
    return QDir(QStringLiteral(QUARRY_TEST_DATA "/pages")).entryList({u"*.html"_qs});
}

QString found(const Fixture& f, const QByteArray& page)
{
    QString lines;
    const ExtractedPage extracted = extractPage(f.service, decodeResultPage(page, u"text/html"), f.start, placeholders);
    for (const FoundLink& link : extracted.links)
        lines += link.title + u'\t' + link.url.absoluteString() + u'\t' + link.description + u'\n';
    return lines;
}

/// About a megabyte of what surrounds the results in real pages, traps included.
QByteArray noise()
{
    QByteArray text;
    for (int i = 0; text.size() < 1'000'000; ++i) {
        const QByteArray n = QByteArray::number(i);
        text += "<div class=\"w" + n + "\"><ul>\n\t<li class=\"gb\"><a href=\"/n?" + n + "&amp;x=1\">Caf&eacute; " + n +
                "</a></li>\r\n</ul><!-- <li class=\"g\"><h3 class=\"r\"> --></div><wbr />a < b <!> <h3>x</h3>"
                "<script>if (a<" +
                n + ") document.write('<div id=\"res\"><div id=\"web\">');</script>";
    }
    return text;
}

TEST(ResultPages, GiveWhatIsExpectedOfThem)
{
    ASSERT_GE(fixtures().size(), 50);
    for (const QString& file : fixtures()) {
        const Fixture f = fixture(file);
        EXPECT_EQ(found(f, f.page).toStdString(), f.expected.toStdString()) << qPrintable(f.name);
    }
}

TEST(ResultPages, GiveNoMoreThanAnybodyWants)
{
    const QString longest = u"http://a/"_qs + QString(8183, u'x');
    QStringList addresses{longest + u'x', longest};
    for (int i = 0; i < 2000; ++i)
        addresses.append(u"http://a/%1"_qs.arg(i));
    const DecodedPage page{QString::fromUtf8(test::resultPage(SearchService::Google, addresses))};
    const QList<FoundLink> links = extractPage(SearchService::Google, page, 0, placeholders).links;
    ASSERT_EQ(links.size(), 1000);
    EXPECT_EQ(links.first().url.absoluteString(), longest);
    EXPECT_EQ(links.last().url.absoluteString(), u"http://a/998"_qs);

    const QString unclosed = uR"(<div id="res"><li class="g"><h3 class="r"><a href="http://a/">t</a></h3>)"_qs +
                             uR"(<div class="s">)"_qs + u"x"_qs + u"😀"_qs.repeated(6000);
    const auto found = extractPage(SearchService::Google, DecodedPage{unclosed}, 0, placeholders).links;
    ASSERT_EQ(found.size(), 1);
    EXPECT_EQ(found.first().description, u"x"_qs + u"😀"_qs.repeated(4999));
}

TEST(ResultPages, GiveTheSameWithinAMegabyteOfNoise)
{
    for (const QString& file : fixtures().filter(u"-good"_qs)) {
        const Fixture f = fixture(file);
        QByteArray page = f.page;
        page.insert(page.indexOf("<div id=\"top\""), noise());
        EXPECT_EQ(found(f, page).toStdString(), f.expected.toStdString()) << qPrintable(f.name);
    }
}

// Without the comment a script would begin in one item and end in the other. Each item is scanned by itself.
TEST(ResultPages, JoinNoScriptAcrossItems)
{
    Fixture page;
    page.service = SearchService::Ixquick;
    EXPECT_EQ(found(page, "<div class='result'><a id='title_1' href='http://h/1'>A<scr<!-- -->ipt></a></div>"
                          "<div class='result'><a id='title_2' href='http://h/2'>B</script></a></div>"),
              u"A\thttp://h/1\tNo description\nB\thttp://h/2\tNo description\n");
}

// A page may be cut anywhere: what was whole is found, and nothing goes wrong.
TEST(ResultPages, BearBeingCutAtAnyByte)
{
    for (const QString& file : fixtures().filter(u"-good"_qs)) {
        const Fixture f = fixture(file);
        const QString first = f.expected.section(u'\n', 0, 0);
        bool wasFound = false;
        for (qsizetype length = 0; length < f.page.size(); ++length) {
            const QString lines = found(f, f.page.first(length));
            ASSERT_TRUE(!wasFound || lines.startsWith(first)) << qPrintable(f.name) << length;
            wasFound = !first.isEmpty() && lines.startsWith(first + u'\n');
        }
        EXPECT_EQ(wasFound, !first.isEmpty());
    }
}

} // namespace
} // namespace quarry
