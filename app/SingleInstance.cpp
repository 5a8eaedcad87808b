#include "app/SingleInstance.h"

#include "platform/AppPaths.h"

#include <QCryptographicHash>
#include <QLocalServer>
#include <QLocalSocket>
#include <unistd.h>

namespace {
const QByteArray kActivate = "activate\n";
}

SingleInstance::SingleInstance(QString key, QObject* parent)
    : QObject(parent), mKey(std::move(key)) {}

SingleInstance::~SingleInstance() = default;

QString SingleInstance::defaultKey() {
    const QByteArray folder =
        QCryptographicHash::hash(appFolder().toUtf8(), QCryptographicHash::Sha1).toHex().left(12);
    return QStringLiteral("tessaly-%1-%2").arg(::getuid()).arg(QString::fromLatin1(folder));
}

bool SingleInstance::activateRunningInstance(int timeoutMs) {
    QLocalSocket socket;
    socket.connectToServer(mKey);
    if (!socket.waitForConnected(timeoutMs))
        return false;
    socket.write(kActivate);
    socket.waitForBytesWritten(timeoutMs);
    socket.disconnectFromServer();
    return true;
}

bool SingleInstance::listen(std::function<void()> onActivate) {
    mOnActivate = std::move(onActivate);
    mServer = new QLocalServer(this);
    mServer->setSocketOptions(QLocalServer::UserAccessOption);
    if (!mServer->listen(mKey)) {
        // Another start may have begun listening a moment ago; only a socket that nobody
        // answers on (left behind by a crash) is taken over.
        QLocalSocket probe;
        probe.connectToServer(mKey);
        if (probe.waitForConnected(200))
            return false;
        QLocalServer::removeServer(mKey);
        if (!mServer->listen(mKey))
            return false;
    }
    connect(mServer, &QLocalServer::newConnection, this, [this] {
        while (QLocalSocket* socket = mServer->nextPendingConnection()) {
            auto read = [this, socket] {
                if (socket->readAll().contains(kActivate.trimmed()) && mOnActivate)
                    mOnActivate();
            };
            connect(socket, &QLocalSocket::readyRead, this, read);
            if (socket->bytesAvailable() > 0)
                read();
            connect(socket, &QLocalSocket::disconnected, socket, &QObject::deleteLater);
        }
    });
    return true;
}

bool SingleInstance::isListening() const {
    return mServer && mServer->isListening();
}
