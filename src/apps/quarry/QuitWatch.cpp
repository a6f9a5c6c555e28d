#include "apps/quarry/QuitWatch.h"

#include <utility>

namespace quarry {

QuitWatch::QuitWatch(std::function<void()> onQuit)
    : _application(_count, _arguments), _listener([onQuit = std::move(onQuit), isAsked = false]() mutable {
          if (!std::exchange(isAsked, true))
              onQuit();
      })
{
}

} // namespace quarry
