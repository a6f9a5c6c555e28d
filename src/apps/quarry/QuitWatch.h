#pragma once

#include "platform/desktop/QuitListener.h"

#include <QCoreApplication>

#include <functional>

namespace quarry {

/// Hears, while a command runs that may take long, when every program of the product is asked to quit. The session bus
/// needs an application object, which commands have no other use for. One at a time, on the main thread.
class QuitWatch final {
public:
    /// `onQuit` is called on another thread, for as long as the object lives; once, however often it is asked.
    explicit QuitWatch(std::function<void()> onQuit);

private:
    char _name[7] = "quarry";
    char* _arguments[2] = {_name, nullptr};
    int _count = 1;
    QCoreApplication _application;
    QuitListener _listener;
};

} // namespace quarry
