#include "TrayEar.h"
#include "TrayRig.h"
#include "support/QtPrinting.h"

#include <QRegularExpression>

#include <gtest/gtest.h>

using namespace quarry;
using namespace Qt::Literals::StringLiterals;

namespace {

/// A desktop's bar on the session bus: another process, since programs wait for its answers.
class FakeBar final {
public:
    explicit FakeBar(const QStringList& arguments = {u"--host"_s})
    {
        _process.start(QCoreApplication::applicationFilePath(), QStringList{u"--fake-bar"_s} + arguments);
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
    asking.start(u"dbus-send"_s,
                 {u"--session"_s, u"--print-reply"_s, u"--dest="_s + item, u"/MenuBar"_s,
                  u"com.canonical.dbusmenu.GetLayout"_s, u"int32:0"_s, u"int32:-1"_s, u"array:string:label"_s});
    EXPECT_TRUE(happens([&] { return asking.state() == QProcess::NotRunning; }));
    const QString reply = QString::fromUtf8(asking.readAllStandardOutput());
    static const QRegularExpression label(u"\"label\"\\s+variant\\s+string \"([^\"]*)\""_s);
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
    const QStringList fixed = {u"Open QuarrySpotter"_s, u"Refresh Now (next in 12 min)"_s,
                               u"Quit QuarrySpotter Agent…"_s};
    // An underscore marks the letter behind it, as "&" does elsewhere.
    const QStringList rows = {u"New Results"_s, u"12 new results for mountain water _& springs & a__b"_s,
                              u"1 new result for sourdough"_s};
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
    rig.item.setTitle(StatusItem::Tag::Refresh, u"Now"_s);
    EXPECT_TRUE(happens([&] { return ear.titles > 0; }));
    rig.item.removeInfo();
    EXPECT_TRUE(happens([&] { return labelsOf(item) == QStringList({fixed[0], u"Now"_s, fixed[2]}); }));
}

TEST(BusTray, PopsUpTheDrawnMenuOnAClickWhereItCan)
{
    FakeBar bar;
    TrayRig rig;
    rig.item.show();
    const DesktopProgram click(u"dbus-send"_s, {u"--session"_s, u"--type=method_call"_s, u"--dest="_s + bar.item(),
                                                u"/StatusNotifierItem"_s, u"org.kde.StatusNotifierItem.Activate"_s,
                                                u"int32:5"_s, u"int32:5"_s});
    EXPECT_TRUE(happens([&] { return rig.item.menu().isVisible(); }));
}

} // namespace
