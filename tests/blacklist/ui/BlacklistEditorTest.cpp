#include "EditorRig.h"
#include "platform/SystemLog.h"

#include <QDir>
#include <QMessageBox>
#include <QSemaphore>
#include <QTimer>

using namespace quarry;
using namespace quarry::test;

namespace {

const QString Excluded = QStringLiteral("This address will be excluded");
const QString NotExcluded = QStringLiteral("This address will not be excluded");
constexpr qint64 Expression = BlacklistType::RegularExpression;

using BlacklistEditor = EditorRig;

TEST_F(BlacklistEditor, WritesTheFileOnlyWhenSaved)
{
    open();
    EXPECT_FALSE(isEnabled("saveBlacklistButton") || isEnabled("addToBlacklistButton"));
    for (const bool saves : {false, true}) {
        type("simpleRuleTF", "ads.example");
        part<QComboBox>("simpleRuleMenu").setFocus();
        QTest::keyClick(&part<QComboBox>("simpleRuleMenu"), Qt::Key_Down); // Domain
        click("addToBlacklistButton");
        EXPECT_EQ(rows(), QStringList(QStringLiteral("x Domain ads.example")));
        EXPECT_EQ(textOf("simpleRuleTF"), QString());
        EXPECT_FALSE(isEnabled("addToBlacklistButton"));
        EXPECT_FALSE(QFile::exists(home->blacklistFile()));
        if (saves)
            click("saveBlacklistButton");
        else
            QTest::keyClick(&editor, Qt::Key_Escape);
        EXPECT_FALSE(editor.isVisible());
        EXPECT_FALSE(isEnabled("saveBlacklistButton"));
        EXPECT_EQ(QFile::exists(home->blacklistFile()), saves);
        open();
        EXPECT_EQ(rows().size(), int(saves)) << "what is saved, and no more";
    }
    EXPECT_EQ(saved(), QList{textRule("ads.example", BlacklistType::Domain)});
    EXPECT_EQ(int(QFile::permissions(home->blacklistFile()) & 0x0fff), 0x0660);
}

TEST_F(BlacklistEditor, ModifiesTheSelectedRule)
{
    saveElsewhere({textRule("ads"), textRule("^http:", Expression, false)});
    open();
    EXPECT_FALSE(part<QPushButton>("removeFromBlacklistButton").isVisible());
    clickCell(1, RuleColumn::Kind);
    EXPECT_EQ(tabs().currentWidget()->objectName(), QStringLiteral("regexptab"));
    EXPECT_EQ(textOf("regexpRuleTF"), QStringLiteral("^http:"));
    EXPECT_EQ(titleOf("addToBlacklistButton"), QStringLiteral("Modify"));
    EXPECT_TRUE(part<QPushButton>("removeFromBlacklistButton").isVisible());
    EXPECT_FALSE(isEnabled("addToBlacklistButton")) << "nothing to modify yet";
    click("caseSensitiveButton");
    type("regexpRuleTF", "^https:(");
    click("addToBlacklistButton");
    EXPECT_EQ(rows(), (QStringList{QStringLiteral("x Text ads"), QStringLiteral("x Regular expression ^https:(")}));
    EXPECT_EQ(selectedRow(), -1);
    EXPECT_EQ(titleOf("addToBlacklistButton"), QStringLiteral("Add"));
    // To another kind, and so to another place.
    clickCell(1, RuleColumn::Settings);
    EXPECT_TRUE(part<QCheckBox>("caseSensitiveButton").isChecked());
    showTab("simpletab");
    EXPECT_EQ(textOf("regexpRuleTF"), QString());
    type("simpleRuleTF", "a");
    click("addToBlacklistButton");
    click("saveBlacklistButton");
    EXPECT_EQ(saved().size(), 2);
    EXPECT_EQ(saved()[1], (BlacklistRule{QStringLiteral("a"), BlacklistType::Text, true, true}));
}

TEST_F(BlacklistEditor, SwitchesAndRemovesRules)
{
    saveElsewhere({textRule("a"), textRule("b"), textRule("c", 7), textRule("d", Expression)});
    open();
    EXPECT_EQ(rows().value(2), QStringLiteral("x  c")) << "no words for a kind that is none";
    clickCell(1, RuleColumn::State);
    EXPECT_EQ(rows().value(1), QStringLiteral("- Text b"));
    EXPECT_EQ(selectedRow(), 1);
    QTest::keyClick(&table(), Qt::Key_Up);
    EXPECT_EQ(textOf("simpleRuleTF"), QStringLiteral("a"));
    QTest::keyClick(&table(), Qt::Key_Space);
    EXPECT_EQ(rows().value(0), QStringLiteral("- Text a"));
    EXPECT_TRUE(isEnabled("saveBlacklistButton"));

    clickCell(3, RuleColumn::Kind);
    QTest::keyClick(&table(), Qt::Key_Delete);
    EXPECT_EQ(selectedRow(), 2) << "the one above";
    click("removeFromBlacklistButton");
    QTest::keyClick(&table(), Qt::Key_Up);
    click("removeFromBlacklistButton");
    EXPECT_EQ(selectedRow(), -1) << "nothing above the first";
    EXPECT_FALSE(part<QPushButton>("removeFromBlacklistButton").isVisible());
    EXPECT_EQ(textOf("simpleRuleTF"), QString());
    click("saveBlacklistButton");
    EXPECT_EQ(saved(), QList{textRule("b", BlacklistType::Text, false)});
}

TEST_F(BlacklistEditor, TestsTheTypedRule)
{
    const auto kinds = {BlacklistType::Text, BlacklistType::Domain, BlacklistType::FileType};
    struct Case {
        qint64 kind;
        const char* rule;
        const char* address;
        bool isExcluded;
        bool isExcludedWithCase;
    };
    const Case cases[] = {
        {BlacklistType::Text, "Ads", "http://x.example/ads/1", true, false},
        {BlacklistType::Text, "ads", "http://x.example/news", false, false},
        {BlacklistType::Domain, "ads.example", "http://www.ads.example/page", true, true},
        {BlacklistType::Domain, "http://www.ads.example", "ads.example", true, true},
        {BlacklistType::Domain, "ads.example", "http://x.example/ads.example", false, false},
        {BlacklistType::FileType, "pdf", "http://x.example/a.PDF", true, false},
        {BlacklistType::FileType, "pdf", "http://x.example/a.html", false, false},
        {Expression, "^http://[a-z]+\\.EXAMPLE/", "http://x.example/", true, false},
    };
    open();
    for (const Case& tried : cases) {
        const bool isSimple = tried.kind != Expression;
        showTab(isSimple ? "simpletab" : "regexptab");
        type(isSimple ? "simpleRuleTF" : "regexpRuleTF", tried.rule);
        if (isSimple)
            part<QComboBox>("simpleRuleMenu")
                .setCurrentIndex(int(std::find(kinds.begin(), kinds.end(), tried.kind) - kinds.begin()));
        type("testAddressTF", tried.address);
        click("testAddrButton");
        EXPECT_EQ(answer(), tried.isExcluded ? Excluded : NotExcluded) << tried.rule;
        click("caseSensitiveButton");
        EXPECT_EQ(answer(), QString()) << "it was about something else";
        QTest::keyClick(&part<QLineEdit>("testAddressTF"), Qt::Key_Return);
        EXPECT_EQ(answer(), tried.isExcludedWithCase ? Excluded : NotExcluded) << tried.rule;
        click("caseSensitiveButton");
    }
    type("regexpRuleTF", "a(b");
    click("testAddrButton");
    EXPECT_EQ(answer(), QStringLiteral("Parentheses '( )' not balanced"));
    type("regexpRuleTF", "[[.nosuch.]]");
    click("testAddrButton");
    EXPECT_EQ(answer(), QStringLiteral("This expression is not valid")) << "a fault without words of its own";
    EXPECT_FALSE(BlacklistEditorWinController::testExclusion(QStringLiteral("a"), QStringLiteral("a"),
                                                             Qt::CaseSensitive, Expression));
}

TEST_F(BlacklistEditor, TakesOneTypedRuleAtATime)
{
    open();
    type("simpleRuleTF", "a");
    EXPECT_TRUE(isEnabled("addToBlacklistButton"));
    QTest::keyClick(&part<QLineEdit>("simpleRuleTF"), Qt::Key_Backspace);
    EXPECT_FALSE(isEnabled("addToBlacklistButton"));
    type("simpleRuleTF", "a");
    showTab("regexptab");
    EXPECT_FALSE(isEnabled("addToBlacklistButton"));
    type("regexpRuleTF", ".*");
    showTab("simpletab");
    EXPECT_EQ(textOf("simpleRuleTF") + textOf("regexpRuleTF"), QString());
    showTab("regexptab");
    EXPECT_EQ(textOf("regexpRuleTF"), QString());
    // An expression without text would catch every address.
    click("caseSensitiveButton");
    click("addToBlacklistButton");
    EXPECT_EQ(rows(), QStringList());
    EXPECT_EQ(notice(), QStringLiteral("A rule needs a text: none was added."));
    type("regexpRuleTF", "x+");
    QTest::keyClick(&part<QLineEdit>("regexpRuleTF"), Qt::Key_Return);
    EXPECT_EQ(rows(), QStringList(QStringLiteral("x Regular expression x+")));
    EXPECT_EQ(notice(), QString());
    EXPECT_TRUE(editor.isVisible());

    click("regexpHelpButton");
    EXPECT_EQ(workspace.opened, QStringList(texts.text(QStringLiteral("110_Regular Expression wikipedia URL"))));
}

TEST_F(BlacklistEditor, OpensReadyForAnAddress)
{
    saveElsewhere({textRule("a")});
    open();
    clickCell(0, RuleColumn::State);
    showTab("regexptab");
    editor.loadWithAddress(*Url::fromText(QStringLiteral("http://www.ads.example/page?x")));
    EXPECT_EQ(rows(), QStringList(QStringLiteral("- Text a"))) << "what was not saved stays";
    EXPECT_TRUE(isEnabled("saveBlacklistButton"));
    EXPECT_EQ(selectedRow(), -1);
    EXPECT_EQ(textOf("simpleRuleTF"), QStringLiteral("www.ads.example"));
    EXPECT_EQ(textOf("testAddressTF"), QStringLiteral("http://www.ads.example/page?x"));
    click("testAddrButton");
    EXPECT_EQ(answer(), Excluded);
    click("addToBlacklistButton");
    EXPECT_EQ(rows().size(), 2);
    click("cancelButton");
    EXPECT_EQ(saved(), QList{textRule("a")});

    editor.addAndLoadWithAddress(*Url::fromText(QStringLiteral("http://b.example/")));
    ASSERT_TRUE(happens([&] { return isIdle(); }));
    EXPECT_EQ(saved(), (QList{textRule("a"), textRule("http://b.example/")})) << "at once";
    EXPECT_TRUE(editor.isVisible());
    EXPECT_EQ(selectedRow(), 1);
    EXPECT_EQ(textOf("simpleRuleTF"), QStringLiteral("http://b.example/"));
    EXPECT_EQ(textOf("testAddressTF"), QStringLiteral("http://b.example/"));
    EXPECT_FALSE(isEnabled("saveBlacklistButton"));
}

TEST_F(BlacklistEditor, KeepsWhatOtherProgramsWrote)
{
    saveElsewhere({textRule("a")});
    open();
    clickCell(0, RuleColumn::Kind);
    type("simpleRuleTF", "aa");
    saveElsewhere({textRule("x")});
    // It comes to the front again.
    QDialog other;
    other.show();
    other.activateWindow();
    ASSERT_TRUE(happens([&] { return other.isActiveWindow(); }));
    editor.activateWindow();
    ASSERT_TRUE(happens([&] { return rows().size() == 2; }));
    EXPECT_EQ(selectedRow(), 0);
    EXPECT_EQ(textOf("simpleRuleTF"), QStringLiteral("aa")) << "what is being typed";
    click("addToBlacklistButton");
    saveElsewhere({textRule("y")});
    click("saveBlacklistButton");
    EXPECT_EQ(saved(), (QList{textRule("aa"), textRule("x"), textRule("y")}));
}

TEST_F(BlacklistEditor, SaysWhatFails)
{
    setSystemLogSink([](const QString&) {});
    ASSERT_TRUE(writeFile(home->blacklistFile(), "no list"));
    open();
    EXPECT_TRUE(notice().startsWith(QLatin1String("The list could not be read."))) << notice().toStdString();
    type("simpleRuleTF", "a");
    click("addToBlacklistButton");
    files.failWrites = true;
    click("saveBlacklistButton");
    EXPECT_TRUE(editor.isVisible());
    EXPECT_TRUE(notice().startsWith(QLatin1String("The list could not be saved"))) << notice().toStdString();
    EXPECT_EQ(rows().size(), 1);
    files.failWrites = false;
    click("saveBlacklistButton");
    EXPECT_FALSE(editor.isVisible());
    EXPECT_EQ(saved(), QList{textRule("a")});
    EXPECT_EQ(QDir(home->supportFolder()).entryList({QStringLiteral("Blacklist.damaged*")}).size(), 1);
    setSystemLogSink({});
}

TEST_F(BlacklistEditor, StaysAliveWhileTheListIsReadAndSaved)
{
    saveElsewhere({textRule("a")});
    const auto disk = std::make_shared<QSemaphore>();
    const QSemaphoreReleaser atEnd(*disk, 9);
    files.afterRead = [disk](const QString&) { disk->acquire(); };
    editor.loadWithAddress(*Url::fromText(QStringLiteral("http://ads.example/")));
    ASSERT_TRUE(happens([&] { return notice() == QStringLiteral("Reading the list…"); }));
    EXPECT_EQ(rows(), QStringList());
    QTest::keyClicks(&part<QLineEdit>("simpleRuleTF"), QStringLiteral("/x"));
    EXPECT_FALSE(isEnabled("addToBlacklistButton"));
    editor.addToBlacklist();
    QTest::keyClick(&editor, Qt::Key_Escape);
    EXPECT_FALSE(editor.isVisible()) << "nothing to wait for";
    editor.loadWithAddress(*Url::fromText(QStringLiteral("http://ads.example/")));
    disk->release(2);
    ASSERT_TRUE(happens([&] { return isIdle(); }));
    EXPECT_EQ(rows(), QStringList(QStringLiteral("x Text a")));
    EXPECT_EQ(notice(), QString());
    EXPECT_EQ(textOf("simpleRuleTF"), QStringLiteral("ads.example"));
    click("addToBlacklistButton");

    QTest::mouseClick(&part<QPushButton>("saveBlacklistButton"), Qt::LeftButton);
    ASSERT_TRUE(happens([&] { return notice() == QStringLiteral("Saving the list…"); }));
    QTest::keyClick(&table(), Qt::Key_Down);
    QTest::keyClick(&table(), Qt::Key_Delete);
    QTest::keyClick(&editor, Qt::Key_Escape);
    EXPECT_TRUE(editor.isVisible()) << "until it is saved";
    EXPECT_FALSE(isEnabled("cancelButton") || isEnabled("saveBlacklistButton") ||
                 isEnabled("removeFromBlacklistButton"));
    bool isSaved = false;
    EXPECT_FALSE(editor.mayClose([&] { isSaved = true; }));
    disk->release(2);
    ASSERT_TRUE(happens([&] { return isSaved; }));
    EXPECT_FALSE(editor.isVisible());
    disk->release();
    EXPECT_EQ(saved(), (QList{textRule("a"), textRule("ads.example")}));
}

TEST_F(BlacklistEditor, AsksBeforeTheProgramEnds)
{
    struct Case {
        const char* button;
        bool mayClose;
        int rulesSaved;
    };
    open();
    bool isSaved = false;
    const auto whenSaved = [&] { isSaved = true; };
    EXPECT_TRUE(editor.mayClose(whenSaved)) << "nothing to ask";
    for (const auto& [button, mayClose, rulesSaved] :
         {Case{"Cancel", false, 0}, Case{"Discard", true, 0}, Case{"Save", false, 1}}) {
        if (!editor.hasUnsavedEdits()) {
            open();
            type("simpleRuleTF", "a");
            click("addToBlacklistButton");
        }
        QTimer::singleShot(0, &editor, [&, button = button] {
            for (auto* pressed : QApplication::activeModalWidget()->findChildren<QPushButton*>()) {
                if (pressed->text().remove(u'&') == QLatin1String(button))
                    pressed->click();
            }
        });
        EXPECT_EQ(editor.mayClose(whenSaved), mayClose) << button;
        ASSERT_TRUE(happens([&] { return isIdle(); }));
        EXPECT_EQ(isSaved, rulesSaved == 1) << button;
        EXPECT_EQ(saved().size(), rulesSaved) << button;
    }
}

} // namespace
