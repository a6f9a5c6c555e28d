#include "platform/desktop/QuitListener.h"

#include "platform/desktop/DBusNotifications.h"
#include "platform/desktop/SessionBus.h"

namespace quarry {

QuitListener::QuitListener(std::function<void()> onQuit) : _onQuit(std::move(onQuit))
{
    start();
}

QuitListener::~QuitListener()
{
    quit();
    wait();
}

void QuitListener::run()
{
    SessionBus bus;
    DBusNotifications notifications(bus);
    notifications.addObserver(QStringLiteral("QUIT_EVERYBODY_NOTIFICATION QS1"),
                              [this](const DistributedNotifications::UserInfo&) { _onQuit(); });
    exec();
}

} // namespace quarry
