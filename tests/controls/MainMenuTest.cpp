#include "controls/ctlMainMenu.h"
#include "controls/modSkin.h"
#include "platform/modText.h"
#include "support/ScriptedResponder.h"

#include <QCursor>
#include <QLabel>
#include <QPainter>
#include <QPointer>
#include <QSignalSpy>
#include <QTest>
#include <QTimer>
#include <cstring>
#include <gtest/gtest.h>
#include <new>
#include <type_traits>

// The bar's own enabling of its labels must not hide QWidget::setEnabled, which callers holding
// a QWidget* would reach instead.
static_assert(std::is_same_v<decltype(&ctlMainMenu::setEnabled), void (QWidget::*)(bool)>);

namespace {

// Item captions come from the language; in these tests a key stands for itself.
struct PlainText {
    PlainText() { setTextLookup(nullptr); }
};

class MainMenu : public ::testing::Test {
protected:
    PlainText plain; // before the bar, which loads its captions when it is made
    ctlMainMenu menu;
    ScriptedResponder responder;
    QSignalSpy clicks{&menu, &ctlMainMenu::MenuClick};

    // Opens the menu of `label` choosing `key` (nothing: dismissed); the key raised, or 0.
    std::int32_t choose(int label, const char* key = nullptr) {
        if (key)
            responder.popupKeys = {QString::fromLatin1(key)};
        const qsizetype before = clicks.size();
        QTest::mouseClick(menu.MenuLabel(label), Qt::LeftButton, {}, QPoint(2, 2));
        return clicks.size() > before ? clicks.last()[0].value<std::int32_t>() : 0;
    }
};

} // namespace

TEST_F(MainMenu, MenuStringsAndTheKeysTheyRaise) {
    const QString file =
        QStringLiteral("MNU_FILE_NEW;1,MNU_FILE_OPEN;2,-,MNU_FILE_SAVE;3,MNU_FILE_SAVEAS;4,-,%1"
                       "MNU_FILE_DELETE;5,-,MNU_FILE_SETTINGS;6,-,MNU_FILE_EXIT;10");
    EXPECT_EQ(menu.MenuString(0), file.arg(QString()));
    EXPECT_EQ(menu.MenuString(1),
              QStringLiteral("MNU_SLIDE_ADD;11,"
                             "MNU_SLIDE_INSERT;0|MNU_SLIDE_BEFORE;13|MNU_SLIDE_AFTER;14,"
                             "MNU_SLIDE_DUPLICATE;0|MNU_SLIDE_BEFORE;16|MNU_SLIDE_AFTER;17,"
                             "MNU_SLIDE_DELETE;0|MNU_SLIDE_DELETE_SLIDE;19|-|"
                             "MNU_SLIDE_DELETE_IMAGE;20|MNU_SLIDE_DELETE_SOUND;21|"
                             "MNU_SLIDE_DELETE_TEXT;22,"
                             "-,MNU_SLIDE_BACKGROUND;23,-,MNU_SLIDE_PREVIEW;24,"
                             "MNU_SLIDE_DOWNLOAD_PICTURE;25"));
    EXPECT_EQ(menu.MenuString(2), QStringLiteral("MNU_HELP_ABOUT;27"));
    EXPECT_EQ(menuCaptionKey(MenuKey::SlideDuplicateAfter), QStringLiteral("MNU_SLIDE_AFTER"));
    EXPECT_EQ(menuCaptionKey(26), QString());

    // The template flag takes effect at the next rebuild only.
    menu.EnableTemplates(true);
    EXPECT_EQ(menu.MenuString(0), file.arg(QString()));
    menu.TranslateControl(nullptr);
    EXPECT_EQ(menu.MenuString(0),
              file.arg(QStringLiteral("MNU_FILE_OPEN_TPL;9,MNU_FILE_SAVEAS_TPL;7,"
                                      "MNU_FILE_SAVEAS_SIS;8,-,")));

    EXPECT_EQ(choose(0, "8"), MenuKey::FileSaveAsSis);
    EXPECT_EQ(choose(1, "17"), MenuKey::SlideDuplicateAfter);
    EXPECT_EQ(choose(2), 0) << "a dismissed menu raises nothing";
    ASSERT_EQ(responder.popups.size(), 3u);
    EXPECT_EQ(responder.popups[0].keys,
              (QStringList{"1", "2", "3", "4", "9", "7", "8", "5", "6", "10"}));
    EXPECT_EQ(responder.popups[1].keys, (QStringList{"11", "13", "14", "16", "17", "19", "20", "21",
                                                     "22", "23", "24", "25"}));
}

TEST_F(MainMenu, OnlyTheDeleteItemsShowTheirMark) {
    const QString slide = menu.MenuString(1);
    for (std::int32_t key :
         {std::int32_t(MenuKey::SlidePreview), std::int32_t(MenuKey::FileSave), 99, -1})
        menu.MenuItemEnabled(key, false);
    EXPECT_EQ(menu.MenuString(1), slide);
    EXPECT_FALSE(menu.MenuString(0).contains(QLatin1Char('!')));

    menu.MenuItemEnabled(MenuKey::SlideDeleteSlide, false);
    menu.MenuItemEnabled(MenuKey::SlideDeleteSound, false);
    EXPECT_TRUE(menu.MenuString(1).contains(QStringLiteral("|!MNU_SLIDE_DELETE_SLIDE;19|")));
    EXPECT_EQ(choose(1, "19"), 0) << "a disabled item cannot be chosen";
    EXPECT_EQ(responder.popups.at(0).disabled, (QStringList{"19", "21"}));
    EXPECT_TRUE(responder.popups[0].captions.contains(QStringLiteral("MNU_SLIDE_DELETE_SLIDE")));
    menu.MenuItemEnabled(MenuKey::SlideDeleteSlide, true);
    EXPECT_EQ(choose(1, "19"), MenuKey::SlideDeleteSlide);
    EXPECT_EQ(responder.popups.at(1).disabled, QStringList{"21"});
}

TEST_F(MainMenu, MenuEnabledAndEnabled) {
    menu.MenuEnabled(3, false); // out of range: nothing
    menu.MenuEnabled(-1, false);
    for (int i = 0; i < 3; ++i)
        EXPECT_TRUE(menu.MenuLabel(i)->isEnabled());
    menu.MenuEnabled(1, false);
    EXPECT_EQ(choose(1, "11"), 0);
    EXPECT_TRUE(responder.popups.empty()) << "a disabled label opens nothing";
    menu.setMenusEnabled(false);
    for (int i = 0; i < 3; ++i)
        EXPECT_FALSE(menu.MenuLabel(i)->isEnabled());
    EXPECT_TRUE(menu.isEnabled()) << "the bar itself still takes presses to drag the window";
    QSignalSpy downs(&menu, &ctlMainMenu::MenuMouseDown);
    QTest::mousePress(&menu, Qt::LeftButton, Qt::ShiftModifier, QPoint(4, 6));
    ASSERT_EQ(downs.size(), 1);
    EXPECT_EQ(downs[0], (QVariantList{1, 1, 4.f, 6.f}));
    menu.setMenusEnabled(true);
    QTest::mousePress(menu.MenuLabel(2), Qt::LeftButton, {}, QPoint(2, 2));
    EXPECT_EQ(downs.size(), 1) << "a press on a label is the label's";
}

TEST_F(MainMenu, LabelsTakeTheLanguageAndStandRightAlignedWithGaps) {
    setTextLookup([](const QString& key) {
        return key == QLatin1String("MNU_FILE")       ? QStringLiteral("Datei")
               : key == QLatin1String("MNU_FILE_NEW") ? QStringLiteral("Neu")
                                                      : key;
    });
    menu.resize(300, 20);
    menu.TranslateControl(nullptr);
    setTextLookup(nullptr);
    EXPECT_EQ(menu.MenuLabel(0)->text(), QStringLiteral("Datei"));
    EXPECT_TRUE(menu.MenuString(0).startsWith(QStringLiteral("Neu;1,")));
    EXPECT_EQ(menu.MenuLabel(2)->geometry().right(), 299);
    for (int i = 0; i < 2; ++i)
        EXPECT_EQ(menu.MenuLabel(i)->geometry().right() + 1 + 8, menu.MenuLabel(i + 1)->x());
}

TEST(MainMenuHot, HotTrackingColoursTheLabelUnderTheMouse) {
    QWidget form;
    form.resize(400, 100);
    auto* menu = new ctlMainMenu(&form);
    menu->move(100, 10);
    form.show();
    ASSERT_TRUE(QTest::qWaitForWindowExposed(&form));
    QTest::mouseMove(menu->MenuLabel(1), QPoint(3, 3));
    EXPECT_EQ(menu->MenuLabel(1)->palette().color(QPalette::WindowText), menu->HotColor());
    EXPECT_EQ(menu->MenuLabel(0)->palette().color(QPalette::WindowText), menu->NormalColor());
    EXPECT_EQ(menu->Timer1()->interval(), 50);
    // The mouse leaves the bar: the next tick puts all labels back.
    QCursor::setPos(form.mapToGlobal(QPoint(5, 90)));
    ASSERT_TRUE(QTest::qWaitFor([&] { return !menu->Timer1()->isActive(); }, 2000));
    EXPECT_EQ(menu->MenuLabel(1)->palette().color(QPalette::WindowText), menu->NormalColor());
}

TEST(MainMenuBackground, ShowsThePieceOfSkinBehind) {
    QWidget form;
    QPixmap skin(200, 100);
    skin.fill(Qt::white);
    QPainter(&skin).fillRect(60, 12, 1, 1, QColor(200, 100, 50));
    setFormPicture(&form, skin);
    auto* menu = new ctlMainMenu(&form);
    menu->setGeometry(60, 12, 120, 20);
    menu->SetBackground(&form, menu);
    const QImage piece = menu->Background().toImage();
    EXPECT_EQ(piece.size(), QSize(120, 20));
    EXPECT_EQ(piece.pixelColor(0, 0), QColor(200, 100, 50));
    EXPECT_EQ(piece.pixelColor(1, 1), QColor(Qt::white));
}

// Closes the window that holds the bar while the pop-up is open, then chooses a key. The bar's
// memory is wiped after its destructor, so any use of it after the pop-up crashes at once.
TEST(MainMenuLifetime, ABarDeletedWhileItsMenuIsOpenRaisesNothing) {
    struct Destroying : ScriptedResponder {
        ctlMainMenu* bar = nullptr;
        std::size_t size = 0;
        QString popupChoice(QMenu*, const QPoint&) override {
            bar->~ctlMainMenu();
            std::memset(static_cast<void*>(bar), 0, size);
            return QStringLiteral("27");
        }
    };
    alignas(ctlMainMenu) unsigned char storage[sizeof(ctlMainMenu)];
    auto* menu = new (storage) ctlMainMenu;
    QPointer<ctlMainMenu> watch(menu);
    int clicks = 0;
    QObject context;
    QObject::connect(menu, &ctlMainMenu::MenuClick, &context, [&clicks] { ++clicks; });
    Destroying responder;
    responder.bar = menu;
    responder.size = sizeof storage;
    menu->ClickMenu(2);
    EXPECT_TRUE(watch.isNull());
    EXPECT_EQ(clicks, 0);
}
