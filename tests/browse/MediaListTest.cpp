#include "browse/clsMediaList.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <gtest/gtest.h>
#include <sys/stat.h>

namespace {

QStringList namesOf(const clsMediaList& list) {
    QStringList names;
    for (const clsMedia& media : list)
        names << media.FileName();
    return names;
}

class MediaListTest : public ::testing::Test {
protected:
    void SetUp() override {
        for (const char* name : {"b.bmp", "A.gif", "c.BMP", "a.bmp", "notes.txt", "z.jpg"}) {
            QFile file(dir.filePath(QString::fromLatin1(name)));
            ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        }
        QDir(dir.path()).mkdir(QStringLiteral("folder.bmp"));
        ASSERT_EQ(
            mkfifo(QFile::encodeName(dir.filePath(QStringLiteral("pipe.bmp"))).constData(), 0600),
            0);
    }
    QTemporaryDir dir;
};

TEST_F(MediaListTest, ListsPatternByPatternByNameIgnoringCaseAndOnlyFiles) {
    struct Case {
        const char* filters;
        QStringList names;
    } cases[] = {
        {"*.bmp,*.gif", {"a.bmp", "b.bmp", "c.BMP", "A.gif"}},
        {"*.gif, *.jpg", {"A.gif", "z.jpg"}},
        {"*.jpg", {"z.jpg"}},
        {"*.jpg,*.JPG", {"z.jpg", "z.jpg"}}, // a file of two patterns comes twice
        {"*.wav,*.mid", {}},
    };
    for (const Case& c : cases) {
        clsMediaList list;
        QString path = dir.path();
        EXPECT_EQ(list.LoadFiles(path, QString::fromLatin1(c.filters)), c.names.size())
            << c.filters;
        EXPECT_EQ(namesOf(list), c.names) << c.filters;
        EXPECT_EQ(path, dir.path() + QLatin1Char('/'));
    }
}

TEST_F(MediaListTest, ItemsCountFromOneAndKeysAreUnique) {
    clsMediaList list;
    QString path = dir.path() + QLatin1Char('/');
    ASSERT_EQ(list.LoadFiles(path, QStringLiteral("*.bmp")), 3);
    EXPECT_EQ(path, dir.path() + QLatin1Char('/')); // a closing "/" is not doubled
    EXPECT_EQ(list.Item(0), nullptr);
    EXPECT_EQ(list.Item(4), nullptr);
    EXPECT_EQ(list.Item(1)->FileName(), QStringLiteral("a.bmp"));
    EXPECT_TRUE(list.Item(1)->Picture().isNull());

    clsMedia extra;
    extra.setFileName(QStringLiteral("x"));
    EXPECT_FALSE(list.Add(extra, QStringLiteral("0"))); // the key of a.bmp
    EXPECT_TRUE(list.Add(extra, QStringLiteral("new")));
    ASSERT_TRUE(list.Remove(1));
    EXPECT_FALSE(list.Remove(4));
    EXPECT_EQ(namesOf(list), (QStringList{"b.bmp", "c.BMP", "x"}));
    EXPECT_TRUE(list.Add(extra, QStringLiteral("0"))); // a removed key is free again
    list.Clear();
    EXPECT_EQ(list.Count(), 0);
}

TEST_F(MediaListTest, PictureIdsGiveEachPatternsFilesOneSharedPicture) {
    clsMediaList list;
    QString path = dir.path();
    ASSERT_EQ(
        list.LoadFiles(path, QStringLiteral("*.bmp,*.gif,*.jpg"), QStringLiteral("101,302,999")),
        5);
    const QImage wave = list.Item(1)->Picture();
    ASSERT_FALSE(wave.isNull()) << "the shipped resources/101.png";
    EXPECT_EQ(list.Item(3)->Picture(), wave);
    EXPECT_FALSE(list.Item(4)->Picture().isNull());
    EXPECT_NE(list.Item(4)->Picture(), wave);
    EXPECT_TRUE(list.Item(5)->Picture().isNull()); // no resource of that id
}

} // namespace
