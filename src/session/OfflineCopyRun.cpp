#include "session/OfflineCopyRun.h"

#include <utility>

namespace quarry {

OfflineCopyRun::OfflineCopyRun(Parts parts, std::function<void()> changed)
    : _parts(std::move(parts)), _changed(std::move(changed)), _alive(std::make_shared<OfflineCopyRun*>(this))
{
}

OfflineCopyRun::~OfflineCopyRun()
{
    *_alive = nullptr;
    if (_copier)
        _copier->stop();
    _worker.stop();
}

void OfflineCopyRun::onMain(const std::function<void(OfflineCopyRun& run)>& call)
{
    _parts.timers.post([alive = _alive, call] {
        if (*alive)
            call(**alive);
    });
}

void OfflineCopyRun::start(const QList<QueryCorePtr>& queries, const QString& folder)
{
    if (_state.isRunning || queries.isEmpty())
        return;
    _state = {};
    _state.isRunning = true;
    _state.folder = folder;
    _state.queries = queries.size();
    const auto progress = [this](const QueryCore&, qsizetype done, qsizetype all) {
        onMain([done, all](OfflineCopyRun& run) {
            run._state.resultsDone = done;
            run._state.results = all;
            run._changed();
        });
    };
    _copier =
        std::make_shared<FolderCopier>(folder, FolderCopier::Parts{_parts.files, _parts.notifications, progress, {}});
    _worker.add([this, queries, copier = _copier] { copyAll(queries, *copier); });
    _changed();
}

void OfflineCopyRun::copyAll(const QList<QueryCorePtr>& queries, FolderCopier& copier)
{
    // What is wrong with the file of services, the preferences say; the public ones serve.
    (void)copier.prepare(_parts.home);
    for (const QueryCorePtr& query : queries) {
        onMain([title = query->title()](OfflineCopyRun& run) { run.begin(title); });
        const QueryCopy copy = copier.copy(query);
        onMain([copy](OfflineCopyRun& run) { run.take(copy); });
        if (copy.end == QueryCopy::End::Stopped || copy.hopeless)
            break;
    }
    onMain([](OfflineCopyRun& run) { run.finish(); });
}

void OfflineCopyRun::begin(const QString& title)
{
    _state.title = title.trimmed();
    _state.results = 0;
    _state.resultsDone = 0;
    _changed();
}

void OfflineCopyRun::take(const QueryCopy& copy)
{
    ++_state.queriesDone;
    _state.copied += copy.end == QueryCopy::End::Copied;
    _state.there += copy.end == QueryCopy::End::There;
    _state.failed += copy.end == QueryCopy::End::Failed;
    _state.isStopped = copy.end == QueryCopy::End::Stopped;
    if (copy.end == QueryCopy::End::Copied)
        _state.counts.add(copy.counts);
    if (_state.error.isEmpty())
        _state.error = copy.error;
    _changed();
}

void OfflineCopyRun::finish()
{
    _state.isRunning = false;
    _state.isStopping = false;
    _copier.reset();
    _changed();
    if (const std::function<void()> reply = std::exchange(_reply, {}))
        reply();
}

void OfflineCopyRun::stop()
{
    if (!_state.isRunning || std::exchange(_state.isStopping, true))
        return;
    _copier->stop();
    _changed();
}

void OfflineCopyRun::stopToQuit(std::function<void()> reply)
{
    if (!_state.isRunning) {
        reply();
        return;
    }
    _reply = std::move(reply);
    _parts.notifications.post(QStringLiteral("appwantsquit"));
    stop();
}

} // namespace quarry
