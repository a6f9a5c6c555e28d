#include "TreeExtraction.h"

#include "text/Tags.h"

#include <libxml/HTMLparser.h>
#include <libxml/xpath.h>

namespace quarry::bench {

namespace {

template <typename T, void (*Free)(T*)>
struct Freer {
    void operator()(T* object) const { Free(object); }
};
using Document = std::unique_ptr<xmlDoc, Freer<xmlDoc, xmlFreeDoc>>;
using Context = std::unique_ptr<xmlXPathContext, Freer<xmlXPathContext, xmlXPathFreeContext>>;
using Object = std::unique_ptr<xmlXPathObject, Freer<xmlXPathObject, xmlXPathFreeObject>>;
using Expression = std::unique_ptr<xmlXPathCompExpr, Freer<xmlXPathCompExpr, xmlXPathFreeCompExpr>>;

Expression compiled(const char* expression)
{
    return Expression(xmlXPathCompile(reinterpret_cast<const xmlChar*>(expression)));
}

QString contentOf(xmlNode* node)
{
    xmlChar* content = xmlNodeGetContent(node);
    QString text = QString::fromUtf8(reinterpret_cast<const char*>(content));
    xmlFree(content);
    return text;
}

QString firstContent(const Expression& expression, xmlXPathContext* context)
{
    const Object found(xmlXPathCompiledEval(expression.get(), context));
    const bool isThere = found && found->nodesetval && found->nodesetval->nodeNr > 0;
    return isThere ? contentOf(found->nodesetval->nodeTab[0]) : QString();
}

QString withoutRedirect(const QString& link)
{
    const QLatin1String redirect("/url?q=");
    return link.startsWith(redirect) ? link.mid(redirect.size()).section(u'&', 0, 0) : link;
}

} // namespace

struct TreeExtraction::Expressions {
    Expression items, title, link, description;
};

TreeExtraction::TreeExtraction(SearchService service) : _service(service)
{
    switch (service) {
    case SearchService::Google:
        _expressions = std::make_unique<Expressions>(
            Expressions{compiled("//div[@id='res']//li[@class='g']"), compiled(".//h3[@class='r']"),
                        compiled(".//h3[@class='r']//a/@href"), compiled(".//div[@class='s']")});
        break;
    case SearchService::Yahoo:
        _expressions.reset(
            new Expressions{compiled("//div[@id='web']//div[@class='res']"), compiled(".//a[@class='yschttl spt']"),
                            compiled(".//a[@class='yschttl spt']/@href"), compiled(".//div[@class='abstr']")});
        break;
    case SearchService::Bing:
        _expressions = std::make_unique<Expressions>(Expressions{
            compiled("//div[@id='results_container']//div[@class='sa_cc']"), compiled(".//div[@class='sb_tlst']"),
            compiled(".//div[@class='sb_tlst']//a/@href"), compiled(".//p")});
        break;
    default:
        _expressions =
            std::make_unique<Expressions>(Expressions{compiled("//div[@class='result']"), compiled(".//a[@id]"),
                                                      compiled(".//a[@id]/@href"), compiled(".//p[@class='desc']")});
    }
}

TreeExtraction::~TreeExtraction() = default;

ResultList TreeExtraction::records(const QByteArray& page, Date now) const
{
    const Document document(htmlReadMemory(page.constData(), static_cast<int>(page.size()), nullptr, "UTF-8",
                                           HTML_PARSE_RECOVER | HTML_PARSE_NOERROR | HTML_PARSE_NOWARNING |
                                               HTML_PARSE_NONET | HTML_PARSE_COMPACT));
    const Context context(xmlXPathNewContext(document.get()));
    const Object items(xmlXPathCompiledEval(_expressions->items.get(), context.get()));
    ResultList records;
    for (int i = 0; items && items->nodesetval && i < items->nodesetval->nodeNr; ++i) {
        context->node = items->nodesetval->nodeTab[i];
        const auto url = Url::fromText(withoutRedirect(firstContent(_expressions->link, context.get())));
        if (!url)
            continue;
        records.append(ResultRecord()
                           .withEngineId(searchServiceIdentifier(_service))
                           .withRank(i + 1)
                           .withTitle(normalised(firstContent(_expressions->title, context.get())))
                           .withUrl(*url)
                           .withTextFromPage(normalised(firstContent(_expressions->description, context.get())))
                           .withDateOfFind(now)
                           .withChecksum(QString(QLatin1String("")))
                           .withUserSaw(false));
    }
    return records;
}

} // namespace quarry::bench
