#pragma once

#include "database/Schedule.h"
#include "platform/Clock.h"
#include "platform/EventTimers.h"
#include "platform/FileStore.h"

#include <functional>
#include <memory>
#include <optional>

namespace quarry {

/// Starts the refreshes that are due while a window is open, in the agent's place. It goes by wall time: a machine that
/// slept past a due time, or past several, brings one refresh when it wakes. What other programs change in the
/// schedule, and refreshes that they complete, are seen within a second. Main thread only.
class WindowSchedule final {
public:
    struct Parts {
        HomeFolder home;
        Clock& clock;
        FileStore& files;
        EventTimers& timers;
    };
    /// Starts a refresh of everything; false while it cannot, because one runs.
    using Start = std::function<bool()>;

    /// References must outlive the object. `changed` is called when nextLaunch() changed.
    WindowSchedule(Parts parts, Start start, std::function<void()> changed);
    WindowSchedule(const WindowSchedule&) = delete;
    WindowSchedule& operator=(const WindowSchedule&) = delete;

    /// Looks at once, and every second from then on.
    void start();
    /// A refresh of everything has ended, in whatever way: the period counts from now.
    void refreshEnded();

    /// When the next refresh starts, in the past when it is overdue; none while automatic refresh is off.
    [[nodiscard]] std::optional<Date> nextLaunch() const;

private:
    void tick();
    void readIfChanged(Date now);
    void startIfDue(Date now);
    void tellIfChanged();

    Parts _parts;
    Schedule _schedule;
    Start _start;
    std::function<void()> _changed;
    std::shared_ptr<WindowSchedule*> _alive; ///< The timer finds out whether this object is still there.
    std::optional<FileStamp> _seen;
    Schedule::Settings _settings;
    std::optional<Date> _last; ///< What the period counts from; none: a refresh is due at once.
    Date _previousTick;
    std::optional<Date> _told;
};

} // namespace quarry
