// A transport companion for the facade's tests, under the name given as its first argument.
// Besides the transport object it serves /control (org.tessaly.TestTransport1), through which
// the test adds and removes devices, emits progress and picks what SendFile does:
//   "complete"  progress 1, then 2;
//   "noise"     progress 1, 3, 0, 5, and only after a while 2;
//   "fail"      progress 1, then 4;
//   "crash"     the process ends abruptly during the transfer;
//   "refuse"    SendFile answers false;
//   "hold"      nothing until the test emits progress.
#include "phone/TransportNames.h"
#include "phone/TransportService.h"

#include <QCoreApplication>
#include <QDBusConnection>
#include <QTimer>
#include <cstdlib>

namespace {

class ScriptedBackend : public TransportBackend {
    Q_OBJECT
public:
    using TransportBackend::TransportBackend;
    QString scenario = QStringLiteral("complete");
    QStringList files;

    void setWatching(bool) override {}

    bool beginSend(const QString& path) override {
        files << path;
        if (scenario == QLatin1String("refuse"))
            return false;
        if (scenario == QLatin1String("crash")) {
            QTimer::singleShot(50, [] { std::_Exit(3); });
        } else if (scenario == QLatin1String("noise")) {
            int delay = 10;
            for (int state : {1, 3, 0, 5})
                QTimer::singleShot(delay += 10, this, [this, state] { emit progress(state, 0); });
            QTimer::singleShot(200, this, [this] { emit progress(2, 100); });
        } else if (scenario != QLatin1String("hold")) {
            QTimer::singleShot(10, this, [this] { emit progress(1, 0); });
            const int last = scenario == QLatin1String("fail") ? 4 : 2;
            QTimer::singleShot(30, this, [this, last] { emit progress(last, 0); });
        }
        return true;
    }
};

class Control : public QObject {
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.tessaly.TestTransport1")
public:
    explicit Control(ScriptedBackend* backend) : mBackend(backend) {}

public slots:
    Q_SCRIPTABLE void AddDevice(int id, const QString& name) {
        emit mBackend->deviceChanged(true, id, name);
    }
    Q_SCRIPTABLE void RemoveDevice(int id, const QString& name) {
        emit mBackend->deviceChanged(false, id, name);
    }
    Q_SCRIPTABLE void EmitProgress(int state) { emit mBackend->progress(state, 0); }
    Q_SCRIPTABLE void SetScenario(const QString& scenario) { mBackend->scenario = scenario; }
    Q_SCRIPTABLE QStringList Files() { return mBackend->files; }

private:
    ScriptedBackend* mBackend;
};

ScriptedBackend* gBackend = nullptr;

TransportBackend* makeBackend(QObject* parent) {
    gBackend = new ScriptedBackend(parent);
    auto* control = new Control(gBackend);
    control->setParent(parent);
    QDBusConnection::sessionBus().registerObject(QStringLiteral("/control"), control,
                                                 QDBusConnection::ExportScriptableSlots);
    return gBackend;
}

} // namespace

int main(int argc, char** argv) {
    const QString name = argc > 1 ? QString::fromLocal8Bit(argv[1]) : QStringLiteral("Fake");
    return runTransportCompanion(argc, argv, name, &makeBackend);
}

#include "FakeTransport.moc"
