#pragma once

#include <QString>

#include <cstdint>
#include <functional>
#include <memory>
#include <mutex>
#include <vector>

namespace quarry {

/// The process-local notification centre: named notifications with an optional sender.
/// Observers run synchronously on the posting thread, in the order in which they were added; an observer may
/// add or remove observers and post. Thread-safe.
class NotificationCenter final {
public:
    using Sender = std::shared_ptr<void>; ///< The object a notification is about; may be null.
    using Observer = std::function<void(const QString& name, const Sender& sender)>;

    /// Ends the observation when it goes away. It may outlive the centre.
    class Registration {
    public:
        Registration() = default;
        Registration(Registration&&) noexcept = default;
        Registration& operator=(Registration&&) noexcept;
        Registration(const Registration&) = delete;
        Registration& operator=(const Registration&) = delete;
        ~Registration();

    private:
        friend class NotificationCenter;
        std::shared_ptr<struct ObserverEntry> _entry;
    };

    NotificationCenter();
    ~NotificationCenter();
    NotificationCenter(const NotificationCenter&) = delete;
    NotificationCenter& operator=(const NotificationCenter&) = delete;

    [[nodiscard]] Registration addObserver(const QString& name, Observer observer);
    void post(const QString& name, const Sender& sender = nullptr);

private:
    std::mutex _mutex;
    std::vector<std::weak_ptr<struct ObserverEntry>> _entries;
};

} // namespace quarry
