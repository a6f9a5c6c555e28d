#include "text/Lines.h"

#include "support/TextTable.h"
#include "text/Addresses.h"
#include "text/Data.h"

namespace quarry {
namespace {

TEST(Lines, AreTrimmedAndTakenApart)
{
    expectAll(trim, u"\u00a0\u2003\v\f\u0085\u2028 a b\r\n→a b¦\u3000→");
    expectAll(firstWord, u"\t one two→one¦ one\ttwo →one\ttwo¦→");
    expectAll(firstNonBlankLine, u" \t\n\r \v x y \t\rz→\v x y¦a→a¦ \n\t→");
    EXPECT_TRUE(isBlank(u" \u00a0\n"));
    EXPECT_TRUE(isBlank(u""));
    EXPECT_FALSE(isBlank(u" \u200b"));
}

TEST(Lines, CharacterSearchNeverStartsOnTheLastOne)
{
    EXPECT_EQ(indexOfCharacterInString(u"abca", 'a', 0), 0);
    EXPECT_EQ(indexOfCharacterInString(u"abca", 'a', 1), 3);
    EXPECT_EQ(indexOfCharacterInString(u"abca", 'a', 3), -1);
    EXPECT_EQ(indexOfCharacterInString(u"abca", 'a', 9), -1);
    EXPECT_EQ(indexOfCharacterInString(u"x\u00e9y", '\xe9', 0), 1);
    EXPECT_FALSE(hasCharacter(u"a", 'a'));
    EXPECT_TRUE(hasCharacter(u"ba", 'a'));
    EXPECT_FALSE(hasCharacter(u"", 'a'));
}

TEST(Lines, CompareDigitsByTheirValue)
{
    const QStringView ascending[] = {
        u"", u"2", u"10", u"10a", u"A2x", u"a10", u"a99999999999999999999", u"a100000000000000000000", u"b"};
    for (size_t i = 0; i < std::size(ascending); ++i) {
        for (size_t j = 0; j < std::size(ascending); ++j) {
            const int order = numericCompare(ascending[i], ascending[j]);
            EXPECT_EQ(order, i < j ? -1 : (i > j ? 1 : 0)) << i << ' ' << j;
        }
    }
    EXPECT_EQ(numericCompare(u"File 007", u"file 7"), 0);
}

TEST(Lines, HexadecimalPairsAreReadAsUtf8)
{
    expectAll(hexaToAscii, u" #4a4B →JK¦0541→\x05\u0041¦c3a9→\u00e9¦g1→\x01¦4g→@¦414→A¦4→¦ff→¦→");
}

TEST(Addresses, LoseAndGainComponents)
{
    expectAll(stringByDeletingLastURLComponent, u"http://h/a/b→http://h/a¦http://h/a/→http://h¦http://h/→http://h/¦"
                                                u"http://h→http://h¦a/b→a¦/a→/a¦/→/¦→");
    EXPECT_EQ(stringByAppendingURLComponent(u"http://h"_qs, u"/a"), u"http://h/a"_qs);
    EXPECT_EQ(stringByAppendingURLComponent(u"http://h/"_qs, u"//a"), u"http://h//a"_qs);
    EXPECT_EQ(stringByAppendingURLComponent(QString(), u"/a"), u"a"_qs);
    expectAll(baseURL, u"http://me@h.org:80/a→h.org¦just text→just text¦http://a b/→http://a b/");
    expectAll(convertStringToValidPath, u"a.b/c?d*e\\→a_b_c_d_e\\");
}

TEST(Addresses, ImagesAreMadeAbsolute)
{
    const auto fixed = [](QString text) {
        fixupRelativeImgTags(text, u"http://h/d/page one.html"_qs);
        return text;
    };
    expectAll(fixed, u"<img src=\"a b.png\"><img alt=\"\" src=\"http://x/y z\"><IMG src=\"c\">→"
                     u"<img src=\"http://h/d/a%20b.png\"><img alt=\"\" src=\"http://x/y z\"><IMG src=\"c\">¦"
                     u"<img><img src=\"/c\" src=\"d\"> x→<img><img src=\"http://h/c\" src=\"d\"> x¦"
                     u"<img src=\"open→<img src=\"open¦"
                     u"<img src=\"//a b/\"> src=\"q\"→<img src=\"//a b/\"> src=\"q\"");
}

TEST(Data, IsCompressedToAPlainStreamAndBack)
{
    QByteArray text;
    for (int i = 0; i < 50'000; ++i)
        text += QByteArray::number(i * 7919 % 1000);
    const QByteArray zeros(20'000'000, '\0');
    for (const QByteArray& data : {QByteArray("x"), text, zeros}) {
        const std::optional<QByteArray> packed = compressedData(data);
        ASSERT_TRUE(packed);
        EXPECT_TRUE(decompressedData(*packed) == data);
        // Qt's own format is the same stream behind a length.
        EXPECT_TRUE(qUncompress(QByteArray(4, '\0') + *packed) == data);
        EXPECT_TRUE(decompressedData(qCompress(data, 1).mid(4)) == data);
        EXPECT_EQ(decompressedData(packed->chopped(1)), std::nullopt);
        QByteArray damaged = *packed;
        damaged[damaged.size() - 1] ^= 1;
        EXPECT_EQ(decompressedData(damaged), std::nullopt);
    }
    EXPECT_EQ(compressedData({}), std::nullopt);
    EXPECT_EQ(decompressedData({}), QByteArray());
    EXPECT_EQ(decompressedData("x"), std::nullopt);
    EXPECT_EQ(decompressedData("no zlib stream at all"), std::nullopt);
}

TEST(Data, BombsAreRefused)
{
    const std::optional<QByteArray> packed = compressedData(QByteArray(qsizetype{257} * 1024 * 1024, '\0'));
    ASSERT_TRUE(packed);
    EXPECT_EQ(decompressedData(*packed), std::nullopt);
}

TEST(Data, DigestsAndHexadecimalNumbers)
{
    EXPECT_EQ(hexaString(QByteArray("\x00\x1f\xff", 3)), u"001FFF"_qs);
    EXPECT_EQ(md5sum(QString()), u"d41d8cd98f00b204e9800998ecf8427e"_qs);
    EXPECT_EQ(md5sum(u"\u00e9"_qs), u"66ddcd97cfdeabb2f6fb8a999b4bc76f"_qs);
    const std::pair<QStringView, quint64> numbers[] = {{u"1F", 31}, {u"1f", 31},  {u"1G2", 1},
                                                       {u"", 0},    {u"0x1f", 0}, {u"g", 0}};
    for (const auto& [text, value] : numbers)
        EXPECT_EQ(hexValue(text), value) << qPrintable(text.toString());
}

} // namespace
} // namespace quarry
