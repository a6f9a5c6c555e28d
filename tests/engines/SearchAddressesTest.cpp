#include "engines/SearchAddresses.h"

#include "support/TextTable.h"

namespace quarry {
namespace {

SearchAddresses addresses(const QByteArray& yahooLanguage = "yahooLanguageEmptyForEN", SearchServices services = {})
{
    return SearchAddresses(std::move(services), [yahooLanguage](const QString& key) {
        return key == u"100_Yahoo language URL" ? QString::fromUtf8(yahooLanguage) : u"["_qs + key.left(3) + u"]"_qs;
    });
}

TEST(SearchAddresses, BuildTheTemplates)
{
    const auto address = [at = addresses()](const QString& service) {
        for (const SearchService each : AllSearchServices) {
            if (service.startsWith(searchServiceName(each)))
                return at.searchUrl(each, service.endsWith(u'+'));
        }
        return QString();
    };
    // "+": the beginning of an address of an advanced query.
    expectAll(
        address,
        u"Google→https://www.google.com/search?client=safari&rls=[100]&ie=UTF-8&oe=UTF-8&start=^start_&q=^query_¦"
        u"Google+→https://www.google.com/search?client=safari&rls=[100]&ie=UTF-8&oe=UTF-8&start=^start_¦"
        u"Bing→http://www.bing.com/search?q=^query_&setmkt=[130]&go=&filt=all&first=^start_¦"
        u"Bing+→http://www.bing.com/search?setmkt=[130]&first=^start_¦"
        u"Yahoo→http://search.yahoo.com/search?ei=UTF-8&xargs=0&b=^start_&p=^query_¦"
        u"Exalead→http://www.exalead.fr/search/results?q=^query_&b=^start_&searchlanguages=[100]¦"
        u"Exalead+→http://www.exalead.fr/search/results?mode=allweb&b=^start_&searchlanguages=[100]¦"
        u"Ixquick+→http://www.ixquick.com/do/metasearch.pl?cat=web&cmd=process_search&language=[111]&engine0=v1all"
        u"&ff=1&startat=^start_&query=^query_");
    EXPECT_EQ(address(u"Ixquick"_qs), address(u"Ixquick+"_qs));
    EXPECT_EQ(addresses("fr.").yahooSearchUrl(true), u"http://fr.search.yahoo.com/search?ei=UTF-8&xargs=0&b=^start_");
}

TEST(SearchAddresses, AppendTheFragmentsOfAdvancedQueries)
{
    // A service, how the words are to match, and "+" with a web site.
    const auto fragment = [at = addresses()](const QString& asked) {
        const QStringList parts = asked.split(u' ');
        for (const SearchService service : AllSearchServices) {
            const QString begin = at.searchUrl(service, true);
            const QString all = at.advancedSearchUrl(service, parts[1].left(1).toInt(), asked.endsWith(u'+'));
            if (parts[0] == searchServiceName(service) && all.startsWith(begin))
                return all.mid(begin.size());
        }
        return u"another beginning"_qs;
    };
    expectAll(fragment,
              u"Google 0→¦Google 1→&q=^query_¦Google 2+→&q=\"^query_\"&as_sitesearch=^website_¦"
              u"Google 0+→&as_sitesearch=^website_¦Yahoo 3→&p=\"^query_\"¦Yahoo 1+→&p=^query_&vs=^website_¦"
              u"Bing 3→&q=\"^query_\"¦Bing 3+→&q=^query_+site:^website_¦"
              u"Exalead 1+→&q=\"^query_\"+site:^website_¦Exalead 0+→&q=\"^query_\"+site:^website_¦Ixquick 2+→");
}

TEST(SearchAddresses, AreFilledAndFinished)
{
    EXPECT_EQ(fillSearchUrl(u"h?q=^query_+site:^website_&r=^query_&^x"_qs, u"a^website_"_qs, u"b^query_"_qs),
              u"h?q=a^website_+site:b^query_&r=a^website_&^x");
    const QString filled =
        fillSearchUrl(addresses().googleSearchUrl(true) + u"&q=^query_"_qs, u"a b _&&&&&_ c\u00E9#%"_qs);
    EXPECT_EQ(finishedSearchUrl(filled, 30, true),
              u"https://www.google.com/search?client=safari&rls=%5B100%5D&ie=UTF-8&oe=UTF-8&start=30"
              u"&q=a%20b%20%26%20c%C3%A9%23%25");
    EXPECT_TRUE(finishedSearchUrl(filled, 0, false).contains(u"_&&&&&_"));
}

QByteArray plist(const QByteArray& content)
{
    return QByteArray("<?xml version=\"1.0\" encoding=\"UTF-8\"?><plist version=\"1.0\">") + content + "</plist>";
}

TEST(SearchServices, AreChangedOneAtATime)
{
    const auto loaded = SearchServices::fromPropertyList(
        plist("<dict><key>Yahoo</key><dict><key>host</key><string>127.0.0.1</string><key>port</key>"
              "<integer>8080</integer></dict><key>Google</key><dict><key>scheme</key><string>http</string></dict>"
              "<key>Bing</key><dict><key>enabled</key><false/></dict></dict>"));
    ASSERT_EQ(loaded.error, QString());
    EXPECT_EQ(loaded.services.origin(SearchService::Google), u"http://www.google.com");
    EXPECT_FALSE(loaded.services.isEnabled(SearchService::Bing));
    EXPECT_TRUE(loaded.services.isEnabled(SearchService::Yahoo));
    // Another host has no names by language.
    EXPECT_TRUE(
        addresses("fr.", loaded.services).yahooSearchUrl(false).startsWith(u"http://127.0.0.1:8080/search?ei="));
}

TEST(SearchServices, NameTheFaultOfAFileThatMakesNoSense)
{
    const auto bing = [](const QByteArray& entry) {
        return plist("<dict><key>Bing</key><dict><key>" + entry + "</dict></dict>");
    };
    const std::tuple<QByteArray, const char*> cases[] = {
        {"no property list at all", ""},
        {plist("<array/>"), "must be a dictionary of services"},
        {plist("<dict><key>Gogle</key><dict/></dict>"), "\"Gogle\" is no service"},
        {plist("<dict><key>Bing</key><string>x</string></dict>"), "\"Bing\" must be a dictionary"},
        {bing("hots</key><string>x</string>"), "\"hots\" is not known"},
        {bing("port</key><integer>65536</integer>"), "\"port\" must"},
        {bing("port</key><string>80</string>"), "\"port\" must"},
        {bing("scheme</key><string>file</string>"), "\"scheme\" must"},
        {bing("host</key><string>a/b</string>"), "\"host\" must"},
        {bing("host</key><string>a:80</string>"), "\"host\" must"},
        {bing("enabled</key><integer>2</integer>"), "\"enabled\" must"},
    };
    for (const auto& [file, fault] : cases) {
        const auto loaded = SearchServices::fromPropertyList(file);
        EXPECT_TRUE(loaded.error.startsWith(u"SearchServices.plist: ")) << file.constData();
        EXPECT_TRUE(loaded.error.contains(QLatin1String(fault))) << qPrintable(loaded.error);
        EXPECT_EQ(loaded.services.origin(SearchService::Bing), u"http://www.bing.com");
    }
}

} // namespace
} // namespace quarry
