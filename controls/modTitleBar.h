#pragma once

#include <QRect>
#include <QString>

class QWidget;

// Takes the system title bar off a window (show false) or gives it back (show true). Taking it
// off keeps the window's caption in its "tag" property and makes the window frameless (the task
// bar still shows the caption); giving it
// back restores the caption from there. The client area keeps its size and place either way.
// Returns the window's outer rectangle before the change.
QRect ShowTitleBar(QWidget* form, bool show);

// Starts the system's move of `window` (its top-level window) when `button` is 1, the left
// button, as a press on a title bar would. Returns whether the window system took the move.
bool DragWindow(QWidget* window, int button);

// The program's version as "major.minor.revision", its product name and its legal text.
QString AppVersionText();
QString AppProductName();
QString AppLegalText();
