#include "agent/ui/TrayWindow.h"

#include <QByteArray>
#include <QGuiApplication>

#include <xcb/xcb.h>

#include <cstdlib>
#include <memory>

namespace quarry {

namespace {

/// What the X11 library hands out is the caller's to free.
template <typename Reply>
auto owned(Reply* reply)
{
    return std::unique_ptr<Reply, decltype(&std::free)>(reply, &std::free);
}

/// None on another kind of screen.
xcb_connection_t* connection()
{
    const auto* x11 = qGuiApp->nativeInterface<QNativeInterface::QX11Application>();
    return x11 ? x11->connection() : nullptr;
}

xcb_atom_t atomNamed(xcb_connection_t* screen, const QByteArray& name)
{
    const auto cookie = xcb_intern_atom(screen, 0, static_cast<std::uint16_t>(name.size()), name.constData());
    const auto reply = owned(xcb_intern_atom_reply(screen, cookie, nullptr));
    return reply ? reply->atom : xcb_atom_t{XCB_ATOM_NONE};
}

/// Each of a display's screens can have a bar.
int screenNumber()
{
    char* host = nullptr;
    int display = 0;
    int screen = 0;
    if (!xcb_parse_display(nullptr, &host, &display, &screen))
        return 0;
    std::free(host);
    return screen;
}

} // namespace

TrayWindow::TrayWindow(std::function<void()> changed) : _changed(std::move(changed))
{
    xcb_connection_t* screen = connection();
    if (!screen)
        return;
    _selection = atomNamed(screen, "_NET_SYSTEM_TRAY_S" + QByteArray::number(screenNumber()));
    _manager = atomNamed(screen, "MANAGER");
    qGuiApp->installNativeEventFilter(this);
}

TrayWindow::~TrayWindow() = default; // Which takes the filter away.

bool TrayWindow::isThere() const
{
    if (_selection == 0)
        return false;
    xcb_connection_t* screen = connection();
    const auto reply =
        owned(xcb_get_selection_owner_reply(screen, xcb_get_selection_owner(screen, _selection), nullptr));
    return reply && reply->owner != XCB_WINDOW_NONE;
}

bool TrayWindow::nativeEventFilter(const QByteArray& eventType, void* message, qintptr* /*result*/)
{
    // Qt already listens to the root window, to which the owner's message is sent.
    if (eventType == "xcb_generic_event_t") {
        const auto* event = static_cast<const xcb_client_message_event_t*>(message);
        constexpr std::uint8_t sentFlag = 0x80;
        if ((event->response_type & ~sentFlag) == XCB_CLIENT_MESSAGE && event->type == _manager &&
            event->data.data32[1] == _selection)
            _changed();
    }
    return false;
}

} // namespace quarry
