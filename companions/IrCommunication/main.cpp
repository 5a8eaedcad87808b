// The send-command transport: the program gives a command template in which "%f%" stands for
// the file; each file is sent by running that command, never through a shell. One device is
// present while the template's program can be found on the search path.
#include "phone/TransportNames.h"
#include "phone/TransportService.h"

#include <QFileInfo>
#include <QProcess>
#include <QStandardPaths>
#include <QTimer>

namespace {

constexpr int kDeviceId = Transport::kLinkCommand;

class CommandBackend : public TransportBackend {
    Q_OBJECT
public:
    explicit CommandBackend(QObject* parent) : TransportBackend(parent) {
        mPoll.setInterval(2000);
        connect(&mPoll, &QTimer::timeout, this, &CommandBackend::check);
    }

    void setWatching(bool on) override {
        mWatching = on;
        if (!on) {
            mPoll.stop();
            return;
        }
        mPoll.start();
        mPresent.clear();
        check();
    }

    void setCommandLine(const QString& commandTemplate) override {
        mTemplate = QProcess::splitCommand(commandTemplate);
        if (mWatching)
            check();
    }

    bool beginSend(const QString& path) override {
        check();
        if (mPresent.isEmpty() || mProcess || !QFileInfo(path).isFile())
            return false;
        QStringList arguments = mTemplate.mid(1);
        for (QString& argument : arguments)
            argument.replace(QStringLiteral("%f%"), path);
        mProcess = new QProcess(this);
        mProcess->setProgram(mPresent);
        mProcess->setArguments(arguments);
        mProcess->setProcessChannelMode(QProcess::ForwardedChannels);
        mProcess->setStandardInputFile(QProcess::nullDevice());
        connect(mProcess, &QProcess::started, this,
                [this] { emit progress(Transport::kProgressActive, 0); });
        connect(mProcess, &QProcess::finished, this, [this](int code, QProcess::ExitStatus how) {
            finish(how == QProcess::NormalExit && code == 0);
        });
        connect(mProcess, &QProcess::errorOccurred, this, [this](QProcess::ProcessError error) {
            if (error == QProcess::FailedToStart)
                finish(false);
        });
        mProcess->start();
        return true;
    }

private:
    void finish(bool ok) {
        if (!mProcess)
            return;
        mProcess->deleteLater();
        mProcess = nullptr;
        emit progress(ok ? Transport::kProgressDone : Transport::kProgressFailed, ok ? 100 : 0);
    }

    void check() {
        const QString program =
            mTemplate.isEmpty() ? QString() : QStandardPaths::findExecutable(mTemplate.first());
        if (program == mPresent)
            return;
        if (!mPresent.isEmpty())
            emit deviceChanged(false, kDeviceId, QFileInfo(mPresent).fileName());
        mPresent = program;
        if (!mPresent.isEmpty())
            emit deviceChanged(true, kDeviceId, QFileInfo(mPresent).fileName());
    }

    QStringList mTemplate;
    QString mPresent; // the program found, "" when none
    bool mWatching = false;
    QProcess* mProcess = nullptr;
    QTimer mPoll;
};

TransportBackend* makeBackend(QObject* parent) {
    return new CommandBackend(parent);
}

} // namespace

int main(int argc, char** argv) {
    return runTransportCompanion(argc, argv, QStringLiteral("IrCommunication"), &makeBackend);
}

#include "main.moc"
