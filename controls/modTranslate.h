#pragma once

#include <QList>

class QWidget;
class clsXMLocalizer;

// Sets the title, captions and tool tips of a window or custom control from the localiser's form
// table. The form's name is its class name when that is a window or control class ("frmMain",
// "ctlMainMenu"), else its objectName. Controls are its children by objectName; a control array's
// index is the dynamic property "index". Embedded windows and custom controls are left to their
// own translation, and so is a piece that another window lends (a widget with the dynamic
// property "ownerForm" naming that window; translating the piece itself uses that name).
// Outside an English locale the fonts of the form and its controls follow the locale's code
// page. False without a form.
bool TranslateForm(clsXMLocalizer& localizer, QWidget* form);
// The same with the shared localiser; false when there is none.
bool TranslateForm(QWidget* form);

// Translates every open window at once, after a change of the language in use. A window whose
// class has an invokable TranslateForm() (declared Q_INVOKABLE or as a slot) runs that, because
// its translation does more than the walk; any other window of the program's own classes
// ("frm...") gets the walk above. A hidden window is left alone: it translates itself when it
// next loads. A piece that another window lends to an open one (a widget with "ownerForm") is
// translated with the window it sits in. Last, every open window and all its children receive
// QEvent::LanguageChange, the hook for widgets that draw their own texts: they redraw them in
// changeEvent(). Returns the number of windows translated.
int TranslateOpenWindows();

// Fits the fonts of a custom control's own controls to the locale's code page, as TranslateForm
// does for a window's controls.
void ChangeCharSetUsrCtrl(clsXMLocalizer& localizer, const QList<QWidget*>& controls);
