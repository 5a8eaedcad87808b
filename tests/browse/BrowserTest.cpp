#include "audio/clsMCIManager.h"
#include "browse/ctlBrowser.h"
#include "controls/GrButtonIII.h"
#include "support/ScriptedResponder.h"
#include "support/TestHome.h"

#include <QApplication>
#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QMouseEvent>
#include <QScrollBar>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>
#include <QTimer>
#include <gtest/gtest.h>

namespace {

constexpr int kTile = 60;

void savePicture(const QString& path, QColor colour) {
    QImage picture(40, 30, QImage::Format_RGB32);
    picture.fill(colour);
    ASSERT_TRUE(picture.save(path, "BMP"));
}

// A pane on a folder of three pictures, with the trash in a folder of the test's own.
class BrowserTest : public ::testing::Test {
protected:
    void SetUp() override {
        mDataHome = qgetenv("XDG_DATA_HOME");
        qputenv("XDG_DATA_HOME", QFile::encodeName(data.path()));
        savePicture(file(QStringLiteral("b.bmp")), Qt::green);
        savePicture(file(QStringLiteral("a.bmp")), Qt::red);
        savePicture(file(QStringLiteral("C.BMP")), Qt::blue);
        browser.setPath(folder.path());
        browser.setFiles(QStringLiteral("*.bmp,*.gif"));
        browser.setThumbHeight(kTile);
        browser.resize(360, 226);
        browser.show();
        ASSERT_TRUE(QTest::qWaitForWindowExposed(&browser));
        browser.LoadFiles();
    }
    // The test home's data folder comes back, so later tests never reach the user's trash.
    void TearDown() override { qputenv("XDG_DATA_HOME", mDataHome); }
    QByteArray mDataHome;

    QString file(const QString& name) const { return QDir(folder.path()).filePath(name); }
    void mouse(QEvent::Type type, int y, Qt::MouseButton button = Qt::LeftButton) {
        const QPointF at(20, y);
        QMouseEvent event(type, at, browser.tabView()->mapToGlobal(at), button,
                          type == QEvent::MouseMove ? Qt::NoButton : button, Qt::NoModifier);
        QApplication::sendEvent(browser.tabView(), &event);
    }
    void click(int tile) { mouse(QEvent::MouseButtonPress, (tile - 1) * kTile + kTile / 2); }
    QImage view() {
        QImage image(browser.tabView()->size(), QImage::Format_RGB32);
        browser.tabView()->render(&image);
        return image;
    }

    QTemporaryDir folder;
    QTemporaryDir data;
    ScriptedResponder responder;
    ctlBrowser browser;
};

TEST_F(BrowserTest, ClicksSelectThenAlternatePlayAndStopAndDoubleClicksChoose) {
    QSignalSpy clicked(&browser, &ctlBrowser::ItemClick);
    QSignalSpy selected(&browser, &ctlBrowser::SelectionChanged);
    QSignalSpy chosen(&browser, &ctlBrowser::ItemChosen);
    EXPECT_EQ(browser.list().Count(), 3);
    EXPECT_FALSE(browser.bAdd()->isEnabled());

    mouse(QEvent::MouseButtonPress, 3 * kTile + 2); // below the last tile
    EXPECT_EQ(selected.count(), 0);
    click(2);
    ASSERT_EQ(selected.count(), 1);
    EXPECT_EQ(selected[0][0].toInt(), 2);
    EXPECT_EQ(clicked.count(), 0);
    EXPECT_TRUE(browser.bAdd()->isEnabled());
    EXPECT_TRUE(browser.bDelete()->isEnabled());
    click(2);
    click(2);
    ASSERT_EQ(clicked.count(), 2);
    EXPECT_EQ(clicked[0], (QList<QVariant>{2, int(ctlBrowser::ActionPlay)}));
    EXPECT_EQ(clicked[1], (QList<QVariant>{2, int(ctlBrowser::ActionStop)}));

    browser.bAdd()->click();
    mouse(QEvent::MouseButtonDblClick, kTile / 2);
    ASSERT_EQ(chosen.count(), 2);
    EXPECT_EQ(chosen[0][0].toInt(), 2);
    EXPECT_EQ(chosen[1][0].toInt(), 1);
    EXPECT_EQ(browser.FileName(1), QStringLiteral("a.bmp"));
    EXPECT_EQ(browser.FileName(3), QStringLiteral("C.BMP"));
}

TEST_F(BrowserTest, SelectionAndHoverMarksInvertWhatLiesUnder) {
    click(2);
    mouse(QEvent::MouseMove, 2 * kTile + 5);
    EXPECT_EQ(browser.hotIndex(), 3);
    const QImage image = view();
    const int markY = 2 * kTile - 5; // the selection line of tile 2
    EXPECT_EQ(image.pixel(10, markY), ~image.pixel(10, markY - 2) | 0xff000000u);
    EXPECT_EQ(image.pixel(1, 2 * kTile + 20), ~image.pixel(2, 2 * kTile + 20) | 0xff000000u);
    // Tile 1 is neither chosen nor under the mouse: no marks.
    EXPECT_EQ(image.pixel(10, kTile - 5), image.pixel(10, kTile - 7));
    EXPECT_EQ(image.pixel(1, 20), image.pixel(2, 20));
    browser.setRightClickMenu(QStringLiteral("Open;1,Rename;2"));
    mouse(QEvent::MouseButtonRelease, 5, Qt::RightButton);
    ASSERT_EQ(responder.popups.size(), 1u);
    EXPECT_EQ(responder.popups[0].keys, (QStringList{"1", "2"}));
    // Its picture, the red one, is in place.
    EXPECT_EQ(QColor(image.pixel(ctlBrowser::kDefaultThumbWidth / 2, kTile / 2 - 2)),
              QColor(Qt::red));
}

TEST_F(BrowserTest, BrowseDeliversIndexZeroOrAsksTheOwner) {
    QSignalSpy chosen(&browser, &ctlBrowser::ItemChosen);
    QSignalSpy wanted(&browser, &ctlBrowser::BrowseWanted);
    responder.openFiles = {QString(), QStringLiteral("/elsewhere/photo.jpg")};
    browser.bBrowse()->click(); // cancelled
    EXPECT_EQ(chosen.count(), 0);
    browser.bBrowse()->click();
    ASSERT_EQ(chosen.count(), 1);
    EXPECT_EQ(chosen[0][0].toInt(), 0);
    EXPECT_EQ(browser.FileName(0), QStringLiteral("/elsewhere/photo.jpg"));

    browser.UseExternalBrowser(true);
    browser.bBrowse()->click();
    EXPECT_EQ(wanted.count(), 1);
    EXPECT_EQ(responder.openFileRequests, 2);
}

TEST_F(BrowserTest, DeleteMovesTheChosenFileToTheTrashWhenTheUserSaysYes) {
    click(1);
    responder.boxAnswers = {Vb::No, Vb::Yes};
    browser.bDelete()->click();
    EXPECT_TRUE(QFile::exists(file(QStringLiteral("a.bmp"))));
    browser.bDelete()->click();
    ASSERT_EQ(responder.boxes.size(), 2u);
    EXPECT_TRUE(responder.boxes[1].text.endsWith(QStringLiteral("a.bmp")));
    EXPECT_EQ(responder.boxes[1].title, QStringLiteral("STR_BROWSER_DELETE_CAP"));
    EXPECT_FALSE(QFile::exists(file(QStringLiteral("a.bmp"))));
    EXPECT_TRUE(QFile::exists(QDir(data.path()).filePath(QStringLiteral("Trash/files/a.bmp"))));
    EXPECT_EQ(browser.list().Count(), 2);
    EXPECT_EQ(browser.FileName(1), QStringLiteral("b.bmp"));
    EXPECT_FALSE(browser.bDelete()->isEnabled());
    EXPECT_EQ(browser.selectedIndex(), -1);
}

TEST_F(BrowserTest, AnUnreadablePictureGetsOneBoxAndAnEmptyTile) {
    QFile bad(file(QStringLiteral("broken.bmp")));
    ASSERT_TRUE(bad.open(QIODevice::WriteOnly));
    bad.write("BM not a picture");
    bad.close();
    browser.LoadFiles();
    ASSERT_TRUE(QTest::qWaitFor([&] { return browser.PendingThumbs() == 0; }, 5000));
    EXPECT_EQ(responder.boxes.size(), 1u);
    EXPECT_TRUE(browser.Thumbnail(3).isNull()); // a, b, broken, C
    EXPECT_FALSE(browser.Thumbnail(4).isNull());
}

TEST(BrowserEmptyTest, AnEmptyFolderShowsNoTileAndAClickHitsNothing) {
    QTemporaryDir folder;
    ctlBrowser browser;
    QSignalSpy selected(&browser, &ctlBrowser::SelectionChanged);
    browser.setPath(folder.path());
    browser.setFiles(QStringLiteral("*.bmp"));
    browser.LoadFiles();
    EXPECT_EQ(browser.list().Count(), 0);
    EXPECT_EQ(browser.HitTest(3), 0);
    EXPECT_FALSE(browser.VScroll()->isVisible());
    browser.setThumbWidth(5000); // wider than the surface: the surface's width
    EXPECT_EQ(browser.ThumbWidth(), browser.tabView()->width());
    QMouseEvent press(QEvent::MouseButtonPress, QPointF(10, 3), QPointF(10, 3), Qt::LeftButton,
                      Qt::LeftButton, Qt::NoModifier);
    QApplication::sendEvent(browser.tabView(), &press);
    EXPECT_EQ(selected.count(), 0);
}

TEST(BrowserSoundTest, SoundTilesShareTheirKindsIconAndABrowsedSoundComesAsIndexZero) {
    setMCIManager(std::make_unique<clsMCIManager>());
    ScriptedResponder responder;
    const QString sounds = QDir(sourceDataFolder()).filePath(QStringLiteral("Archive/Sounds"));
    ctlBrowser browser;
    browser.SetBrowserThumbType(ctlBrowser::SoundThumbs);
    browser.setPath(sounds);
    browser.setFiles(QStringLiteral("*.wav,*.mid,*.midi,*.imy"));
    browser.setThumbs(QStringLiteral("101,302,302,302"));
    browser.setThumbHeight(48);
    browser.LoadFiles();
    const int count = browser.list().Count();
    ASSERT_GE(count, 2);
    EXPECT_EQ(browser.PendingThumbs(), 0); // nothing to read: every tile has its icon
    EXPECT_TRUE(browser.FileName(count).endsWith(QStringLiteral(".mid")));
    EXPECT_FALSE(browser.Thumbnail(1).isNull());
    EXPECT_NE(browser.Thumbnail(1), browser.Thumbnail(count));

    QSignalSpy chosen(&browser, &ctlBrowser::ItemChosen);
    const QString beep = QDir(sounds).filePath(QStringLiteral("Beep.wav"));
    responder.openFiles = {beep};
    browser.bBrowse()->click();
    ASSERT_EQ(chosen.count(), 1);
    EXPECT_EQ(chosen[0][0].toInt(), 0);
    EXPECT_EQ(browser.FileName(0), beep);
    setMCIManager(nullptr);
}

// A folder of 2,000 pictures: the first screen is there at once, and the window keeps
// answering while the rest fill in.
TEST(BrowserFillTest, ALargeFolderShowsItsFirstScreenAtOnceAndFillsWhileEventsRun) {
    QTemporaryDir folder;
    const QString first = QDir(folder.path()).filePath(QStringLiteral("p0000.bmp"));
    savePicture(first, Qt::magenta);
    QFile source(first);
    ASSERT_TRUE(source.open(QIODevice::ReadOnly));
    const QByteArray bytes = source.readAll();
    for (int i = 1; i < 2000; ++i) {
        QFile copy(QDir(folder.path())
                       .filePath(QStringLiteral("p%1.bmp").arg(i, 4, 10, QLatin1Char('0'))));
        ASSERT_TRUE(copy.open(QIODevice::WriteOnly) && copy.write(bytes) == bytes.size());
    }
    ctlBrowser browser;
    browser.resize(360, 226);
    browser.show();
    ASSERT_TRUE(QTest::qWaitForWindowExposed(&browser));
    browser.setPath(folder.path());
    browser.setFiles(QStringLiteral("*.bmp"));
    browser.LoadFiles();

    EXPECT_GT(browser.PendingThumbs(), 1900);
    QImage screen(browser.tabBack()->size(), QImage::Format_RGB32);
    browser.tabBack()->render(&screen);
    EXPECT_EQ(QColor(screen.pixel(ctlBrowser::kDefaultThumbWidth / 2, 30)), QColor(Qt::magenta));
    EXPECT_TRUE(browser.VScroll()->isVisible());

    QElapsedTimer clock;
    qint64 last = 0;
    qint64 longestGap = 0;
    int ticks = 0;
    QTimer heartbeat;
    QObject::connect(&heartbeat, &QTimer::timeout, [&] {
        longestGap = std::max(longestGap, clock.elapsed() - last);
        last = clock.elapsed();
        ++ticks;
    });
    QSignalSpy loaded(&browser, &ctlBrowser::ThumbsLoaded);
    clock.start();
    heartbeat.start(10);
    ASSERT_TRUE(QTest::qWaitFor([&] { return loaded.count() == 1; }, 30000));
    EXPECT_EQ(browser.PendingThumbs(), 0);
    EXPECT_FALSE(browser.Thumbnail(2000).isNull());
    EXPECT_GT(ticks, 3);
    EXPECT_LT(longestGap, 250) << "the window stopped answering while the pictures were read";
}

} // namespace
