#include "TrayEar.h"
#include "TrayRig.h"
#include "support/QtPrinting.h"

#include <QRegularExpression>

#include <gtest/gtest.h>

using namespace quarry;

namespace {

/// A desktop's bar on the session bus: another process, since programs wait for its answers.
class FakeBar final {
public:
    explicit FakeBar(const QStringList& arguments = {QStringLiteral("--host")})
    {
        _process.start(QCoreApplication::applicationFilePath(), QStringList{QStringLiteral("--fake-bar")} + arguments);
    }
    ~FakeBar()
    {
        _process.kill();
        _process.waitForFinished();
    }

    void addHost() { _process.write("host\n"); }
    /// Runs until the bar says that.
    [[nodiscard]] bool says(const QByteArray& line)
    {
        return happens([&] { return (_said += _process.readAllStandardOutput()).contains(line); });
    }
    /// The bus name of the item that registered, empty when none does.
    [[nodiscard]] QString item()
    {
        if (!says("item "))
            return {};
        const qsizetype start = _said.lastIndexOf("item ") + 5;
        return QString::fromUtf8(_said.mid(start, _said.indexOf('\n', start) - start));
    }

private:
    QProcess _process;
    QByteArray _said;
};

/// The labels of the menu that the desktop draws.
QStringList labelsOf(const QString& item)
{
    QProcess asking;
    asking.start(QStringLiteral("dbus-send"),
                 {QStringLiteral("--session"), QStringLiteral("--print-reply"), QStringLiteral("--dest=") + item,
                  QStringLiteral("/MenuBar"), QStringLiteral("com.canonical.dbusmenu.GetLayout"),
                  QStringLiteral("int32:0"), QStringLiteral("int32:-1"), QStringLiteral("array:string:label")});
    EXPECT_TRUE(happens([&] { return asking.state() == QProcess::NotRunning; }));
    const QString reply = QString::fromUtf8(asking.readAllStandardOutput());
    static const QRegularExpression label(QStringLiteral("\"label\"\\s+variant\\s+string \"([^\"]*)\""));
    QStringList labels;
    for (auto match = label.globalMatch(reply); match.hasNext();)
        labels.append(match.next().captured(1));
    return labels;
}

TEST(BusTray, IsWaitedForAndGetsTheItemAgainAfterARestart)
{
    TrayRig rig;
    rig.item.show();
    {
        FakeBar bar(QStringList{});
        ASSERT_TRUE(bar.says("asked")) << "who shows icons";
        EXPECT_FALSE(rig.item.isInTray());
        bar.addHost();
        ASSERT_FALSE(bar.item().isEmpty());
        EXPECT_TRUE(rig.item.isInTray());
    }
    FakeBar another;
    EXPECT_FALSE(another.item().isEmpty());
    EXPECT_EQ(rig.reports, 0);
}

TEST(BusTray, HandsOutPlainRowsAndTellsOnlyOfChanges)
{
    FakeBar bar;
    TrayRig rig;
    rig.item.setInfo(TrayRig::news());
    rig.item.show();
    const QString item = bar.item();
    const QStringList fixed = {QStringLiteral("Open QuarrySpotter"), QStringLiteral("Refresh Now (next in 12 min)"),
                               QStringLiteral("Quit QuarrySpotter Agent…")};
    // An underscore marks the letter behind it, as "&" does elsewhere.
    const QStringList rows = {QStringLiteral("New Results"),
                              QStringLiteral("12 new results for mountain water _& springs & a__b"),
                              QStringLiteral("1 new result for sourdough")};
    EXPECT_EQ(labelsOf(item), fixed + rows);

    const TrayEar ear(item);
    for (int second = 0; second < 5; ++second) {
        rig.item.setTitle(StatusItem::Tag::Refresh, fixed[1]);
        rig.item.setEnabled(StatusItem::Tag::Refresh, true);
        rig.item.setIcon(StatusItem::Icon::Plain);
        rig.item.setInfo(TrayRig::news());
    }
    rig.item.setIcon(StatusItem::Icon::Highlighted);
    ASSERT_TRUE(happens([&] { return ear.icons > 0; }));
    EXPECT_EQ(std::tuple(ear.titles, ear.layouts, ear.icons), std::tuple(0, 0, 1));
    rig.item.setTitle(StatusItem::Tag::Refresh, QStringLiteral("Now"));
    EXPECT_TRUE(happens([&] { return ear.titles > 0; }));
    rig.item.removeInfo();
    EXPECT_TRUE(happens([&] { return labelsOf(item) == QStringList({fixed[0], QStringLiteral("Now"), fixed[2]}); }));
}

TEST(BusTray, PopsUpTheDrawnMenuOnAClickWhereItCan)
{
    FakeBar bar;
    TrayRig rig;
    rig.item.show();
    const DesktopProgram click(QStringLiteral("dbus-send"),
                               {QStringLiteral("--session"), QStringLiteral("--type=method_call"),
                                QStringLiteral("--dest=") + bar.item(), QStringLiteral("/StatusNotifierItem"),
                                QStringLiteral("org.kde.StatusNotifierItem.Activate"), QStringLiteral("int32:5"),
                                QStringLiteral("int32:5")});
    EXPECT_TRUE(happens([&] { return rig.item.menu().isVisible(); }));
}

} // namespace
