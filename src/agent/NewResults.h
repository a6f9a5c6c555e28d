#pragma once

#include "agent/DatabaseReader.h"

#include <functional>

namespace quarry {

/// What the agent knows of the query database, which it only reads. Used from the event loop's thread, and never
/// keeps it waiting.
class NewResults {
public:
    virtual ~NewResults() = default;
    /// Looks at the database as it is from now on; `seen` is called on the event loop when news() tells what was
    /// found. Looks end in the order in which they began.
    virtual void look(std::function<void()> seen) = 0;
    /// What the last look that ended found; nothing new before the first.
    [[nodiscard]] virtual const DatabaseNews& news() const = 0;
};

/// Reads the database file away from the event loop, when it changed.
class DatabaseResults final : public NewResults {
public:
    /// Does the work somewhere else, one after the other, and then on the event loop what the work returns.
    using Work = std::function<std::function<void()>()>;
    using Background = std::function<void(Work)>;

    /// The object outlives the work that it gave away.
    DatabaseResults(DatabaseReader reader, Background background)
        : _reader(std::move(reader)), _background(std::move(background))
    {
    }

    void look(std::function<void()> seen) override;
    [[nodiscard]] const DatabaseNews& news() const override { return _news; }

private:
    DatabaseReader _reader; ///< Used by the work only.
    Background _background;
    DatabaseNews _news; ///< Used on the event loop only.
};

} // namespace quarry
