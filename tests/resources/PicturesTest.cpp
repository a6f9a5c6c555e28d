#include "support/QtPrinting.h"

#include <QFile>
#include <QtEndian>

#include <gtest/gtest.h>

namespace {

const QString Main = QStringLiteral(QUARRY_BUNDLE_DIR "/Resources/");
const QString Agent = QStringLiteral(QUARRY_BUNDLE_DIR "/Agents/QuarrySpotterAgent.app/Contents/Resources/");

QByteArray contentOf(const QString& path)
{
    QFile file(path);
    EXPECT_TRUE(file.open(QIODevice::ReadOnly)) << path.toStdString();
    return file.readAll();
}

quint32 numberAt(const QByteArray& data, qsizetype place)
{
    return place + 4 <= data.size() ? qFromBigEndian<quint32>(data.constData() + place) : 0;
}

/// Width and height as the picture itself says; none when it is no PNG.
std::pair<quint32, quint32> sizeOf(const QByteArray& png)
{
    if (!png.startsWith("\x89PNG\r\n\x1a\n"))
        return {};
    return {numberAt(png, 16), numberAt(png, 20)};
}

TEST(Pictures, AreInTheBundlesInTheSizesTheyAreNamedFor)
{
    QStringList names;
    for (const int size : {16, 22, 24, 32, 48, 64})
        names << Agent + QStringLiteral("MenuIcon-%1.png").arg(size)
              << Agent + QStringLiteral("MenuIconH-%1.png").arg(size);
    for (const int size : {16, 32, 48, 64, 128, 256})
        names << Agent + QStringLiteral("appicon-%1.png").arg(size)
              << Main + QStringLiteral("appicon-%1.png").arg(size);
    for (const QString& name : names) {
        const quint32 size = name.section(u'-', -1).section(u'.', 0, 0).toUInt();
        EXPECT_EQ(sizeOf(contentOf(name)), std::pair(size, size)) << name.toStdString();
    }
}

TEST(Pictures, ApplicationIconHoldsEachSizeUnderItsType)
{
    const std::map<QByteArray, quint32> expected = {{"icp4", 16},  {"icp5", 32},  {"icp6", 64},
                                                    {"ic07", 128}, {"ic08", 256}, {"ic09", 512}};
    for (const QString& folder : {Main, Agent}) {
        const QByteArray icon = contentOf(folder + QStringLiteral("appicon.icns"));
        ASSERT_TRUE(icon.startsWith("icns"));
        ASSERT_EQ(numberAt(icon, 4), icon.size());
        std::map<QByteArray, quint32> found;
        for (qsizetype place = 8; place < icon.size(); place += std::max(8U, numberAt(icon, place + 4))) {
            const auto [width, height] = sizeOf(icon.mid(place + 8, numberAt(icon, place + 4) - 8));
            EXPECT_EQ(width, height);
            found[icon.mid(place, 4)] = width;
        }
        EXPECT_EQ(found, expected);
    }
}

} // namespace
