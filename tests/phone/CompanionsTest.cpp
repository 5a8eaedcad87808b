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

using namespace Qt::StringLiterals;

namespace {

using Status = clsMMSCommunication::Status;

// The folder transport: present while the folder of the preferences exists.
TEST_F(PhoneBusTest, FolderCompanionCopiesIntoTheFolderWhileItExists) {
    QTemporaryDir dir;
    const QString phone = dir.filePath(u"My Phone"_s);
    ASSERT_TRUE(QDir().mkpath(phone));
    SharedConfig config;
    auto properties = std::make_unique<clsPropertiesXML>();
    properties->Initialize(dir.filePath(u"tessaly.xml"_s), u"tessaly"_s);
    properties->SetProp(u"preferences"_s, u"PhoneFolder"_s, u"\\My Phone"_s); // beside the file
    properties->SaveXmlFile();
    config.setProperties(std::move(properties));
    const QString file = dir.filePath(u"mms.sis"_s);
    writeFile(file, QByteArray("\x19\x04\x00\x10 package", 13));

    clsMMSCommunication facade;
    QSignalSpy spy(&facade, &clsMMSCommunication::Connect);
    ASSERT_EQ(facade.Initialize(clsMMSCommunication::Q500), clsMMSCommunication::Q500);
    ASSERT_TRUE(waitForConnects(spy, 1));
    EXPECT_EQ(spy.at(0), (QVariantList{true, Transport::kLinkFolder, u"My Phone"_s}));

    // A file the companion refuses fails, and the next send is not left waiting as busy.
    EXPECT_EQ(facade.SendFile(dir.filePath(u"missing.sis"_s)), Status::Failed);
    ASSERT_TRUE(QTest::qWaitFor([&] { return !facade.sending(); }, 5000));
    EXPECT_EQ(facade.SendFile(file), Status::Sent);
    EXPECT_EQ(readAll(QDir(phone).filePath(u"mms.sis"_s)), readAll(file));
    EXPECT_EQ(QDir(phone).entryList(QDir::Files), QStringList{u"mms.sis"_s});

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
    const QString outbox = dir.filePath(u"out"_s);
    const QString work = dir.filePath(u"work"_s);
    ASSERT_TRUE(QDir().mkpath(outbox) && QDir().mkpath(work));
    const QString file = dir.filePath(u"a;touch x"_s);
    writeFile(file, "picture");
    const QString previous = QDir::currentPath();
    QDir::setCurrent(work); // where a shell would have made "x"

    clsMMSCommunication facade;
    QSignalSpy spy(&facade, &clsMMSCommunication::Connect);
    ASSERT_EQ(facade.Initialize(clsMMSCommunication::Ir), clsMMSCommunication::Ir);
    facade.SetIrDaCommandline(u"cp \"%f%\" \"%1\""_s.arg(outbox));
    ASSERT_TRUE(waitForConnects(spy, 1));
    EXPECT_EQ(spy.at(0), (QVariantList{true, Transport::kLinkCommand, u"cp"_s}));

    EXPECT_EQ(facade.SendFile(file), Status::Sent);
    EXPECT_EQ(readAll(QDir(outbox).filePath(u"a;touch x"_s)), QByteArray("picture"));
    EXPECT_FALSE(QFileInfo::exists(QDir(work).filePath(u"x"_s)));
    EXPECT_FALSE(QFileInfo::exists(QDir(outbox).filePath(u"x"_s)));

    // A command that ends with an error fails the send.
    facade.SetIrDaCommandline(u"false \"%f%\""_s);
    ASSERT_TRUE(waitForConnects(spy, 3));
    EXPECT_EQ(facade.deviceName(), u"false"_s);
    EXPECT_EQ(facade.SendFile(file), Status::Failed);

    // A program that is not installed: no device.
    facade.SetIrDaCommandline(u"tessaly-no-such-sender \"%f%\""_s);
    ASSERT_TRUE(waitForConnects(spy, 4));
    EXPECT_EQ(facade.SendFile(file), Status::NoDevice);
    QDir::setCurrent(previous);
}

// The Bluetooth transport against python-dbusmock's BlueZ and an obexd with Object Push.
TEST_F(PhoneBusTest, BluetoothCompanionPushesToThePairedPhone) {
    QTemporaryDir dir;
    const QString inbox = dir.filePath(u"inbox"_s);
    ASSERT_TRUE(QDir().mkpath(inbox));
    const QString python = u"/usr/bin/python3"_s;
    startHelper(python, {u"-m"_s, u"dbusmock"_s, u"--system"_s, u"--template"_s, u"bluez5"_s});
    startHelper(python, {u"-m"_s, u"dbusmock"_s, u"--template"_s, QStringLiteral(OBEX_OPP_TEMPLATE),
                         u"-p"_s, u"{\"inbox\": \"%1\"}"_s.arg(inbox)});
    QDBusConnection system = QDBusConnection::systemBus();
    ASSERT_TRUE(waitForName(u"org.bluez"_s, true, system));
    ASSERT_TRUE(waitForName(u"org.bluez.obex"_s));

    const QString address = u"11:22:33:44:55:66"_s;
    const auto mock = [&](const QString& method, const QVariantList& arguments) {
        return callOn(system, u"org.bluez"_s, u"/org/bluez"_s, u"org.bluez.Mock"_s, method,
                      arguments);
    };
    mock(u"AddAdapter"_s, {u"hci0"_s, u"Tessaly PC"_s});
    const QString device =
        mock(u"AddDevice"_s, {u"hci0"_s, address, u"My Phone"_s}).value(0).toString();
    // It offers Object Push, but is not paired yet.
    callOn(system, u"org.bluez"_s, device, u"org.freedesktop.DBus.Mock"_s, u"UpdateProperties"_s,
           {u"org.bluez.Device1"_s,
            QVariantMap{{u"UUIDs"_s, QStringList{u"00001105-0000-1000-8000-00805f9b34fb"_s}}}});

    clsMMSCommunication facade;
    QSignalSpy spy(&facade, &clsMMSCommunication::Connect);
    ASSERT_EQ(facade.Initialize(clsMMSCommunication::Obex), clsMMSCommunication::Obex);
    // Not paired: no phone yet. The companion reports what it found before it
    // answers Monitor, so those reports are among the events already here.
    QCoreApplication::processEvents();
    EXPECT_EQ(spy.count(), 0);
    mock(u"PairDevice"_s, {u"hci0"_s, address, 5898764});
    ASSERT_TRUE(waitForConnects(spy, 1));
    EXPECT_EQ(spy.at(0), (QVariantList{true, Transport::kLinkBluetooth, u"My Phone"_s}));

    const QString file = dir.filePath(u"mms.tpl"_s);
    writeFile(file, "template bytes");
    EXPECT_EQ(facade.SendFile(file), Status::Sent);
    EXPECT_EQ(readAll(QDir(inbox).filePath(u"mms.tpl"_s)), readAll(file));
    EXPECT_EQ(readAll(QDir(inbox).filePath(u"mms.tpl.to"_s)), address.toUtf8());

    const QString refused = dir.filePath(u"fail.tpl"_s);
    writeFile(refused, "x");
    EXPECT_EQ(facade.SendFile(refused), Status::Failed);

    callOn(system, u"org.bluez"_s, u"/org/bluez/hci0"_s, u"org.bluez.Adapter1"_s, u"RemoveDevice"_s,
           {QVariant::fromValue(QDBusObjectPath(device))});
    ASSERT_TRUE(waitForConnects(spy, 2));
    EXPECT_FALSE(facade.connected());
}

} // namespace
