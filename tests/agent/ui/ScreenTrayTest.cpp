#include "TrayRig.h"
#include "support/QtPrinting.h"
#include "support/Tray.h"

#include <QPalette>

#include <gtest/gtest.h>

using namespace quarry;
using namespace Qt::Literals::StringLiterals;

namespace {

bool showsOpenEye()
{
    const QSize eye = openEye().size();
    return eye.width() * eye.height() > 10;
}

TEST(ScreenTray, IsWaitedForAndGetsTheIconAgainAfterARestart)
{
    TrayRig rig(std::chrono::milliseconds(100));
    rig.item.setIcon(StatusItem::Icon::Highlighted);
    rig.item.show();
    ASSERT_TRUE(happens([&] { return rig.reports > 0; })) << "there is no tray yet";
    EXPECT_FALSE(rig.item.isInTray());
    for (const QString& color : {u"0x202020"_s, u"0xf0f0f0"_s}) {
        const DesktopProgram tray = trayOf(color);
        ASSERT_TRUE(happens(showsOpenEye)) << color.toStdString();
        rig.item.setIcon(StatusItem::Icon::Plain);
        ASSERT_TRUE(happens([] { return !showsOpenEye(); }));
        screenshot(u"tray-plain-"_s + color);
        rig.item.setIcon(StatusItem::Icon::Highlighted);
        ASSERT_TRUE(happens(showsOpenEye));
        screenshot(u"tray-highlighted-"_s + color);
    }
    EXPECT_EQ(rig.reports, 1);
}

TEST(ScreenTray, PopsUpTheMenuWithTheDrawnInfoItem)
{
    const DesktopProgram tray = trayOf(u"0x202020"_s);
    TrayRig rig;
    rig.item.setIcon(StatusItem::Icon::Highlighted);
    rig.item.setInfo(TrayRig::news());
    rig.item.show();
    ASSERT_TRUE(happens(showsOpenEye));
    EXPECT_EQ(rig.reports, 0);

    QStringList titles;
    for (const QAction* action : rig.item.menu().actions())
        titles.append(action->text());
    EXPECT_EQ(titles.mid(0, 3), (QStringList{u"Open QuarrySpotter"_s, u"Refresh Now (next in 12 min)"_s,
                                             u"Quit QuarrySpotter Agent…"_s}));
    EXPECT_EQ(titles.size(), 4) << "the info item comes last";

    for (const int button : {1, 3}) {
        if (button == 3)
            QApplication::setPalette(QPalette(QColor(50, 50, 54)));
        clickScreen(openEye().center(), button);
        ASSERT_TRUE(happens([&] { return rig.item.menu().isVisible(); })) << "button " << button;
        const QColor bubble(58, 87, 247);
        ASSERT_TRUE(happens([&] { return pixelsLike(bubble, screenshot(), rig.item.menu().geometry(), 20) > 200; }));
        screenshot(u"menu-%1"_s.arg(button));
        rig.item.menu().close();
    }

    clickScreen(openEye().center());
    ASSERT_TRUE(happens([&] { return rig.item.menu().isVisible(); }));
    rig.item.removeInfo();
    EXPECT_EQ(rig.item.menu().actions().size(), 3) << "also while the menu is open";
    rig.item.menu().actions().at(1)->trigger();
    EXPECT_EQ(rig.actions, std::vector{StatusItem::Tag::Refresh});
    rig.item.setEnabled(StatusItem::Tag::Refresh, false);
    rig.item.menu().actions().at(1)->trigger();
    rig.item.menu().actions().at(2)->trigger();
    EXPECT_EQ(rig.actions, (std::vector{StatusItem::Tag::Refresh, StatusItem::Tag::Quit}));
}

} // namespace
