#include "text/PageDecoding.h"

#include "support/TextTable.h"

namespace quarry {
namespace {

constexpr EncodingNumber shiftJis = 0x80000A01;
constexpr EncodingNumber utf16 = 10;

const QString russian =
    u"\u0421\u044a\u0435\u0448\u044c \u0435\u0449\u0451 \u044d\u0442\u0438\u0445 \u043c\u044f\u0433\u043a\u0438\u0445 "
    "\u0444\u0440\u0430\u043d\u0446\u0443\u0437\u0441\u043a\u0438\u0445 \u0431\u0443\u043b\u043e\u043a, \u0434\u0430 "
    "\u0432\u044b\u043f\u0435\u0439 \u0447\u0430\u044e. \u041f\u043e\u0433\u043e\u0434\u0430 \u0431\u044b\u043b\u0430 "
    "\u043f\u0440\u0435\u043a\u0440\u0430\u0441\u043d\u0430\u044f."_qs;
const QString japanese =
    u"\u3053\u308c\u306f\u65e5\u672c\u8a9e\u306e\u6587\u7ae0\u3067\u3059\u3002\u6771\u4eac\u306e\u5929\u6c17"
    "\u306f\u3044\u3044\u3067\u3059\u306d\u3002\u691c\u7d22\u7d50\u679c\u306e\u30da\u30fc\u30b8\u3002"_qs;

TEST(PageDecoding, AResultPageIsDecodedByTheFirstDeclarationThatConverts)
{
    using Case = std::tuple<QByteArray, QString, QString, EncodingNumber>;
    const QString accented = u"caf\u00e9"_qs;
    const QByteArray latin = "caf\xE9";
    const QByteArray utf8 = "caf\xC3\xA9";
    const QByteArray meta = "<meta http-equiv=x content='text/html; charset=iso8859-2'>";
    const QByteArray faulty = utf8.repeated(3) + '\xE9';
    const Case cases[] = {
        {"\xEF\xBB\xBF" + utf8, u"text/html; charset=latin1"_qs, accented, 4},
        {QByteArray("\xFF\xFE\xE9\0", 4), u"text/html; charset=utf-8"_qs, u"\u00e9"_qs, utf16},
        {QByteArray("\xFE\xFF\0\xE9", 4), {}, u"\u00e9"_qs, utf16},
        {utf8, u"text/html;Charset = \"UTF-8\"; x"_qs, accented, 4},
        {latin, u"text/html; charset=iso-8859-1"_qs, accented, 5},
        {"\x93" + latin, u"text/html; charset=Latin1"_qs, u"\u201c"_qs + accented, 12},
        {meta + "\xB1", u"text/html"_qs, QString::fromLatin1(meta) + u"\u0105"_qs, 9},
        {meta + utf8, u"text/html; charset=UTF8"_qs, QString::fromLatin1(meta) + accented, 4},
        {meta + "\xB1", u"text/html; charset=utf-8"_qs, QString::fromLatin1(meta) + u"\u0105"_qs, 9},
        {"<!--" + meta + "-->" + utf8, u"text/html; charset=nonsense"_qs,
         u"<!--"_qs + QString::fromLatin1(meta) + u"-->"_qs + accented, 4},
        {"<META name=a><meta charset=utf-16>" + utf8, {}, u"<META name=a><meta charset=utf-16>"_qs + accented, 4},
        {"<?xml version='1.0' encoding='windows-1250'?>\xB9",
         {},
         u"<?xml version='1.0' encoding='windows-1250'?>\u0105"_qs,
         15},
        {utf8, {}, accented, 4},
        {latin, u"text/html; charset=utf-8"_qs, accented, 12},
        {faulty, u"text/html; charset=utf-8"_qs, accented.repeated(3) + QChar(QChar::ReplacementCharacter), 4},
        {toEncoding(japanese, shiftJis), {}, japanese, shiftJis},
        {toEncoding(russian, 11), u"text/html; charset=us-ascii"_qs, russian, 11},
        {toEncoding(japanese, 0x80000820), {}, japanese, 0x80000820},
        {{}, {}, {}, 4},
    };
    for (const auto& [page, contentType, text, encoding] : cases) {
        const DecodedPage decoded = decodeResultPage(page, contentType);
        EXPECT_EQ(decoded.text, text) << page.toPercentEncoding().constData() << '\n' << qPrintable(decoded.text);
        EXPECT_EQ(decoded.encoding, encoding) << page.toPercentEncoding().constData();
    }
}

TEST(PageDecoding, EveryByteStringIsSomeResultPage)
{
    QByteArray all;
    for (int i = 0; i < 256; ++i)
        all += static_cast<char>(i);
    for (const QString& charset : {u"utf-8"_qs, u"utf-16"_qs, u"shift_jis"_qs, u"windows-1252"_qs, u""_qs})
        EXPECT_FALSE(decodeResultPage(all, u"text/html; charset="_qs + charset).text.isEmpty()) << qPrintable(charset);
}

TEST(PageDecoding, OtherPagesNeedCertaintyFromTheirBytes)
{
    EXPECT_EQ(decodePageByBytes("\xEF\xBB\xBF\xC3\xA9")->text, u"\u00e9"_qs);
    EXPECT_EQ(decodePageByBytes("plain")->encoding, 4U);
    EXPECT_EQ(decodePageByBytes(toEncoding(japanese, shiftJis))->text, japanese);
    EXPECT_EQ(decodePageByBytes(toEncoding(russian, 11))->text, russian);
    EXPECT_FALSE(decodePageByBytes("one \xE9 says nothing"));
    EXPECT_FALSE(decodePageByBytes("\x80\x81\xFF\xFE\x01\x9F\xA0\x85\x90\x91\x80\x81\xFF\xFE\x01\x9F\xA0\x85"));
}

TEST(PageDecoding, CharsetNamesHaveTheirNumbers)
{
    const auto number = [](const QString& name) { return QString::number(encodingForCharset(name).value_or(0), 16); };
    expectAll(number, u" UTF8 →4¦Latin1→5¦iso8859-2→9¦cp1251→b¦windows-1252→c¦windows-1250→f¦iso-8859-9→80000209¦"
                      u"GB2312→80000630¦gbk→80000631¦euc-jp→80000920¦sjis→80000a01¦koi8-r→80000a02¦big5→80000a03¦"
                      u"iso-8859-15→8000020f¦macintosh→80000000");
    EXPECT_FALSE(encodingForCharset(u"") || encodingForCharset(u"windows-8859"));
}

TEST(PageDecoding, TextIsRereadAsUtf8ThroughThePagesEncoding)
{
    const QString accented = u"caf\u00e9"_qs;
    EXPECT_EQ(rereadAsUtf8(accented, 4), accented);
    EXPECT_EQ(rereadAsUtf8(accented, 4)->constData(), accented.constData());
    EXPECT_EQ(rereadAsUtf8(u"a"_qs + QChar(0xD800), 4), u"a?"_qs);
    EXPECT_EQ(rereadAsUtf8(u"plain"_qs, 12), u"plain"_qs);
    EXPECT_EQ(rereadAsUtf8(accented, 5), std::nullopt);
    EXPECT_EQ(rereadAsUtf8(u"\u00c3\u00a9\u3042"_qs, 5), u"\u00e9?"_qs);
    EXPECT_EQ(rereadAsUtf8(u"\u3042"_qs, 11), u"?"_qs);
    EXPECT_EQ(toEncoding(u"\u3042\U0001F600\u00e9"_qs, shiftJis), "\x82\xA0??");
    EXPECT_EQ(toEncoding(accented, 12345), accented.toUtf8());
}

TEST(PageDecoding, DecodingWithANumberIsStrict)
{
    EXPECT_EQ(fromEncoding("\xE9", 4), std::nullopt);
    EXPECT_EQ(fromEncoding("\x82", shiftJis), std::nullopt);
    EXPECT_EQ(fromEncoding("\x82\xA0", shiftJis), u"\u3042"_qs);
    EXPECT_EQ(fromEncoding("\x82\xA0", 8), u"\u3042"_qs);
    EXPECT_EQ(fromEncoding("x", 12345), std::nullopt);
    EXPECT_EQ(strictUtf8("\xED\xA0\x80"), std::nullopt);
}

} // namespace
} // namespace quarry
