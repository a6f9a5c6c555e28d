#include "updater/ui/LXUpdaterController.h"

#include "UpdaterScreen.h"
#include "platform/QtEventTimers.h"
#include "support/DesktopDoubles.h"
#include "support/FakePageLoader.h"
#include "support/QtPrinting.h"
#include "support/SettableClock.h"
#include "support/UpdaterDoubles.h"
#include "updater/ReleaseNotes.h"

#include <QAccessible>
#include <QLabel>
#include <QProgressBar>
#include <QTest>
#include <QTextBrowser>
#include <QToolButton>

#include <gtest/gtest.h>

using namespace quarry;
using namespace quarry::test;
using namespace Qt::Literals::StringLiterals;

namespace {

class Answers final : public UpdateResultDelegate {
public:
    void updateResulteDidGetResult(int result) override { results.push_back(result); }
    std::vector<int> results;
};

/// A window over a master that hands the answers on.
class ControllerTest : public ::testing::Test {
protected:
    explicit ControllerTest(const QByteArray& notesAddress = "https://a.example/notes.rtf")
        : texts(textsWithNotes(notesAddress)),
          master({{}, clock, events, notifications, defaults, alerts, texts, {}, {}})
    {
        master.setResultDelegate(&answers);
        window.setMaster(&master);
        infos.curentVersion = u"1.3.0"_s;
        infos.productDownloadUrl = Url::fromStored(u"https://a.example/p"_s);
    }
    template <typename Widget>
    Widget* named(const char* name)
    {
        return window.window().findChild<Widget*>(QLatin1String(name));
    }
    [[nodiscard]] LoadedPage notes(const QByteArray& address) const
    {
        LoadedPage page;
        if (address != "https://a.example/notes.rtf" || !haveNotes)
            page.error = u"HTTP status 404"_s;
        else
            page.bytes = "{\\rtf1\\ansi{\\fonttbl{\\f0 Sans;}}{\\b New in 1.3}\\par \\bullet  Faster "
                         "refreshes\\par \\bullet  The caf\\'e9 bug\\par}";
        return page;
    }

    SettableClock clock;
    QtEventTimers events;
    LocalNotifications notifications;
    FakeUpdaterDefaults defaults;
    FakeAlerts alerts;
    StringTable texts;
    bool haveNotes = true;
    QStringList opened;
    Answers answers;
    UpdateInfos infos;
    LXUpdater master;
    LXUpdaterController window{{u"1.2.5"_s, clock, events, texts,
                                [this] {
                                    return std::make_shared<FakeUpdateLoader>(
                                        [this](const QByteArray& address) { return notes(address); });
                                },
                                [this](const QString& address) { opened.append(address); }}};
};

class ControllerWithoutNotes : public ControllerTest {
protected:
    ControllerWithoutNotes() : ControllerTest(QByteArray()) {}
};

TEST_F(ControllerTest, OffersBothVersionsAndNotesThatFoldAway)
{
    window.showAskUpdate(infos);
    ASSERT_TRUE(QTest::qWaitForWindowActive(&window.window()));
    EXPECT_EQ(named<QLabel>("messageTF")->text(),
              u"QuarrySpotter 1.3.0 is available; you have 1.2.5. Do you want to install it now?"_s);
    auto* const view = named<QTextBrowser>("releaseNotesView");
    ASSERT_TRUE(happens([&] { return view->toPlainText().contains(u"The café bug"_s); }));
    EXPECT_TRUE(view->isVisible());
    EXPECT_FALSE(view->toPlainText().contains(u"Sans"_s));

    keepPicture(&window.window(), u"update-window"_s);
    const int unfolded = window.window().height();
    auto* const disclosure = named<QToolButton>("disclosureButton");
    disclosure->setFocus();
    QTest::keyClick(disclosure, Qt::Key_Space);
    ASSERT_TRUE(happens([&] { return window.window().height() < unfolded - 100; }));
    EXPECT_FALSE(view->isVisible());
    QTest::keyClick(disclosure, Qt::Key_Space);
    EXPECT_TRUE(view->isVisible());

    for (const char* name : {"disclosureButton", "releaseNotesView", "cancelButton"})
        EXPECT_FALSE(QAccessible::queryAccessibleInterface(named<QWidget>(name))->text(QAccessible::Name).isEmpty())
            << name;
}

TEST_F(ControllerTest, IsAnsweredByKeyboardAndByItsButtons)
{
    window.showAskUpdate(infos);
    ASSERT_TRUE(QTest::qWaitForWindowActive(&window.window()));
    openButton(u"More Information"_s)->click();
    EXPECT_EQ(opened, QStringList{u"https://a.example/p"_s});
    EXPECT_TRUE(window.isShowing()) << "to be answered yet";
    QTest::keyClick(&window.window(), Qt::Key_Escape);
    EXPECT_FALSE(window.isShowing());
    window.showAskUpdate(infos);
    QTest::keyClick(&window.window(), Qt::Key_Return);
    EXPECT_FALSE(window.isShowing());
    window.showAskUpdate(infos);
    openButton(u"Later"_s)->click();
    EXPECT_EQ(answers.results, (std::vector{0, 1, 0}));
}

TEST_F(ControllerTest, SaysThatNotesCannotBeFetched)
{
    haveNotes = false;
    window.showAskUpdate(infos);
    EXPECT_TRUE(happens([&] {
        return named<QTextBrowser>("releaseNotesView")->toPlainText() == u"The release notes could not be fetched."_s;
    }));
}

TEST_F(ControllerWithoutNotes, ShowsNoPlaceForNotes)
{
    window.showAskUpdate(infos);
    EXPECT_FALSE(named<QToolButton>("disclosureButton")->isVisible());
    EXPECT_FALSE(named<QTextBrowser>("releaseNotesView")->isVisible());
    EXPECT_TRUE(openButton(u"Install"_s));
}

TEST_F(ControllerTest, ShowsMegabytesAndTheRemainingTime)
{
    auto* const bar = named<QProgressBar>("pBar");
    window.setProgressBarIndeterminate(true);
    window.setStatus(u"Downloading…"_s);
    window.orderFrontRegardless();
    EXPECT_TRUE(bar->isVisible() && !openButton(u"Install"_s));
    EXPECT_EQ(bar->maximum(), 0) << "busy";
    EXPECT_EQ(bar->accessibleName(), u"Downloading…"_s);
    window.setProgressBarIndeterminate(false, 0, 40000000, 0);
    window.setDownloadStartTime();
    window.incrementProgressBarValue(10000000);
    EXPECT_EQ(named<QLabel>("progresssTF")->text(), u"0.0 of 40.0 MB"_s);
    EXPECT_EQ(bar->value() * 4, bar->maximum());
    clock.advance(10);
    window.incrementProgressBarValue(10000000);
    EXPECT_EQ(named<QLabel>("progresssTF")->text(), u"10.0 of 40.0 MB – 31 s remaining"_s);

    QAbstractButton* const cancel = openButton(u"Cancel"_s);
    cancel->click();
    EXPECT_FALSE(cancel->isEnabled());
    window.incrementProgressBarValue(1);
    EXPECT_TRUE(cancel->isEnabled());
    EXPECT_EQ(named<QLabel>("progresssTF")->text(), u"20.0 of 40.0 MB"_s) << "no time is told after Cancel";
}

TEST(ReleaseNotes, AreTextWithALittleEmphasis)
{
    struct Case {
        const char* document;
        const char* html;
    };
    const Case cases[] = {
        {"Plain & simple\nsecond line\n", "<p>Plain &amp; simple<br>second line</p>"},
        {"{\\rtf1 a{\\b b\\i c}d\\b0\\par e\\line f}", "<p>a<b>b</b><b><i>c</i></b>d</p><p>e<br>f</p>"},
        {"{\\rtf1{\\stylesheet{\\s0 x;}}{\\*\\y z}{\\pict 00ff}seen}", "<p>seen</p>"},
        {"{\\rtf1\\uc1 \\u8364?\\u-10179?\\u-8704? \\'93q\\'94 \\{\\}}", "<p>€😀 “q” {}</p>"},
        {"{\\rtf1 <img src=\"x\">}", "<p>&lt;img src=&quot;x&quot;&gt;</p>"},
        {"{\\rtf1 cut{\\b off\\", "<p>cut<b>off</b></p>"},
        {"{\\rtf1 }}}}more", "<p>more</p>"},
    };
    for (const Case& given : cases)
        EXPECT_EQ(releaseNotesHtml(given.document), QString::fromUtf8(given.html)) << given.document;
    EXPECT_FALSE(releaseNotesHtml("<html><script>x()</script><p>Hello</p></html>").contains(u"<script"_s));
}

} // namespace
