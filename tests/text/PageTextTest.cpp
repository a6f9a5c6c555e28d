#include "text/PageText.h"

#include "platform/SystemLog.h"
#include "support/FakePageLoader.h"
#include "text/DeclaredCharset.h"

#include <QStringList>

#include <gtest/gtest.h>

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
    struct Case {
        QString page;
        std::optional<QString> charset;
    };
    const QString rest = u"                    "_qs; // 20
    const Case cases[] = {
        {u"content=\"text/html; charset=utf-8\">"_qs + rest, u"utf-8"_qs},
        {u"<meta CharSet=\"latin1\">"_qs + rest, u"latin1"_qs},
        {u"a charset=x\" b charset=\"y\""_qs + rest, u"x"_qs},
        {u"a charset=\"\""_qs + rest, u""_qs},
        {u"a;charset=utf-8\""_qs + rest, std::nullopt},
        {u"a charset=utf-8 "_qs + rest, std::nullopt},
        {u"a charset=1234567890123456789\""_qs, u"1234567890123456789"_qs},
        {u"a charset=\"1234567890123456789\""_qs, u"1234567890123456789"_qs},
        {u"a charset=123456789012345678\""_qs, std::nullopt},
        {u"a charset=12345678901234567890\""_qs + rest, std::nullopt},
        {u"a charset="_qs, std::nullopt},
        {u"a charset=\""_qs, std::nullopt},
        {u""_qs, std::nullopt},
    };
    for (const Case& c : cases) {
        const auto found = declaredCharset(c.page);
        EXPECT_EQ(found.has_value(), c.charset.has_value()) << qPrintable(c.page);
        EXPECT_EQ(found.value_or(u""), c.charset.value_or(QString())) << qPrintable(c.page);
    }
}

TEST_F(PageText, CharsetsAreLookedUpAndUnknownOnesLogged)
{
    struct Case {
        QString name;
        EncodingNumber number;
        EncodingNumber inShortTable;
        QStringList lines;
    };
    const auto equivalent = [](const QString& name, const char* number) {
        return QStringList{u"Unknown encoding %1. Try to find equivalent.."_qs.arg(name),
                           u"  -> Found equivalent %1. "_qs.arg(QLatin1String(number))};
    };
    const Case cases[] = {
        {u"iso-8859-1"_qs, 5, 5, {}},
        {u"ISO8859-1"_qs, 5, 5, {}},
        {u"Latin1"_qs, 5, 4, {}},
        {u"iso8859-2"_qs, 9, 9, {}},
        {u"ISO-8859-2"_qs, 9, 9, {}},
        {u"Iso-8859-15"_qs, 5, 5, {}},
        {u"utf-8"_qs, 4, 4, {}},
        {u"Windows-1252"_qs, 12, 12, {}},
        {u"windows-1250"_qs, 15, 15, {}},
        {u"WINDOWS-1251"_qs, 11, 11, {}},
        {u"iso-8859-9"_qs, 0x80000209, 4, equivalent(u"iso-8859-9"_qs, "2147484169")},
        {u"shift_JIS"_qs, 0x80000A01, 4, equivalent(u"shift_JIS"_qs, "2147486209")},
        {u"GB2312"_qs, 0x80000630, 4, equivalent(u"GB2312"_qs, "2147485232")},
        {u"euc-jp"_qs, 0x80000920, 4, equivalent(u"euc-jp"_qs, "2147485984")},
        {u"windows-8859"_qs, 12, 4, equivalent(u"windows-8859"_qs, "12")},
        {u"%1"_qs,
         4,
         4,
         {u"Unknown encoding %1. Try to find equivalent.."_qs, u"  -> No equivalent. Default to UTF-8"_qs}},
    };
    for (const Case& c : cases) {
        lines.clear();
        EXPECT_EQ(encodingOrEquivalent(c.name), c.number) << qPrintable(c.name);
        EXPECT_EQ(lines, c.lines) << qPrintable(lines.join(u'\n'));
        lines.clear();
        EXPECT_EQ(encodingOrUtf8(c.name), c.inShortTable) << qPrintable(c.name);
        const bool isUnknown = !c.lines.isEmpty() || c.name == u"Latin1";
        EXPECT_EQ(lines,
                  isUnknown ? QStringList{u"Unknown encoding %1. Default to UTF-8"_qs.arg(c.name)} : QStringList());
    }
}

TEST_F(PageText, BothCleanFormsReadWhatTheBytesOrTheDeclarationTell)
{
    struct Case {
        QByteArray page;
        QString contentType;
        std::optional<QString> clean;  ///< By the first form.
        std::optional<QString> clean2; ///< By the second.
        int logged;                    ///< Lines of both.
    };
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
    for (const Case& c : cases) {
        lines.clear();
        FakePageLoader loader([&](const QByteArray&) { return FakePageLoader::page(c.page, c.contentType); });
        EXPECT_EQ(cleanStringWithContentsOfURL(loader, address), c.clean) << c.page.toPercentEncoding().constData();
        EXPECT_EQ(loader.requests().size(), 1U);
        EXPECT_EQ(cleanStringWithContentsOfURL2(loader, address), c.clean2) << c.page.toPercentEncoding().constData();
        EXPECT_EQ(lines.size(), c.logged) << qPrintable(lines.join(u'\n'));
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
