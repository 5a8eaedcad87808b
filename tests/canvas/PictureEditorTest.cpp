#include "canvas/ctlPictureEditor.h"
#include "document/clsMessage.h"
#include "document/clsSlide.h"
#include "document/clsSlides.h"
#include "store/clsMMSManager.h"
#include "support/ScriptedResponder.h"
#include "support/TestHome.h"

#include <QDir>
#include <QLabel>
#include <QPainter>
#include <QScopeGuard>
#include <QScreen>
#include <QSignalSpy>
#include <QTest>
#include <QTextEdit>
#include <algorithm>
#include <gtest/gtest.h>

namespace {

// A picture of `size` whose pixels all differ from their neighbours, so a misplaced or
// unstretched copy shows.
QImage pattern(QSize size, int seed) {
    QImage picture(size, QImage::Format_RGB32);
    for (int y = 0; y < size.height(); ++y)
        for (int x = 0; x < size.width(); ++x)
            picture.setPixel(x, y,
                             qRgb((x * 7 + seed) % 256, (y * 11 + seed) % 256, (x * y) % 256));
    return picture;
}

struct CanvasFixture : ::testing::Test {
    TestHome home;
    ScriptedResponder dialogs;
    ctlPictureEditor editor;
    QWidget* surface = editor.surface();

    void SetUp() override {
        editor.show();
        ASSERT_TRUE(QTest::qWaitForWindowExposed(&editor));
    }
    QString pictureFile(const QString& name, QSize size, int seed) {
        const QString path = home.file(name);
        EXPECT_TRUE(pattern(size, seed).save(path, "BMP"));
        return path;
    }
    // A 40 by 30 picture at (10, 10), selected.
    CanvasPicture* addPicture(int seed = 1) {
        EXPECT_TRUE(
            editor.AddImage(pictureFile(QStringLiteral("p%1.bmp").arg(seed), {40, 30}, seed),
                            QStringLiteral("p.bmp")));
        return qobject_cast<CanvasPicture*>(editor.selected());
    }
    void drag(QPoint from, QPoint to) {
        QTest::mousePress(surface, Qt::LeftButton, {}, from);
        QTest::mouseMove(surface, to);
        QTest::mouseRelease(surface, Qt::LeftButton, {}, to);
    }
    int entries(std::int16_t entry) const {
        return int(std::count(editor.stackOrder().begin(), editor.stackOrder().end(), entry));
    }
};

} // namespace

TEST_F(CanvasFixture, DraggingMovesByTheOutlineAndKeepsACornerOnTheSurface) {
    const struct {
        QPoint to;
        QPoint place;
    } cases[] = {{{30, 25}, {20, 15}}, {{500, 20}, {159, 10}}, {{-500, 400}, {-40, 119}}};
    for (const auto& c : cases) {
        CanvasPicture* picture = addPicture();
        QTest::mousePress(surface, Qt::LeftButton, {}, {20, 20});
        QTest::mouseMove(surface, c.to);
        EXPECT_TRUE(editor.outlineShown());
        EXPECT_EQ(picture->pos(), QPoint(10, 10)); // the object waits for the button
        QTest::mouseRelease(surface, Qt::LeftButton, {}, c.to);
        EXPECT_FALSE(editor.outlineShown());
        EXPECT_EQ(picture->pos(), c.place);
    }
}

TEST_F(CanvasFixture, EachHandleResizesItsSidesAndANegativeSizeIsNotApplied) {
    const struct {
        int node;
        QPoint by;
        QRect result;
    } cases[] = {{0, {5, 7}, {15, 17, 35, 23}},
                 {1, {5, 7}, {15, 10, 35, 30}},
                 {2, {5, 7}, {15, 10, 35, 37}},
                 {3, {5, 7}, {10, 17, 40, 23}},
                 {4, {5, 7}, {10, 10, 40, 37}},
                 {5, {5, 7}, {10, 17, 45, 23}},
                 {6, {5, 7}, {10, 10, 45, 30}},
                 {7, {5, 7}, {10, 10, 45, 37}},
                 // Past the opposite edge: the place is taken, the negative size is not.
                 {7, {0, -50}, {10, 10, 40, 30}},
                 {0, {60, 0}, {70, 10, 40, 30}}};
    for (const auto& c : cases) {
        CanvasPicture* picture = addPicture();
        const QPoint grip = editor.handle(c.node)->geometry().center();
        drag(grip, grip + c.by);
        EXPECT_EQ(picture->geometry(), c.result) << "handle " << c.node;
        EXPECT_FALSE(editor.handle(c.node)->isHidden());
    }
}

TEST_F(CanvasFixture, ArrowKeysPassTheEdgeAndAnnounceOneChangeAfterTheRun) {
    CanvasPicture* picture = addPicture();
    picture->move(0, 0);
    QSignalSpy changes(&editor, &ctlPictureEditor::CanvasChanged);
    surface->setFocus();
    for (int i = 0; i < 3; ++i)
        QTest::keyClick(surface, Qt::Key_Left);
    QTest::keyClick(surface, Qt::Key_Up);
    EXPECT_EQ(picture->pos(), QPoint(-3, -1));
    EXPECT_EQ(changes.count(), 0);
    ASSERT_TRUE(QTest::qWaitFor([&] { return changes.count() == 1; }, 2000));
    EXPECT_FALSE(QTest::qWaitFor([&] { return changes.count() > 1; }, 600));
}

TEST_F(CanvasFixture, DeleteAndCtrlDNeedASelectionAndUnreadableFilesAddNothing) {
    addPicture();
    QTest::mouseClick(surface, Qt::LeftButton, {}, {150, 110}); // bare surface
    ASSERT_EQ(editor.selected(), nullptr);
    QTest::keyClick(surface, Qt::Key_D, Qt::ControlModifier);
    QTest::keyClick(surface, Qt::Key_Delete);
    EXPECT_EQ(editor.imageCount(), 1);

    // A file that is no picture is said, and changes nothing.
    home.write(QStringLiteral("broken.bmp"), "BM no picture");
    EXPECT_FALSE(editor.AddImage(home.file(QStringLiteral("broken.bmp")), {}));
    EXPECT_FALSE(editor.AddBackgroundImage(home.file(QStringLiteral("broken.bmp"))));
    ASSERT_EQ(dialogs.boxes.size(), 2u);
    EXPECT_TRUE(dialogs.boxes[0].text.contains(QStringLiteral("broken.bmp")));
    EXPECT_EQ(editor.imageCount(), 1);
    EXPECT_EQ(editor.backColor(), QColor(Qt::white));

    QTest::mouseClick(surface, Qt::LeftButton, {}, {20, 20});
    QTest::keyClick(surface, Qt::Key_D, Qt::ControlModifier);
    EXPECT_EQ(editor.imageCount(), 2);
    EXPECT_EQ(editor.image(2)->picture(), editor.image(1)->picture());
    QTest::keyClick(surface, Qt::Key_Delete);
    EXPECT_EQ(editor.imageCount(), 1);
    EXPECT_TRUE(editor.image(2)->isHidden());
}

TEST_F(CanvasFixture, ARightClickOpensTheObjectMenuAndSwallowsTheNextClick) {
    addPicture();
    QSignalSpy images(&editor, &ctlPictureEditor::ImageSelected);
    dialogs.popupKeys.push_back(QString()); // dismissed
    QTest::mouseClick(surface, Qt::RightButton, {}, {20, 20});
    ASSERT_EQ(dialogs.popups.size(), 1u);
    EXPECT_EQ(dialogs.popups[0].keys, QStringList({"1", "2", "3", "4"}));
    EXPECT_EQ(dialogs.popups[0].captions[0], QStringLiteral("STR_DUPLICATE"));
    QTest::mouseClick(surface, Qt::LeftButton, {}, {20, 20});
    EXPECT_EQ(images.count(), 0);
    QTest::mouseClick(surface, Qt::LeftButton, {}, {20, 20});
    ASSERT_EQ(images.count(), 1);
    EXPECT_EQ(images[0][1].toString(), QStringLiteral("p.bmp_1"));
}

TEST_F(CanvasFixture, AReusedSlotKeepsOneStackEntryAndLiveObjectsKeepTheirs) {
    addPicture(1);
    addPicture(2);
    editor.DelPicture(2);
    editor.AddText(TextAttributes{QStringLiteral("T")});
    addPicture(3); // takes slot 2 again
    EXPECT_EQ(editor.image(2)->pos(), QPoint(10, 10));
    EXPECT_EQ(entries(2), 1);
    EXPECT_EQ(entries(1), 1);
    EXPECT_EQ(entries(-1), 1);
    EXPECT_EQ(editor.stackOrder().front(), 2);
    // The menu sends the front picture back.
    dialogs.popupKeys.push_back(QStringLiteral("4"));
    QTest::mouseClick(surface, Qt::RightButton, {}, {12, 12});
    EXPECT_EQ(editor.stackOrder().back(), 2);
}

TEST_F(CanvasFixture, TheAppliedStyleIsTheNextTextsDefault) {
    editor.AddText(TextAttributes{QStringLiteral("First")});
    TextAttributes styled{QStringLiteral("First"), QStringLiteral("DejaVu Serif"), 24, 0xFF, true};
    editor.ApplyText(styled);
    // A new text from the surface's menu starts in that style, and the panel hears of it when
    // typing ends.
    QSignalSpy texts(&editor, &ctlPictureEditor::TextSelected);
    dialogs.popupKeys.push_back(QStringLiteral("1"));
    QTest::mouseClick(surface, Qt::RightButton, {}, {150, 110});
    ASSERT_TRUE(editor.editing());
    editor.textEditor()->setPlainText(QStringLiteral("Second"));
    QTest::mouseClick(surface, Qt::LeftButton, {}, {150, 110});
    EXPECT_FALSE(editor.editing());
    ASSERT_EQ(texts.count(), 1);
    styled.caption = QStringLiteral("Second");
    EXPECT_EQ(editor.label(2)->text(), styled);
    EXPECT_EQ(texts[0][0].value<TextAttributes>(), styled);

    // A double click edits a label in place until the next click.
    editor.label(2)->move(10, 70); // off the first
    const QPoint first = editor.label(1)->geometry().center();
    QTest::mouseDClick(surface, Qt::LeftButton, {}, first);
    QTest::mouseRelease(surface, Qt::LeftButton, {}, first);
    ASSERT_TRUE(editor.editing());
    EXPECT_EQ(editor.textEditor()->toPlainText(), QStringLiteral("First"));
    editor.textEditor()->setPlainText(QStringLiteral("Changed"));
    QTest::mouseClick(surface, Qt::LeftButton, {}, first);
    EXPECT_FALSE(editor.editing());
    EXPECT_EQ(editor.label(1)->text().caption, QStringLiteral("Changed"));
}

TEST_F(CanvasFixture, TheColourPickerGivesTheColourUnderTheMouseOnAPictureOfTheSurface) {
    editor.SetBackgroundColor(0x00FF00, false);
    addPicture(1);
    QSignalSpy colours(&editor, &ctlPictureEditor::ColorPicked);
    editor.EnabledColorPicker();
    auto* picker = editor.findChild<QLabel*>(QStringLiteral("picColorPicker"));
    ASSERT_TRUE(picker && picker->isVisible());
    QTest::mouseClick(picker, Qt::LeftButton, {}, {100, 100});
    EXPECT_FALSE(picker->isVisible());
    ASSERT_EQ(colours.count(), 1);
    EXPECT_EQ(colours[0][0].toInt(), 0x00FF00);
    editor.EnabledColorPicker();
    QTest::mouseClick(picker, Qt::LeftButton, {}, {12, 10}); // on the picture's pixel (2, 0)
    ASSERT_EQ(colours.count(), 2);
    EXPECT_EQ(fromVbColor(colours[1][0].toInt()), pattern({40, 30}, 1).pixelColor(2, 0));
}

TEST_F(CanvasFixture, RenderingDrawsBackgroundThenObjectsBackToFrontWithoutHandles) {
    const QImage back = pattern({80, 60}, 5);
    const QString backFile = home.file(QStringLiteral("back.bmp"));
    ASSERT_TRUE(back.save(backFile, "BMP"));
    ASSERT_TRUE(editor.AddBackgroundImage(backFile));
    CanvasPicture* lower = addPicture(1);
    CanvasPicture* upper = addPicture(2);
    upper->move(30, 25);
    editor.AddText(
        TextAttributes{QStringLiteral("Hi"), QStringLiteral("DejaVu Sans"), 18, 0xFF0000});
    CanvasLabel* text = editor.label(1);
    text->move(20, 40);
    ASSERT_FALSE(editor.handle(0)->isHidden());

    QImage expected = back.scaled(160, 120, Qt::IgnoreAspectRatio, Qt::SmoothTransformation)
                          .convertToFormat(QImage::Format_RGB32);
    QPainter painter(&expected);
    painter.drawImage(lower->pos(), pattern({40, 30}, 1));
    painter.drawImage(upper->pos(), pattern({40, 30}, 2));
    QFont font(QStringLiteral("DejaVu Sans"));
    font.setPixelSize(24);
    painter.setFont(font);
    painter.setPen(QColor(0, 0, 255));
    painter.drawText(text->geometry(), Qt::AlignHCenter | Qt::AlignTop, QStringLiteral("Hi"));
    painter.end();

    QLabel preview;
    preview.resize(160, 120);
    editor.RenderImage(&preview, 1);
    EXPECT_EQ(preview.pixmap().toImage().convertToFormat(QImage::Format_RGB32), expected);
    EXPECT_FALSE(editor.handle(0)->isHidden()); // the selection comes back
}

TEST(CanvasStore, ASavedSlideOpensWithTheSameObjectsAndPicture) {
    TestHome home;
    ScriptedResponder dialogs;
    clsMMSManager manager;
    manager.Initialize(home.file(QStringLiteral("Messages/")), QStringLiteral("message.xml"));
    auto message = manager.CreateMsg(QStringLiteral("Composed"));
    ASSERT_TRUE(message);
    auto slide = message->Slides()->Count() ? message->Slides()->Item(1) : message->Slides()->Add();
    ASSERT_TRUE(slide);
    const QString backFile = home.file(QStringLiteral("back.bmp"));
    ASSERT_TRUE(pattern({64, 48}, 3).save(backFile, "BMP"));
    const QString pictureFile = home.file(QStringLiteral("flower.bmp"));
    ASSERT_TRUE(pattern({20, 20}, 9).save(pictureFile, "BMP"));

    ctlPictureEditor editor;
    QSignalSpy changes(&editor, &ctlPictureEditor::CanvasChanged);
    editor.LoadDrawObjects(slide->DrawObjects());
    EXPECT_EQ(changes.count(), 0);
    ASSERT_TRUE(editor.AddBackgroundImage(backFile));
    ASSERT_TRUE(editor.AddImage(pictureFile, QStringLiteral("flower.bmp")));
    editor.AddText(TextAttributes{QStringLiteral("Hello"), QStringLiteral("DejaVu Sans"), 12});
    editor.label(1)->move(5, 80);
    editor.SaveDrawObjects(slide->DrawObjects());
    slide->setImage(editor.RenderImage(QSize(160, 120), true));
    ASSERT_TRUE(message->SaveMessage());

    auto opened = manager.OpenMsg(QStringLiteral("Composed"));
    ASSERT_TRUE(opened);
    auto reopened = opened->Slides()->Item(1);
    ASSERT_TRUE(reopened);
    ctlPictureEditor again;
    QSignalSpy reloads(&again, &ctlPictureEditor::CanvasChanged);
    again.LoadDrawObjects(reopened->DrawObjects());
    EXPECT_EQ(reloads.count(), 0);
    const auto properties = [](clsDrawObjects* objects) {
        std::vector<clsDrawProperties> all;
        for (const auto& object : *objects)
            all.push_back(object->GetAllPproperties());
        return all;
    };
    const auto saved = properties(slide->DrawObjects());
    ASSERT_EQ(saved.size(), 2u);
    EXPECT_EQ(saved[0].Data, pictureFile); // back to front
    EXPECT_EQ(saved[1].Data, QStringLiteral("Hello"));
    EXPECT_EQ(properties(reopened->DrawObjects()), saved);
    EXPECT_EQ(reopened->DrawObjects()->BackPicture(), backFile);
    const QImage file(QDir(opened->Path()).filePath(QStringLiteral("Slide_1.bmp")));
    ASSERT_FALSE(file.isNull());
    EXPECT_EQ(file.convertToFormat(QImage::Format_RGB32), again.RenderImage(QSize(160, 120), true));
    // Saving the reopened slide gives the same document back.
    again.SaveDrawObjects(reopened->DrawObjects());
    EXPECT_EQ(properties(reopened->DrawObjects()), saved);
}

// A slide as a person composes it, on screen next to its preview. What the surface shows, with
// the selection dropped, is what RenderImage gives. With TESSALY_SCREENSHOT_DIR set the window
// is also photographed from the screen into that folder:
//   TESSALY_SCREENSHOT_DIR=docs/screenshots QT_QPA_PLATFORM=xcb xvfb-run -a
//     build/bin/canvas_tests --gtest_filter='*OnScreen*'   (one command line)
TEST_F(CanvasFixture, TheSurfaceOnScreenIsTheRenderedSlide) {
    QImage sky(64, 48, QImage::Format_RGB32);
    {
        QPainter painter(&sky);
        QLinearGradient gradient(0, 0, 0, 48);
        gradient.setColorAt(0, QColor(40, 90, 200));
        gradient.setColorAt(0.7, QColor(170, 210, 250));
        gradient.setColorAt(0.71, QColor(60, 150, 60));
        gradient.setColorAt(1, QColor(30, 110, 30));
        painter.fillRect(sky.rect(), gradient);
    }
    QImage sun(36, 36, QImage::Format_RGB32), house(44, 40, QImage::Format_RGB32);
    sun.fill(QColor(40, 90, 200));
    house.fill(QColor(140, 190, 240));
    {
        QPainter painter(&sun);
        painter.setRenderHint(QPainter::Antialiasing);
        painter.setBrush(QColor(255, 210, 40));
        painter.drawEllipse(2, 2, 32, 32);
        QPainter walls(&house);
        walls.fillRect(6, 18, 32, 22, QColor(200, 80, 60));
        walls.setBrush(QColor(120, 50, 40));
        walls.drawPolygon(QPolygon({{2, 19}, {22, 2}, {42, 19}}));
        walls.fillRect(18, 28, 8, 12, QColor(90, 60, 30));
    }
    const QString skyFile = home.file(QStringLiteral("sky.bmp"));
    ASSERT_TRUE(sky.save(skyFile, "BMP"));
    ASSERT_TRUE(sun.save(home.file(QStringLiteral("sun.bmp")), "BMP"));
    ASSERT_TRUE(house.save(home.file(QStringLiteral("house.bmp")), "BMP"));

    QWidget window;
    window.setWindowTitle(QStringLiteral("Tessaly"));
    QPalette grey = window.palette();
    grey.setColor(QPalette::Window, QColor(0xd8, 0xdc, 0xe4));
    window.setPalette(grey);
    editor.setParent(&window);
    const auto giveBack = qScopeGuard([&] { editor.setParent(nullptr); }); // the fixture owns it
    editor.setGeometry(12, 12, 160, 120);
    QLabel preview(&window);
    preview.setGeometry(188, 12, 160, 120);
    window.resize(360, 144);
    ASSERT_TRUE(editor.AddBackgroundImage(skyFile));
    ASSERT_TRUE(editor.AddImage(home.file(QStringLiteral("house.bmp")), QStringLiteral("house")));
    editor.selected()->move(96, 58);
    ASSERT_TRUE(editor.AddImage(home.file(QStringLiteral("sun.bmp")), QStringLiteral("sun")));
    editor.selected()->move(12, 8);
    editor.AddText(TextAttributes{QStringLiteral("Greetings!"), QStringLiteral("DejaVu Serif"), 15,
                                  0x2020C0, true, true});
    editor.selected()->move(8, 94);
    QObject::connect(&editor, &ctlPictureEditor::CanvasChanged, &preview,
                     [&] { editor.RenderImage(&preview, 1); });
    editor.RenderImage(&preview, 1);
    window.show();
    ASSERT_TRUE(QTest::qWaitForWindowExposed(&window));

    QTest::mouseClick(surface, Qt::LeftButton, {}, {150, 40}); // bare: the handles go
    QImage shown(160, 120, QImage::Format_RGB32);
    surface->render(&shown);
    EXPECT_EQ(shown, editor.RenderImage(QSize(160, 120), false));
    EXPECT_EQ(preview.pixmap().toImage().convertToFormat(QImage::Format_RGB32), shown);

    if (const QString folder = qEnvironmentVariable("TESSALY_SCREENSHOT_DIR"); !folder.isEmpty()) {
        QTest::mouseClick(surface, Qt::LeftButton, {}, {110, 70}); // the house, with handles
        QTest::qWait(200);
        EXPECT_TRUE(window.screen()
                        ->grabWindow(window.winId())
                        .save(QDir(folder).filePath(QStringLiteral("canvas-composed-en.png"))));
    }
}
