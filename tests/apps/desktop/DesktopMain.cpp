#include "apps/desktop/MainApplicationStandIn.h"
#include "platform/desktop/DBusNotifications.h"
#include "platform/desktop/SessionBus.h"

#include <QApplication>
#include <QFileInfo>

#include <gtest/gtest.h>

namespace quarry::test {

int MainApplicationStandIn::run(int argc, char** argv)
{
    const QCoreApplication application(argc, argv);
    SessionBus bus;
    DBusNotifications everybody(bus);
    everybody.addObserver(leaveNotification(), [&](const auto&) {
        everybody.post(QStringLiteral("kAppWillQuitNotification"));
        QCoreApplication::exit(0);
    });
    everybody.post(openedNotification(),
                   {{QStringLiteral("arguments"), QCoreApplication::arguments().mid(1).join(u'\n')}});
    return QCoreApplication::exec();
}

} // namespace quarry::test

int main(int argc, char** argv)
{
    using quarry::test::MainApplicationStandIn;
    if (MainApplicationStandIn::isMeant(QFileInfo(QString::fromLocal8Bit(argv[0])).fileName()))
        return MainApplicationStandIn::run(argc, argv);
    ::testing::InitGoogleTest(&argc, argv);
    const QApplication application(argc, argv);
    return RUN_ALL_TESTS();
}
