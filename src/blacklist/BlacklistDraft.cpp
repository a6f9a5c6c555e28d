#include "blacklist/BlacklistDraft.h"

#include <unordered_set>

namespace quarry {

namespace {

/// A person waits, and can try again.
constexpr std::chrono::seconds Patience(2);

BlacklistFilterPtr filterSaying(const BlacklistRule& rule, const BlacklistManager& list)
{
    for (qsizetype i = 0; i < list.filtersCount(); ++i) {
        if (BlacklistFilterPtr filter = list.filterAtIndex(i); filter->fields() == rule)
            return filter;
    }
    return nullptr;
}

void addUnlessThere(const BlacklistRule& rule, BlacklistManager& list)
{
    if (!filterSaying(rule, list))
        list.addToBlacklist(BlacklistFilter::initWithRule(rule.rule, rule.type, rule.state, rule.caseSensitive));
}

} // namespace

BlacklistDraft::BlacklistDraft(HomeFolder home, FileStore& files) : _home(std::move(home)), _files(&files) {}

void BlacklistDraft::remember()
{
    _loaded.clear();
    for (qsizetype i = 0; i < _list.filtersCount(); ++i)
        _loaded.append({_list.filterAtIndex(i), _list.filterAtIndex(i)->fields()});
    _isLoaded = true;
}

void BlacklistDraft::reload()
{
    // Taken before the reading: a file replaced in between is then taken for a new one, never for the one read.
    _stamp = _files->stamp(_home.blacklistFile());
    _list = BlacklistManager::initWithDatabase(*_files, _home.blacklistFile(), &_fault);
    remember();
}

bool BlacklistDraft::isCurrent() const
{
    // What keeps a file from being read does not always show in its state.
    return _isLoaded && _fault.isEmpty() && _files->stamp(_home.blacklistFile()) == _stamp;
}

bool BlacklistDraft::follow()
{
    if (isCurrent())
        return false;
    const Edits edits = editsSince();
    reload();
    make(edits, _list);
    return true;
}

BlacklistDraft::Edits BlacklistDraft::editsSince() const
{
    std::unordered_set<const BlacklistFilter*> known, present;
    for (qsizetype i = 0; i < _list.filtersCount(); ++i)
        present.insert(_list.filterAtIndex(i).get());
    Edits edits;
    for (const Loaded& loaded : _loaded) {
        known.insert(loaded.filter.get());
        if (present.count(loaded.filter.get()) == 0)
            edits.removed.append(loaded.rule);
        else if (loaded.filter->fields() != loaded.rule)
            edits.changed.append({loaded.rule, loaded.filter->fields()});
    }
    for (qsizetype i = 0; i < _list.filtersCount(); ++i) {
        const BlacklistFilterPtr filter = _list.filterAtIndex(i);
        if (known.count(filter.get()) == 0)
            edits.added.append(filter->fields());
    }
    return edits;
}

void BlacklistDraft::make(const Edits& edits, BlacklistManager& list)
{
    if (edits.isEmpty())
        return;
    for (const BlacklistRule& rule : edits.removed) {
        if (const BlacklistFilterPtr filter = filterSaying(rule, list))
            list.removeFromBlacklist(filter);
    }
    for (const auto& [was, is] : edits.changed) {
        const BlacklistFilterPtr filter = filterSaying(was, list);
        if (filter) {
            filter->setRule(is.rule);
            filter->setType(is.type);
            filter->setState(is.state);
            filter->setCaseSensitive(is.caseSensitive);
        } else {
            addUnlessThere(is, list); // Somebody else removed or changed it: what was said here last still holds.
        }
    }
    for (const BlacklistRule& rule : edits.added)
        addUnlessThere(rule, list);
    list.addToBlacklist(nullptr); // Puts changed types in order.
}

qsizetype BlacklistDraft::placeOf(const BlacklistRule& rule) const
{
    for (qsizetype i = _list.filtersCount() - 1; i >= 0; --i) {
        if (_list.filterAtIndex(i)->fields() == rule)
            return i;
    }
    return -1;
}

QString BlacklistDraft::write()
{
    const auto apply = [this](BlacklistManager& now) {
        if (_files->stamp(_home.blacklistFile()) == _stamp)
            now = _list;
        else
            make(editsSince(), now);
        return true;
    };
    QString error = BlacklistStore(_home, *_files).change(apply, Patience);
    if (error.isEmpty())
        reload();
    return error;
}

} // namespace quarry
