// The main() of every test program, on the offscreen platform with a fixed locale and an
// application folder of its own: a QGuiApplication for the display-free libraries, or, built
// with TESSALY_TEST_WIDGETS for the window tests, a QApplication whose scripted pop-up menus
// read the menu's items.
#include "support/ScriptedResponder.h"

#include <QLocale>
#include <QTemporaryDir>
#include <gtest/gtest.h>

#ifdef TESSALY_TEST_WIDGETS
#include <QAction>
#include <QApplication>
#include <QMenu>
using Application = QApplication;

namespace {
void collectItems(const QMenu* menu, ScriptedResponder::Popup& popup) {
    for (QAction* action : menu->actions()) {
        if (action->menu()) {
            collectItems(action->menu(), popup);
        } else if (!action->isSeparator()) {
            const QString key = action->data().toString();
            popup.keys << key;
            popup.captions << action->text();
            if (!action->isEnabled())
                popup.disabled << key;
            if (action->isChecked())
                popup.checked << key;
        }
    }
}

ScriptedResponder::Popup readMenu(const QMenu* menu) {
    ScriptedResponder::Popup popup;
    collectItems(menu, popup);
    return popup;
}
} // namespace
#else
#include <QGuiApplication>
using Application = QGuiApplication;
#endif

int main(int argc, char** argv) {
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    qputenv("TESSALY_EXE_NAME", "tessaly");
    QTemporaryDir home;
    qputenv("TESSALY_HOME", home.path().toLocal8Bit());
    qputenv("XDG_DATA_HOME", (home.path() + QStringLiteral("/xdg")).toLocal8Bit());

    Application app(argc, argv);
    Application::setQuitOnLastWindowClosed(false);
#ifdef TESSALY_TEST_WIDGETS
    ScriptedResponder::setMenuReader(&readMenu);
#endif
    QLocale::setDefault(QLocale(QLocale::English, QLocale::UnitedStates));
    ::testing::InitGoogleTest(&argc, argv);
    return RUN_ALL_TESTS();
}
