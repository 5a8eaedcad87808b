#include "phone/clsMMSCommunication.h"
#include "phone/TransportNames.h"
#include "phone/clsTransportServer.h"

#include "config/clsPropertiesXML.h"
#include "config/modConfig.h"
#include "platform/Failure.h"

#include <QCoreApplication>
#include <QPointer>
#include <QTimer>

clsMMSCommunication::clsMMSCommunication(QObject* parent) : QObject(parent) {}

clsMMSCommunication::~clsMMSCommunication() = default;

QString clsMMSCommunication::companionName(std::int32_t type) {
    switch (type) {
    case Ir:
        return QStringLiteral("IrCommunication");
    case Obex:
        return QStringLiteral("ObexCommunication");
    case Q500:
        return QStringLiteral("Q500Communication");
    default:
        return QString();
    }
}

QStringList clsMMSCommunication::companionArguments() {
    clsPropertiesXML* properties = gProperties();
    if (!properties || properties->XmlFileName().isEmpty())
        return {};
    return {QStringLiteral("--preferences"), properties->XmlFileName(),
            QStringLiteral("--application"), properties->ApplicationName()};
}

std::unique_ptr<clsTransportServer>& clsMMSCommunication::reference(std::int32_t type) {
    return type == Ir ? mIrMon : type == Obex ? mObexMon : mQ500Mon;
}

clsTransportServer* clsMMSCommunication::server() const {
    switch (mCommunicationType) {
    case Ir:
        return mIrMon.get();
    case Obex:
        return mObexMon.get();
    case Q500:
        return mQ500Mon.get();
    default:
        return nullptr;
    }
}

std::int32_t clsMMSCommunication::Initialize(std::int32_t type) {
    mCommunicationType = None;
    const QString companion = companionName(type);
    for (std::int32_t other : {Ir, Obex, Q500})
        if (other != type)
            reference(other).reset();
    if (companion.isEmpty())
        return None;

    std::unique_ptr<clsTransportServer>& wanted = reference(type);
    try {
        // A companion that is still there is asked to monitor again; one that left is replaced.
        if (!wanted || !wanted->isAlive()) {
            wanted.reset();
            auto created = clsTransportServer::create(companion, companionArguments());
            connect(created.get(), &clsTransportServer::Connect, this,
                    &clsMMSCommunication::server_Connect);
            connect(created.get(), &clsTransportServer::Progress, this,
                    &clsMMSCommunication::server_Progress);
            connect(created.get(), &clsTransportServer::Vanished, this,
                    &clsMMSCommunication::server_Vanished);
            wanted = std::move(created);
        }
        mCommunicationType = type;
        wanted->Monitor(true);
    } catch (const Failure&) {
        wanted.reset();
        mCommunicationType = None;
    }
    return mCommunicationType;
}

void clsMMSCommunication::SetIrDaCommandline(const QString& commandTemplate) {
    if (mIrMon)
        mIrMon->SetCommandLine(commandTemplate);
}

void clsMMSCommunication::server_Connect(bool connected, int id, const QString& name) {
    if (!connected) {
        if (name == mDeviceName) {
            mConnected = false;
            mDeviceName.clear();
        }
    } else if (!mConnected) {
        mConnected = true;
        mDeviceName = name;
    }
    emit Connect(connected, id, mDeviceName);
}

void clsMMSCommunication::server_Progress(int state, int) {
    if (state == Transport::kProgressDone) {
        mSendOk = true;
        mSending = false;
    } else if (state == Transport::kProgressFailed) {
        mSendOk = false;
        mSending = false;
    }
}

// A companion that left can neither finish a transfer nor keep a device connected.
void clsMMSCommunication::server_Vanished() {
    auto* gone = qobject_cast<clsTransportServer*>(sender());
    if (!gone || gone != server())
        return;
    mSendOk = false;
    mSending = false;
    if (mConnected)
        server_Connect(false, 0, mDeviceName);
}

std::int32_t clsMMSCommunication::SendFile(const QString& path) {
    if (mSending)
        return Busy;
    if (!mConnected)
        return NoDevice;
    mSending = true;
    clsTransportServer* transport = server();
    bool begun = false;
    try {
        begun = transport && transport->isAlive() && transport->SendFile(path);
    } catch (const Failure&) {
        begun = false;
    }
    // A companion that is gone will never clear the flag.
    if (transport && !transport->isAlive())
        mSending = false;
    // Not begun: sending stays set, so the next send answers busy until progress clears it.
    if (!begun)
        return Failed;
    QTimer wake; // the flag is tested at least this often
    wake.start(20);
    // The program may end while events run here: then the facade is gone and so is the send.
    const QPointer<clsMMSCommunication> self(this);
    while (self && mSending)
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
    if (!self)
        return Failed;
    return mSendOk ? Sent : Failed;
}
