#include "engines/PageSteps.h"

#include "engines/KnownLinks.h"
#include "text/Data.h"
#include "text/PageText.h"

#include <algorithm>
#include <array>

namespace quarry {

namespace {

constexpr std::chrono::milliseconds PauseBeforePage(100);
constexpr qsizetype ExcerptMargin = 100;

/// Files in which no page text can be found.
bool isNoPage(const QString& extension)
{
    static constexpr std::array<QStringView, 14> Types = {u"pdf", u"xls", u"kmz", u"kml", u"avi", u"mp4",  u"flv",
                                                          u"mov", u"xml", u"gz",  u"zip", u"sit", u"sitx", u"doc"};
    return std::any_of(Types.begin(), Types.end(),
                       [&](QStringView type) { return extension.compare(type, Qt::CaseInsensitive) == 0; });
}

/// The text with what stands around its first occurrence in the page; empty without one.
QString excerptOf(const QString& page, const QString& text)
{
    const qsizetype at = text.isEmpty() ? -1 : page.indexOf(text);
    if (at < 0)
        return {};
    const qsizetype begin = std::max<qsizetype>(0, at - ExcerptMargin);
    const qsizetype end = std::min(page.size(), at + text.size() + ExcerptMargin);
    return page.mid(begin, end - begin);
}

} // namespace

ResultList restrictResults(const QueryFields& query, const ResultList& records, const QString& text,
                           ResultPageLoaders& loaders, Pauser& pauser, const MergeHooks& hooks)
{
    ResultList kept;
    const KnownLinks known(query._currentResult.value_or(ResultList()));
    for (const ResultRecord& record : records) {
        const std::optional<Url> address = record.url();
        if (!address || known.contains(*address))
            continue;
        if (query._isSuscribedToBlacklist && hooks.isBlackListed && hooks.isBlackListed(record))
            continue;
        if (!pauser.pause(PauseBeforePage))
            break;
        if (isNoPage(address->pathExtension()))
            continue;
        const auto page = cleanStringWithContentsOfURL(loaders.loaderFor(record), *address);
        if (const QString excerpt = excerptOf(page.value_or(QString()), text); !excerpt.isEmpty())
            kept.append(record.withTextFromPage(excerpt));
    }
    return kept;
}

ResultList refreshChecksumOfItems(const ResultList& records, ResultPageLoaders& loaders, const Pauser& pauser)
{
    ResultList digested = records;
    for (ResultRecord& record : digested) {
        if (pauser.isStopped())
            break;
        const std::optional<Url> address = record.url();
        if (!address || address->isEmpty())
            continue;
        if (const auto page = stringWithContentsOfURL(loaders.loaderFor(record), *address))
            record = record.withChecksum(md5sum(page->text));
    }
    return digested;
}

} // namespace quarry
