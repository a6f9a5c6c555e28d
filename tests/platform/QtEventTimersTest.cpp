#include "platform/QtEventTimers.h"

#include <QCoreApplication>
#include <QEventLoop>

#include <gtest/gtest.h>

#include <thread>

using namespace quarry;
using std::chrono::milliseconds;

namespace {

TEST(QtEventTimers, CallFromTheLoopUntilTheyGoAway)
{
    int argc = 1;
    char name[] = "test";
    char* argv[] = {name, nullptr};
    const QCoreApplication application(argc, argv);
    QEventLoop loop;
    QString calls;
    auto timers = std::make_unique<QtEventTimers>();
    timers->after(milliseconds(0), [&] { calls += QLatin1Char('a'); });
    std::thread([&] { timers->post([&] { calls += QLatin1Char('p'); }); }).join();
    timers->after(std::chrono::hours(24 * 365), [&] { calls += QLatin1Char('!'); });
    timers->every(milliseconds(1), [&] {
        calls += QLatin1Char('e');
        if (calls.count(QLatin1Char('e')) == 3)
            loop.quit();
    });
    EXPECT_TRUE(calls.isEmpty()) << "nothing is called before the loop runs";
    loop.exec();
    EXPECT_EQ(calls.count(QLatin1Char('a')), 1);
    EXPECT_EQ(calls.count(QLatin1Char('p')), 1);
    EXPECT_FALSE(calls.contains(QLatin1Char('!')));

    timers->post([&] { calls = QStringLiteral("called after its end"); });
    timers.reset();
    QCoreApplication::processEvents();
    EXPECT_EQ(calls.count(QLatin1Char('e')), 3);
}

} // namespace
