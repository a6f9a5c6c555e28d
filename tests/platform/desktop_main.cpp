// The session bus is used from an event loop, which needs the application object.

#include <QCoreApplication>

#include <gtest/gtest.h>

int main(int argc, char** argv)
{
    testing::InitGoogleTest(&argc, argv);
    // Whatever a test forgets reaches nobody's real session.
    qputenv("DBUS_SESSION_BUS_ADDRESS", "unix:path=/nonexistent/bus");
    qunsetenv("XDG_RUNTIME_DIR");
    const QCoreApplication application(argc, argv);
    return RUN_ALL_TESTS();
}
