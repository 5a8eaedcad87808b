#include "phone/clsTransportServer.h"
#include "phone/TransportNames.h"

#include "platform/Failure.h"

#include <QCoreApplication>
#include <QDBusConnection>
#include <QDBusConnectionInterface>
#include <QDBusMessage>
#include <QDBusServiceWatcher>
#include <QDeadlineTimer>
#include <QDir>
#include <QFileInfo>
#include <QProcess>
#include <QTimer>

#ifndef TESSALY_LIBEXEC_DIR
#define TESSALY_LIBEXEC_DIR "libexec/tessaly"
#endif

namespace {

QStringList gCompanionFolders;
int gStartTimeoutMs = clsTransportServer::kStartTimeoutMs;
int gCallTimeoutMs = clsTransportServer::kCallTimeoutMs;

QDBusConnection bus() {
    return QDBusConnection::sessionBus();
}

bool nameOwned(const QString& name) {
    QDBusConnectionInterface* daemon = bus().interface();
    return daemon && daemon->isServiceRegistered(name).value();
}

QString findCompanion(const QString& companion) {
    for (const QString& folder : clsTransportServer::companionFolders()) {
        const QFileInfo program(QDir(folder).filePath(companion));
        if (program.isFile() && program.isExecutable())
            return program.absoluteFilePath();
    }
    return QString();
}

[[noreturn]] void fail(const QString& companion, const QString& why) {
    raiseFailure(FailureNumber::ObjectNotSet, companion, why);
}

// Lets events run until `name` is owned on the bus or `timeoutMs` has passed.
bool waitForName(const QString& name, int timeoutMs) {
    QDBusServiceWatcher watcher(name, bus(), QDBusServiceWatcher::WatchForRegistration);
    bool registered = false;
    QObject::connect(&watcher, &QDBusServiceWatcher::serviceRegistered,
                     [&registered] { registered = true; });
    QTimer wake; // also wakes the wait when the signal came before the watcher
    wake.start(100);
    const QDeadlineTimer deadline(timeoutMs);
    while (!registered && !deadline.hasExpired()) {
        if (nameOwned(name))
            return true;
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents, 100);
    }
    return registered || nameOwned(name);
}

} // namespace

QStringList clsTransportServer::companionFolders() {
    if (!gCompanionFolders.isEmpty())
        return gCompanionFolders;
    const QString exeFolder = QCoreApplication::applicationDirPath();
    const QString libexec = QDir::cleanPath(
        QFileInfo(QStringLiteral(TESSALY_LIBEXEC_DIR)).isAbsolute()
            ? QStringLiteral(TESSALY_LIBEXEC_DIR)
            : exeFolder + QStringLiteral("/../") + QStringLiteral(TESSALY_LIBEXEC_DIR));
    return {exeFolder, libexec};
}

void clsTransportServer::setCompanionFolders(const QStringList& folders) {
    gCompanionFolders = folders;
}

void clsTransportServer::setTimeouts(int startMs, int callMs) {
    gStartTimeoutMs = startMs > 0 ? startMs : kStartTimeoutMs;
    gCallTimeoutMs = callMs > 0 ? callMs : kCallTimeoutMs;
}

clsTransportServer::clsTransportServer(const QString& companion)
    : mCompanion(companion), mBusName(Transport::busName(companion)) {}

std::unique_ptr<clsTransportServer> clsTransportServer::create(const QString& companion,
                                                               const QStringList& arguments) {
    if (!bus().isConnected())
        fail(companion, QStringLiteral("No session bus: ") + bus().lastError().message());
    const QString name = Transport::busName(companion);
    if (!nameOwned(name)) {
        const QString program = findCompanion(companion);
        if (program.isEmpty())
            fail(companion, QStringLiteral("The companion is not installed"));
        if (!QProcess::startDetached(program, arguments))
            fail(companion, QStringLiteral("The companion could not be started: ") + program);
        if (!waitForName(name, gStartTimeoutMs))
            fail(companion, QStringLiteral("The companion did not answer in time"));
    }

    std::unique_ptr<clsTransportServer> server(new clsTransportServer(companion));
    QDBusConnection connection = bus();
    connection.connect(name, Transport::kPath, Transport::kInterface, QStringLiteral("Connect"),
                       server.get(), SLOT(onConnect(bool, int, QString)));
    connection.connect(name, Transport::kPath, Transport::kInterface, QStringLiteral("Progress"),
                       server.get(), SLOT(onProgress(int, int)));
    server->mWatcher = new QDBusServiceWatcher(
        name, connection, QDBusServiceWatcher::WatchForUnregistration, server.get());
    clsTransportServer* raw = server.get();
    connect(server->mWatcher, &QDBusServiceWatcher::serviceUnregistered, raw, [raw] {
        if (!raw->mAlive)
            return;
        raw->mAlive = false;
        emit raw->Vanished();
    });
    // The name may have gone between the start and the watch.
    if (!nameOwned(name))
        fail(companion, QStringLiteral("The companion left the bus"));
    return server;
}

clsTransportServer::~clsTransportServer() {
    if (!mAlive)
        return;
    QDBusMessage message = QDBusMessage::createMethodCall(
        mBusName, Transport::kPath, Transport::kInterface, QStringLiteral("Monitor"));
    message << false;
    bus().call(message, QDBus::NoBlock);
}

QVariantList clsTransportServer::call(const QString& method, const QVariantList& arguments) {
    QDBusMessage message =
        QDBusMessage::createMethodCall(mBusName, Transport::kPath, Transport::kInterface, method);
    message.setArguments(arguments);
    const QDBusMessage reply = bus().call(message, QDBus::Block, gCallTimeoutMs);
    if (reply.type() != QDBusMessage::ReplyMessage)
        raiseFailure(FailureNumber::InvalidProcedureCall, mCompanion + QLatin1Char('.') + method,
                     reply.errorMessage());
    return reply.arguments();
}

void clsTransportServer::Monitor(bool on) {
    call(QStringLiteral("Monitor"), {on});
}

bool clsTransportServer::SendFile(const QString& path) {
    const QVariantList result = call(QStringLiteral("SendFile"), {path});
    return !result.isEmpty() && result.first().toBool();
}

void clsTransportServer::SetCommandLine(const QString& commandTemplate) {
    call(QStringLiteral("SetCommandLine"), {commandTemplate});
}

void clsTransportServer::onConnect(bool connected, int id, const QString& name) {
    emit Connect(connected, id, name);
}

void clsTransportServer::onProgress(int state, int value) {
    emit Progress(state, value);
}
