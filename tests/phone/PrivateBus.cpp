#include "PrivateBus.h"

#include <QDBusConnectionInterface>
#include <QTest>

namespace {

std::unique_ptr<QProcess> gDaemon;
QString gAddress;
std::vector<std::unique_ptr<QProcess>> gProcesses;

bool owned(const QDBusConnection& bus, const QString& name) {
    return bus.interface() && bus.interface()->isServiceRegistered(name).value();
}

} // namespace

bool PrivateBus::ensure(QString* error) {
    if (gDaemon)
        return true;
    auto daemon = std::make_unique<QProcess>();
    daemon->start(QStringLiteral("dbus-daemon"),
                  {QStringLiteral("--session"), QStringLiteral("--nofork"),
                   QStringLiteral("--print-address=1")});
    if (!daemon->waitForStarted(5000) || !daemon->waitForReadyRead(5000)) {
        if (error)
            *error = QStringLiteral("dbus-daemon did not start: ") + daemon->errorString();
        return false;
    }
    gAddress = QString::fromUtf8(daemon->readLine()).trimmed();
    qputenv("DBUS_SESSION_BUS_ADDRESS", gAddress.toUtf8());
    qputenv("DBUS_SYSTEM_BUS_ADDRESS", gAddress.toUtf8());
    gDaemon = std::move(daemon);
    return true;
}

QString PrivateBus::address() {
    return gAddress;
}

QProcess* PrivateBus::start(const QString& program, const QStringList& arguments) {
    auto process = std::make_unique<QProcess>();
    process->setProcessChannelMode(QProcess::ForwardedChannels);
    process->start(program, arguments);
    process->waitForStarted(5000);
    gProcesses.push_back(std::move(process));
    return gProcesses.back().get();
}

void PrivateBus::stopProcesses() {
    for (auto& process : gProcesses) {
        process->kill();
        process->waitForFinished(5000);
    }
    gProcesses.clear();
}

bool PrivateBus::waitForName(const QString& name, QDBusConnection bus) {
    return QTest::qWaitFor([&] { return owned(bus, name); }, 10000);
}

bool PrivateBus::waitForNameGone(const QString& name) {
    return QTest::qWaitFor([&] { return !owned(QDBusConnection::sessionBus(), name); }, 10000);
}
