#include "apps/quarry/OfflineCopier.h"

#include "apps/quarry/Naming.h"
#include "apps/quarry/Output.h"

#include <cstdlib>

namespace quarry {

QString textOf(const CopyCounts& counts)
{
    QString text = counted(counts.copied, QStringLiteral("page"));
    if (counts.withoutText > 0)
        text += QStringLiteral(", %1 without text").arg(counts.withoutText);
    if (counts.unreadable > 0)
        text += QStringLiteral(", %1 could not be read").arg(counts.unreadable);
    if (counts.unnamed > 0)
        text += QStringLiteral(", %1 left out until the next refresh").arg(counts.unnamed);
    return text;
}

OfflineCopier::OfflineCopier(Session& session, const QString& folder, StatusLine& status)
    : _session(session),
      _copier(folder,
              {session.files(), _notifications,
               [&status](const QueryCore& query, qsizetype done, qsizetype all) {
                   status.show(QStringLiteral("%1: %2 of %3 results").arg(shownTitle(query)).arg(done).arg(all));
               }}),
      _watcher([this] { watch(); }), _quitWatch([this] { _signals.request(); })
{
}

OfflineCopier::~OfflineCopier()
{
    _signals.cancel();
    _watcher.join();
}

/// The first request to stop breaks off what is being loaded; at another one the program ends as it is: what is not
/// finished is hidden and swept the next time.
void OfflineCopier::watch()
{
    if (!_signals.wait())
        return;
    _copier.stop();
    if (_signals.waitForNext())
        std::quick_exit(static_cast<int>(Outcome::Exit::Failed));
}

} // namespace quarry
