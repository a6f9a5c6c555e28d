#include "platform/Clock.h"

namespace quarry {

Date SystemClock::now() const
{
    const std::chrono::duration<double> sinceEpoch = std::chrono::system_clock::now().time_since_epoch();
    return Date::fromUnixSeconds(sinceEpoch.count()).plusSeconds(_offset);
}

} // namespace quarry
