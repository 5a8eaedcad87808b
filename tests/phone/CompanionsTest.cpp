// The three transport companions end to end, started by the facade on a private bus.
#include "PhoneTestSupport.h"
#include "config/clsPropertiesXML.h"
#include "config/modConfig.h"
#include "phone/TransportNames.h"

#include <QCoreApplication>
#include <QDBusObjectPath>
#include <QDir>
#include <QTemporaryDir>
#include <QTest>

namespace {

using Status = clsMMSCommunication::Status;

// The folder transport: present while the folder of the preferences exists.
TEST_F(PhoneBusTest, FolderCompanionCopiesIntoTheFolderWhileItExists) {
    QTemporaryDir dir;
    const QString phone = dir.filePath(QStringLiteral("My Phone"));
    ASSERT_TRUE(QDir().mkpath(phone));
    SharedConfig config;
    auto properties = std::make_unique<clsPropertiesXML>();
    properties->Initialize(dir.filePath(QStringLiteral("tessaly.xml")), QStringLiteral("tessaly"));
    properties->SetProp(QStringLiteral("preferences"), QStringLiteral("PhoneFolder"), phone);
    properties->SaveXmlFile();
    config.setProperties(std::move(properties));
    const QString file = dir.filePath(QStringLiteral("mms.sis"));
    writeFile(file, QByteArray("\x19\x04\x00\x10 package", 13));

    clsMMSCommunication facade;
    QSignalSpy spy(&facade, &clsMMSCommunication::Connect);
    ASSERT_EQ(facade.Initialize(clsMMSCommunication::Q500), clsMMSCommunication::Q500);
    ASSERT_TRUE(waitForConnects(spy, 1));
    EXPECT_EQ(spy.at(0), (QVariantList{true, Transport::kLinkFolder, QStringLiteral("My Phone")}));

    EXPECT_EQ(facade.SendFile(file), Status::Sent);
    EXPECT_EQ(readAll(QDir(phone).filePath(QStringLiteral("mms.sis"))), readAll(file));
    EXPECT_EQ(QDir(phone).entryList(QDir::Files), QStringList{QStringLiteral("mms.sis")});

    // Unmounted: the phone goes.
    ASSERT_TRUE(QDir(phone).removeRecursively());
    ASSERT_TRUE(waitForConnects(spy, 2));
    EXPECT_FALSE(facade.connected());
    EXPECT_EQ(facade.SendFile(file), Status::NoDevice);
}

// The send-command transport: one device while the command's program is on the path; the
// file's name is one argument, whatever it holds.
TEST_F(PhoneBusTest, CommandCompanionRunsTheCommandWithoutAShell) {
    QTemporaryDir dir;
    const QString outbox = dir.filePath(QStringLiteral("out"));
    const QString work = dir.filePath(QStringLiteral("work"));
    ASSERT_TRUE(QDir().mkpath(outbox) && QDir().mkpath(work));
    const QString file = dir.filePath(QStringLiteral("a;touch x"));
    writeFile(file, "picture");
    const QString previous = QDir::currentPath();
    QDir::setCurrent(work); // where a shell would have made "x"

    clsMMSCommunication facade;
    QSignalSpy spy(&facade, &clsMMSCommunication::Connect);
    ASSERT_EQ(facade.Initialize(clsMMSCommunication::Ir), clsMMSCommunication::Ir);
    facade.SetIrDaCommandline(QStringLiteral("cp \"%f%\" \"%1\"").arg(outbox));
    ASSERT_TRUE(waitForConnects(spy, 1));
    EXPECT_EQ(spy.at(0), (QVariantList{true, Transport::kLinkCommand, QStringLiteral("cp")}));

    EXPECT_EQ(facade.SendFile(file), Status::Sent);
    EXPECT_EQ(readAll(QDir(outbox).filePath(QStringLiteral("a;touch x"))), QByteArray("picture"));
    EXPECT_FALSE(QFileInfo::exists(QDir(work).filePath(QStringLiteral("x"))));
    EXPECT_FALSE(QFileInfo::exists(QDir(outbox).filePath(QStringLiteral("x"))));

    // A command that ends with an error fails the send.
    facade.SetIrDaCommandline(QStringLiteral("false \"%f%\""));
    ASSERT_TRUE(waitForConnects(spy, 3));
    EXPECT_EQ(facade.deviceName(), QStringLiteral("false"));
    EXPECT_EQ(facade.SendFile(file), Status::Failed);

    // A program that is not installed: no device.
    facade.SetIrDaCommandline(QStringLiteral("tessaly-no-such-sender \"%f%\""));
    ASSERT_TRUE(waitForConnects(spy, 4));
    EXPECT_EQ(facade.SendFile(file), Status::NoDevice);
    QDir::setCurrent(previous);
}

// The Bluetooth transport against python-dbusmock's BlueZ and an obexd with Object Push.
TEST_F(PhoneBusTest, BluetoothCompanionPushesToThePairedPhone) {
    QTemporaryDir dir;
    const QString inbox = dir.filePath(QStringLiteral("inbox"));
    ASSERT_TRUE(QDir().mkpath(inbox));
    const QString python = QStringLiteral("/usr/bin/python3");
    startHelper(python,
                {QStringLiteral("-m"), QStringLiteral("dbusmock"), QStringLiteral("--system"),
                 QStringLiteral("--template"), QStringLiteral("bluez5")});
    startHelper(python, {QStringLiteral("-m"), QStringLiteral("dbusmock"),
                         QStringLiteral("--template"), QStringLiteral(OBEX_OPP_TEMPLATE),
                         QStringLiteral("-p"), QStringLiteral("{\"inbox\": \"%1\"}").arg(inbox)});
    QDBusConnection system = QDBusConnection::systemBus();
    ASSERT_TRUE(waitForName(QStringLiteral("org.bluez"), true, system));
    ASSERT_TRUE(waitForName(QStringLiteral("org.bluez.obex")));

    const QString address = QStringLiteral("11:22:33:44:55:66");
    const auto mock = [&](const QString& method, const QVariantList& arguments) {
        return callOn(system, QStringLiteral("org.bluez"), QStringLiteral("/org/bluez"),
                      QStringLiteral("org.bluez.Mock"), method, arguments);
    };
    mock(QStringLiteral("AddAdapter"), {QStringLiteral("hci0"), QStringLiteral("Tessaly PC")});
    const QString device = mock(QStringLiteral("AddDevice"),
                                {QStringLiteral("hci0"), address, QStringLiteral("My Phone")})
                               .value(0)
                               .toString();
    // It offers Object Push, but is not paired yet.
    callOn(system, QStringLiteral("org.bluez"), device, QStringLiteral("org.freedesktop.DBus.Mock"),
           QStringLiteral("UpdateProperties"),
           {QStringLiteral("org.bluez.Device1"),
            QVariantMap{{QStringLiteral("UUIDs"),
                         QStringList{QStringLiteral("00001105-0000-1000-8000-00805f9b34fb")}}}});

    clsMMSCommunication facade;
    QSignalSpy spy(&facade, &clsMMSCommunication::Connect);
    ASSERT_EQ(facade.Initialize(clsMMSCommunication::Obex), clsMMSCommunication::Obex);
    // Not paired: no phone yet. The companion reports what it found before it
    // answers Monitor, so those reports are among the events already here.
    QCoreApplication::processEvents();
    EXPECT_EQ(spy.count(), 0);
    mock(QStringLiteral("PairDevice"), {QStringLiteral("hci0"), address, 5898764});
    ASSERT_TRUE(waitForConnects(spy, 1));
    EXPECT_EQ(spy.at(0),
              (QVariantList{true, Transport::kLinkBluetooth, QStringLiteral("My Phone")}));

    const QString file = dir.filePath(QStringLiteral("mms.tpl"));
    writeFile(file, "template bytes");
    EXPECT_EQ(facade.SendFile(file), Status::Sent);
    EXPECT_EQ(readAll(QDir(inbox).filePath(QStringLiteral("mms.tpl"))), readAll(file));
    EXPECT_EQ(readAll(QDir(inbox).filePath(QStringLiteral("mms.tpl.to"))), address.toUtf8());

    const QString refused = dir.filePath(QStringLiteral("fail.tpl"));
    writeFile(refused, "x");
    EXPECT_EQ(facade.SendFile(refused), Status::Failed);

    callOn(system, QStringLiteral("org.bluez"), QStringLiteral("/org/bluez/hci0"),
           QStringLiteral("org.bluez.Adapter1"), QStringLiteral("RemoveDevice"),
           {QVariant::fromValue(QDBusObjectPath(device))});
    ASSERT_TRUE(waitForConnects(spy, 2));
    EXPECT_FALSE(facade.connected());
}

} // namespace
