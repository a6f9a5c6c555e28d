#pragma once

#include <QThread>

#include <functional>

namespace quarry {

/// Hears on the session bus when every program of the product is asked to quit, on a thread of its own, for
/// programs that have no event loop and wait for no bus.
class QuitListener final : private QThread {
public:
    /// `onQuit` is called on the listener's thread, for as long as the object lives.
    explicit QuitListener(std::function<void()> onQuit);
    ~QuitListener() override;

private:
    void run() override;

    std::function<void()> _onQuit;
};

} // namespace quarry
