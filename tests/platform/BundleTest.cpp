#include "platform/Bundle.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>

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
    QFile program(updater);
    ASSERT_TRUE(program.open(QIODevice::WriteOnly));
    ASSERT_TRUE(program.setPermissions(QFile::ReadOwner | QFile::ExeOwner));

    EXPECT_EQ(ofQuarry.resourcesFolder(), main + QStringLiteral("/Resources"));
    EXPECT_EQ(ofQuarry.updaterProgram(), updater);
    EXPECT_EQ(Bundle(updater).resourcesFolder(), agent + QStringLiteral("/Resources"));
    EXPECT_EQ(Bundle(updater).contentsFolder(), main);
    EXPECT_TRUE(Bundle(QStringLiteral("/usr/bin/quarry")).contentsFolder().isEmpty());
    EXPECT_TRUE(Bundle(QString()).resourcesFolder().isEmpty());
}

} // namespace
