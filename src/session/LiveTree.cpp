#include "session/LiveTree.h"

#include "model/TreeLock.h"
#include "platform/Worker.h"

#include <deque>
#include <mutex>
#include <utility>

namespace quarry {

namespace {

constexpr std::chrono::milliseconds LookInterval(1000);
constexpr std::chrono::milliseconds SaveDelay(1500);
constexpr std::chrono::seconds RetryDelay(15);

} // namespace

/// What both threads see. The main thread owns what stands below its line; `mutex` guards the rest.
struct LiveTree::State : public std::enable_shared_from_this<State> {
    State(Parts handedOver, Listener& heard) : parts(std::move(handedOver)), listener(&heard) {}

    // --- Both threads ---------------------------------------------------------------------------------------------
    struct Pending {
        std::uint64_t number = 0;
        TreeEdit edit;
    };

    Parts parts;
    std::mutex mutex;
    std::unique_ptr<QueryDatabaseEngine> engine; ///< Made by the worker; a plain pointer to others once it is there.
    QueryCorePtr current;                        ///< The engine's tree, with every pending edit applied.
    std::deque<Pending> pending;
    std::uint64_t lastNumber = 0;
    bool mayReplaceDamaged = false; ///< The user gave up what a damaged file may still hold; its copy stays.

    // --- Main thread ----------------------------------------------------------------------------------------------
    Listener* listener;
    QueryCorePtr shown = QueryCore::initWithQueryFolder(QStringLiteral(""));
    TreeCounts counts;
    Safety safety = Safety::Loading;
    QString fault;
    QString damagedCopy;
    bool isDamaged = false;
    bool isSaveDue = false;
    bool isLooking = false;

    Worker worker; ///< Last: it ends before what its jobs use goes away.

    /// With `mutex` held: takes over the engine's tree if it is a new one, and brings it up to date. Whether it was.
    bool adopt();
    /// On the worker: adopts, counts, and tells the main thread.
    void publish(bool force);
    /// On the worker: tells the main thread what the engine says about the file, unless edits wait to be written.
    void report();
    void load();
    void look();
    void save();
    void onMain(std::function<void(State&)> call);

    void show(const QueryCorePtr& root, const TreeCounts& fresh);
    void say(Safety next, const QString& reason, bool always = false);
    void saveSoon(std::chrono::milliseconds delay);
};

bool LiveTree::State::adopt()
{
    const QueryCorePtr root = engine->currentRoot();
    if (root == current)
        return false;
    current = root;
    const TreeLock lock;
    for (const Pending& entry : pending)
        entry.edit.apply(current);
    return true;
}

void LiveTree::State::onMain(std::function<void(State&)> call)
{
    parts.timers.post([weak = weak_from_this(), call = std::move(call)] {
        if (const std::shared_ptr<State> state = weak.lock())
            call(*state);
    });
}

void LiveTree::State::publish(bool force)
{
    QueryCorePtr root;
    {
        const std::lock_guard lock(mutex);
        if (!adopt() && !force)
            return;
        root = current;
    }
    onMain([root, fresh = TreeCounts(root)](State& state) { state.show(root, fresh); });
}

void LiveTree::State::load()
{
    const Parts& with = parts;
    auto made = std::make_unique<QueryDatabaseEngine>(
        QueryDatabaseEngine::Parts{with.home, with.clock, with.pauser, with.files, with.notifications, nullptr, {}},
        QueryDatabaseEngine::AtEnd::Discard);
    {
        const std::lock_guard lock(mutex);
        engine = std::move(made);
    }
    publish(true);
    report();
}

void LiveTree::State::report()
{
    onMain(
        [error = engine->lastError(), damaged = engine->isFileDamaged(), copy = engine->damagedCopy()](State& state) {
            const bool isNew = std::exchange(state.isDamaged, damaged) != damaged;
            state.damagedCopy = copy;
            if (state.safety == Safety::Loading || state.safety == Safety::Safe)
                state.say(Safety::Safe, error, isNew);
            else if (isNew)
                state.say(state.safety, state.fault, true);
        });
}

void LiveTree::State::look()
{
    engine->dbSynchCheck();
    publish(false);
    onMain([](State& state) { state.isLooking = false; });
    report();
}

void LiveTree::State::save()
{
    std::uint64_t included = 0;
    const QString error = engine->edit([this, &included](QueryDatabaseEngine& database) {
        const bool damaged = database.isFileDamaged();
        const std::lock_guard lock(mutex);
        if (damaged && !mayReplaceDamaged)
            return database.lastError();
        adopt();
        included = lastNumber;
        return QString();
    });
    if (error.isEmpty()) {
        const std::lock_guard lock(mutex);
        while (!pending.empty() && pending.front().number <= included)
            pending.pop_front();
        mayReplaceDamaged = false;
    }
    publish(false);
    onMain([error](State& state) {
        bool isAllSafe = false;
        {
            const std::lock_guard lock(state.mutex);
            isAllSafe = state.pending.empty();
        }
        if (!error.isEmpty()) {
            state.say(Safety::Failed, error);
            state.saveSoon(RetryDelay);
        } else if (isAllSafe) {
            state.say(Safety::Safe, {});
        } else {
            state.say(Safety::Pending, {});
            state.saveSoon(SaveDelay);
        }
    });
    report();
}

void LiveTree::State::show(const QueryCorePtr& root, const TreeCounts& fresh)
{
    shown = root;
    counts = fresh;
    listener->treeReplaced();
}

void LiveTree::State::say(Safety next, const QString& reason, bool always)
{
    if (std::exchange(safety, next) == next && fault == reason && !always)
        return;
    fault = reason;
    listener->safetyChanged(safety, fault);
}

void LiveTree::State::saveSoon(std::chrono::milliseconds delay)
{
    if (std::exchange(isSaveDue, true))
        return;
    parts.timers.after(delay, [weak = weak_from_this()] {
        const std::shared_ptr<State> state = weak.lock();
        if (!state || !std::exchange(state->isSaveDue, false))
            return;
        state->worker.add([raw = state.get()] { raw->save(); });
    });
}

LiveTree::LiveTree(Parts parts, Listener& listener) : _state(std::make_shared<State>(std::move(parts), listener)) {}

LiveTree::~LiveTree()
{
    _state->worker.stop();
}

void LiveTree::start()
{
    State* const state = _state.get();
    state->worker.add([state] { state->load(); });
    state->parts.timers.every(LookInterval, [weak = std::weak_ptr<State>(_state)] {
        const std::shared_ptr<State> alive = weak.lock();
        if (!alive || alive->safety == Safety::Loading || std::exchange(alive->isLooking, true))
            return;
        alive->worker.add([raw = alive.get()] { raw->look(); });
    });
}

QueryCorePtr LiveTree::root() const
{
    return _state->shown;
}

QueryCorePtr LiveTree::node(const QString& uuid) const
{
    return _state->shown->findQueryForUUID(uuid);
}

const TreeCounts& LiveTree::counts() const
{
    return _state->counts;
}

LiveTree::Safety LiveTree::safety() const
{
    return _state->safety;
}

QString LiveTree::fault() const
{
    return _state->fault;
}

bool LiveTree::isDamaged() const
{
    return _state->isDamaged;
}

QString LiveTree::damagedCopy() const
{
    return _state->damagedCopy;
}

void LiveTree::replaceDamaged()
{
    State* const state = _state.get();
    if (!state->isDamaged)
        return;
    state->worker.add([state] {
        {
            const std::lock_guard lock(state->mutex);
            state->mayReplaceDamaged = true;
        }
        state->save();
    });
}

void LiveTree::edit(const TreeEdit& edit)
{
    State& state = *_state;
    if (state.safety == Safety::Loading || state.isDamaged)
        return;
    {
        const std::lock_guard lock(state.mutex);
        state.adopt();
        // What is shown may be the tree before a reload whose news is still on its way here.
        const TreeLock tree;
        if (state.shown != state.current)
            edit.apply(state.shown);
        edit.apply(state.current); // Last: a node that is added to both belongs to this one.
        state.pending.push_back({++state.lastNumber, edit});
    }
    if (edit.structure)
        state.counts.updateStructure(state.shown, edit.queries);
    else
        state.counts.update(state.shown, edit.queries);
    state.listener->treeEdited(edit.queries, edit.structure);
    if (state.safety == Safety::Safe)
        state.say(Safety::Pending, {});
    state.saveSoon(SaveDelay);
}

void LiveTree::checkFile()
{
    State* const state = _state.get();
    if (state->safety != Safety::Loading && !std::exchange(state->isLooking, true))
        state->worker.add([state] { state->look(); });
}

bool LiveTree::flush()
{
    State* const state = _state.get();
    state->isSaveDue = false;
    QString error;
    state->worker.addAndWait([state, &error] {
        {
            const std::lock_guard lock(state->mutex);
            if (!state->engine || state->pending.empty())
                return;
        }
        state->save();
        const std::lock_guard lock(state->mutex);
        if (!state->pending.empty())
            error = state->engine->lastError();
    });
    bool isAllSafe = false;
    {
        const std::lock_guard lock(state->mutex);
        isAllSafe = state->pending.empty();
    }
    if (!error.isEmpty())
        state->fault = error;
    return isAllSafe;
}

} // namespace quarry
