#include "EditorRig.h"
#include "blacklist/ui/AnswerColor.h"

#include <QAccessible>
#include <QGroupBox>

using namespace quarry;
using namespace quarry::test;

namespace {

QPalette darkPalette()
{
    QPalette dark(QColor(0x31, 0x36, 0x3b), QColor(0x2a, 0x2e, 0x32));
    dark.setColor(QPalette::Base, QColor(0x1b, 0x1e, 0x20));
    dark.setColor(QPalette::AlternateBase, QColor(0x23, 0x26, 0x29));
    return dark;
}

class BlacklistEditorLooks : public EditorRig {
protected:
    void TearDown() override
    {
        QApplication::setPalette(QPalette());
        QApplication::setLayoutDirection(Qt::LeftToRight);
    }
};

TEST_F(BlacklistEditorLooks, AnswersAreLegibleOnLightAndDark)
{
    for (const AnswerTone tone : {AnswerTone::Green, AnswerTone::Orange}) {
        for (const char* background : {"#ffffff", "#efefef", "#d8d8d8", "#3c3c3c", "#2a2e32", "#000000"}) {
            const QColor behind(QLatin1String{background});
            EXPECT_GE(contrastRatio(answerColor(tone, behind), behind), 4.5) << background;
        }
    }
    saveElsewhere({textRule("doubleclick"), textRule("ads.example", BlacklistType::Domain),
                   textRule("exe", BlacklistType::FileType, false),
                   textRule("^https?://[^/]*ads[0-9]+\\.", BlacklistType::RegularExpression)});
    const QPalette light = QApplication::palette();
    const std::pair<const char*, QPalette> looks[] = {{"light", light}, {"dark", darkPalette()}, {"again", light}};
    open();
    for (const auto& [name, palette] : looks) {
        editor.loadWithAddress(*Url::fromText(QStringLiteral("http://www.ads.example/banner")));
        for (const auto& [rule, tone] : {std::pair{"ads", AnswerTone::Green}, {"none", AnswerTone::Orange}}) {
            type("simpleRuleTF", rule);
            click("testAddrButton");
            QApplication::setPalette(palette); // Also with an answer on the screen.
            const QColor wanted = answerColor(tone, palette.color(QPalette::Window));
            EXPECT_TRUE(happens([&] {
                const QLabel& label = part<QLabel>("testAddressResultTF");
                return pixelsLike(wanted, screenshot(), {label.mapToGlobal(QPoint()), label.size()}, 20) > 20;
            })) << name
                << rule;
            (void)screenshot(QStringLiteral("blacklist-%1-%2").arg(QLatin1String(name), QLatin1String(rule)));
        }
        clickCell(3, RuleColumn::Kind);
        QCoreApplication::processEvents();
        (void)screenshot(QStringLiteral("blacklist-") + QLatin1String(name));
    }
}

TEST_F(BlacklistEditorLooks, EveryPartHasANameAndItsTurn)
{
    saveElsewhere({textRule("a")});
    open();
    clickCell(0, RuleColumn::Kind);
    const char* const order[] = {"tableViewBL",   "qt_tabwidget_tabbar", "simpleRuleMenu",
                                 "simpleRuleTF",  "caseSensitiveButton", "removeFromBlacklistButton",
                                 "testAddressTF", "testAddrButton",      "cancelButton"};
    for (const char* const name : order) {
        QWidget* const focused = QApplication::focusWidget();
        ASSERT_NE(focused, nullptr) << name;
        EXPECT_EQ(focused->objectName(), QLatin1String(name));
        const QAccessibleInterface* const spoken = QAccessible::queryAccessibleInterface(focused);
        EXPECT_FALSE(spoken->text(QAccessible::Name).isEmpty() && !qobject_cast<QTabBar*>(focused)) << name;
        QTest::keyClick(focused, Qt::Key_Tab);
    }
    EXPECT_EQ(QApplication::focusWidget(), &table()) << "round again";
}

TEST_F(BlacklistEditorLooks, KeysAreUniqueInEveryLanguageAndTextsFit)
{
    for (const char* const language : {"en", "fr", "de"}) {
        const StringTable translated = textsIn(QLatin1String(language));
        BlacklistEditorWinController window({home, files, workspace, translated, timers});
        QApplication::setLayoutDirection(language == std::string("de") ? Qt::RightToLeft : Qt::LeftToRight);
        window.loadWithAddress(*Url::fromText(QStringLiteral("http://ads.example/")));
        QStringList labels;
        for (const QLabel* label : window.findChildren<QLabel*>())
            labels.append(label->text());
        for (const QAbstractButton* button : window.findChildren<QAbstractButton*>())
            labels.append(button->text());
        const auto& tabs = *window.findChild<QTabWidget*>();
        labels += {tabs.tabText(0), tabs.tabText(1), translated.text(QStringLiteral("110_Modify List button"))};
        QString keys;
        for (const QString& label : labels) {
            const qsizetype mark = label.indexOf(u'&');
            EXPECT_FALSE(label.startsWith(QLatin1String("110_"))) << label.toStdString();
            if (mark < 0)
                continue;
            const QChar key = label[mark + 1].toLower();
            EXPECT_FALSE(keys.contains(key)) << language << ": " << label.toStdString();
            keys.append(key);
        }
        EXPECT_EQ(keys.size(), 14) << language;
        ASSERT_TRUE(happens([&] { return window.isActiveWindow(); }));
        (void)screenshot(QStringLiteral("blacklist-") + QLatin1String(language));
        // Nothing is cut.
        EXPECT_GE(window.width(), window.minimumSizeHint().width()) << language;
        EXPECT_GE(window.height(), window.minimumSizeHint().height()) << language;
    }
}

} // namespace
