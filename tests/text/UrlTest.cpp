#include "text/Url.h"

#include <gtest/gtest.h>

namespace quarry {
namespace {

struct Parts {
    QString text, escaped, scheme, host, path, query, extension;
};

TEST(Url, TakesTextApartAndEscapesWhatAnAddressMayNotHold)
{
    const Parts cases[] = {
        {u"http://example.org/a/b.html?q=1#f"_qs,
         {},
         u"http"_qs,
         u"example.org"_qs,
         u"/a/b.html"_qs,
         u"q=1"_qs,
         u"html"_qs},
        {u"https://me:pw@Example.ORG:8080"_qs, {}, u"https"_qs, u"Example.ORG"_qs, {}, {}, {}},
        {u"http://[::1]:80/x[1]"_qs, u"http://[::1]:80/x%5B1%5D"_qs, u"http"_qs, u"[::1]"_qs, u"/x%5B1%5D"_qs, {}, {}},
        {u"http://h/a b%zz%41%"_qs,
         u"http://h/a%20b%25zz%41%25"_qs,
         u"http"_qs,
         u"h"_qs,
         u"/a%20b%25zz%41%25"_qs,
         {},
         {}},
        {u"http://h/\u00e9\U0001F600"_qs,
         u"http://h/%C3%A9%F0%9F%98%80"_qs,
         u"http"_qs,
         u"h"_qs,
         u"/%C3%A9%F0%9F%98%80"_qs,
         {},
         {}},
        {u"http://h/#a#b"_qs, u"http://h/#a%23b"_qs, u"http"_qs, u"h"_qs, u"/"_qs, {}, {}},
        {u"/url?q=http://x.org/&sa=U"_qs, {}, {}, {}, u"/url"_qs, u"q=http://x.org/&sa=U"_qs, {}},
        {u"mailto:a@b.c"_qs, {}, u"mailto"_qs, {}, u"a@b.c"_qs, {}, u"c"_qs},
        {u"http://m\u00fcnchen.de/"_qs,
         u"http://m%C3%BCnchen.de/"_qs,
         u"http"_qs,
         u"m%C3%BCnchen.de"_qs,
         u"/"_qs,
         {},
         {}},
        {u"http:///only/path.tar.gz/"_qs, {}, u"http"_qs, {}, u"/only/path.tar.gz/"_qs, {}, u"gz"_qs},
        {u"http://a.pdf/.profile?x.pdf"_qs, {}, u"http"_qs, u"a.pdf"_qs, u"/.profile"_qs, u"x.pdf"_qs, {}},
    };
    for (const Parts& c : cases) {
        const std::optional<Url> url = Url::fromText(c.text);
        ASSERT_TRUE(url) << qPrintable(c.text);
        EXPECT_EQ(url->absoluteString(), c.escaped.isEmpty() ? c.text : c.escaped);
        EXPECT_EQ(url->scheme(), c.scheme) << qPrintable(c.text);
        EXPECT_EQ(url->host(), c.host) << qPrintable(c.text);
        EXPECT_EQ(url->path(), c.path) << qPrintable(c.text);
        EXPECT_EQ(url->query(), c.query) << qPrintable(c.text);
        EXPECT_EQ(url->pathExtension(), c.extension) << qPrintable(c.text);
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
    const std::pair<QString, QString> cases[] = {
        {u"g:h"_qs, u"g:h"_qs},
        {u"g"_qs, u"http://a/b/c/g"_qs},
        {u"./g/"_qs, u"http://a/b/c/g/"_qs},
        {u"/g"_qs, u"http://a/g"_qs},
        {u"//g"_qs, u"http://g"_qs},
        {u"?y"_qs, u"http://a/b/c/d;p?y"_qs},
        {u"g?y#s"_qs, u"http://a/b/c/g?y#s"_qs},
        {u"#s"_qs, u"http://a/b/c/d;p?q#s"_qs},
        {u""_qs, u"http://a/b/c/d;p?q"_qs},
        {u"."_qs, u"http://a/b/c/"_qs},
        {u"../.."_qs, u"http://a/"_qs},
        {u"../../../g"_qs, u"http://a/g"_qs},
        {u"/./g/../h"_qs, u"http://a/h"_qs},
        {u"g.."_qs, u"http://a/b/c/g.."_qs},
        {u"a b"_qs, u"http://a/b/c/a%20b"_qs},
    };
    for (const auto& [reference, expected] : cases) {
        const std::optional<Url> url = Url::resolved(base, reference);
        ASSERT_TRUE(url) << qPrintable(reference);
        EXPECT_EQ(url->absoluteString(), expected);
    }
    EXPECT_EQ(Url::resolved(Url::fromStored(u"http://a"_qs), u"x"_qs)->absoluteString(), u"http://a/x"_qs);
    EXPECT_FALSE(Url::resolved(base, u"//a b/"_qs));
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
