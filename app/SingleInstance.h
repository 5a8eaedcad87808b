#pragma once

#include <QObject>
#include <QString>
#include <functional>

class QLocalServer;

// One running Tessaly per user and application folder. The first start listens on a local
// socket; a later start finds it, asks it to bring its window forward, and gives up.
class SingleInstance : public QObject {
    Q_OBJECT
public:
    explicit SingleInstance(QString key, QObject* parent = nullptr);
    ~SingleInstance() override;

    // The name of the socket for the current user and application folder.
    static QString defaultKey();

    // True when another instance answered and was asked to come forward.
    bool activateRunningInstance(int timeoutMs = 500);
    // Starts listening; `onActivate` runs whenever a later start asks us to come forward.
    bool listen(std::function<void()> onActivate);
    bool isListening() const;

private:
    QString mKey;
    QLocalServer* mServer = nullptr;
    std::function<void()> mOnActivate;
};
