#include "engines/QueryUpdater.h"

#include "engines/QueryUpdate.h"
#include "text/CSRegex.h"

#include <exception>
#include <system_error>

namespace quarry {

namespace {

/// What the person who wrote the expression can go by.
QString faultOfExpression(const QueryCore& node, const CSRegexException& fault)
{
    const QString text =
        QStringLiteral("its URL expression \"") + node.urlRegularExpressions() + QStringLiteral("\" is not valid");
    return fault.reason().isEmpty() ? text : text + QStringLiteral(": ") + fault.reason();
}

} // namespace

QueryUpdater::QueryUpdater(QueryUpdateParts parts, std::size_t mostRunning)
    : _parts(std::move(parts)), _mostRunning(mostRunning)
{
}

QueryUpdater::~QueryUpdater()
{
    waitUntilIdle();
}

void QueryUpdater::update(const QueryCorePtr& node)
{
    if (!node->isQueryFolder() && node->isEnabled())
        start(node);
}

void QueryUpdater::updateAll(const QueryCorePtr& node)
{
    node->invalidateUnread();
    if (!node->isQueryFolder()) {
        update(node);
        return;
    }
    const QList<QueryCorePtr> childs = node->childs().value_or(QList<QueryCorePtr>());
    for (const QueryCorePtr& child : childs) {
        if (child->isEnabled())
            updateAll(child);
    }
}

void QueryUpdater::start(const QueryCorePtr& node)
{
    node->setUpdating(true);
    node->invalidateUnread();
    Threads finished;
    QString error;
    {
        const std::lock_guard lock(_mutex);
        _waiting.push_back(node);
        if (_running.size() < _mostRunning)
            error = startThread();
        // Fewer threads do the work as well; only none cannot.
        if (_running.empty())
            _waiting.clear();
        finished.swap(_finished);
    }
    for (std::thread& thread : finished)
        thread.join();
    if (!error.isEmpty())
        reportFailure(node, error);
}

/// With the mutex held. Answers why no thread is there to do the work; empty when there is one.
QString QueryUpdater::startThread()
{
    const auto self = _running.emplace(_running.end());
    try {
        *self = std::thread([this, self] { work(self); });
    } catch (const std::system_error& fault) {
        _running.erase(self);
        if (_running.empty())
            return QString::fromLocal8Bit(fault.what());
    }
    return {};
}

void QueryUpdater::work(Threads::iterator self)
{
    std::unique_lock lock(_mutex);
    while (!_waiting.empty()) {
        QueryCorePtr node = std::move(_waiting.front());
        _waiting.pop_front();
        lock.unlock();
        runOne(node);
        node.reset();
        lock.lock();
    }
    _finished.splice(_finished.end(), _running, self);
    _ended.notify_all();
}

void QueryUpdater::runOne(const QueryCorePtr& node) noexcept
{
    try {
        QueryUpdate(_parts, node).run();
    } catch (const CSRegexException& fault) {
        reportFailure(node, faultOfExpression(*node, fault));
    } catch (const std::exception& fault) {
        reportFailure(node, QString::fromLocal8Bit(fault.what()));
    } catch (...) {
        reportFailure(node, QStringLiteral("unknown error"));
    }
}

void QueryUpdater::reportFailure(const QueryCorePtr& node, const QString& error)
{
    UpdateFacts facts;
    facts.end = UpdateEnd::Failed;
    facts.error = error;
    if (_parts.observer)
        _parts.observer->updateFinished({node->UUID(), node->title()}, facts);
}

void QueryUpdater::waitUntilIdle()
{
    Threads finished;
    {
        std::unique_lock lock(_mutex);
        _ended.wait(lock, [this] { return _running.empty(); });
        finished.swap(_finished);
    }
    for (std::thread& thread : finished)
        thread.join();
}

} // namespace quarry
