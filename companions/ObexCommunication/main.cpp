// The Bluetooth transport: a phone is present while BlueZ knows it as paired and offering
// Object Push (UUID 0x1105); it is named by its alias. A file is pushed through the OBEX daemon
// (org.bluez.obex on the session bus): a session with the target "opp", ObjectPush1.SendFile,
// and the transfer's Status (active, complete, error) reported as progress 1, 2 or 4.
#include "phone/TransportNames.h"
#include "phone/TransportService.h"

#include <QDBusArgument>
#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusMetaType>
#include <QDBusObjectPath>
#include <QDBusPendingCallWatcher>
#include <QDBusPendingReply>
#include <QDBusServiceWatcher>
#include <QFileInfo>
#include <QList>
#include <QMap>

using InterfaceMap = QMap<QString, QVariantMap>;
using ObjectMap = QMap<QDBusObjectPath, InterfaceMap>;
Q_DECLARE_METATYPE(InterfaceMap)
Q_DECLARE_METATYPE(ObjectMap)

namespace {

const QString kBluez = QStringLiteral("org.bluez");
const QString kObex = QStringLiteral("org.bluez.obex");
const QString kDevice = QStringLiteral("org.bluez.Device1");
const QString kTransfer = QStringLiteral("org.bluez.obex.Transfer1");
const QString kProperties = QStringLiteral("org.freedesktop.DBus.Properties");
const QString kObjectManager = QStringLiteral("org.freedesktop.DBus.ObjectManager");
const QString kObjectPush = QStringLiteral("00001105-0000-1000-8000-00805f9b34fb");

struct Device {
    QString address;
    QString alias;
    bool paired = false;
    QStringList uuids;
    bool present() const {
        return paired && !address.isEmpty() && uuids.contains(kObjectPush, Qt::CaseInsensitive);
    }
};

class ObexBackend : public TransportBackend {
    Q_OBJECT
public:
    explicit ObexBackend(QObject* parent) : TransportBackend(parent) {
        qDBusRegisterMetaType<InterfaceMap>();
        qDBusRegisterMetaType<ObjectMap>();
        QDBusConnection system = QDBusConnection::systemBus();
        system.connect(kBluez, QStringLiteral("/"), kObjectManager,
                       QStringLiteral("InterfacesAdded"), this,
                       SLOT(interfacesAdded(QDBusMessage)));
        system.connect(kBluez, QStringLiteral("/"), kObjectManager,
                       QStringLiteral("InterfacesRemoved"), this,
                       SLOT(interfacesRemoved(QDBusMessage)));
        system.connect(kBluez, QString(), kProperties, QStringLiteral("PropertiesChanged"), this,
                       SLOT(devicePropertiesChanged(QDBusMessage)));
        // BlueZ starting after the companion, or again, is read afresh.
        auto* bluez =
            new QDBusServiceWatcher(kBluez, system, QDBusServiceWatcher::WatchForOwnerChange, this);
        connect(bluez, &QDBusServiceWatcher::serviceOwnerChanged, this, [this] {
            if (mWatching)
                readDevices();
        });
        QDBusConnection::sessionBus().connect(kObex, QString(), kProperties,
                                              QStringLiteral("PropertiesChanged"), this,
                                              SLOT(transferPropertiesChanged(QDBusMessage)));
        auto* obex = new QDBusServiceWatcher(kObex, QDBusConnection::sessionBus(),
                                             QDBusServiceWatcher::WatchForUnregistration, this);
        connect(obex, &QDBusServiceWatcher::serviceUnregistered, this, [this] { finish(false); });
    }

    void setWatching(bool on) override {
        mWatching = on;
        if (on)
            readDevices();
    }

    bool beginSend(const QString& path) override {
        const QString device = chosenDevice();
        if (device.isEmpty() || mSending || !QFileInfo(path).isFile())
            return false;
        mSending = true;
        mFile = QFileInfo(path).absoluteFilePath();
        QDBusMessage create = QDBusMessage::createMethodCall(
            kObex, QStringLiteral("/org/bluez/obex"), QStringLiteral("org.bluez.obex.Client1"),
            QStringLiteral("CreateSession"));
        create << mDevices.value(device).address
               << QVariantMap{{QStringLiteral("Target"), QStringLiteral("opp")}};
        // A phone may take its time to answer the connection.
        auto* watcher = new QDBusPendingCallWatcher(
            QDBusConnection::sessionBus().asyncCall(create, 60000), this);
        connect(watcher, &QDBusPendingCallWatcher::finished, this, &ObexBackend::sessionCreated);
        return true;
    }

private slots:
    void interfacesAdded(const QDBusMessage& message) {
        const QList<QVariant> args = message.arguments();
        if (args.size() < 2)
            return;
        const QString path = args.at(0).value<QDBusObjectPath>().path();
        const InterfaceMap interfaces = qdbus_cast<InterfaceMap>(args.at(1));
        if (interfaces.contains(kDevice))
            updateDevice(path, interfaces.value(kDevice));
    }

    void interfacesRemoved(const QDBusMessage& message) {
        const QList<QVariant> args = message.arguments();
        if (args.size() < 2 || !qdbus_cast<QStringList>(args.at(1)).contains(kDevice))
            return;
        const QString path = args.at(0).value<QDBusObjectPath>().path();
        const Device gone = mDevices.take(path);
        mOrder.removeAll(path);
        if (mWatching && gone.present())
            emit deviceChanged(false, Transport::kLinkBluetooth, gone.alias);
    }

    void devicePropertiesChanged(const QDBusMessage& message) {
        const QList<QVariant> args = message.arguments();
        if (args.size() < 2 || args.at(0).toString() != kDevice)
            return;
        updateDevice(message.path(), qdbus_cast<QVariantMap>(args.at(1)));
    }

    void transferPropertiesChanged(const QDBusMessage& message) {
        const QList<QVariant> args = message.arguments();
        if (!mSending || message.path() != mTransfer || args.size() < 2 ||
            args.at(0).toString() != kTransfer)
            return;
        const QVariantMap changed = qdbus_cast<QVariantMap>(args.at(1));
        if (changed.contains(QStringLiteral("Status")))
            transferStatus(changed.value(QStringLiteral("Status")).toString());
    }

private:
    void readDevices() {
        QDBusMessage call = QDBusMessage::createMethodCall(
            kBluez, QStringLiteral("/"), kObjectManager, QStringLiteral("GetManagedObjects"));
        // Answered within the program's own limit for Monitor, also when BlueZ hangs.
        const QDBusMessage reply = QDBusConnection::systemBus().call(call, QDBus::Block, 4000);
        ObjectMap objects;
        if (reply.type() == QDBusMessage::ReplyMessage && !reply.arguments().isEmpty())
            objects = qdbus_cast<ObjectMap>(reply.arguments().first());
        // Every watcher hears of each present phone; phones BlueZ no longer has are gone.
        const QMap<QString, Device> before = mDevices;
        mDevices.clear();
        mOrder.clear();
        for (auto it = before.begin(); it != before.end(); ++it)
            if (it->present() && !objects.contains(QDBusObjectPath(it.key())))
                emit deviceChanged(false, Transport::kLinkBluetooth, it->alias);
        for (auto it = objects.begin(); it != objects.end(); ++it)
            if (it->contains(kDevice))
                updateDevice(it.key().path(), it->value(kDevice));
    }

    void updateDevice(const QString& path, const QVariantMap& properties) {
        Device& device = mDevices[path];
        if (!mOrder.contains(path))
            mOrder << path;
        const bool was = device.present();
        const QString oldAlias = device.alias;
        if (properties.contains(QStringLiteral("Address")))
            device.address = properties.value(QStringLiteral("Address")).toString();
        if (properties.contains(QStringLiteral("Alias")))
            device.alias = properties.value(QStringLiteral("Alias")).toString();
        if (properties.contains(QStringLiteral("Paired")))
            device.paired = properties.value(QStringLiteral("Paired")).toBool();
        if (properties.contains(QStringLiteral("UUIDs")))
            device.uuids = qdbus_cast<QStringList>(properties.value(QStringLiteral("UUIDs")));
        if (!mWatching)
            return;
        const bool now = device.present();
        if (was && (!now || oldAlias != device.alias))
            emit deviceChanged(false, Transport::kLinkBluetooth, oldAlias);
        if (now && (!was || oldAlias != device.alias))
            emit deviceChanged(true, Transport::kLinkBluetooth, device.alias);
    }

    // The first present phone, in the order BlueZ made them known.
    QString chosenDevice() const {
        for (const QString& path : mOrder)
            if (mDevices.value(path).present())
                return path;
        return QString();
    }

    void sessionCreated(QDBusPendingCallWatcher* watcher) {
        watcher->deleteLater();
        const QDBusPendingReply<QDBusObjectPath> reply = *watcher;
        if (!mSending)
            return;
        if (reply.isError()) {
            finish(false);
            return;
        }
        mSession = reply.value().path();
        QDBusMessage push = QDBusMessage::createMethodCall(
            kObex, mSession, QStringLiteral("org.bluez.obex.ObjectPush1"),
            QStringLiteral("SendFile"));
        push << mFile;
        auto* next =
            new QDBusPendingCallWatcher(QDBusConnection::sessionBus().asyncCall(push), this);
        connect(next, &QDBusPendingCallWatcher::finished, this, &ObexBackend::transferStarted);
    }

    void transferStarted(QDBusPendingCallWatcher* watcher) {
        watcher->deleteLater();
        const QDBusPendingReply<QDBusObjectPath, QVariantMap> reply = *watcher;
        if (!mSending)
            return;
        if (reply.isError()) {
            finish(false);
            return;
        }
        mTransfer = reply.argumentAt<0>().path();
        transferStatus(reply.argumentAt<1>().value(QStringLiteral("Status")).toString());
    }

    void transferStatus(const QString& status) {
        if (status == QLatin1String("active"))
            emit progress(Transport::kProgressActive, 0);
        else if (status == QLatin1String("complete"))
            finish(true);
        else if (status == QLatin1String("error"))
            finish(false);
    }

    void finish(bool ok) {
        if (!mSending)
            return;
        mSending = false;
        if (!mSession.isEmpty()) {
            QDBusMessage remove = QDBusMessage::createMethodCall(
                kObex, QStringLiteral("/org/bluez/obex"), QStringLiteral("org.bluez.obex.Client1"),
                QStringLiteral("RemoveSession"));
            remove << QVariant::fromValue(QDBusObjectPath(mSession));
            QDBusConnection::sessionBus().call(remove, QDBus::NoBlock);
        }
        mSession.clear();
        mTransfer.clear();
        emit progress(ok ? Transport::kProgressDone : Transport::kProgressFailed, ok ? 100 : 0);
    }

    QMap<QString, Device> mDevices; // by BlueZ object path
    QStringList mOrder;
    bool mWatching = false;
    bool mSending = false;
    QString mFile;
    QString mSession;
    QString mTransfer;
};

TransportBackend* makeBackend(QObject* parent) {
    return new ObexBackend(parent);
}

} // namespace

int main(int argc, char** argv) {
    return runTransportCompanion(argc, argv, QStringLiteral("ObexCommunication"), &makeBackend);
}

#include "main.moc"
