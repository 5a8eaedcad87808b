#include "app/frmMain.h"
#include "app/modMain.h"
#include "canvas/ctlPictureEditor.h"
#include "canvas/ctlTextProperties.h"
#include "config/clsPropertiesXML.h"
#include "config/clsXMLocalizer.h"
#include "config/modConfig.h"
#include "controls/ctlMainMenu.h"
#include "document/clsDrawObjects.h"
#include "document/clsMessage.h"
#include "document/clsSlide.h"
#include "platform/modShared.h"
#include "support/ScriptedResponder.h"
#include "support/TestHome.h"

#include <QAbstractButton>
#include <QLabel>
#include <QPlainTextEdit>
#include <QPointer>
#include <QScopeGuard>
#include <QTest>
#include <gtest/gtest.h>

// A person composes a slide on the main window's canvas through its menu, sees it in the
// preview, saves the message and opens it again.
TEST(CanvasInMainWindow, AComposedSlideIsPreviewedSavedAndOpenedAgain) {
    TestHome home{true};
    ScriptedResponder dialogs;
    SharedConfig shared;
    shared.setProperties(std::make_unique<clsPropertiesXML>());
    shared.setLocalizer(std::make_unique<clsXMLocalizer>(*gProperties()))
        .SetLanguage(QStringLiteral("en-us"));
    gStarting = true;
    gSplashActive = false;
    QPointer<frmMain> window = new frmMain();
    const auto closing = qScopeGuard([&] { delete window.data(); });
    window->show();
    auto* canvas = window->findChild<ctlPictureEditor*>(QStringLiteral("ctlPictureEditor1"));
    auto* preview = window->findChild<QLabel*>(QStringLiteral("picPreview"));
    ASSERT_TRUE(canvas && preview);

    QImage back(32, 24, QImage::Format_RGB32), star(20, 20, QImage::Format_RGB32);
    back.fill(QColor(0, 128, 255));
    star.fill(QColor(250, 200, 0));
    const QString backFile = home.file(QStringLiteral("back.bmp"));
    const QString starFile = home.file(QStringLiteral("star.bmp"));
    ASSERT_TRUE(back.save(backFile, "BMP") && star.save(starFile, "BMP"));
    dialogs.popupKeys = {QStringLiteral("3"), QStringLiteral("2")};
    dialogs.openFiles = {backFile, starFile};
    QTest::mouseClick(canvas->surface(), Qt::RightButton, {}, {150, 110});
    QTest::mouseClick(canvas->surface(), Qt::RightButton, {}, {150, 110});
    ASSERT_EQ(canvas->imageCount(), 1);
    EXPECT_EQ(dialogs.popups.at(0).captions,
              QStringList(
                  {"Add text", "Add picture...", "Background picture...", "Background color..."}));
    EXPECT_TRUE(window->changed());
    const QImage composed = canvas->RenderImage(QSize(160, 120), true);
    EXPECT_EQ(composed.pixelColor(100, 100), QColor(0, 128, 255));
    EXPECT_EQ(composed.pixelColor(15, 15), QColor(250, 200, 0));
    EXPECT_EQ(preview->pixmap().toImage().convertToFormat(QImage::Format_RGB32), composed);
    EXPECT_EQ(window->slide()->Image().convertToFormat(QImage::Format_RGB32), composed);

    // The background item of the menu bar asks for a colour; a cancel keeps the picture.
    dialogs.colours = {std::nullopt};
    window->ctlMainMenu1_MenuClick(MenuKey::SlideBackground);
    EXPECT_EQ(dialogs.colourRequests, 1);
    EXPECT_EQ(window->slide()->DrawObjects()->BackPicture(), backFile);

    window->SaveMessageAs(QStringLiteral("Composed"));
    EXPECT_FALSE(window->changed());
    const QString folder = home.file(QStringLiteral("Messages/Composed/"));
    const QByteArray xml = home.read(QStringLiteral("Messages/Composed/message.xml"));
    EXPECT_TRUE(xml.contains("type=\"image\"")) << xml.constData();
    EXPECT_TRUE(xml.contains(starFile.toUtf8()));
    EXPECT_EQ(QImage(folder + QStringLiteral("Slide_1.bmp")).convertToFormat(QImage::Format_RGB32),
              composed);

    window->NewMessage(QStringLiteral("Other"));
    EXPECT_EQ(canvas->imageCount(), 0);
    window->OpenMessage(QStringLiteral("Composed"), false);
    EXPECT_EQ(canvas->imageCount(), 1);
    EXPECT_EQ(preview->pixmap().toImage().convertToFormat(QImage::Format_RGB32), composed);
    EXPECT_FALSE(window->changed()) << "opening is no change";

    // The text panel adds its text to the canvas; a click on the bare surface leaves the panel
    // nothing to apply to, and a click on a text shows that text in the panel.
    auto* panel = window->findChild<ctlTextProperties*>(QStringLiteral("ctlTextProperties1"));
    ASSERT_TRUE(panel);
    auto* box = panel->findChild<QPlainTextEdit*>(QStringLiteral("txtObject"));
    box->setPlainText(QStringLiteral("Hello"));
    QTest::mouseClick(panel->findChild<QAbstractButton*>(QStringLiteral("bAdd")), Qt::LeftButton);
    ASSERT_EQ(canvas->textCount(), 1);
    QWidget* hello = canvas->selected();
    ASSERT_TRUE(hello);
    // The first left click after the menu's right clicks is swallowed; the second is heard.
    QTest::mouseClick(canvas->surface(), Qt::LeftButton, {}, {150, 5});
    QTest::mouseClick(canvas->surface(), Qt::LeftButton, {}, {150, 5});
    EXPECT_EQ(canvas->selected(), nullptr);
    EXPECT_FALSE(panel->IsApplyEnabled());
    box->setPlainText(QStringLiteral("Typed with nothing selected"));
    QTest::mouseClick(canvas->surface(), Qt::LeftButton, {}, hello->geometry().center());
    EXPECT_TRUE(panel->IsApplyEnabled());
    EXPECT_EQ(panel->Text(), QStringLiteral("Hello"));
}
