#include "text/PageText.h"

#include "platform/SystemLog.h"
#include "support/FakePageLoader.h"
#include "support/TextTable.h"
#include "text/DeclaredCharset.h"

namespace quarry {
namespace {

using test::FakePageLoader;

const Url address = Url::fromStored(u"http://h/p"_qs);

class PageText : public ::testing::Test {
public:
    PageText()
    {
        setSystemLogSink([this](const QString& line) { lines.append(line); });
    }
    ~PageText() override { setSystemLogSink({}); }

protected:
    QStringList lines;
};

TEST_F(PageText, TheDeclaredCharsetEndsAtAQuoteNotFarBehind)
{
    // A dot stands for the twenty characters that follow.
    const auto declared = [](const QString& page) {
        const QString padded = QString(page).replace(u'.', QString(20, u' '));
        const auto found = declaredCharset(padded);
        return found ? found->toString() : u"none"_qs;
    };
    expectAll(declared,
              u"content=\"text/html; charset=utf-8\">.→utf-8¦<meta CharSet=\"latin1\">.→latin1¦"
              u"a charset=x\" b charset=\"y\".→x¦a charset=\"\".→¦a;charset=utf-8\".→none¦a charset=utf-8 .→none¦"
              u"a charset=1234567890123456789\"→1234567890123456789¦"
              u"a charset=\"1234567890123456789\"→1234567890123456789¦a charset=123456789012345678\"→none¦"
              u"a charset=12345678901234567890\".→none¦a charset=→none¦a charset=\"→none¦→none");
}

TEST_F(PageText, CharsetsAreLookedUpAndUnknownOnesLogged)
{
    // Number, number in the short table, and what is told of a name that is not known.
    const auto lookedUp = [this](const QString& name) {
        lines.clear();
        const EncodingNumber number = encodingOrEquivalent(name);
        if (!lines.isEmpty()) {
            EXPECT_EQ(lines.takeFirst(), u"Unknown encoding %1. Try to find equivalent.."_qs.arg(name));
        }
        const bool isUnknown = !lines.isEmpty() || name == u"Latin1";
        const QString told = std::exchange(lines, {}).join(u'\n');
        const EncodingNumber inShortTable = encodingOrUtf8(name);
        EXPECT_EQ(lines,
                  isUnknown ? QStringList{u"Unknown encoding %1. Default to UTF-8"_qs.arg(name)} : QStringList());
        return u"%1 %2"_qs.arg(number, 0, 16).arg(inShortTable, 0, 16) + told;
    };
    expectAll(lookedUp,
              u"iso-8859-1→5 5¦ISO8859-1→5 5¦Latin1→5 4¦iso8859-2→9 9¦ISO-8859-2→9 9¦Iso-8859-15→5 5¦utf-8→4 4¦"
              u"Windows-1252→c c¦windows-1250→f f¦WINDOWS-1251→b b¦"
              u"iso-8859-9→80000209 4  -> Found equivalent 2147484169. ¦"
              u"shift_JIS→80000a01 4  -> Found equivalent 2147486209. ¦"
              u"GB2312→80000630 4  -> Found equivalent 2147485232. ¦"
              u"euc-jp→80000920 4  -> Found equivalent 2147485984. ¦windows-8859→c 4  -> Found equivalent 12. ¦"
              u"%1→4 4  -> No equivalent. Default to UTF-8");
}

TEST_F(PageText, BothCleanFormsReadWhatTheBytesOrTheDeclarationTell)
{
    // A page, its type, its text by the first form and by the second, and the lines that both log.
    using Case = std::tuple<QByteArray, QString, std::optional<QString>, std::optional<QString>, int>;
    const QByteArray end = "<p>That is all for today, goodbye.";
    const QString rest = u"caf\u00e9 That is all for today, goodbye."_qs;
    const Case cases[] = {
        {"<title>x</title><body>\xE2\x82\xAC &amp;\r\n<br>\tb&nbsp;</body>", {}, u"\u20ac & b"_qs, u"\u20ac & b"_qs, 0},
        {"<body>\xEF\xBF\xBE a\xEF\xBF\xBF</body>", {}, u"a"_qs, u"a"_qs, 0},
        {"", {}, u""_qs, u""_qs, 0},
        {"<meta charset=\"iso-8859-1\"><body>caf\xE9" + end, {}, std::nullopt, rest, 0},
        {"<meta charset=\"latin1\"><body>caf\xE9" + end, {}, std::nullopt, std::nullopt, 1},
        {"<meta charset=\"windows-8859\"><body>caf\xE9" + end, {}, std::nullopt, std::nullopt, 3},
        {"<meta charset=\"\"><body>caf\xE9" + end, {}, std::nullopt, std::nullopt, 1},
        {"<body>caf\xE9" + end, {}, std::nullopt, std::nullopt, 0},
        {"<body>caf\xE9" + end, u"text/html; charset=latin1"_qs, std::nullopt, rest, 0},
    };
    for (const auto& [page, contentType, clean, clean2, logged] : cases) {
        lines.clear();
        FakePageLoader loader([answer = FakePageLoader::page(page, contentType)](const QByteArray&) { return answer; });
        EXPECT_EQ(cleanStringWithContentsOfURL(loader, address), clean) << page.toPercentEncoding().constData();
        EXPECT_EQ(loader.requests().size(), 1U);
        EXPECT_EQ(cleanStringWithContentsOfURL2(loader, address), clean2) << page.toPercentEncoding().constData();
        EXPECT_EQ(lines.size(), logged) << qPrintable(lines.join(u'\n'));
    }
}

TEST_F(PageText, APageThatCannotBeHadIsNone)
{
    FakePageLoader down([](const QByteArray&) { return FakePageLoader::failure(u"HTTP status 404"_qs, 404); });
    EXPECT_FALSE(cleanStringWithContentsOfURL(down, address));
    EXPECT_FALSE(cleanStringWithContentsOfURL2(down, address));
    EXPECT_FALSE(stringWithContentsOfURL(down, address));
    EXPECT_EQ(stringWithContentsNotCachedOfURL(down, address, utf8Encoding), u""_qs);

    FakePageLoader latin([](const QByteArray&) { return FakePageLoader::page("\xE9"); });
    EXPECT_FALSE(stringWithContentsNotCachedOfURL(latin, address, utf8Encoding));
    EXPECT_EQ(stringWithContentsNotCachedOfURL(latin, address, latin1Encoding), u"\u00e9"_qs);
    EXPECT_EQ(stringWithContentsNotCachedOfURL(latin, Url(), latin1Encoding), u""_qs);
    EXPECT_TRUE(lines.isEmpty());
    EXPECT_FALSE(cleanStringWithContentsOfURL(latin, Url()));
    EXPECT_TRUE(lines.value(0).contains(u"StringExtensions:397: cleanStringWithContentsOfURL assertion failure"));
}

} // namespace
} // namespace quarry
