#include "session/LiveTree.h"

#include "model/TreeLock.h"
#include "platform/Worker.h"

#include <algorithm>
#include <deque>
#include <iterator>
#include <mutex>
#include <utility>
#include <vector>

namespace quarry {

namespace {

constexpr std::chrono::milliseconds LookInterval(1000);
constexpr std::chrono::milliseconds SaveDelay(1500);
constexpr std::chrono::seconds RetryDelay(15);

} // namespace

/// What the threads see: the main one, the worker, which works with the file, and the maker of large edits, which must
/// not wait for that. The main thread owns what stands below its line; `mutex` guards the rest.
struct LiveTree::State : public std::enable_shared_from_this<State> {
    State(Parts handedOver, Listener& heard) : parts(std::move(handedOver)), listener(&heard) {}

    // --- All threads ----------------------------------------------------------------------------------------------
    struct Pending {
        std::uint64_t number = 0;
        TreeEdit edit;
        bool isMade = false; ///< A large one is not before the maker comes to it.
    };

    Parts parts;
    std::mutex mutex;
    std::unique_ptr<QueryDatabaseEngine> engine; ///< Made by the worker; a plain pointer to others once it is there.
    QueryCorePtr current;        ///< The engine's tree with every edit that is made; the worker alone changes which.
    std::deque<Pending> pending; ///< In their order; the main thread alone takes out, and learns late what was saved.
    std::uint64_t lastNumber = 0;
    std::uint64_t savedNumber = 0;  ///< Up to there, all are in the file.
    bool mayReplaceDamaged = false; ///< The user gave up what a damaged file may still hold; its copy stays.

    // --- Worker ---------------------------------------------------------------------------------------------------
    QueryCorePtr published; ///< The main thread shows it, or will.

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

    Worker worker; ///< Last: they end before what their jobs use goes away.
    Worker maker;  ///< Also counts: nothing large changes meanwhile, and what it tells is told in that order.

    /// On the worker: takes over the engine's tree if it is a new one, and brings it up to date.
    void adopt();
    /// On the worker: adopts, and lets it be counted and shown when it is another tree.
    void publish();
    /// On the maker: makes a large edit, which was wanted for the tree that was seen then.
    void make(std::uint64_t number, const TreeEdit& edit, const QueryCorePtr& seen);
    /// On the maker: the edit was made in `root`. False, and another one, when there is another tree by now.
    [[nodiscard]] bool settle(std::uint64_t number, QueryCorePtr& root);
    /// With `mutex` held: up to which all edits are made.
    [[nodiscard]] std::uint64_t lastMade() const;
    /// On the worker: tells the main thread what the engine says about the file, unless edits wait to be written.
    void report();
    void load();
    void look();
    void save();
    void onMain(std::function<void(State&)> call);
    /// On the worker: the same, behind what the maker was given before.
    void tell(std::function<void(State&)> call);

    void show(const QueryCorePtr& root, const TreeCounts& fresh);
    /// What the maker counted, and what edits changed here since.
    void take(const TreeCounts& fresh);
    /// Whether all edits are in the file; lets go of those that are.
    bool forgetSaved();
    void say(Safety next, const QString& reason, bool always = false);
    void saveSoon(std::chrono::milliseconds delay);
};

void LiveTree::State::adopt()
{
    const QueryCorePtr root = engine->currentRoot();
    if (root == current)
        return;
    // The others go on with the tree that they know: what they do is waited for here, not there.
    std::vector<Pending> applied;
    while (true) {
        std::vector<Pending> made;
        {
            const std::lock_guard lock(mutex);
            std::copy_if(pending.begin(), pending.end(), std::back_inserter(made),
                         [this](const Pending& entry) { return entry.isMade && entry.number > savedNumber; });
            if (std::ranges::equal(made, applied, {}, &Pending::number, &Pending::number)) {
                current = root;
                return;
            }
        }
        // What came between others counts in its place, too: from there on, all are applied again.
        const auto first = std::ranges::mismatch(made, applied, {}, &Pending::number, &Pending::number).in1;
        std::for_each(first, made.end(), [&root](const Pending& entry) { entry.edit.apply(root); });
        applied = std::move(made);
    }
}

void LiveTree::State::make(std::uint64_t number, const TreeEdit& edit, const QueryCorePtr& seen)
{
    QueryCorePtr root = seen;
    edit.apply(root);
    while (!settle(number, root))
        edit.apply(root);
    onMain([root, fresh = TreeCounts(root), edit](State& state) {
        if (state.shown != root)
            return; // It comes with its own counts.
        state.take(fresh);
        state.listener->treeEdited(edit.queries, edit.structure);
    });
}

bool LiveTree::State::settle(std::uint64_t number, QueryCorePtr& root)
{
    const std::lock_guard lock(mutex);
    if (std::exchange(root, current) != current)
        return false;
    const TreeLock tree;
    for (Pending& entry : pending) {
        entry.isMade = entry.isMade || entry.number == number;
        // Those that came after it show already; now they also have the last word.
        if (entry.isMade && entry.number > number)
            entry.edit.apply(root);
    }
    return true;
}

std::uint64_t LiveTree::State::lastMade() const
{
    const auto waiting =
        std::find_if(pending.begin(), pending.end(), [](const Pending& entry) { return !entry.isMade; });
    return waiting == pending.end() ? lastNumber : waiting->number - 1;
}

void LiveTree::State::onMain(std::function<void(State&)> call)
{
    parts.timers.post([weak = weak_from_this(), call = std::move(call)] {
        if (const std::shared_ptr<State> state = weak.lock())
            call(*state);
    });
}

void LiveTree::State::tell(std::function<void(State&)> call)
{
    maker.add([this, call = std::move(call)] { onMain(call); });
}

void LiveTree::State::publish()
{
    adopt();
    if (std::exchange(published, current) != current)
        maker.add([this, root = current] {
            onMain([root, fresh = TreeCounts(root)](State& state) { state.show(root, fresh); });
        });
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
    publish();
    report();
}

void LiveTree::State::report()
{
    tell([error = engine->lastError(), damaged = engine->isFileDamaged(), copy = engine->damagedCopy()](State& state) {
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
    publish();
    tell([](State& state) { state.isLooking = false; });
    report();
}

void LiveTree::State::save()
{
    std::uint64_t included = 0;
    const QString error = engine->edit([this, &included](QueryDatabaseEngine& database) {
        const bool damaged = database.isFileDamaged();
        {
            const std::lock_guard lock(mutex);
            if (damaged && !mayReplaceDamaged)
                return database.lastError();
        }
        adopt();
        const std::lock_guard lock(mutex);
        included = lastMade();
        return QString();
    });
    if (error.isEmpty()) {
        const std::lock_guard lock(mutex);
        savedNumber = included;
        mayReplaceDamaged = false;
    }
    publish();
    tell([error](State& state) {
        const bool isAllSafe = state.forgetSaved();
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
    QueryCorePtr former = std::exchange(shown, root);
    take(fresh);
    listener->treeReplaced();
    maker.add([kept = std::move(former)] {}); // A large tree takes a while to go away.
}

void LiveTree::State::take(const TreeCounts& fresh)
{
    QStringList changed;
    {
        const std::lock_guard lock(mutex);
        for (const Pending& entry : pending) {
            if (!entry.edit.large)
                changed += entry.edit.queries;
        }
    }
    counts = fresh;
    if (!changed.isEmpty())
        counts.updateStructure(shown, changed);
}

bool LiveTree::State::forgetSaved()
{
    std::deque<Pending> saved;
    bool isAllSafe = false;
    {
        const std::lock_guard lock(mutex);
        while (!pending.empty() && pending.front().number <= savedNumber) {
            saved.push_back(std::move(pending.front()));
            pending.pop_front();
        }
        isAllSafe = pending.empty();
    }
    maker.add([kept = std::move(saved)] {});
    return isAllSafe;
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
    _state->maker.stop();
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
    std::uint64_t number = 0;
    {
        const std::lock_guard lock(state.mutex);
        number = ++state.lastNumber;
        if (!edit.large) {
            // What is shown may be the tree before a reload whose news is still on its way here.
            const TreeLock tree;
            if (state.shown != state.current)
                edit.apply(state.shown);
            edit.apply(state.current); // Last: a node that is added to both belongs to this one.
        }
        state.pending.push_back({number, edit, !edit.large});
    }
    if (edit.large) {
        state.maker.add([raw = _state.get(), number, edit, seen = state.shown] { raw->make(number, edit, seen); });
    } else {
        if (edit.structure)
            state.counts.updateStructure(state.shown, edit.queries);
        else
            state.counts.update(state.shown, edit.queries);
        state.listener->treeEdited(edit.queries, edit.structure);
    }
    if (state.safety == Safety::Safe)
        state.say(Safety::Pending, {});
    state.saveSoon(SaveDelay);
}

void LiveTree::retire(TreeEdit edit)
{
    _state->maker.add([kept = std::move(edit)] {});
}

void LiveTree::checkFile()
{
    State* const state = _state.get();
    if (state->safety != Safety::Loading && !std::exchange(state->isLooking, true))
        state->worker.add([state] { state->look(); });
}

void LiveTree::save(std::function<void(bool isSaved)> done)
{
    State* const state = _state.get();
    std::uint64_t wanted = 0;
    {
        const std::lock_guard lock(state->mutex);
        wanted = state->lastNumber;
    }
    const auto isSaved = [wanted](State& at) {
        const std::lock_guard lock(at.mutex);
        return at.savedNumber >= wanted;
    };
    if (isSaved(*state)) {
        done(true);
        return;
    }
    const auto saveThenTell = [state, isSaved, done = std::move(done)] {
        if (!isSaved(*state))
            state->save();
        state->tell([isSaved, done](State& at) { done(isSaved(at)); });
    };
    state->maker.add([state, saveThenTell] { state->worker.add(saveThenTell); }); // Behind what is being made.
}

} // namespace quarry
