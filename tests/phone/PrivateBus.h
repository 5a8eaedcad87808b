#pragma once

#include <QDBusConnection>
#include <QProcess>
#include <QString>
#include <QStringList>
#include <memory>
#include <vector>

// A D-Bus daemon of the test's own, serving as both the session and the system bus of this
// process and of every program it starts; it must be up before the first use of either bus.
// Also starts the helper processes a test needs on it and ends them with the test.
class PrivateBus {
public:
    // Starts the daemon once per process; false (with the reason in `error`) when it cannot.
    static bool ensure(QString* error = nullptr);
    static QString address();

    // Starts `program` with `arguments`, ended when the test fixture's list is cleared.
    static QProcess* start(const QString& program, const QStringList& arguments);
    // Ends every process started with start().
    static void stopProcesses();
    // Lets events run until `name` is owned on the session bus or 10 s have passed.
    static bool waitForName(const QString& name,
                            QDBusConnection bus = QDBusConnection::sessionBus());
    static bool waitForNameGone(const QString& name);
};
