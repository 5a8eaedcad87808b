#include "phone/TransportService.h"
#include "phone/TransportNames.h"

#include <QCoreApplication>
#include <QDBusConnection>
#include <QDBusConnectionInterface>
#include <QDBusServiceWatcher>
#include <QFileInfo>
#include <QTimer>
#include <cstdio>

PolledTransportBackend::PolledTransportBackend(int deviceId, int intervalMs, QObject* parent)
    : TransportBackend(parent), mDeviceId(deviceId), mPoll(new QTimer(this)) {
    mPoll->setInterval(intervalMs);
    connect(mPoll, &QTimer::timeout, this, &PolledTransportBackend::check);
}

void PolledTransportBackend::setWatching(bool on) {
    if (!on) {
        mPoll->stop();
        return;
    }
    mPoll->start();
    // Every new watcher hears of the device that is there.
    mPresent.clear();
    check();
}

bool PolledTransportBackend::watching() const {
    return mPoll->isActive();
}

void PolledTransportBackend::check() {
    const QString found = probe();
    if (found == mPresent)
        return;
    if (!mPresent.isEmpty())
        emit deviceChanged(false, mDeviceId, deviceName());
    mPresent = found;
    if (!mPresent.isEmpty())
        emit deviceChanged(true, mDeviceId, deviceName());
}

QString PolledTransportBackend::deviceName() const {
    const QString name = QFileInfo(mPresent).fileName();
    return name.isEmpty() ? mPresent : name;
}

TransportService::TransportService(const QString& companion, TransportBackend* backend,
                                   QObject* parent)
    : QObject(parent), mCompanion(companion), mBackend(backend) {
    connect(mBackend, &TransportBackend::deviceChanged, this, &TransportService::Connect);
    connect(mBackend, &TransportBackend::progress, this, &TransportService::Progress);

    mCallerWatcher = new QDBusServiceWatcher(this);
    mCallerWatcher->setConnection(QDBusConnection::sessionBus());
    mCallerWatcher->setWatchMode(QDBusServiceWatcher::WatchForUnregistration);
    connect(mCallerWatcher, &QDBusServiceWatcher::serviceUnregistered, this,
            &TransportService::callerLeft);

    // A companion that was started but never asked to monitor does not linger.
    mGraceTimer = new QTimer(this);
    mGraceTimer->setSingleShot(true);
    mGraceTimer->setInterval(kStartGraceMs);
    connect(mGraceTimer, &QTimer::timeout, this, &TransportService::quitWhenUnused);
    mGraceTimer->start();

    // Without its bus a companion can never be reached again.
    mBusCheck = new QTimer(this);
    mBusCheck->setInterval(1000);
    connect(mBusCheck, &QTimer::timeout, this, [] {
        if (!QDBusConnection::sessionBus().isConnected())
            QCoreApplication::exit(1);
    });
    mBusCheck->start();
}

bool TransportService::registerOnBus() {
    QDBusConnection bus = QDBusConnection::sessionBus();
    if (!bus.isConnected()) {
        std::fprintf(stderr, "%s: no session bus: %s\n", qPrintable(mCompanion),
                     qPrintable(bus.lastError().message()));
        return false;
    }
    if (!bus.registerObject(Transport::kPath, this,
                            QDBusConnection::ExportScriptableSlots |
                                QDBusConnection::ExportScriptableSignals)) {
        std::fprintf(stderr, "%s: cannot register the transport object\n", qPrintable(mCompanion));
        return false;
    }
    const auto reply = bus.interface()->registerService(
        Transport::busName(mCompanion), QDBusConnectionInterface::DontQueueService,
        QDBusConnectionInterface::DontAllowReplacement);
    if (!reply.isValid() || reply.value() != QDBusConnectionInterface::ServiceRegistered) {
        std::fprintf(stderr, "%s: the name %s is taken\n", qPrintable(mCompanion),
                     qPrintable(Transport::busName(mCompanion)));
        return false;
    }
    return true;
}

void TransportService::Monitor(bool on) {
    const QString caller = calledFromDBus() ? message().service() : QString();
    if (on) {
        if (!caller.isEmpty() && !mCallers.contains(caller)) {
            mCallers.insert(caller);
            mCallerWatcher->addWatchedService(caller);
        }
        mGraceTimer->stop();
        mBackend->setWatching(true);
        return;
    }
    callerLeft(caller);
}

bool TransportService::SendFile(const QString& path) {
    if (mBackend->beginSend(path))
        return true;
    // The program keeps its send open until a progress report ends it: a refused send reports
    // its failure too, once the call has returned.
    QMetaObject::invokeMethod(
        this, [this] { emit Progress(Transport::kProgressFailed, 0); }, Qt::QueuedConnection);
    return false;
}

void TransportService::SetCommandLine(const QString& commandTemplate) {
    mBackend->setCommandLine(commandTemplate);
}

void TransportService::callerLeft(const QString& caller) {
    mCallers.remove(caller);
    mCallerWatcher->removeWatchedService(caller);
    quitWhenUnused();
}

void TransportService::quitWhenUnused() {
    if (!mCallers.isEmpty())
        return;
    mBackend->setWatching(false);
    QCoreApplication::quit();
}

int runTransportCompanion(int argc, char** argv, const QString& companion,
                          TransportBackend* (*makeBackend)(QObject* parent)) {
    QCoreApplication app(argc, argv);
    TransportBackend* backend = makeBackend(&app);
    if (!backend)
        return 2;
    TransportService service(companion, backend);
    if (!service.registerOnBus())
        return 1;
    return app.exec();
}
