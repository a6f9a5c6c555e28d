#include "WindowRig.h"
#include "database/Schedule.h"
#include "engines/SearchServices.h"

#include <QCheckBox>
#include <QLabel>
#include <QPushButton>
#include <QRadioButton>

using namespace Qt::Literals::StringLiterals;

namespace quarry::test {
namespace {

class WelcomeTest : public WindowTest {
protected:
    template <typename Widget>
    Widget* shown(const QString& name)
    {
        auto* const widget = window->findChild<Widget*>(name);
        // Shown and laid out, so that there is something to click at.
        return widget && widget->isVisible() && happens([widget] { return widget->height() > 4; }) ? widget : nullptr;
    }
    bool isTold(const QString& text)
    {
        const QList<QLabel*> labels = window->findChildren<QLabel*>();
        return std::any_of(labels.begin(), labels.end(),
                           [&text](const QLabel* label) { return label->isVisible() && label->text().contains(text); });
    }
};

TEST_F(WelcomeTest, AnEmptyWindowTakesAFirstQueryAndRefreshesIt)
{
    // In the updater's place: it tells what it was started for.
    updater = home.path() + u"/updater"_s;
    ASSERT_TRUE(writeFile(updater, "#!/bin/sh\nfor last; do :; done; printf %s \"$last\" >\"$0.asked\"\n"));
    ASSERT_TRUE(QFile::setPermissions(updater, QFile::ReadOwner | QFile::ExeOwner));
    open();
    auto* const query = shown<QLineEdit>(u"firstQuery"_s);
    ASSERT_TRUE(query);
    screenshot(u"welcome"_s);
    QTest::keyClicks(query, u"n m x 5"_s);
    QTest::mouseClick(shown<QPushButton>(u"addFirstQuery"_s), Qt::LeftButton);
    EXPECT_FALSE(query->isVisible());
    EXPECT_TRUE(treeRow(u"n m x 5"_s).isValid());
    ASSERT_TRUE(happens([this] { return QFile::exists(updater + u".asked"_s); }));
    const QString added = child(u"n m x 5"_s);
    EXPECT_FALSE(added.isEmpty()) << "saved before the refresh reads the file";
    EXPECT_TRUE(happens([&] { return contentOf(updater + u".asked"_s) == added.toLatin1(); }));
}

TEST_F(WelcomeTest, ItsSettingsAreWhatTheEngineAndTheAgentRead)
{
    open();
    ASSERT_TRUE(shown<QCheckBox>(u"automatic"_s));
    QTest::mouseClick(shown<QCheckBox>(u"automatic"_s), Qt::LeftButton, {}, {8, 8});
    EXPECT_TRUE(happens([this] { return Schedule(home, files).read(clock.now()).automatic; }));
    QTest::mouseClick(shown<QRadioButton>(u"useGateway"_s), Qt::LeftButton, {}, {8, 8});
    auto* const address = shown<QLineEdit>(u"gatewayAddress"_s);
    address->selectAll();
    QTest::keyClicks(address, u"http://127.0.0.1:1/x"_s);
    QTest::keyClick(address, Qt::Key_Return);
    EXPECT_TRUE(isTold(u"http://127.0.0.1:1/x"_s)) << "no address of a gateway";
    address->selectAll();
    QTest::keyClicks(address, u"http://127.0.0.1:4711"_s);
    QTest::keyClick(address, Qt::Key_Return);
    EXPECT_TRUE(happens([this] {
        const SearchServices services = SearchServices::load(home->searchServicesFile()).services;
        return services.origin(SearchService::Yahoo) == u"http://127.0.0.1:4711"_s;
    }));
}

TEST_F(WelcomeTest, ADamagedDatabaseIsNamedAndLeftAloneUntilTheUserDecides)
{
    makeDatabase();
    const QByteArray damaged = contentOf(home->databaseFile()).left(500);
    ASSERT_TRUE(writeFile(home->databaseFile(), damaged));
    open();
    auto* const begin = shown<QPushButton>(u"beginAnew"_s);
    ASSERT_TRUE(begin);
    EXPECT_TRUE(isTold(window->tree().damagedCopy()));
    screenshot(u"damaged"_s);
    QTest::keyClick(QApplication::focusWidget(), Qt::Key_Space);
    EXPECT_TRUE(saves());
    EXPECT_EQ(contentOf(home->databaseFile()), damaged);
    QTest::mouseClick(begin, Qt::LeftButton);
    EXPECT_TRUE(happens([this] { return shown<QLineEdit>(u"firstQuery"_s) != nullptr; }));
    EXPECT_NE(contentOf(home->databaseFile()), damaged);
    EXPECT_EQ(contentOf(window->tree().damagedCopy()), damaged);
}

} // namespace
} // namespace quarry::test
