#include "agent/AgentRig.h"

using namespace quarry;
using namespace quarry::test;
using namespace Qt::Literals::StringLiterals;

namespace {

class LoginItems : public ::testing::Test {
protected:
    LXAppUtils utils(int osVersion = 101500)
    {
        return {AgentBundle::at(bundles.agent()), osVersion, list, LegacyLoginItems(home, files)};
    }
    void addItem(const QString& name, const QString& path, bool disabled = false)
    {
        list.list.append({name, path, disabled, QString::number(_added++)});
    }
    [[nodiscard]] QString left() const
    {
        QStringList names;
        for (const LoginItemList::Item& item : list.list)
            names.append(item.identifier);
        return names.join(u',');
    }
    void writeLegacy(const QStringList& paths)
    {
        PlistValue::List entries;
        for (const QString& path : paths)
            entries.append(PlistValue(PlistValue::Dictionary{{u"Path"_s, path}, {u"Hide"_s, false}}));
        ASSERT_TRUE(
            writeFile(legacyFile(), plistOf({{u"AutoLaunchedApplicationDictionary"_s, entries}, {u"other"_s, 1}})));
    }
    [[nodiscard]] QStringList legacyPaths() const
    {
        QStringList paths;
        const PlistValue file = readPropertyList(contentOf(legacyFile())).value_or(PlistValue());
        for (const PlistValue& entry : file[u"AutoLaunchedApplicationDictionary"_s].list().value_or(PlistValue::List()))
            paths.append(entry[u"Path"_s].text().value_or(QString()));
        return paths;
    }
    [[nodiscard]] QString legacyFile() const { return home.path() + u"/Library/Preferences/loginwindow.plist"_s; }

    TemporaryHome home;
    DiskFileStore files;
    BundleFolders bundles;
    FakeLoginItems list;

private:
    int _added = 0;
};

TEST_F(LoginItems, TheAgentIsAddedOnceAndFoundByItsName)
{
    EXPECT_FALSE(utils().isMyAppInLoginItems());
    addItem(u"Gone"_s, QString());
    addItem(u"Copy"_s, u"/elsewhere/QuarrySpotterAgent.app"_s);
    EXPECT_TRUE(utils().isMyAppInLoginItems()) << "a copy elsewhere counts";
    EXPECT_FALSE(utils().isMyAppInLoginItems(true));
    utils().setMyAppInLoginItems(true);
    EXPECT_EQ(list.list.size(), 2) << "nothing was added";
    EXPECT_EQ(utils().loginItems().size(), 1);

    list.list.removeLast();
    utils().setMyAppInLoginItems(true);
    EXPECT_TRUE(utils().isMyAppInLoginItems(true));
    utils().removeMyAppInLoginItems();
    EXPECT_EQ(left(), u"0"_s);
}

TEST_F(LoginItems, WhatTheUserSwitchedOffIsPresentAndLeftAlone)
{
    addItem(u"QuarrySpotterAgent"_s, QString(), true);
    EXPECT_TRUE(utils().isMyAppInLoginItems());
    list.list.clear();
    addItem(u"QuarrySpotterAgent"_s, bundles.agent(), true);
    EXPECT_TRUE(utils().isMyAppInLoginItems(true));
    utils().setMyAppInLoginItems(true);
    utils().removeMyAppInLoginItems();
    utils().removeAppInLoginItemsWithLastPathComponent(u"QuarrySpotterAgent.app"_s);
    EXPECT_EQ(left(), u"1"_s);
}

TEST_F(LoginItems, TheItemsOfADeletedBundleAreMatchedByName)
{
    const QString gone = u"/gone/QuarrySpotterAgent.app"_s;
    addItem(u"QuarrySpotterAgent"_s, QString());
    addItem(u"Other"_s, QString());
    addItem(u"Copy"_s, u"/also/gone/QuarrySpotterAgent.app/Contents/bin/program"_s);
    addItem(u"Own"_s, bundles.agent() + u'/');
    utils().removeAnAppInLoginItemsWithAppBundlePath(QString());
    EXPECT_EQ(list.list.size(), 4);
    utils().removeAnAppInLoginItemsWithAppBundlePath(bundles.agent());
    EXPECT_EQ(left(), u"0,1,2"_s) << "a bundle that is there: its own item only";
    utils().removeAnAppInLoginItemsWithAppBundlePath(gone);
    EXPECT_EQ(left(), u"1"_s);

    addItem(u"first"_s, u"/a/Tool.app"_s);
    addItem(u"Tool"_s, QString());
    addItem(u"second"_s, u"/b/Tool.app"_s);
    list.list.move(2, 1);
    utils().removeAppInLoginItemsWithLastPathComponent(u"Tool.app"_s);
    EXPECT_EQ(left(), u"1,6"_s) << "the walk stops at the first that leads somewhere";
}

TEST_F(LoginItems, TheOlderListIsKeptInStep)
{
    utils().removeMyAppInLoginItems();
    EXPECT_FALSE(QFile::exists(legacyFile())) << "none is made to take something out of it";
    writeLegacy({u"/a/Other.app"_s, u"/a/quarryspotteragent.app"_s, u"/b/QuarrySpotterAgent.app"_s});
    utils().removeMyAppInLoginItems();
    EXPECT_EQ(legacyPaths(), (QStringList{u"/a/Other.app"_s, u"/b/QuarrySpotterAgent.app"_s}));
    EXPECT_TRUE(contentOf(legacyFile()).contains("other"));

    LXAppUtils old = utils(100600);
    EXPECT_TRUE(old.isMyAppInLoginItems());
    old.removeMyAppInLoginItems();
    old.setMyAppInLoginItems(false);
    EXPECT_FALSE(old.isMyAppInLoginItems());
    old.setMyAppInLoginItems(true);
    EXPECT_EQ(legacyPaths().last(), bundles.agent());
    EXPECT_TRUE(list.list.isEmpty());
    EXPECT_EQ(LXAppUtils::aliasDataToPath(bundles.agent().toUtf8()), bundles.agent());
    EXPECT_TRUE(LXAppUtils::aliasDataToPath({}).isNull());
}

} // namespace
