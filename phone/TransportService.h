#pragma once

#include <QDBusContext>
#include <QObject>
#include <QSet>
#include <QString>

class QDBusServiceWatcher;
class QTimer;

// What a companion does with devices: it watches for them while asked to, and starts a
// transfer of one file. It reports devices and progress through its signals.
class TransportBackend : public QObject {
    Q_OBJECT
public:
    using QObject::QObject;
    // Starts (true) or stops watching for devices. Starting reports every present device.
    virtual void setWatching(bool on) = 0;
    // Starts sending `path` to the device; false when no transfer could begin.
    virtual bool beginSend(const QString& path) = 0;
    virtual void setCommandLine(const QString& commandTemplate) { Q_UNUSED(commandTemplate); }

signals:
    void deviceChanged(bool connected, int id, const QString& name);
    void progress(int state, int value);
};

// A backend with one device that it finds by looking again every `intervalMs` while watched.
// `probe()` gives the path the device is found at ("" when none); a change reports the device
// before it gone and the new one connected, named after the last part of its path.
class PolledTransportBackend : public TransportBackend {
    Q_OBJECT
public:
    PolledTransportBackend(int deviceId, int intervalMs, QObject* parent);
    void setWatching(bool on) override;

protected:
    virtual QString probe() const = 0;
    // Looks for the device now and reports a change.
    void check();
    bool watching() const;
    // Where the device is, "" when none.
    const QString& present() const { return mPresent; }

private:
    QString deviceName() const;

    int mDeviceId;
    QString mPresent;
    QTimer* mPoll;
};

// The object a companion serves on the session bus. It owns its name only after the object is
// registered, and quits when the last program that asked it to monitor has left the bus (or
// when nobody asks within the start-up grace, or the bus goes away).
class TransportService : public QObject, protected QDBusContext {
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.tessaly.Transport1")

public:
    static constexpr int kStartGraceMs = 30000;

    TransportService(const QString& companion, TransportBackend* backend,
                     QObject* parent = nullptr);
    // Registers the object, then the name (without queueing). False when either fails; the
    // reason is written to stderr.
    bool registerOnBus();

public slots:
    Q_SCRIPTABLE void Monitor(bool on);
    Q_SCRIPTABLE bool SendFile(const QString& path);
    Q_SCRIPTABLE void SetCommandLine(const QString& commandTemplate);

signals:
    Q_SCRIPTABLE void Connect(bool connected, int id, const QString& name);
    Q_SCRIPTABLE void Progress(int state, int value);

private:
    void callerLeft(const QString& caller);
    void quitWhenUnused();

    QString mCompanion;
    TransportBackend* mBackend;
    QSet<QString> mCallers;
    QDBusServiceWatcher* mCallerWatcher;
    QTimer* mGraceTimer;
    QTimer* mBusCheck;
};

// The main() of a companion: a core application, the backend `makeBackend` gives, the service.
int runTransportCompanion(int argc, char** argv, const QString& companion,
                          TransportBackend* (*makeBackend)(QObject* parent));
