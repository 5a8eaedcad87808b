#pragma once

#include <QObject>
#include <QString>
#include <QStringList>
#include <memory>

class QDBusServiceWatcher;

// The program's side of one transport companion: the companion's object on the session bus,
// its signals, and whether it is still there.
class clsTransportServer : public QObject {
    Q_OBJECT

public:
    // How long the program waits for a companion it started to take its name.
    static constexpr int kStartTimeoutMs = 5000;
    // How long one call to a companion may take.
    static constexpr int kCallTimeoutMs = 5000;

    // The companion `companion` ("IrCommunication", ...): used as it is when its name is owned
    // already, else started from the first of companionFolders() that holds it, with
    // `arguments`, and waited for. Raises a Failure when it is not installed, does not start or
    // does not take its name in time.
    static std::unique_ptr<clsTransportServer> create(const QString& companion,
                                                      const QStringList& arguments = {});

    // Where companions are looked for: beside the executable, then <prefix>/libexec/tessaly.
    static QStringList companionFolders();
    // Replaces that list (an empty list restores it); for tests.
    static void setCompanionFolders(const QStringList& folders);
    // Replaces the two time limits above (0 restores one); for tests on a loaded machine.
    static void setTimeouts(int startMs, int callMs);

    // Stops monitoring (without waiting for an answer).
    ~clsTransportServer() override;

    QString companion() const { return mCompanion; }
    // False once the companion has left the bus.
    bool isAlive() const { return mAlive; }

    // Calls to the companion. A companion that cannot be reached raises a Failure.
    void Monitor(bool on);
    bool SendFile(const QString& path);
    void SetCommandLine(const QString& commandTemplate);

signals:
    void Connect(bool connected, int id, const QString& name);
    void Progress(int state, int value);
    // The companion left the bus.
    void Vanished();

private slots:
    void onConnect(bool connected, int id, const QString& name);
    void onProgress(int state, int value);

private:
    explicit clsTransportServer(const QString& companion);
    QVariantList call(const QString& method, const QVariantList& arguments);

    QString mCompanion;
    QString mBusName;
    bool mAlive = true;
    QDBusServiceWatcher* mWatcher = nullptr;
};
