#include "controls/clsPopupMenu.h"
#include "support/ScriptedResponder.h"

#include <QAction>
#include <QMenu>
#include <gtest/gtest.h>

namespace {

QStringList split(const char* items) {
    return items[0] ? QString::fromUtf8(items).split(QLatin1Char(' ')) : QStringList();
}

struct PopupCase {
    const char* menu;
    const char* answer; // "" dismisses the menu
    int chosen;
    const char* keys; // the lists as the menu shows them, joined by blanks
    const char* captions;
    const char* disabled;
    const char* checked;
};

} // namespace

TEST(PopupMenu, MenuStringsGiveTheirItemsAndTheChosenKey) {
    const PopupCase cases[] = {
        {"Open;2,Save;7,Quit;10", "7", 7, "2 7 10", "Open Save Quit", "", ""},
        {"Open;2", "", 0, "2", "Open", "", ""},
        // Items without a key count from one, around the keyed ones.
        {"Red,Green;20,Blue,Cyan", "3", 3, "1 20 2 3", "Red Green Blue Cyan", "", ""},
        // "!" anywhere disables, "#" anywhere checks, "!" wins over "#"; either mark costs the
        // caption its first character, even when the mark stands elsewhere.
        {"!Cut;4,#Bold;5,!#Both;6,Hello!;7,Size#2;8,#On;9", "5", 5, "4 5 6 7 8 9",
         "Cut Bold #Both ello! ize#2 On", "4 6 7", "5 8 9"},
        // A sub-menu's items follow its title; separators are no items.
        {"Add;11,Insert;0|Before;13|-|After;14, - ,Show;24", "14", 14, "11 13 14 24",
         "Add Before After Show", "", ""},
        // Marks and the counter work inside a sub-menu; a disabled item chooses nothing.
        {"First,Sub;0|!Gone|#Ticked|Plain", "2", 0, "1 2 3 4", "First Gone Ticked Plain", "2", "3"},
        // A key is the leading number of its text; no number reads as 0.
        {"A; 12abc,B;x", "12", 12, "12 0", "A B", "", ""},
    };
    for (const PopupCase& c : cases) {
        SCOPED_TRACE(c.menu);
        ScriptedResponder responder;
        clsPopupMenu popup;
        const QString menu = QString::fromUtf8(c.menu);
        for (const char* answer : {c.answer, c.answer})
            if (answer[0])
                responder.popupKeys.push_back(QString::fromUtf8(answer));
        EXPECT_EQ(popup.PopupStringXY(menu, 10, 20), c.chosen);
        // The counter starts again at every pop-up: the second one is the same.
        EXPECT_EQ(popup.PopupString(menu), c.chosen);
        ASSERT_EQ(responder.popups.size(), 2u);
        const ScriptedResponder::Popup& shown = responder.popups[0];
        EXPECT_EQ(shown.keys, split(c.keys));
        EXPECT_EQ(shown.captions, split(c.captions));
        EXPECT_EQ(shown.disabled, split(c.disabled));
        EXPECT_EQ(shown.checked, split(c.checked));
        EXPECT_EQ(responder.popups[1].keys, shown.keys);
    }
}

TEST(PopupMenu, SubMenusAndSeparatorsKeepTheirPlaces) {
    // Each action as "caption;key", "-" for a separator, "caption|" for a sub-menu.
    const auto shape = [](const QMenu* menu) {
        QStringList items;
        for (const QAction* a : menu->actions())
            items << (a->isSeparator() ? QStringLiteral("-")
                      : a->menu()      ? a->text() + u'|'
                                       : a->text() + u';' + a->data().toString());
        return items.join(u',');
    };
    clsPopupMenu popup;
    QMenu menu;
    popup.BuildMenu(menu, QStringLiteral("Add;11,Insert;0|Before;13|-|After;14, - ,Preview;24"));
    ASSERT_EQ(shape(&menu), QStringLiteral("Add;11,Insert|,-,Preview;24"));
    EXPECT_EQ(shape(menu.actions()[1]->menu()), QStringLiteral("Before;13,-,After;14"));
}
