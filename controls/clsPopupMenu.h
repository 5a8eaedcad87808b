#pragma once

#include <QString>
#include <cstdint>

class QMenu;

// Turns a menu string into a pop-up menu and gives back the key of the chosen item.
//
// The string is a list of items joined by ",". An item is "caption;key"; an item without ";"
// takes the next number of a counter that starts again at every pop-up. An item that is "-"
// after trimming is a separator. An item holding "!" anywhere is disabled, else one holding "#"
// anywhere is checked; either way the caption loses its first character, where the mark stands.
// An item holding "|" is a sub-menu: its first piece "caption;0" is the title, the other pieces
// are its items in the same format.
class clsPopupMenu {
public:
    // The key chosen, 0 when the menu is dismissed. Opens at the mouse position.
    std::int32_t PopupString(const QString& menu);
    // The same, opened at the screen point (x, y).
    std::int32_t PopupStringXY(const QString& menu, std::int32_t x, std::int32_t y);

    // Fills `target` with the items of `menu` (the keys go into each action's data as text).
    // Resets the counter first, as every pop-up does.
    void BuildMenu(QMenu& target, const QString& menu);

private:
    void addItem(QMenu& target, const QString& item);

    std::int32_t mCounter = 0;
};
