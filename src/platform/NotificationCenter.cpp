#include "platform/NotificationCenter.h"

#include <algorithm>
#include <condition_variable>
#include <thread>

namespace quarry {

/// One observation. Its mutex is never held while the observer runs, so that observers may do what they like;
/// the list of running calls is what an ending observation waits for.
struct ObserverEntry {
    std::mutex mutex;
    std::condition_variable idle;
    std::vector<std::thread::id> running;
    bool active = true;
    QString name;
    NotificationCenter::Observer observer;

    void call(const QString& postedName, const NotificationCenter::Sender& sender)
    {
        {
            const std::lock_guard lock(mutex);
            if (!active)
                return;
            running.push_back(std::this_thread::get_id());
        }
        const Running mark{*this};
        observer(postedName, sender);
    }

    void end()
    {
        std::unique_lock lock(mutex);
        active = false;
        const auto isElsewhere = [self = std::this_thread::get_id()](std::thread::id id) { return id != self; };
        idle.wait(lock, [&] { return std::none_of(running.begin(), running.end(), isElsewhere); });
    }

private:
    /// Takes the call off the list however the observer ends.
    struct Running {
        ObserverEntry& entry;
        ~Running()
        {
            const std::lock_guard lock(entry.mutex);
            entry.running.erase(std::find(entry.running.begin(), entry.running.end(), std::this_thread::get_id()));
            entry.idle.notify_all();
        }
    };
};

NotificationCenter::Registration& NotificationCenter::Registration::operator=(Registration&& other) noexcept
{
    if (this != &other) {
        if (_entry)
            _entry->end();
        _entry = std::move(other._entry);
    }
    return *this;
}

NotificationCenter::Registration::~Registration()
{
    if (_entry)
        _entry->end();
}

NotificationCenter::NotificationCenter() = default;
NotificationCenter::~NotificationCenter() = default;

NotificationCenter::Registration NotificationCenter::addObserver(const QString& name, Observer observer)
{
    Registration registration;
    registration._entry = std::make_shared<ObserverEntry>();
    registration._entry->name = name;
    registration._entry->observer = std::move(observer);
    const std::lock_guard lock(_mutex);
    _entries.push_back(registration._entry);
    return registration;
}

void NotificationCenter::post(const QString& name, const Sender& sender)
{
    std::vector<std::shared_ptr<ObserverEntry>> toCall;
    {
        const std::lock_guard lock(_mutex);
        std::erase_if(_entries, [](const std::weak_ptr<ObserverEntry>& entry) { return entry.expired(); });
        for (const std::weak_ptr<ObserverEntry>& weak : _entries) {
            std::shared_ptr<ObserverEntry> entry = weak.lock();
            if (entry && entry->name == name)
                toCall.push_back(std::move(entry));
        }
    }
    for (const std::shared_ptr<ObserverEntry>& entry : toCall)
        entry->call(name, sender);
}

} // namespace quarry
