#include "engines/PageExtraction.h"

#include "engines/HtmlScanning.h"
#include "text/Tags.h"

namespace quarry {

namespace {

using Text = std::optional<QStringView>;

// What a page that was asked for ten results never holds. More would only fill the database, and an expression can take
// the square of an address's length.
constexpr qsizetype MostLinks = 1000;
constexpr qsizetype LongestAddress = 8192;
/// Of a title or description: an element that is not closed runs to the end of the page.
constexpr qsizetype LongestText = 10000;

/// Where an item stands: the title ids of Ixquick are numbered.
struct ItemPlace {
    qint64 start; ///< Offset of the page's first result.
    qint64 index; ///< Among the page's items, from 0.
};

enum class Reread {
    No,          ///< The description's text is taken as it is.
    OrNothing,   ///< Written in the page's encoding and read as UTF-8; no UTF-8: there is no description.
    OrUntouched, ///< The same; no UTF-8: the text as it was.
};

/// How a description becomes a text.
struct DescriptionRules {
    Reread reread = Reread::No;
    bool isSummary = false;
    /// A shorter one counts as none.
    qsizetype minimumLength = 1;
    /// A result that is said to be a PDF gets a text that says so.
    bool namesPdf = false;
};

/// What differs from service to service: where results area, items and the pieces of an item are found. A function
/// that finds nothing returns an empty text.
struct ServiceRules {
    /// The results area's id; a page without any has it nowhere. Empty: the whole page is the area.
    QStringView areaName;
    Text (*resultsArea)(const ScanCopy& page);
    QList<QStringView> (*items)(const ScanCopy& area);
    QStringView (*title)(const ScanCopy& item, const ItemPlace& place);
    QStringView (*description)(const ScanCopy& item);
    QStringView (*link)(const ScanCopy& item, const ScanCopy& title, const ItemPlace& place);
    DescriptionRules descriptionRules;
    bool redirectsLinks = false;
};

QStringView firstOf(const QList<QStringView>& texts)
{
    return texts.isEmpty() ? QStringView(u"") : texts.first();
}

Text divNamed(QStringView name, const ScanCopy& page)
{
    const QStringView found = extractDIVNamed(name, page);
    return found.isEmpty() ? std::nullopt : Text(found);
}

// Pages have shown advertisements in a first area of the same name.
Text googleArea(const ScanCopy& page)
{
    const QList<QStringView> areas = contentsOfTagWithAttribute(u"div", u"id", u"res", page, true);
    return areas.size() == 1 || areas.size() == 2 ? Text(areas.last()) : std::nullopt;
}

constexpr ServiceRules Google = {
    .areaName = u"res",
    .resultsArea = googleArea,
    .items = [](const ScanCopy& area) { return contentsOfTagWithClass(u"li", u"g", area, true); },
    .title = [](const ScanCopy& item,
                const ItemPlace&) { return firstOf(contentsOfTagWithClass(u"h3", u"r", item, true)); },
    .description = [](const ScanCopy& item) { return firstOf(contentsOfTagWithClass(u"div", u"s", item, true)); },
    .link = [](const ScanCopy&, const ScanCopy& title,
               const ItemPlace&) { return targetOfLinkWithClass(std::nullopt, title); },
    .descriptionRules = {.reread = Reread::OrNothing, .isSummary = true, .namesPdf = true},
    .redirectsLinks = true,
};

constexpr QStringView YahooLinkClass = u"yschttl spt";

QStringView yahooLink(const ScanCopy& item, const ScanCopy&, const ItemPlace&)
{
    const QStringView target = targetOfLinkWithClass(YahooLinkClass, item);
    return target.contains(u"yahoo.com/click?") ? targetOfYahooLinkWithClass(YahooLinkClass, item) : target;
}

constexpr ServiceRules Yahoo = {
    .areaName = u"web",
    .resultsArea = [](const ScanCopy& page) { return divNamed(u"web", page); },
    .items = [](const ScanCopy& area) { return contentsOfTagWithClass(u"div", u"res", area, true); },
    .title = [](const ScanCopy& item,
                const ItemPlace&) { return firstOf(contentsOfTagWithClass(u"a", YahooLinkClass, item, true)); },
    .description = [](const ScanCopy& item) { return firstOf(contentsOfTagWithClass(u"div", u"abstr", item, true)); },
    .link = yahooLink,
    .descriptionRules = {.reread = Reread::OrUntouched, .isSummary = true},
};

constexpr ServiceRules Bing = {
    .areaName = u"results_container",
    .resultsArea = [](const ScanCopy& page) { return divNamed(u"results_container", page); },
    .items = [](const ScanCopy& area) { return contentsOfTagWithClass(u"div", u"sa_cc", area, true); },
    .title = [](const ScanCopy& item,
                const ItemPlace&) { return firstOf(contentsOfTagWithClass(u"div", u"sb_tlst", item, true)); },
    .description =
        [](const ScanCopy& item) { return firstOf(contentsOfTagWithClass(u"p", std::nullopt, item, false)); },
    // The first element that has any class.
    .link = [](const ScanCopy& item, const ScanCopy&, const ItemPlace&) { return targetOfLinkWithClass(u"", item); },
    .descriptionRules = {},
};

QString ixquickId(qint64 number)
{
    return QStringLiteral("title_") + QString::number(number);
}

// The first page writes the title's id in apostrophes, the others in double quotes and with another number.
QStringView ixquickTitle(const ScanCopy& item, const ItemPlace& place)
{
    const QString id = ixquickId((place.start | 1) + place.index);
    return firstOf(contentsOfTagWithAttribute(u"a", u"id", id, item, true, place.start == 0 ? u'\'' : u'\0'));
}

constexpr ServiceRules Ixquick = {
    .areaName = {},
    .resultsArea = [](const ScanCopy& page) { return Text(page.text()); },
    .items = extractIxquickFromPage,
    .title = ixquickTitle,
    .description =
        [](const ScanCopy& item) { return firstOf(contentsOfTagWithClass(u"p", u"desc", item, true, u'\'')); },
    .link = [](const ScanCopy& item, const ScanCopy&,
               const ItemPlace& place) { return targetOfLinkWithId(ixquickId(place.index + 1), item, u'\''); },
    .descriptionRules = {.reread = Reread::OrUntouched, .isSummary = true, .minimumLength = 3},
};

const ServiceRules* rulesOf(SearchService service)
{
    switch (service) {
    case SearchService::Google:
        return &Google;
    case SearchService::Yahoo:
        return &Yahoo;
    case SearchService::Bing:
        return &Bing;
    case SearchService::Ixquick:
        return &Ixquick;
    case SearchService::Exalead:
        break;
    }
    return nullptr;
}

/// No longer than a text may be, without half a character at its end.
QString shortened(QString text)
{
    if (text.size() > LongestText)
        text.truncate(text[LongestText - 1].isHighSurrogate() ? LongestText - 1 : LongestText);
    return text;
}

bool holdsLink(QStringView block)
{
    return block.contains(u"href", Qt::CaseInsensitive);
}

/// Whether an area of that name closes where it opens. The scans do not tell such a one from none.
bool hasBareArea(QStringView areaName, QStringView page)
{
    const QString attribute = QStringLiteral("id=\"%1\"").arg(areaName);
    const qsizetype open = page.indexOf(attribute, 0, Qt::CaseInsensitive);
    const qsizetype end = open < 0 ? -1 : page.indexOf(u'>', open);
    return end >= 0 && page.sliced(end + 1).trimmed().startsWith(u"</");
}

QString titleText(QStringView block)
{
    return shortened(normalised(stringByRemovingHTML(stringByRemovingTagOnly(block.toString()))));
}

QString descriptionText(QStringView block, const DescriptionRules& rules, EncodingNumber encoding)
{
    QString text = block.toString();
    if (rules.reread != Reread::No) {
        const auto reread = rereadAsUtf8(text, encoding);
        if (!reread && rules.reread == Reread::OrNothing)
            return {};
        text = reread.value_or(text);
    }
    return rules.isSummary ? summaryTextFromHTML(text) : normalised(stringByRemovingHTML(text));
}

QString descriptionOrPlaceholder(QStringView block, const DescriptionRules& rules, EncodingNumber encoding,
                                 const DescriptionPlaceholders& placeholders)
{
    const QString text = descriptionText(block, rules, encoding);
    if (text.size() < rules.minimumLength)
        return placeholders.noDescription;
    return rules.namesPdf && text.contains(QLatin1String("PDF/Adobe")) ? placeholders.pdfExtract : shortened(text);
}

/// The address of a link's target as it stands in the page; none when it has no host, or is longer than servers take.
std::optional<Url> targetAddress(const QString& target, bool redirectsLinks)
{
    if (target.isEmpty())
        return std::nullopt;
    const bool hasScheme = target.contains(QLatin1String("http://"), Qt::CaseInsensitive) ||
                           target.contains(QLatin1String("https://"), Qt::CaseInsensitive);
    auto url = Url::fromText(hasScheme ? target : QStringLiteral("http://") + stringByRemovingHTML(target));
    if (url && redirectsLinks)
        url = cleanGoogleLink(*url);
    return url && !url->host().isEmpty() && url->absoluteString().size() <= LongestAddress ? url : std::nullopt;
}

} // namespace

QList<QStringView> extractIxquickFromPage(const ScanCopy& page)
{
    return contentsOfTagWithClass(u"div", u"result", page, true, u'\'');
}

ExtractedPage extractPage(SearchService service, DecodedPage page, qint64 start,
                          const DescriptionPlaceholders& placeholders)
{
    ExtractedPage extracted;
    const ServiceRules* rules = rulesOf(service);
    if (rules == nullptr)
        return extracted;
    const ScanCopy& copy = extracted.text.emplace(std::move(page.text));
    const Text areaText = rules->resultsArea(copy);
    // An area that is empty, or stands there too often, is still one.
    extracted.hasResultsArea =
        areaText || copy.text().contains(QString(u'"').append(rules->areaName).append(u'"'), Qt::CaseInsensitive);
    if (!areaText) {
        extracted.hasEmptyArea = hasBareArea(rules->areaName, copy.text());
        return extracted;
    }

    // Of a page that is its own area no part was cut out: it is not made ready a second time.
    const ScanCopy area = rules->areaName.isEmpty() ? copy : copy.part(*areaText);
    qint64 index = -1;
    for (const QStringView itemText : rules->items(area)) {
        if (extracted.links.size() == MostLinks)
            break;
        ++index;
        if (itemText.isEmpty())
            continue;
        ++extracted.items;
        const ItemPlace place{start, index};
        const ScanCopy item = area.part(itemText);
        const QStringView title = rules->title(item, place);
        if (title.isEmpty())
            continue;
        const QString target = rules->link(item, item.part(title), place).toString();
        const auto url = targetAddress(target, rules->redirectsLinks);
        if (!url)
            continue;
        extracted.links.append(
            {titleText(title), *url,
             descriptionOrPlaceholder(rules->description(item), rules->descriptionRules, page.encoding, placeholders)});
    }
    extracted.hasEmptyArea = !rules->areaName.isEmpty() && extracted.items == 0 && !holdsLink(area.text());
    return extracted;
}

} // namespace quarry
