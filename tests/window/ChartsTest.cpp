#include "WindowRig.h"
#include "support/ManualTimers.h"
#include "window/ChartsPane.h"
#include "window/DayChart.h"
#include "window/ShareChart.h"

#include <QLabel>

using namespace quarry;
using namespace quarry::test;

namespace {

ResultRecord foundAt(double daysAgo, const char* engine)
{
    static int number = 0;
    const SettableClock clock;
    return resultAt(QStringLiteral("http://site.example/%1").arg(++number))
        .withEngineId(QString::fromLatin1(engine))
        .withDateOfFind(clock.now().plusSeconds(-daysAgo * 86400.0));
}

void fill(const QueryCorePtr& root)
{
    const QueryCorePtr pond = QueryCore::initWithQuery(QStringLiteral("pond"));
    ResultList results;
    for (int day = 0; day < 30; ++day) {
        for (int i = 0; i < (day * 7) % 11; ++i)
            results.append(foundAt(day, i % 3 == 0 ? "1" : "5"));
    }
    pond->restoreResults(results, {});
    root->addChild(pond);
    const QueryCorePtr bread = QueryCore::initWithQuery(QStringLiteral("bread"));
    bread->restoreResults({foundAt(0, "2"), foundAt(0, "2"), foundAt(3, "4")}, {});
    root->addChild(bread);
}

/// Bars have the color of selections.
QRect barsIn(QWidget& chart)
{
    const QImage image = chart.grab().toImage();
    return placeLike(chart.palette().color(QPalette::Highlight), image, image.rect(), 0);
}

TEST(ChartsTest, ShowWhatTheSelectedNodeBroughtInPicturesAndNumbers)
{
    WindowRig rig(fill);
    rig.select(QStringLiteral("bread"));
    auto* const pane = rig.window->findChild<ChartsPane*>();
    ASSERT_FALSE(pane->isVisible());
    rig.window->actions().charts->trigger();
    auto* const days = pane->findChild<DayChart*>();
    auto* const services = pane->findChild<ShareChart*>();
    const auto summary = [pane] { return pane->findChild<QLabel*>()->text(); };

    ASSERT_TRUE(happens([&] {
        return summary() == QStringLiteral("bread: 3 new results in the last 30 days, 3 in all");
    })) << qPrintable(summary());
    const QStringList lines = days->accessibleDescription().split(u'\n');
    ASSERT_EQ(lines.size(), 30);
    EXPECT_TRUE(lines.at(29).endsWith(QStringLiteral(": 2 new results"))) << qPrintable(lines.at(29));
    EXPECT_TRUE(lines.at(26).endsWith(QStringLiteral(": 1 new results"))) << qPrintable(lines.at(26));
    EXPECT_EQ(services->accessibleDescription(), QStringLiteral("Yahoo: 2 (67 %)\nIxquick: 1 (33 %)"));
    const QRect bars = barsIn(*days);
    EXPECT_GT(bars.left(), days->width() * 3 / 4) << "only the latest days brought something";
    keepPicture(rig.window.get(), QStringLiteral("charts-bread"));

    days->setFocus();
    QTest::keyClick(days, Qt::Key_End);
    EXPECT_EQ(summary(), lines.at(29));
    QTest::keyClick(days, Qt::Key_Left);
    EXPECT_EQ(summary(), lines.at(28));

    // Mirrored: the latest day is on the left then, and "left" leads forward.
    pane->setLayoutDirection(Qt::RightToLeft);
    EXPECT_LT(barsIn(*days).right(), days->width() / 4);
    QTest::keyClick(days, Qt::Key_Left);
    EXPECT_EQ(summary(), lines.at(29));
    pane->unsetLayoutDirection();

    rig.select(QStringLiteral("pond"));
    EXPECT_TRUE(happens([&] { return summary().startsWith(QStringLiteral("pond: 1")); })) << qPrintable(summary());
    keepPicture(rig.window.get(), QStringLiteral("charts-pond"));
    rig.window->actions().charts->trigger();
    EXPECT_FALSE(pane->isVisible());
}

TEST(ChartsTest, AreWhereTheyWereWhenTheWindowOpensAgain)
{
    WindowRig rig(fill);
    for (const bool isShown : {true, false}) {
        rig.window->actions().charts->trigger();
        rig.window->addDockWidget(Qt::RightDockWidgetArea, rig.window->findChild<ChartsPane*>());
        bool isSaved = false;
        rig.window->finish([&isSaved](bool is) { isSaved = is; });
        ASSERT_TRUE(happens([&isSaved] { return isSaved; }));
        rig.window.reset();
        (void)rig.open();
        auto* const pane = rig.window->findChild<ChartsPane*>();
        EXPECT_EQ(pane->isVisible(), isShown);
        EXPECT_EQ(rig.window->actions().charts->isChecked(), isShown);
        EXPECT_EQ(rig.window->dockWidgetArea(pane), Qt::RightDockWidgetArea);
    }
}

TEST(ChartsTest, MoveOnToTheNewDayAtMidnight)
{
    ManualTimers timers;
    SettableClock clock;
    const StringTable texts = windowTexts();
    ChartsPane pane(timers, clock, texts);
    const QueryCorePtr query = QueryCore::initWithQuery(QStringLiteral("pond"));
    query->restoreResults({foundAt(0, "1")}, {});
    pane.show(query, QStringLiteral("pond"));
    pane.QWidget::show();
    const auto lines = [&] { return pane.findChild<DayChart*>()->accessibleDescription().split(u'\n'); };
    ASSERT_TRUE(timers.runUntil([&] { return lines().size() == ResultChart::DayCount; }));
    const QString today = lines().constLast();
    EXPECT_TRUE(today.endsWith(QStringLiteral(": 1 new results"))) << qPrintable(today);

    // Whatever time it is: a day later, with more than one look at the clock on the way.
    for (int hour = 0; hour < 24; ++hour) {
        clock.advance(3600.0);
        timers.advance(std::chrono::hours(1));
    }
    ASSERT_TRUE(timers.runUntil([&] { return lines().constLast() != today; }));
    EXPECT_EQ(lines().at(ResultChart::DayCount - 2), today);
}

} // namespace
