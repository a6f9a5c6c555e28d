#pragma once

#include <QtCore/qtestsupport_core.h>

namespace quarry::test {

/// Runs the event loop until the condition holds; false when it does not within a minute.
template <typename Condition>
[[nodiscard]] bool waitFor(Condition condition)
{
    return QTest::qWaitFor(condition, 60000);
}

} // namespace quarry::test
