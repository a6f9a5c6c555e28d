#include "text/Url.h"

#include "support/TextTable.h"

namespace quarry {
namespace {

TEST(Url, TakesTextApartAndEscapesWhatAnAddressMayNotHold)
{
    // Text, what becomes of it where that differs, scheme, host, path, query and extension.
    for (const QStringView row : {
             u"http://example.org/a/b.html?q=1#f¦¦http¦example.org¦/a/b.html¦q=1¦html",
             u"https://me:pw@Example.ORG:8080¦¦https¦Example.ORG¦¦¦",
             u"http://[::1]:80/x[1]¦http://[::1]:80/x%5B1%5D¦http¦[::1]¦/x%5B1%5D¦¦",
             u"http://h/a b%zz%41%¦http://h/a%20b%25zz%41%25¦http¦h¦/a%20b%25zz%41%25¦¦",
             u"http://h/\u00e9\U0001F600¦http://h/%C3%A9%F0%9F%98%80¦http¦h¦/%C3%A9%F0%9F%98%80¦¦",
             u"http://h/#a#b¦http://h/#a%23b¦http¦h¦/¦¦",
             u"/url?q=http://x.org/&sa=U¦¦¦¦/url¦q=http://x.org/&sa=U¦",
             u"mailto:a@b.c¦¦mailto¦¦a@b.c¦¦c",
             u"http://m\u00fcnchen.de/¦http://m%C3%BCnchen.de/¦http¦m%C3%BCnchen.de¦/¦¦",
             u"http:///only/path.tar.gz/¦¦http¦¦/only/path.tar.gz/¦¦gz",
             u"http://a.pdf/.profile?x.pdf¦¦http¦a.pdf¦/.profile¦x.pdf¦",
         }) {
        QStringList parts = row.toString().split(u'¦');
        const QString text = parts.takeFirst();
        if (parts[0].isEmpty())
            parts[0] = text;
        const std::optional<Url> url = Url::fromText(text);
        ASSERT_TRUE(url) << qPrintable(text);
        EXPECT_EQ((QStringList{url->absoluteString(), url->scheme().toString(), url->host().toString(),
                               url->path().toString(), url->query().toString(), url->pathExtension()}),
                  parts);
    }
}

TEST(Url, RefusesWhatHasNoReadableHostOrPortButKeepsItWhenStored)
{
    for (const QString& text :
         {u"http://a b/"_qs, u"http://h:port/"_qs, u"http://h:70000/"_qs, u"http://h:99999999999999/"_qs,
          u"http://[::1/"_qs, u"http://[x]/"_qs, u"http://h\\x/"_qs, u"//<b>/"_qs}) {
        EXPECT_FALSE(Url::fromText(text)) << qPrintable(text);
        EXPECT_EQ(Url::fromStored(text).absoluteString(), text);
        EXPECT_TRUE(Url::fromStored(text).host().isEmpty()) << qPrintable(text);
    }
    EXPECT_FALSE(Url::fromText(QString()));
    EXPECT_EQ(Url::fromStored(u"http://h/a b"_qs).path(), u"/a b");
    EXPECT_EQ(Url::fromStored(u"http://h/a b"_qs), Url::fromStored(u"http://h/a b"_qs));
    EXPECT_FALSE(Url::fromStored(u"http://h/a b"_qs) == *Url::fromText(u"http://h/a b"_qs));
}

TEST(Url, ResolvesReferencesAsRfc3986Does)
{
    const Url base = Url::fromStored(u"http://a/b/c/d;p?q#f"_qs);
    const auto resolved = [&base](const QString& reference) {
        const std::optional<Url> url = Url::resolved(base, reference);
        return url ? QString(url->absoluteString()) : u"none"_qs;
    };
    expectAll(resolved, u"g:h→g:h¦g→http://a/b/c/g¦./g/→http://a/b/c/g/¦/g→http://a/g¦//g→http://g¦"
                        u"?y→http://a/b/c/d;p?y¦g?y#s→http://a/b/c/g?y#s¦#s→http://a/b/c/d;p?q#s¦→http://a/b/c/d;p?q¦"
                        u".→http://a/b/c/¦../..→http://a/¦../../../g→http://a/g¦/./g/../h→http://a/h¦"
                        u"g..→http://a/b/c/g..¦a b→http://a/b/c/a%20b¦//a b/→none");
    EXPECT_EQ(Url::resolved(Url::fromStored(u"http://a"_qs), u"x"_qs)->absoluteString(), u"http://a/x"_qs);
}

TEST(Url, GoesOverTheWireAsVisibleAsciiWithoutFragment)
{
    EXPECT_EQ(Url::fromStored(u"http://u@m\u00fcnchen.de:8/\u00e9 \r\nX: y?\u20ac#f"_qs).requestBytes(),
              "http://u@xn--mnchen-3ya.de:8/%C3%A9%20%0D%0AX:%20y?%E2%82%AC");
    EXPECT_EQ(Url::fromText(u"http://M\u00dcnchen.de/"_qs)->requestBytes(), "http://xn--mnchen-3ya.de/");
    EXPECT_EQ(Url::fromStored(u"http://[::1]:80/"_qs).requestBytes(), "http://[::1]:80/");
}

TEST(PercentEscapes, AreUpperCaseCoverReservedMarksOnlyWhereAskedAndComeUndone)
{
    EXPECT_EQ(percentEscaped(u"http://h/?q=a%20b#\"c\"[\u00e9]_&^"_qs),
              u"http://h/?q=a%2520b%23%22c%22%5B%C3%A9%5D_&%5E"_qs);
    EXPECT_EQ(percentEscaped(QString(QChar(0xD800))), u"%EF%BF%BD"_qs);
    EXPECT_EQ(percentUnescaped(u"%c3%A9%zz%4%"_qs), u"\u00e9%zz%4%"_qs);
    EXPECT_EQ(percentUnescaped(u"%ff"_qs), std::nullopt);
    EXPECT_EQ(percentUnescaped(u"\u00e9"_qs), u"\u00e9"_qs);
}

} // namespace
} // namespace quarry
