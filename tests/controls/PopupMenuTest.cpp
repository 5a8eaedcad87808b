#include "controls/clsPopupMenu.h"
#include "support/ScriptedResponder.h"

#include <QAction>
#include <QMenu>
#include <gtest/gtest.h>

namespace {

QStringList list(std::initializer_list<const char*> items) {
    QStringList result;
    for (const char* item : items)
        result << QString::fromUtf8(item);
    return result;
}

} // namespace

TEST(PopupMenu, PlainItemsKeepTheirKeysAndCaptions) {
    ScriptedResponder responder;
    responder.popupKeys = {QStringLiteral("7")};
    clsPopupMenu popup;
    EXPECT_EQ(popup.PopupStringXY(QStringLiteral("Open;2,Save;7,Quit;10"), 10, 20), 7);
    ASSERT_EQ(responder.popups.size(), 1u);
    EXPECT_EQ(responder.popups[0].keys, list({"2", "7", "10"}));
    EXPECT_EQ(responder.popups[0].captions, list({"Open", "Save", "Quit"}));
    EXPECT_TRUE(responder.popups[0].disabled.isEmpty());
    EXPECT_TRUE(responder.popups[0].checked.isEmpty());
}

TEST(PopupMenu, DismissingGivesZero) {
    ScriptedResponder responder; // no answer queued: the menu is dismissed
    clsPopupMenu popup;
    EXPECT_EQ(popup.PopupString(QStringLiteral("Open;2")), 0);
    EXPECT_EQ(responder.popups.size(), 1u);
}

TEST(PopupMenu, ItemsWithoutKeysCountFromOneAtEveryPopup) {
    ScriptedResponder responder;
    responder.popupKeys = {QStringLiteral("3"), QStringLiteral("1")};
    clsPopupMenu popup;
    const QString menu = QStringLiteral("Red,Green;20,Blue,Cyan");
    EXPECT_EQ(popup.PopupString(menu), 3);
    // The counter starts again, so the same string gives the same keys.
    EXPECT_EQ(popup.PopupString(menu), 1);
    ASSERT_EQ(responder.popups.size(), 2u);
    EXPECT_EQ(responder.popups[0].keys, list({"1", "20", "2", "3"}));
    EXPECT_EQ(responder.popups[1].keys, responder.popups[0].keys);
}

TEST(PopupMenu, DisabledAndCheckedMarksLoseTheirFirstCharacter) {
    ScriptedResponder responder;
    responder.popupKeys = {QStringLiteral("5")};
    clsPopupMenu popup;
    // "!" anywhere disables, "#" anywhere checks; "!" wins over "#"; a "!" inside a caption
    // costs the caption its first letter.
    const QString menu = QStringLiteral("!Cut;4,#Bold;5,!#Both;6,Hello!;7,Size#2;8,#;9");
    EXPECT_EQ(popup.PopupString(menu), 5);
    const auto& shown = responder.popups.at(0);
    EXPECT_EQ(shown.captions, list({"Cut", "Bold", "#Both", "ello!", "ize#2", ""}));
    EXPECT_EQ(shown.disabled, list({"4", "6", "7"}));
    EXPECT_EQ(shown.checked, list({"5", "8", "9"}));
}

TEST(PopupMenu, ChoosingADisabledItemGivesZero) {
    ScriptedResponder responder;
    responder.popupKeys = {QStringLiteral("4")};
    clsPopupMenu popup;
    EXPECT_EQ(popup.PopupString(QStringLiteral("!Cut;4,Paste;5")), 0);
}

TEST(PopupMenu, SubMenusAndSeparators) {
    clsPopupMenu popup;
    QMenu menu;
    popup.BuildMenu(menu, QStringLiteral("Add;11,Insert;0|Before;13|-|After;14, - ,Preview;24"));
    const QList<QAction*> top = menu.actions();
    ASSERT_EQ(top.size(), 4);
    EXPECT_EQ(top[0]->text(), QStringLiteral("Add"));
    ASSERT_NE(top[1]->menu(), nullptr);
    EXPECT_EQ(top[1]->text(), QStringLiteral("Insert"));
    EXPECT_TRUE(top[2]->isSeparator());
    EXPECT_EQ(top[3]->data().toString(), QStringLiteral("24"));
    const QList<QAction*> sub = top[1]->menu()->actions();
    ASSERT_EQ(sub.size(), 3);
    EXPECT_EQ(sub[0]->data().toString(), QStringLiteral("13"));
    EXPECT_TRUE(sub[1]->isSeparator());
    EXPECT_EQ(sub[2]->text(), QStringLiteral("After"));

    ScriptedResponder responder;
    responder.popupKeys = {QStringLiteral("14")};
    EXPECT_EQ(popup.PopupString(QStringLiteral("Add;11,Insert;0|Before;13|-|After;14")), 14);
    EXPECT_EQ(responder.popups[0].keys, list({"11", "13", "14"}));
}

TEST(PopupMenu, SubMenuItemsTakeMarksAndCounterKeys) {
    ScriptedResponder responder;
    responder.popupKeys = {QStringLiteral("2")};
    clsPopupMenu popup;
    EXPECT_EQ(popup.PopupString(QStringLiteral("First,Sub;0|!Gone|#On|Plain")), 0);
    const auto& shown = responder.popups.at(0);
    EXPECT_EQ(shown.keys, list({"1", "2", "3", "4"}));
    EXPECT_EQ(shown.captions, list({"First", "Gone", "On", "Plain"}));
    EXPECT_EQ(shown.disabled, list({"2"}));
    EXPECT_EQ(shown.checked, list({"3"}));
}

TEST(PopupMenu, KeysAreReadAsNumbers) {
    ScriptedResponder responder;
    responder.popupKeys = {QStringLiteral("12")};
    clsPopupMenu popup;
    // " 12abc" reads as 12, a key that is no number as 0.
    EXPECT_EQ(popup.PopupString(QStringLiteral("A; 12abc,B;x")), 12);
    EXPECT_EQ(responder.popups[0].keys, list({"12", "0"}));
}
