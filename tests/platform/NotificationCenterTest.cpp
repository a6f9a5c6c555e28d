#include "platform/NotificationCenter.h"

#include "platform/Pauser.h"

#include <gtest/gtest.h>

#include <future>
#include <thread>

using namespace quarry;

namespace {

TEST(NotificationCenter, CallsObserversOfTheNameInOrder)
{
    NotificationCenter center;
    const auto sender = std::make_shared<int>(7);
    std::string calls;
    const auto first = center.addObserver(QStringLiteral("a"), [&](const QString&, const auto& from) {
        EXPECT_EQ(from, sender);
        calls += '1';
    });
    const auto other = center.addObserver(QStringLiteral("b"), [&](const QString&, const auto&) { calls += 'b'; });
    auto second = center.addObserver(QStringLiteral("a"), [&](const QString&, const auto&) { calls += '2'; });
    center.post(QStringLiteral("a"), sender);
    second = {};
    center.post(QStringLiteral("a"), sender);
    EXPECT_EQ(calls, "121");
}

TEST(NotificationCenter, AnObserverMayEndItselfAndPost)
{
    NotificationCenter center;
    int calls = 0;
    NotificationCenter::Registration registration;
    registration = center.addObserver(QStringLiteral("a"), [&](const QString&, const auto&) {
        ++calls;
        registration = {};
        center.post(QStringLiteral("a"));
    });
    center.post(QStringLiteral("a"));
    center.post(QStringLiteral("a"));
    EXPECT_EQ(calls, 1);
}

TEST(NotificationCenter, EndingWaitsForARunningCallOnAnotherThread)
{
    NotificationCenter center;
    std::promise<void> entered;
    std::promise<void> mayLeave;
    std::atomic<bool> left{false};
    auto registration = center.addObserver(QStringLiteral("a"), [&](const QString&, const auto&) {
        entered.set_value();
        mayLeave.get_future().wait();
        left = true;
    });
    std::thread poster([&] { center.post(QStringLiteral("a")); });
    entered.get_future().wait();
    std::thread releaser([&] { mayLeave.set_value(); });
    registration = {};
    EXPECT_TRUE(left);
    poster.join();
    releaser.join();
}

TEST(ThreadPauser, StopEndsARunningAndEveryLaterPause)
{
    ThreadPauser pauser;
    EXPECT_TRUE(pauser.pause(std::chrono::milliseconds(1)));
    std::promise<bool> result;
    std::thread sleeper([&] { result.set_value(pauser.pause(std::chrono::hours(1))); });
    pauser.stop();
    EXPECT_FALSE(result.get_future().get());
    EXPECT_FALSE(pauser.pause(std::chrono::hours(1)));
    EXPECT_TRUE(pauser.isStopped());
    sleeper.join();
}

} // namespace
