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

void clickLabel(QLabel* label) {
    QTest::mouseClick(label, Qt::LeftButton, {}, QPoint(2, 2));
}

QStringList keysOf(const ScriptedResponder::Popup& popup) {
    return popup.keys;
}

} // namespace

TEST(MainMenu, FileMenuWithoutAndWithTemplates) {
    PlainText plain;
    ctlMainMenu menu;
    EXPECT_EQ(menu.MenuString(0),
              QStringLiteral("MNU_FILE_NEW;1,MNU_FILE_OPEN;2,-,MNU_FILE_SAVE;3,MNU_FILE_SAVEAS;4,"
                             "-,MNU_FILE_DELETE;5,-,MNU_FILE_SETTINGS;6,-,MNU_FILE_EXIT;10"));
    // The flag alone changes nothing until the next rebuild.
    menu.EnableTemplates(true);
    EXPECT_FALSE(menu.MenuString(0).contains(QStringLiteral(";9")));
    menu.TranslateControl(nullptr);
    EXPECT_EQ(menu.MenuString(0),
              QStringLiteral("MNU_FILE_NEW;1,MNU_FILE_OPEN;2,-,MNU_FILE_SAVE;3,MNU_FILE_SAVEAS;4,"
                             "-,MNU_FILE_OPEN_TPL;9,MNU_FILE_SAVEAS_TPL;7,MNU_FILE_SAVEAS_SIS;8,-,"
                             "MNU_FILE_DELETE;5,-,MNU_FILE_SETTINGS;6,-,MNU_FILE_EXIT;10"));

    ScriptedResponder responder;
    responder.popupKeys = {QStringLiteral("8")};
    QSignalSpy clicks(&menu, &ctlMainMenu::MenuClick);
    clickLabel(menu.MenuLabel(0));
    ASSERT_EQ(clicks.size(), 1);
    EXPECT_EQ(clicks[0][0].value<std::int32_t>(), 8);
    EXPECT_EQ(keysOf(responder.popups.at(0)),
              (QStringList{"1", "2", "3", "4", "9", "7", "8", "5", "6", "10"}));
}

TEST(MainMenu, SlideMenuHasThreeSubMenus) {
    PlainText plain;
    ctlMainMenu menu;
    EXPECT_EQ(menu.MenuString(1),
              QStringLiteral("MNU_SLIDE_ADD;11,"
                             "MNU_SLIDE_INSERT;0|MNU_SLIDE_BEFORE;13|MNU_SLIDE_AFTER;14,"
                             "MNU_SLIDE_DUPLICATE;0|MNU_SLIDE_BEFORE;16|MNU_SLIDE_AFTER;17,"
                             "MNU_SLIDE_DELETE;0|MNU_SLIDE_DELETE_SLIDE;19|-|"
                             "MNU_SLIDE_DELETE_IMAGE;20|MNU_SLIDE_DELETE_SOUND;21|"
                             "MNU_SLIDE_DELETE_TEXT;22,"
                             "-,MNU_SLIDE_BACKGROUND;23,-,MNU_SLIDE_PREVIEW;24,"
                             "MNU_SLIDE_DOWNLOAD_PICTURE;25"));
    menu.MenuItemEnabled(21, false);
    EXPECT_TRUE(menu.MenuString(1).contains(
        QStringLiteral("|MNU_SLIDE_DELETE_IMAGE;20|!MNU_SLIDE_DELETE_SOUND;21|")));
    menu.MenuItemEnabled(21, true);
    ScriptedResponder responder;
    responder.popupKeys = {QStringLiteral("17")};
    QSignalSpy clicks(&menu, &ctlMainMenu::MenuClick);
    clickLabel(menu.MenuLabel(1));
    ASSERT_EQ(clicks.size(), 1);
    EXPECT_EQ(clicks[0][0].value<std::int32_t>(), 17);
    EXPECT_EQ(keysOf(responder.popups.at(0)), (QStringList{"11", "13", "14", "16", "17", "19", "20",
                                                           "21", "22", "23", "24", "25"}));
    EXPECT_TRUE(responder.popups[0].disabled.isEmpty());
}

TEST(MainMenu, DisabledDeleteItemsShowGreyAtTheNextOpening) {
    PlainText plain;
    ctlMainMenu menu;
    menu.MenuItemEnabled(19, false);
    menu.MenuItemEnabled(21, false);
    EXPECT_TRUE(menu.MenuString(1).contains(QStringLiteral("!MNU_SLIDE_DELETE_SLIDE;19")));
    ScriptedResponder responder;
    responder.popupKeys = {QStringLiteral("19")};
    QSignalSpy clicks(&menu, &ctlMainMenu::MenuClick);
    clickLabel(menu.MenuLabel(1));
    EXPECT_EQ(clicks.size(), 0); // a disabled item cannot be chosen
    EXPECT_EQ(responder.popups.at(0).disabled, (QStringList{"19", "21"}));
    // The caption shows without its mark.
    EXPECT_TRUE(responder.popups[0].captions.contains(QStringLiteral("MNU_SLIDE_DELETE_SLIDE")));

    menu.MenuItemEnabled(19, true);
    clickLabel(menu.MenuLabel(1));
    EXPECT_EQ(responder.popups.at(1).disabled, QStringList{"21"});
}

TEST(MainMenu, MarksOfOtherItemsChangeNothingVisible) {
    PlainText plain;
    ctlMainMenu menu;
    const QString before = menu.MenuString(1);
    menu.MenuItemEnabled(24, false);
    menu.MenuItemEnabled(3, false);
    menu.MenuItemEnabled(99, false); // outside the table: ignored
    menu.MenuItemEnabled(-1, false);
    EXPECT_EQ(menu.MenuString(1), before);
    EXPECT_FALSE(menu.MenuString(0).contains(QLatin1Char('!')));
}

TEST(MainMenu, DismissingRaisesNoEvent) {
    PlainText plain;
    ctlMainMenu menu;
    ScriptedResponder responder; // nothing queued: dismissed
    QSignalSpy clicks(&menu, &ctlMainMenu::MenuClick);
    clickLabel(menu.MenuLabel(2));
    EXPECT_EQ(responder.popups.size(), 1u);
    EXPECT_EQ(responder.popups[0].keys, QStringList{"27"});
    EXPECT_EQ(clicks.size(), 0);
}

TEST(MainMenu, MenuEnabledAndEnabled) {
    PlainText plain;
    ctlMainMenu menu;
    menu.MenuEnabled(3, false); // out of range: nothing
    menu.MenuEnabled(-1, false);
    for (int i = 0; i < 3; ++i)
        EXPECT_TRUE(menu.MenuLabel(i)->isEnabled());
    menu.MenuEnabled(1, false);
    EXPECT_FALSE(menu.MenuLabel(1)->isEnabled());
    ScriptedResponder responder;
    responder.popupKeys = {QStringLiteral("11")};
    clickLabel(menu.MenuLabel(1));
    EXPECT_TRUE(responder.popups.empty()); // a disabled label opens nothing

    menu.setMenusEnabled(false);
    for (int i = 0; i < 3; ++i)
        EXPECT_FALSE(menu.MenuLabel(i)->isEnabled());
    EXPECT_TRUE(menu.isEnabled()); // the bar itself still takes presses to drag the window
    menu.setMenusEnabled(true);
    EXPECT_TRUE(menu.MenuLabel(1)->isEnabled());
}

TEST(MainMenu, LabelsStandRightAlignedWithGaps) {
    PlainText plain;
    ctlMainMenu menu;
    menu.resize(300, 20);
    menu.TranslateControl(nullptr);
    QLabel* file = menu.MenuLabel(0);
    QLabel* slide = menu.MenuLabel(1);
    QLabel* help = menu.MenuLabel(2);
    EXPECT_EQ(help->x() + help->width(), 300);
    EXPECT_EQ(slide->x() + slide->width() + 8, help->x());
    EXPECT_EQ(file->x() + file->width() + 8, slide->x());
}

TEST(MainMenu, TranslateControlTakesTheLanguage) {
    setTextLookup([](const QString& key) {
        return key == QLatin1String("MNU_FILE")       ? QStringLiteral("Datei")
               : key == QLatin1String("MNU_FILE_NEW") ? QStringLiteral("Neu")
                                                      : key;
    });
    ctlMainMenu menu;
    menu.TranslateControl(nullptr);
    setTextLookup(nullptr);
    EXPECT_EQ(menu.MenuLabel(0)->text(), QStringLiteral("Datei"));
    EXPECT_TRUE(menu.MenuString(0).startsWith(QStringLiteral("Neu;1,")));
}

TEST(MainMenu, HotTrackingColoursTheLabelUnderTheMouse) {
    PlainText plain;
    QWidget form;
    form.resize(400, 100);
    auto* menu = new ctlMainMenu(&form);
    menu->move(100, 10);
    form.show();
    ASSERT_TRUE(QTest::qWaitForWindowExposed(&form));
    QTest::mouseMove(menu->MenuLabel(1), QPoint(3, 3));
    EXPECT_EQ(menu->MenuLabel(1)->palette().color(QPalette::WindowText), menu->HotColor());
    EXPECT_EQ(menu->MenuLabel(0)->palette().color(QPalette::WindowText), menu->NormalColor());
    EXPECT_TRUE(menu->Timer1()->isActive());
    EXPECT_EQ(menu->Timer1()->interval(), 50);
    // The mouse leaves the bar: the next tick puts all labels back.
    QCursor::setPos(form.mapToGlobal(QPoint(5, 90)));
    QTRY_VERIFY_WITH_TIMEOUT(!menu->Timer1()->isActive(), 2000);
    EXPECT_EQ(menu->MenuLabel(1)->palette().color(QPalette::WindowText), menu->NormalColor());
}

TEST(MainMenu, MouseDownOnTheBarSurface) {
    PlainText plain;
    ctlMainMenu menu;
    menu.resize(300, 20);
    menu.TranslateControl(nullptr);
    QSignalSpy downs(&menu, &ctlMainMenu::MenuMouseDown);
    QTest::mousePress(&menu, Qt::LeftButton, Qt::ShiftModifier, QPoint(4, 6));
    ASSERT_EQ(downs.size(), 1);
    EXPECT_EQ(downs[0][0].toInt(), 1);
    EXPECT_EQ(downs[0][1].toInt(), 1);
    EXPECT_FLOAT_EQ(downs[0][2].toFloat(), 4.f);
    // A press on a label is the label's, not the bar's.
    QTest::mousePress(menu.MenuLabel(2), Qt::LeftButton, {}, QPoint(2, 2));
    EXPECT_EQ(downs.size(), 1);
}

TEST(MainMenu, SetBackgroundShowsThePieceOfSkinBehind) {
    QWidget form;
    form.resize(200, 100);
    QPixmap skin(200, 100);
    skin.fill(Qt::white);
    {
        QPainter painter(&skin);
        painter.fillRect(50, 10, 150, 20, QColor(10, 20, 30));
        painter.fillRect(60, 12, 1, 1, QColor(200, 100, 50));
    }
    setFormPicture(&form, skin);
    auto* menu = new ctlMainMenu(&form);
    menu->setGeometry(60, 12, 120, 20);
    menu->SetBackground(&form, menu);
    const QImage piece = menu->Background().toImage();
    ASSERT_EQ(piece.size(), QSize(120, 20));
    EXPECT_EQ(piece.pixelColor(0, 0), QColor(200, 100, 50));
    EXPECT_EQ(piece.pixelColor(5, 5), QColor(10, 20, 30));
    EXPECT_EQ(piece.pixelColor(5, 19), QColor(Qt::white));
}

namespace {

// Closes the window that holds the bar while the pop-up is open, then chooses `key`. The bar's
// memory is wiped after its destructor, so any use of it after the pop-up crashes at once.
struct DestroyingResponder : ScriptedResponder {
    DestroyingResponder(ctlMainMenu* bar, void* storage, std::size_t size)
        : bar(bar), storage(storage), size(size) {}
    QString popupChoice(QMenu*, const QPoint&) override {
        ++opened;
        bar->~ctlMainMenu();
        std::memset(storage, 0, size);
        return QStringLiteral("27");
    }
    ctlMainMenu* bar;
    void* storage;
    std::size_t size;
    int opened = 0;
};

} // namespace

TEST(MainMenu, ABarDeletedWhileItsMenuIsOpenRaisesNothing) {
    PlainText plain;
    alignas(ctlMainMenu) unsigned char storage[sizeof(ctlMainMenu)];
    auto* menu = new (storage) ctlMainMenu;
    QPointer<ctlMainMenu> watch(menu);
    int clicks = 0;
    QObject context;
    QObject::connect(menu, &ctlMainMenu::MenuClick, &context, [&clicks] { ++clicks; });
    DestroyingResponder responder(menu, storage, sizeof storage);
    menu->ClickMenu(2);
    EXPECT_EQ(responder.opened, 1);
    EXPECT_TRUE(watch.isNull());
    EXPECT_EQ(clicks, 0);
}
