#include "platform/Bundle.h"

#include "support/TemporaryHome.h"

#include <QDir>

#include <gtest/gtest.h>

using namespace quarry;

namespace {

TEST(Bundle, EveryProgramFindsItsResourcesAndTheUpdater)
{
    QTemporaryDir folder;
    const QString main = folder.filePath(QStringLiteral("QuarrySpotter.app/Contents"));
    const QString agent = main + QStringLiteral("/Agents/QuarrySpotterAgent.app/Contents");
    const QString updaterFolder = agent + QStringLiteral("/bin/QuarrySpotterUpdater.app/Contents/bin");
    const QString updater = updaterFolder + QStringLiteral("/QuarrySpotterUpdater");
    const Bundle ofQuarry(main + QStringLiteral("/bin/quarry"));
    EXPECT_TRUE(ofQuarry.resourcesFolder().isEmpty());
    EXPECT_TRUE(ofQuarry.updaterProgram().isEmpty());

    for (const QString& contents : {main, agent})
        ASSERT_TRUE(QDir().mkpath(contents + QStringLiteral("/Resources/English.lproj")));
    ASSERT_TRUE(QDir().mkpath(updaterFolder));
    ASSERT_TRUE(QFile::copy(QStringLiteral("/bin/true"), updater));

    EXPECT_EQ(ofQuarry.resourcesFolder(), main + QStringLiteral("/Resources"));
    EXPECT_EQ(ofQuarry.updaterProgram(), updater);
    EXPECT_EQ(Bundle(updater).resourcesFolder(), agent + QStringLiteral("/Resources"));
    EXPECT_EQ(Bundle(updater).contentsFolder(), main);
    EXPECT_TRUE(Bundle(QStringLiteral("/usr/bin/quarry")).contentsFolder().isEmpty());
    EXPECT_TRUE(Bundle(QString()).resourcesFolder().isEmpty());
}

TEST(Bundle, TellsWhatItsDescriptionSaysAndWhatLiesBesideItsProgram)
{
    QTemporaryDir folder;
    const QString path = folder.filePath(QStringLiteral("Outer.app/Contents/Agents/In & Out.app"));
    const QString bin = path + QStringLiteral("/Contents/bin");
    ASSERT_TRUE(QDir().mkpath(bin + QStringLiteral("/Helper.app")));
    ASSERT_TRUE(test::writeFile(
        path + QStringLiteral("/Contents/Info.plist"),
        "<?xml version=\"1.0\"?><!-- x --><plist version=\"1.0\"><dict><key>Types</key><array><dict>"
        "<key>CFBundleExecutable</key><string>inner</string></dict></array><key>Number</key><integer>7</integer>"
        "<key>CFBundleExecutable</key><string>In &amp; Out</string></dict></plist>"));
    const Bundle bundle = Bundle::at(path + QStringLiteral("/"));
    EXPECT_EQ(bundle.bundlePath(), path);
    EXPECT_EQ(Bundle(bin + QStringLiteral("/tool")).bundlePath(), path);
    EXPECT_EQ(bundle.infoValue(QStringLiteral("CFBundleExecutable")), QStringLiteral("In & Out"));
    EXPECT_TRUE(bundle.infoValue(QStringLiteral("Number")).isEmpty());
    EXPECT_TRUE(bundle.executable().isEmpty());
    ASSERT_TRUE(QFile::copy(QStringLiteral("/bin/true"), bin + QStringLiteral("/In & Out")));
    EXPECT_EQ(bundle.executable(), bin + QStringLiteral("/In & Out"));
    EXPECT_EQ(bundle.auxiliaryExecutable(QStringLiteral("Helper.app")), bin + QStringLiteral("/Helper.app"));
    for (const QString& name : {QStringLiteral("None"), QString(), QStringLiteral("../bin/In & Out")})
        EXPECT_TRUE(bundle.auxiliaryExecutable(name).isEmpty()) << name.toStdString();
    EXPECT_TRUE(Bundle(QStringLiteral("/usr/bin/quarry")).bundlePath().isEmpty());
}

} // namespace
