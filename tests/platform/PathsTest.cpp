#include "platform/AppPaths.h"
#include "platform/Trash.h"

#include "support/TestHome.h"

#include <QDir>
#include <QFileInfo>
#include <gtest/gtest.h>

TEST(Paths, AppFolderFollowsTessalyHome) {
    TestHome home;
    EXPECT_EQ(appFolder(), QDir::cleanPath(home.path()));
    EXPECT_EQ(exeBaseName(), QStringLiteral("tessaly"));
}

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
