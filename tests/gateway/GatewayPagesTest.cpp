#include "gateway/RunningGateway.h"
#include "support/TextTable.h"

namespace quarry {

namespace {

class GatewayPages : public testing::Test {
protected:
    void write(const char* name, const QByteArray& bytes) const { gateway.write(QString::fromUtf8(name), bytes); }
    RunningGateway gateway;
};

TEST_F(GatewayPages, WhatIsAskedForIsFoundAndNothingElse)
{
    write("tea/green.txt", "Green tea\n\nLeaves steamed, then dried. Brew at eighty degrees.\n");
    write("tea/black.txt", "Black tea\n\nLeaves dried, then left to oxidise; brew with boiling water.\n");
    write("coffee/filter.md", "# Filter coffee\n\nGround beans; brew with water just off the boil. C++ is no drink.\n");
    write("coffee.txt", "Caf\u00E9 culture\n\nWhere people drink it.\n");
    gateway.start();
    const QByteArray host = gateway.base().mid(7);
    const auto initials = [this, &host](const QString& parameters) {
        QString names = gateway.found(parameters.toUtf8().replace("HOST", host));
        names.replace(u"coffee.txt"_qs, u"A"_qs).replace(u"coffee/filter.md"_qs, u"F"_qs);
        return names.replace(u"tea/black.txt"_qs, u"B"_qs).replace(u"tea/green.txt"_qs, u"G"_qs).remove(u' ');
    };
    expectAll(initials,
              u"query=brew→FBG¦query=BREW+leaves→BG¦query=brew%20leaves→BG¦query=%22leaves+dried%22→B¦"
              u"query=%22dried+leaves%22→¦query=%22leaves+dried→B¦query=leaves+-oxidise→G¦query=-oxidise→¦"
              u"query=steamed+OR+oxidise→BG¦query=brew+steamed+OR+ground→FG¦query=OR+steamed+OR→G¦query=cafe→A¦"
              u"query=caf%C3%A9→A¦query=c%2B%2B→F¦query=brew+%26+-+!→FBG¦query=%F0%9F%98%80+brew→FBG¦query=!!!→¦"
              u"query=→¦→¦query=leaves+NEAR(dried)→¦query=title:green→¦query=gree*→¦query=%22%22%22leaves%22→BG¦"
              u"query=%FF%FEleaves%00→BG¦query=brew+site:tea→BG¦query=brew+site:te→¦query=brew+site:/doc/tea/→BG¦"
              u"query=brew+site:HOST→FBG¦query=brew+site:http://HOST/doc/coffee→F¦"
              u"query=brew+site:localhost/doc/tea/green.txt→G¦query=brew+site:www.example.com→¦"
              u"query=brew+SITE:tea+site:coffee→¦query=site:tea→BG¦query=site:coffee→F¦query=!+site:coffee→F");
    EXPECT_EQ(gateway.find("query=" + QByteArray(3000, 'a').replace("aaa", "ab+")).size(), 0);
    // The services' own site parameters.
    EXPECT_TRUE(gateway.get("/search?client=x&q=brew&as_sitesearch=coffee").body.contains("1 to 1 of 1"));
    EXPECT_TRUE(gateway.get("/search?ei=UTF-8&b=0&p=brew&vs=" + host + "/doc/tea").body.contains("1 to 2 of 2"));
    EXPECT_TRUE(gateway.get("/search?setmkt=en&first=0&q=nothing").body.contains("No document matches <b>nothing</b>"));
}

TEST_F(GatewayPages, NothingFromOutsideBecomesMarkup)
{
    const char* const hostile =
        "<script>alert(1)</script>\"'><li class=\"g\">&lt;b&gt;</div> needle\n\n<!-- needle\x02\x03 -->\n";
    write("hostile.txt", hostile);
    write("page.html",
          QByteArray("<title>&lt;script&gt;alert(2)&lt;/script&gt; \"'</title><p>needle &lt;script&gt;</p>"));
    write("na<b>\"'&me #1?%41;.txt", "needle in a strange name");
    gateway.start();
    for (const char* target :
         {"/search?q=needle&start=0&client=%3Cscript%3E", "/search?first=0&q=needle", "/search?b=0&p=needle",
          "/search/results?q=needle", "/do/metasearch.pl?query=needle",
          "/do/metasearch.pl?query=%3Cscript%3E%22%27%3E+needle", "/search?start=0&q=%22%3E%3Cscript%3Enothing%27",
          "/doc/hostile.txt", "/%3Cscript%3E", "/doc/%3Cscript%3E"}) {
        const RunningGateway::Page page = gateway.get(target);
        EXPECT_FALSE(page.body.contains("<script")) << target;
        EXPECT_FALSE(page.body.contains("<!-- ")) << target;
        EXPECT_EQ(page.header("Content-Type"), "text/html; charset=utf-8") << target;
        EXPECT_TRUE(page.header("Content-Security-Policy").contains("default-src 'none'")) << target;
    }
    EXPECT_EQ(gateway.get("/search?q=needle&start=0&client=%3Cscript%3E").body.count("<li class=\"g\">"), 3);
    const QStringList found = gateway.find("query=strange");
    ASSERT_EQ(found.size(), 1);
    EXPECT_TRUE(gateway.get("/doc/" + found[0].toUtf8()).body.contains("needle in a strange name"));
}

TEST_F(GatewayPages, DocumentsKeepTheirLettersAndTitles)
{
    using Case = std::tuple<const char*, QByteArray, QByteArray>;
    const QList<Case> cases = {
        {"utf8.txt", "Stra\u00DFe und Weg\n\nmarker", "Stra\u00DFe und Weg"},
        {"latin1.txt",
         "Stra\xDF"
         "e und Steg\n\nmarker",
         "Stra\u00DFe und Steg"},
        {"mark.txt", "\xEF\xBB\xBFMarked title\nmarker", "Marked title"},
        {"utf16.txt", QByteArray("\xFF\xFEW\0i\0d\0e\0\n\0m\0a\0r\0k\0e\0r\0", 24), "Wide"},
        {"plain.md", "\n\n## The *second* heading ##\nmarker", "The *second* heading"},
        {"link.md", "# [Name](http://x/) ![i](y) here\nmarker", "Name i here"},
        {"ruled.txt", "=========\n\nUnder a rule\n=========\nmarker", "Under a rule"},
        {"fields/copyright", "Format: http://x/\nmarker", "copyright (fields)"},
        {"script.sh", "#!/bin/sh\n# Says marker\n", "Says marker"},
        {"empty-title.html", "<title> </title><p>marker", "empty-title.html"},
        {"page.html",
         "<html><head><TITLE>A &amp; B\n &eacute;&#8212;</TITLE><script>var x = '<b>unseen</b>';</script></head>"
         "<body>mar<b>ker</b><!-- <p>unseen --><p>x</p></body></html>",
         "A &amp; B \u00E9\u2014"},
        {"latin1.html", "<meta charset=\"iso-8859-1\"><title>Caf\xE9</title>marker", "Caf\u00E9"},
        {"tags.txt", "<?xml version=\"1.0\"?>\n<x:y>\nmarker", "marker"},
        {"tag.html", "<title>&lt;canvas&gt;</title>marker", "tag.html"},
        {"numbers.txt", "12345\n67890 marker 1\n", "67890 marker 1"},
    };
    for (const auto& [name, content, title] : cases)
        write(name, content);
    gateway.start();
    const QByteArray pages =
        gateway.get("/search?start=0&q=marker").body + gateway.get("/search?start=10&q=marker").body;
    for (const auto& [name, content, title] : cases) {
        const qsizetype link = pages.indexOf("/doc/" + QByteArray(name) + "&amp;");
        ASSERT_GE(link, 0) << name;
        const qsizetype begin = pages.indexOf("\">", link) + 2;
        EXPECT_EQ(pages.mid(begin, pages.indexOf("</a>", begin) - begin), title) << name;
    }
    EXPECT_TRUE(gateway.get("/doc/latin1.txt").body.contains("Stra\u00DFe und Steg"));
    EXPECT_TRUE(gateway.get("/doc/page.html").header("Content-Security-Policy").contains("sandbox"));
    EXPECT_TRUE(gateway.get("/search?q=unseen").body.contains("No document matches"));
    EXPECT_TRUE(gateway.get("/").body.contains("15 documents"));
}

TEST_F(GatewayPages, BigDocumentsAreCutAndStillWhole)
{
    // Cut in the middle of a character, for the index and for the page.
    const QByteArray text = "Big\nmarker " + QByteArray("\u00E9").repeated(qsizetype(3) * 1024 * 1024) + " beyond";
    write("big.txt", text);
    gateway.start();
    EXPECT_EQ(gateway.find("query=marker"), QStringList(QStringLiteral("big.txt")));
    EXPECT_EQ(gateway.find("query=beyond"), QStringList());
    const QByteArray page = gateway.get("/doc/big.txt").body;
    EXPECT_TRUE(page.isValidUtf8());
    EXPECT_TRUE(page.contains("goes on"));
    EXPECT_LT(page.size(), 4 * 1024 * 1024 + 1000);
}

} // namespace

} // namespace quarry
