#include "PhoneTestSupport.h"
#include "phone/TransportNames.h"
#include "phone/clsTransportServer.h"

#include <QDBusConnectionInterface>
#include <QDBusMessage>
#include <QFile>
#include <QProcess>
#include <QTest>
#include <memory>
#include <vector>

using namespace Qt::StringLiterals;

namespace {
std::unique_ptr<QProcess> gDaemon; // one per test process, ended when it ends
std::vector<std::unique_ptr<QProcess>> gHelpers;
} // namespace

void PhoneBusTest::SetUp() {
    // A machine busy with other builds may take seconds to start a companion.
    clsTransportServer::setTimeouts(30000, 30000);
    if (gDaemon)
        return;
    auto daemon = std::make_unique<QProcess>();
    daemon->start(u"dbus-daemon"_s, {u"--session"_s, u"--nofork"_s, u"--print-address=1"_s});
    ASSERT_TRUE(daemon->waitForStarted(30000) && daemon->waitForReadyRead(30000))
        << "dbus-daemon: " << daemon->errorString().toStdString();
    const QByteArray address = daemon->readLine().trimmed();
    qputenv("DBUS_SESSION_BUS_ADDRESS", address);
    qputenv("DBUS_SYSTEM_BUS_ADDRESS", address);
    gDaemon = std::move(daemon);
}

void PhoneBusTest::TearDown() {
    for (auto& helper : gHelpers) {
        helper->kill();
        helper->waitForFinished(5000);
    }
    gHelpers.clear();
}

void PhoneBusTest::startHelper(const QString& program, const QStringList& arguments) {
    auto helper = std::make_unique<QProcess>();
    helper->setProcessChannelMode(QProcess::ForwardedChannels);
    helper->start(program, arguments);
    EXPECT_TRUE(helper->waitForStarted(30000)) << program.toStdString();
    gHelpers.push_back(std::move(helper));
}

bool PhoneBusTest::waitForName(const QString& name, bool owned, QDBusConnection bus) {
    return QTest::qWaitFor(
        [&] { return bus.interface()->isServiceRegistered(name).value() == owned; }, 30000);
}

bool PhoneBusTest::waitForConnects(QSignalSpy& spy, int count) {
    return QTest::qWaitFor([&] { return spy.count() >= count; }, 30000);
}

QByteArray PhoneBusTest::readAll(const QString& path) {
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray("<missing>");
}

void PhoneBusTest::writeFile(const QString& path, const QByteArray& bytes) {
    QFile file(path);
    ASSERT_TRUE(file.open(QIODevice::WriteOnly) && file.write(bytes) == bytes.size());
}

void PhoneBusTest::startFake(clsMMSCommunication& facade, const QString& phone) {
    const QString name = u"ObexCommunication"_s;
    startHelper(QStringLiteral(TESSALY_BIN_DIR "/phone_fake_transport"), {name});
    ASSERT_TRUE(waitForName(Transport::busName(name)));
    ASSERT_EQ(facade.Initialize(clsMMSCommunication::Obex), clsMMSCommunication::Obex);
    if (phone.isEmpty())
        return;
    QSignalSpy spy(&facade, &clsMMSCommunication::Connect);
    fake(u"AddDevice"_s, {Transport::kLinkBluetooth, phone});
    ASSERT_TRUE(waitForConnects(spy, 1));
}

QVariantList PhoneBusTest::fake(const QString& method, const QVariantList& arguments) {
    return callOn(QDBusConnection::sessionBus(), Transport::busName(u"ObexCommunication"_s),
                  u"/control"_s, u"org.tessaly.TestTransport1"_s, method, arguments);
}

QVariantList callOn(QDBusConnection bus, const QString& service, const QString& path,
                    const QString& interface, const QString& method,
                    const QVariantList& arguments) {
    QDBusMessage message = QDBusMessage::createMethodCall(service, path, interface, method);
    message.setArguments(arguments);
    const QDBusMessage reply = bus.call(message, QDBus::Block, 30000);
    EXPECT_EQ(reply.type(), QDBusMessage::ReplyMessage)
        << method.toStdString() << ": " << reply.errorMessage().toStdString();
    return reply.arguments();
}
