#pragma once

#include <QObject>
#include <QString>
#include <QStringList>
#include <cstdint>
#include <memory>

class clsTransportServer;

// Hands a file to a phone through one of the three transport companions, of which at most one
// is in use, and follows whether a device is connected.
class clsMMSCommunication : public QObject {
    Q_OBJECT

public:
    // The values of communicationType and of the preference CommunicationType.
    enum Type : std::int32_t { None = 0, Ir = 1, Obex = 2, Q500 = 3 };
    // SendFile's answers.
    enum Status : std::int32_t { Sent = 0, Busy = 2, NoDevice = 3, Failed = 4 };

    explicit clsMMSCommunication(QObject* parent = nullptr);
    ~clsMMSCommunication() override;

    // Uses the companion of `type` and starts it monitoring; gives the type in use, 0 when the
    // companion cannot be had (or for an unknown type).
    std::int32_t Initialize(std::int32_t type);
    // The command the infrared companion runs per file; "%f%" stands for the file.
    void SetIrDaCommandline(const QString& commandTemplate);
    QString deviceName() const { return mDeviceName; }
    QString deviceId() const { return mDeviceName; }
    // Sends `path` and waits, letting events run, until the transfer ends: 0 sent, 2 busy,
    // 3 no device, 4 failed.
    std::int32_t SendFile(const QString& path);
    // A transfer cannot be stopped from here.
    bool TerminateCommand() { return false; }

    std::int32_t communicationType() const { return mCommunicationType; }
    bool connected() const { return mConnected; }
    bool sending() const { return mSending; }

    // The companion's name of a type, "" for 0 and unknown types.
    static QString companionName(std::int32_t type);
    // Arguments every companion is started with: where the program's preferences are.
    static QStringList companionArguments();

signals:
    void Connect(bool connected, std::int32_t id, const QString& name);

private:
    void server_Connect(bool connected, int id, const QString& name);
    void server_Progress(int state, int value);
    void server_Vanished();
    clsTransportServer* server() const;
    std::unique_ptr<clsTransportServer>& reference(std::int32_t type);

    std::unique_ptr<clsTransportServer> mObexMon;
    std::unique_ptr<clsTransportServer> mIrMon;
    std::unique_ptr<clsTransportServer> mQ500Mon;
    std::int32_t mCommunicationType = None;
    bool mConnected = false;
    QString mDeviceName;
    bool mSending = false;
    bool mSendOk = false;
};
