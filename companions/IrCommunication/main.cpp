// The send-command transport: the program gives a command template in which "%f%" stands for
// the file; each file is sent by running that command, never through a shell. One device is
// present while the template's program can be found on the search path.
#include "phone/TransportNames.h"
#include "phone/TransportService.h"

#include <QFileInfo>
#include <QProcess>
#include <QStandardPaths>

namespace {

class CommandBackend : public PolledTransportBackend {
    Q_OBJECT
public:
    explicit CommandBackend(QObject* parent)
        : PolledTransportBackend(Transport::kLinkCommand, 2000, parent) {}

    void setCommandLine(const QString& commandTemplate) override {
        mTemplate = QProcess::splitCommand(commandTemplate);
        if (watching())
            check();
    }

    bool beginSend(const QString& path) override {
        check();
        if (present().isEmpty() || mProcess || !QFileInfo(path).isFile())
            return false;
        QStringList arguments = mTemplate.mid(1);
        for (QString& argument : arguments)
            argument.replace(QStringLiteral("%f%"), path);
        mProcess = new QProcess(this);
        mProcess->setProgram(present());
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

    // The template's program as found on the search path.
    QString probe() const override {
        return mTemplate.isEmpty() ? QString() : QStandardPaths::findExecutable(mTemplate.first());
    }

    QStringList mTemplate;
    QProcess* mProcess = nullptr;
};

TransportBackend* makeBackend(QObject* parent) {
    return new CommandBackend(parent);
}

} // namespace

int main(int argc, char** argv) {
    return runTransportCompanion(argc, argv, QStringLiteral("IrCommunication"), &makeBackend);
}

#include "main.moc"
