#pragma once

#include "platform/Date.h"
#include "platform/FileStore.h"
#include "text/PageDecoding.h"

#include <QMap>
#include <QString>

#include <optional>

namespace quarry {

/// The result pages of one query that were fetched within the last six hours, as files in the query's cache folder:
/// "Cache.qsidx" says which file holds which address, each "NAME.qspagecache" holds one page. See docs/page-cache.md.
///
/// Opened for one run of a service and closed after it; used by one thread, and by one cache object a query at a
/// time. A file that is missing, damaged or cannot be written costs a page of the cache and nothing else. Names that
/// an index gives are used only if they are plain: an index cannot lead out of the folder.
class PageCache final {
public:
    /// Opens the cache of a query, making its folder. A cache that was started more than six hours before now, or at
    /// no credible time, is emptied. An empty caches folder or a UUID that is no plain name: nothing is cached.
    PageCache(FileStore& files, const QString& cachesFolder, const QString& queryUuid, Date now);

    /// The page that was stored under an address; none when it is not there or cannot be read.
    [[nodiscard]] std::optional<DecodedPage> page(const QString& address) const;
    /// Writes the page's file and remembers it for the index.
    void store(const QString& address, const DecodedPage& page);
    /// Writes the index if anything was stored.
    void close(Date now);

private:
    void readIndex(Date now);
    void removeFiles() const;
    [[nodiscard]] QString pageFile(const QString& name) const;

    FileStore& _files;
    QString _folder;               ///< Empty: nothing is cached.
    QMap<QString, QString> _names; ///< Address to page name.
    /// When the cache was started; none: it starts with this run.
    std::optional<Date> _started;
    bool _changed = false;
};

} // namespace quarry
