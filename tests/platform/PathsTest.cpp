#include "platform/AppPaths.h"
#include "platform/Trash.h"

#include "support/TestHome.h"

#include <QDir>
#include <QFileInfo>
#include <gtest/gtest.h>

TEST(Paths, EitherSeparatorAndRelativeValues) {
    TestHome home;
    EXPECT_EQ(toSlashes(QStringLiteral("a\\b/c")), QStringLiteral("a/b/c"));
    EXPECT_EQ(joinPath(QStringLiteral("/x/"), QStringLiteral("\\y")), QStringLiteral("/x/y"));
    EXPECT_EQ(joinPath(QStringLiteral("/"), QStringLiteral("y")), QStringLiteral("/y"));
    EXPECT_EQ(withTrailingSlash(QStringLiteral("a\\b")), QStringLiteral("a/b/"));
    EXPECT_EQ(resolveAppPath(QStringLiteral("\\language\\tessaly")),
              home.path() + QStringLiteral("/language/tessaly/"));
    EXPECT_EQ(resolveAppPath(QStringLiteral("/srv/msgs")), QStringLiteral("/srv/msgs/"));
    EXPECT_EQ(resolveAppPath(QStringLiteral("plain")), QStringLiteral("plain/"));
    EXPECT_EQ(resolveAppPath(QString()), QString());
    EXPECT_EQ(fileNameOf(QStringLiteral("C:\\a\\b.gif")), QStringLiteral("b.gif"));
}

TEST(Paths, UserFilesGoToTheHomeTheMarkedFolderOrTheXdgFolder) {
    TestHome scratch; // restores TESSALY_HOME when it ends
    const QString exe = scratch.file(QStringLiteral("bin"));
    const QString xdg = scratch.file(QStringLiteral("xdg"));
    scratch.write(QStringLiteral("bin/tessaly.xml"), "<APPLICATIONS/>");
    EXPECT_EQ(appFolderFor(exe), QDir::cleanPath(scratch.path()));
    EXPECT_EQ(exeBaseName(), QStringLiteral("tessaly"));

    qunsetenv("TESSALY_HOME");
    qputenv("XDG_DATA_HOME", xdg.toLocal8Bit());
    // Data beside the program (a build tree) does not make its folder the user's.
    EXPECT_EQ(appFolderFor(exe), xdg + QStringLiteral("/tessaly"));
    EXPECT_TRUE(QFileInfo(xdg + QStringLiteral("/tessaly")).isDir());
    scratch.write(QStringLiteral("bin/tessaly.portable"), "");
    EXPECT_EQ(appFolderFor(exe), exe);
}

TEST(Paths, InstalledDataLiesUnderShareOrInAPortableFolder) {
    TestHome scratch;
    const QString exe = scratch.file(QStringLiteral("prefix/bin"));
    QDir().mkpath(exe);
    EXPECT_EQ(installedDataFolderFor(exe), QString());
    scratch.write(QStringLiteral("prefix/bin/tessaly.xml"), "<APPLICATIONS/>");
    EXPECT_EQ(installedDataFolderFor(exe), QString());
    scratch.write(QStringLiteral("prefix/bin/tessaly.portable"), "");
    EXPECT_EQ(installedDataFolderFor(exe), exe);
    scratch.write(QStringLiteral("prefix/share/tessaly/tessaly.xml"), "<APPLICATIONS/>");
    EXPECT_EQ(installedDataFolderFor(exe), scratch.file(QStringLiteral("prefix/share/tessaly")));
    // The tests run from the build tree, which holds its copy of the data the same way.
    EXPECT_TRUE(
        QFileInfo::exists(installedDataFolder() + QStringLiteral("/language/tessaly/en-us.xml")));
}

TEST(Paths, ReadOnlyDataComesFromTheUserFolderFirst) {
    TestHome home;
    const QString data = installedDataFolder();
    ASSERT_FALSE(data.isEmpty());
    EXPECT_EQ(resolveDataPath(QStringLiteral("\\language\\tessaly\\")),
              data + QStringLiteral("/language/tessaly/"));
    EXPECT_EQ(resolveDataPath(QStringLiteral("\\skin\\default\\main.bmp"), false),
              data + QStringLiteral("/skin/default/main.bmp"));
    home.write(QStringLiteral("language/tessaly/xx.xml"), "<langtab/>");
    EXPECT_EQ(resolveDataPath(QStringLiteral("\\language\\tessaly")),
              home.path() + QStringLiteral("/language/tessaly/"));
    EXPECT_EQ(resolveDataPath(QStringLiteral("/srv/skin.bmp"), false),
              QStringLiteral("/srv/skin.bmp"));
}

TEST(Paths, SeedCopiesOnlyWhatIsMissing) {
    TestHome from;
    TestHome to;
    from.write(QStringLiteral("a.txt"), "new");
    from.write(QStringLiteral("sub/b.txt"), "b");
    to.write(QStringLiteral("a.txt"), "mine");
    ASSERT_TRUE(seedFolder(from.path(), to.path()));
    EXPECT_EQ(to.read(QStringLiteral("a.txt")), QByteArray("mine"));
    EXPECT_EQ(to.read(QStringLiteral("sub/b.txt")), QByteArray("b"));
}

TEST(Trash, RemovesFilesAndFolders) {
    TestHome home;
    qputenv("XDG_DATA_HOME", (home.path() + QStringLiteral("/xdg")).toLocal8Bit());
    home.write(QStringLiteral("m/message.xml"), "<x/>");
    EXPECT_TRUE(moveToTrash(home.file(QStringLiteral("m"))));
    EXPECT_FALSE(QFileInfo::exists(home.file(QStringLiteral("m"))));
    EXPECT_EQ(home.read(QStringLiteral("xdg/Trash/files/m/message.xml")), QByteArray("<x/>"));
    EXPECT_TRUE(home.read(QStringLiteral("xdg/Trash/info/m.trashinfo"))
                    .contains("Path=" + home.file(QStringLiteral("m")).toUtf8()));
    // A second item of the same name gets a name of its own.
    home.write(QStringLiteral("m"), "file");
    EXPECT_TRUE(moveToTrash(home.file(QStringLiteral("m"))));
    EXPECT_EQ(home.read(QStringLiteral("xdg/Trash/files/m.2")), QByteArray("file"));
    EXPECT_FALSE(moveToTrash(home.file(QStringLiteral("nothing"))));
}
