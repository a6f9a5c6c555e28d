#include "apps/window/BlacklistOpener.h"

#include "WindowRig.h"
#include "blacklist/BlacklistStore.h"

#include <QMessageBox>
#include <QPushButton>
#include <QTimer>

using namespace Qt::Literals::StringLiterals;

namespace quarry::test {
namespace {

class BlacklistOpenerTest : public WindowTest {
protected:
    void SetUp() override { makeDatabase(); }
    /// A part of the editor, wherever its window is.
    template <typename Part>
    static Part* part(const QString& name)
    {
        for (const QWidget* const window : QApplication::topLevelWidgets()) {
            if (auto* const found = window->isVisible() ? window->findChild<Part*>(name) : nullptr)
                return found;
        }
        return nullptr;
    }
};

TEST_F(BlacklistOpenerTest, AResultIsBlacklistedByKeyAndSavedWhenTheWindowCloses)
{
    openAt(pond);
    BlacklistOpener opener(*window, home, files, workspace, timers);
    list().selectRow(0);
    QTest::keyClick(&list(), Qt::Key_B);
    ASSERT_TRUE(happens([] { return part<QLineEdit>(u"simpleRuleTF"_s) != nullptr; }));
    EXPECT_EQ(part<QLineEdit>(u"simpleRuleTF"_s)->text(), u"r60.example"_s);
    EXPECT_EQ(part<QLineEdit>(u"testAddressTF"_s)->text(), u"http://r60.example/page"_s);
    ASSERT_TRUE(happens([] { return part<QPushButton>(u"addToBlacklistButton"_s)->isEnabled(); }));
    part<QPushButton>(u"addToBlacklistButton"_s)->click();

    QTimer::singleShot(0, window.get(), [] {
        const auto* const question = qobject_cast<QMessageBox*>(QApplication::activeModalWidget());
        ASSERT_NE(question, nullptr);
        for (QAbstractButton* const button : question->buttons()) {
            if (question->buttonRole(button) == QMessageBox::AcceptRole)
                button->click();
        }
    });
    EXPECT_FALSE(window->close()) << "not before it is saved";
    ASSERT_TRUE(happens([this] { return !window->isVisible(); }));
    EXPECT_EQ(BlacklistStore(home, files).current()->rules,
              QList{(BlacklistRule{u"r60.example"_s, BlacklistType::Text, true, false})});
}

} // namespace
} // namespace quarry::test
