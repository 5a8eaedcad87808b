// The main() of every test executable: a QApplication on the offscreen platform, a fixed
// locale, an application folder of its own, and no window closing ending the run.
#include <QApplication>
#include <QLocale>
#include <QTemporaryDir>
#include <gtest/gtest.h>

int main(int argc, char** argv) {
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    qputenv("TESSALY_EXE_NAME", "tessaly");
    QTemporaryDir home;
    qputenv("TESSALY_HOME", home.path().toLocal8Bit());
    qputenv("XDG_DATA_HOME", (home.path() + QStringLiteral("/xdg")).toLocal8Bit());

    QApplication app(argc, argv);
    QApplication::setQuitOnLastWindowClosed(false);
    QLocale::setDefault(QLocale(QLocale::English, QLocale::UnitedStates));

    ::testing::InitGoogleTest(&argc, argv);
    return RUN_ALL_TESTS();
}
