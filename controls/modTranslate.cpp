#include "controls/modTranslate.h"

#include "config/clsXMLocalizer.h"
#include "config/modConfig.h"
#include "controls/GrButtonIII.h"

#include <QAbstractScrollArea>
#include <QAbstractSpinBox>
#include <QAction>
#include <QApplication>
#include <QCheckBox>
#include <QComboBox>
#include <QGroupBox>
#include <QLabel>
#include <QLineEdit>
#include <QMenu>
#include <QPointer>
#include <QPushButton>
#include <QRadioButton>
#include <QScrollArea>
#include <QScrollBar>
#include <QSet>
#include <QTabBar>
#include <QToolButton>
#include <QWidget>

namespace {

// The class name of an object without its namespace.
QString classNameOf(const QObject* object) {
    const QString name = QString::fromLatin1(object->metaObject()->className());
    return name.mid(name.lastIndexOf(QLatin1Char(':')) + 1);
}

bool isSkinnedButton(const QObject* object) {
    return qobject_cast<const GrButtonIII*>(object) != nullptr;
}

// Windows and custom controls inside a window translate themselves.
bool isWindowOrControlClass(const QObject* object) {
    const QString name = classNameOf(object);
    return name.startsWith(QLatin1String("frm")) || name.startsWith(QLatin1String("ctl"));
}

// Whether the walk over a window's controls stops at this widget: other windows and custom
// controls do their own translation, and the parts of the toolkit's compound widgets (the
// scroll buttons of a tab bar, the editor of a spin box) are not controls of the window.
bool walkStopsAt(const QWidget* widget) {
    if (isWindowOrControlClass(widget) || isSkinnedButton(widget))
        return true;
    if (widget->isWindow() && !qobject_cast<const QMenu*>(widget))
        return true;
    if (qobject_cast<const QTabBar*>(widget) || qobject_cast<const QComboBox*>(widget) ||
        qobject_cast<const QAbstractSpinBox*>(widget) || qobject_cast<const QLineEdit*>(widget) ||
        qobject_cast<const QScrollBar*>(widget))
        return true;
    if (qobject_cast<const QAbstractScrollArea*>(widget) &&
        !qobject_cast<const QScrollArea*>(widget))
        return true;
    return false;
}

bool isNamedControl(const QObject* object) {
    const QString name = object->objectName();
    return !name.isEmpty() && !name.startsWith(QLatin1String("qt_"));
}

void addControl(QObject* object, QList<QObject*>& out, QSet<QObject*>& seen) {
    if (seen.contains(object))
        return;
    seen.insert(object);
    out << object;
}

// A widget that another window lends to this one (the preview player docked into the main
// window) carries the name of its own window in the dynamic property "ownerForm"; it and its
// children are not controls of the window it sits in.
bool isLentByAnotherForm(const QWidget* widget, const QString& formName) {
    const QString owner = widget->property("ownerForm").toString();
    return !owner.isEmpty() && owner != formName;
}

// The controls of a window: its children and their children, the actions of its menus, and its
// own actions, each once, in creation order.
void collectControls(QObject* parent, const QString& formName, QList<QObject*>& out,
                     QSet<QObject*>& seen) {
    for (QObject* child : parent->children()) {
        if (seen.contains(child))
            continue;
        auto* widget = qobject_cast<QWidget*>(child);
        if (widget && isLentByAnotherForm(widget, formName))
            continue;
        addControl(child, out, seen);
        if (widget) {
            if (walkStopsAt(widget))
                continue;
            for (QAction* action : widget->actions())
                addControl(action, out, seen);
        }
        collectControls(child, formName, out, seen);
    }
}

// The name of a window or custom control in the language files: the window that lent it, its
// class name when that is one of the program's window or control classes, else its objectName.
QString formNameOf(const QWidget* form) {
    const QString owner = form->property("ownerForm").toString();
    if (!owner.isEmpty())
        return owner;
    return isWindowOrControlClass(form) ? classNameOf(form) : form->objectName();
}

QList<QObject*> controlsOf(QWidget* form) {
    QList<QObject*> out;
    QSet<QObject*> seen{form};
    for (QAction* action : form->actions())
        addControl(action, out, seen);
    collectControls(form, formNameOf(form), out, seen);
    return out;
}

// The control kinds that take a caption: the control type names of the language files.
enum class Kind { None, Menu, CommandButton, Frame, Label, CheckBox, OptionButton };

Kind kindOf(const QObject* object) {
    if (qobject_cast<const QMenu*>(object) || qobject_cast<const QAction*>(object))
        return Kind::Menu;
    // The skinned button takes its caption as a command button does.
    if (isSkinnedButton(object) || qobject_cast<const QPushButton*>(object) ||
        qobject_cast<const QToolButton*>(object))
        return Kind::CommandButton;
    if (qobject_cast<const QGroupBox*>(object))
        return Kind::Frame;
    if (const auto* label = qobject_cast<const QLabel*>(object)) {
        // A label that shows a picture is a picture box here, not a caption.
        if (!label->pixmap().isNull() || label->movie() || !label->picture().isNull())
            return Kind::None;
        return Kind::Label;
    }
    if (qobject_cast<const QCheckBox*>(object))
        return Kind::CheckBox;
    if (qobject_cast<const QRadioButton*>(object))
        return Kind::OptionButton;
    return Kind::None;
}

void setCaption(QObject* object, Kind kind, const QString& caption) {
    switch (kind) {
    case Kind::Menu:
        if (auto* menu = qobject_cast<QMenu*>(object))
            menu->setTitle(caption);
        else if (auto* action = qobject_cast<QAction*>(object))
            action->setText(caption);
        break;
    case Kind::CommandButton:
    case Kind::CheckBox:
    case Kind::OptionButton:
        static_cast<QAbstractButton*>(object)->setText(caption);
        break;
    case Kind::Frame:
        static_cast<QGroupBox*>(object)->setTitle(caption);
        break;
    case Kind::Label:
        static_cast<QLabel*>(object)->setText(caption);
        break;
    case Kind::None:
        break;
    }
}

void setToolTipOf(QObject* object, const QString& tip) {
    if (auto* widget = qobject_cast<QWidget*>(object))
        widget->setToolTip(tip);
    else if (auto* action = qobject_cast<QAction*>(object))
        action->setToolTip(tip);
}

template <typename Item> void fitFont(clsXMLocalizer& localizer, Item* item, int codePage) {
    QFont font = item->font();
    localizer.SetProperFont(font, codePage);
    item->setFont(font);
}

// Outside an English locale the form takes the system's font and its controls the font of the
// locale's code page.
void setFormFonts(clsXMLocalizer& localizer, QWidget* form) {
    const int locale = localizer.ThreadLocale();
    if (clsXMLocalizer::IsEnglishLocale(locale))
        return;
    const int codePage = localizer.GetCodePage(locale);
    QFont windowFont = form->font();
    windowFont.setFamily(QString());
    form->setFont(windowFont);
    for (QObject* control : controlsOf(form)) {
        if (auto* widget = qobject_cast<QWidget*>(control))
            fitFont(localizer, widget, codePage);
        else if (auto* action = qobject_cast<QAction*>(control))
            fitFont(localizer, action, codePage);
    }
}

void translateControl(const clsXMLocalizer& localizer, const QString& formName, QObject* control) {
    const Kind kind = kindOf(control);
    if (kind == Kind::None || !isNamedControl(control))
        return;
    const QVariant indexValue = control->property("index");
    const QString index = indexValue.isValid() ? QString::number(indexValue.toInt()) : QString();
    const QString stem = formName + QLatin1Char('_') + control->objectName() + QLatin1Char('_') +
                         index + QLatin1Char('_');
    setCaption(control, kind, localizer.GetFormText(stem + QStringLiteral("caption")));
    const QString tip = localizer.GetFormText(stem + QStringLiteral("text"));
    if (!tip.isEmpty())
        setToolTipOf(control, tip);
}

} // namespace

bool TranslateForm(clsXMLocalizer& localizer, QWidget* form) {
    if (!form)
        return false;
    setFormFonts(localizer, form);
    const QString formName = formNameOf(form);
    form->setWindowTitle(localizer.GetFormText(formName + QStringLiteral("_caption")));
    for (QObject* control : controlsOf(form))
        translateControl(localizer, formName, control);
    return true;
}

bool TranslateForm(QWidget* form) {
    clsXMLocalizer* localizer = gLocalizer();
    return localizer && TranslateForm(*localizer, form);
}

namespace {

bool hasOwnTranslation(const QWidget* window) {
    return window->metaObject()->indexOfMethod("TranslateForm()") >= 0;
}

// The pieces inside `window` that another window has lent it (the translation walk of `window`
// passes them over).
QList<QWidget*> lentPieces(QWidget* window) {
    QList<QWidget*> pieces;
    for (QWidget* child : window->findChildren<QWidget*>()) {
        const QString owner = child->property("ownerForm").toString();
        if (owner.isEmpty())
            continue;
        QWidget* parent = child->parentWidget();
        if (parent && parent->property("ownerForm").toString() == owner)
            continue; // the piece's own children go with it
        pieces << child;
    }
    return pieces;
}

// One open window in the language in use.
bool translateWindow(QWidget* window) {
    if (hasOwnTranslation(window))
        return QMetaObject::invokeMethod(window, "TranslateForm", Qt::DirectConnection);
    if (!classNameOf(window).startsWith(QLatin1String("frm")))
        return false;
    return TranslateForm(window);
}

} // namespace

int TranslateOpenWindows() {
    QList<QPointer<QWidget>> windows;
    for (QWidget* window : QApplication::topLevelWidgets())
        if (window->windowType() != Qt::Desktop && window->isVisible())
            windows << window;
    int translated = 0;
    for (const QPointer<QWidget>& window : windows) {
        if (!window || !translateWindow(window))
            continue;
        ++translated;
        if (window)
            for (QWidget* piece : lentPieces(window))
                TranslateForm(piece);
    }
    for (const QPointer<QWidget>& window : windows) {
        if (!window)
            continue;
        QEvent change(QEvent::LanguageChange);
        QCoreApplication::sendEvent(window, &change);
    }
    return translated;
}

void ChangeCharSetUsrCtrl(clsXMLocalizer& localizer, const QList<QWidget*>& controls) {
    const int locale = localizer.ThreadLocale();
    if (clsXMLocalizer::IsEnglishLocale(locale))
        return;
    const int codePage = localizer.GetCodePage(locale);
    for (QWidget* control : controls)
        if (control)
            fitFont(localizer, control, codePage);
}
