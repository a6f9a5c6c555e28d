#include "updater/MountFolder.h"

#include "support/ImageBuilder.h"
#include "support/QtPrinting.h"
#include "support/TemporaryHome.h"
#include "updater/DiskImage.h"
#include "updater/ImageWriter.h"

#include <QDir>
#include <QFileInfo>
#include <QTemporaryDir>

#include <gtest/gtest.h>

using namespace quarry;
using namespace quarry::test;
using namespace Qt::Literals::StringLiterals;

namespace {

struct MountFolderTest : testing::Test {
    QTemporaryDir place;
    QString image = place.filePath(u"a.iso"_s);
    QString folder = place.filePath(u"mounted"_s);

    /// Everything in the temporary folder but the image.
    QStringList leftOver()
    {
        QStringList names =
            QDir(place.path()).entryList(QDir::AllEntries | QDir::Hidden | QDir::System | QDir::NoDotAndDotDot);
        names.removeAll(u"a.iso"_s);
        return names;
    }
};

TEST_F(MountFolderTest, UnpacksAnImageReadOnlyAndRemovesIt)
{
    const QString bundle = place.filePath(u"Ünï.app"_s);
    ASSERT_TRUE(QDir().mkpath(bundle + u"/Contents/a folder/deeper"_s));
    ASSERT_TRUE(writeFile(bundle + u"/Contents/program"_s, "#!/bin/sh\n"));
    QFile::setPermissions(bundle + u"/Contents/program"_s, QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
    ASSERT_TRUE(writeFile(bundle + u"/Contents/a folder/deeper/a long name of a text file, with blanks.text"_s, "x"));
    ASSERT_TRUE(QFile::link(u"../program"_s, bundle + u"/Contents/a folder/link"_s));
    ASSERT_EQ(writeImage(bundle + u'/', image), QString());
    ASSERT_TRUE(QDir(bundle).removeRecursively());

    const auto tool = makeDiskImageTool(QStringLiteral(QUARRY_BUNDLE_DIR "/.."));
    ASSERT_EQ(mountDMGFile(*tool, image, nullptr, folder), folder);
    const QString contents = folder + u"/Ünï.app/Contents"_s;
    EXPECT_EQ(contentOf(contents + u"/a folder/deeper/a long name of a text file, with blanks.text"_s), "x");
    EXPECT_EQ(contentOf(contents + u"/a folder/link"_s), "#!/bin/sh\n");
    EXPECT_TRUE(QFileInfo(contents + u"/program"_s).isExecutable());
    EXPECT_FALSE(QFile::permissions(contents).testFlag(QFile::WriteOwner));
    EXPECT_EQ(QFile::permissions(folder) & (QFile::WriteOwner | QFile::ReadGroup | QFile::ReadOther),
              QFile::Permissions());

    // What an interrupted install left is cleared away.
    EXPECT_EQ(mountDMGFile(*tool, image, nullptr, folder), folder);
    unmountDiskImage(*tool, folder);
    EXPECT_EQ(leftOver(), QStringList());
}

TEST_F(MountFolderTest, MountsTheSealedBytesWhateverTheFileHoldsByThen)
{
    ASSERT_TRUE(buildImage(image, {{"good", AE_IFREG, "as it was"}}));
    const auto sealed = SealedFile::copyOf(image, 1 << 20, nullptr);
    ASSERT_TRUE(sealed);
    EXPECT_EQ(sealed->bytes(), contentOf(image));
    EXPECT_FALSE(SealedFile::copyOf(image, 100, nullptr)) << "larger than that";
    ASSERT_TRUE(buildImage(image, {{"good", AE_IFREG, "exchanged"}}));
    const auto tool = makeDiskImageTool(QStringLiteral(QUARRY_BUNDLE_DIR "/.."));
    ASSERT_EQ(mountDMGFile(*tool, image, &*sealed, folder), folder);
    EXPECT_EQ(contentOf(folder + u"/good"_s), "as it was");
    unmountDiskImage(*tool, folder);
}

TEST_F(MountFolderTest, LeavesAFolderAloneThatItDidNotMake)
{
    ASSERT_TRUE(buildImage(image, {{"good", AE_IFREG, "x"}}));
    ASSERT_TRUE(QDir().mkpath(folder));
    ASSERT_TRUE(writeFile(folder + u"/mine"_s, "x"));
    const auto tool = makeDiskImageTool(QStringLiteral(QUARRY_BUNDLE_DIR "/.."));
    EXPECT_EQ(mountDMGFile(*tool, image, nullptr, folder), QString()) << "not the folder of the image";
    unmountDiskImage(*tool, folder);
    EXPECT_EQ(QDir(folder).entryList(QDir::Files), QStringList{u"mine"_s});
    const QString link = place.filePath(u"link"_s);
    ASSERT_TRUE(QFile::link(folder, link));
    EXPECT_NE(attachImage(image, link), QString());
    EXPECT_NE(detachImage(link), QString());
    EXPECT_TRUE(QFile::exists(folder + u"/mine"_s));
}

TEST_F(MountFolderTest, RefusesWhatLeadsOutsideAndLeavesNothing)
{
    const ImageEntry good{"good", AE_IFREG, "x"};
    struct Case {
        const char* name;
        std::vector<ImageEntry> entries;
    };
    const Case cases[] = {
        {"absolute path", {good, {(place.path() + u"/out"_s).toUtf8(), AE_IFREG, "x"}}},
        {"path with ..", {good, {"a/../../out", AE_IFREG, "x"}}},
        {"absolute link", {good, {"link", AE_IFLNK, {}, "/etc"}}},
        {"link outside", {good, {"a/link", AE_IFLNK, {}, "../../out"}}},
        {"link outside by a detour", {good, {"a/link", AE_IFLNK, {}, "../b/../../out"}}},
        {"file through a link", {{"a", AE_IFDIR}, {"link", AE_IFLNK, {}, "a"}, {"link/out", AE_IFREG, "x"}}},
        {"file over a link", {good, {"link", AE_IFLNK, {}, "good"}, {"link", AE_IFREG, "x"}}},
        {"folder over a link", {{"a", AE_IFDIR}, {"link", AE_IFLNK, {}, "a"}, {"link", AE_IFDIR}}},
        {"file twice", {good, good}},
        {"hard link outside", {good, {"link", AE_IFREG, {}, "/etc/passwd"}}},
        {"hard link with ..", {good, {"link", AE_IFREG, {}, "../a.iso"}}},
        {"hard link to a link", {good, {"link", AE_IFLNK, {}, "good"}, {"hard", AE_IFREG, {}, "link"}}},
        {"hard link through a link",
         {{"a/good", AE_IFREG, "x"}, {"link", AE_IFLNK, {}, "a"}, {"hard", AE_IFREG, {}, "link/good"}}},
        {"hard link to nothing", {good, {"hard", AE_IFREG, {}, "later"}}},
        {"device", {good, {"null", AE_IFCHR}}},
        {"block device", {good, {"disk", AE_IFBLK}}},
        {"pipe", {good, {"pipe", AE_IFIFO}}},
        {"the helper's own mark", {{".attached-disk-image", AE_IFREG, "x"}}},
        {"root as a file", {{".", AE_IFREG, "x"}}},
        {"long path",
         {{QByteArray(200, 'a') + '/' + QByteArray(200, 'b') + '/' + QByteArray(200, 'c') + '/' + QByteArray(200, 'd') +
               '/' + QByteArray(200, 'e') + '/' + QByteArray(200, 'f'),
           AE_IFREG, "x"}}},
        {"nothing at all", {}},
    };
    for (const Case& c : cases) {
        ASSERT_TRUE(buildImage(image, c.entries)) << c.name;
        EXPECT_NE(attachImage(image, folder), QString()) << c.name;
        EXPECT_EQ(leftOver(), QStringList()) << c.name;
    }
    for (const char* text : {"", "no image at all", "\x1f\x8b\x08"}) {
        ASSERT_TRUE(writeFile(image, text));
        EXPECT_NE(attachImage(image, folder), QString()) << text;
        EXPECT_EQ(leftOver(), QStringList()) << text;
    }
}

TEST_F(MountFolderTest, BoundsEntriesAndSizes)
{
    ImageLimits limits;
    limits.entries = 3;
    limits.bytes = 1000;
    const auto attach = [&](const std::vector<ImageEntry>& entries) {
        EXPECT_TRUE(buildImage(image, entries));
        const bool attached = attachImage(image, folder, limits).isEmpty();
        EXPECT_EQ(detachImage(folder).isEmpty(), attached);
        EXPECT_EQ(leftOver(), QStringList());
        return attached;
    };
    const QByteArray half(500, 'x');
    EXPECT_TRUE(attach({{"a", AE_IFREG, half}, {"b", AE_IFREG, half}, {"c", AE_IFREG, ""}}));
    EXPECT_FALSE(attach({{"a", AE_IFREG, half}, {"b", AE_IFREG, half}, {"c", AE_IFREG, "x"}}));
    EXPECT_FALSE(attach({{"a"}, {"b"}, {"c"}, {"d"}}));
    EXPECT_FALSE(attach({{"a/b/c/d/e"}})) << "folders that are only named count, too";
    EXPECT_FALSE(attach({{"hole", AE_IFREG, {}, {}, qint64{1} << 40}}));
}

TEST(ContainedLink, LeadsUpFirstAndNotTooFar)
{
    for (const char* target : {"a", "./a", "a/b", "../a", "../../a", "..", ".././../a"})
        EXPECT_TRUE(isContainedLink(target, 2)) << target;
    for (const char* target : {"", "/", "/etc", "../../../a", "a/..", "a/../..", "../a/../b"})
        EXPECT_FALSE(isContainedLink(target, 2)) << target;
}

} // namespace
