// A transport companion for the tests, under the name given as its first argument. Its object
// /control (org.tessaly.TestTransport1) lets the test report devices and progress, list the
// files sent, and pick what SendFile does: "complete" (progress 1, then 2), "noise" (1, 3, 0,
// 5, and only later 2), "fail" (1, then 4), "crash" (the process dies mid-transfer), "refuse"
// (SendFile answers false) or "hold" (nothing until the test reports progress).
#include "phone/TransportService.h"

#include <QDBusConnection>
#include <QTimer>
#include <cstdlib>

namespace {

class ScriptedBackend : public TransportBackend {
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.tessaly.TestTransport1")
public:
    using TransportBackend::TransportBackend;
    void setWatching(bool) override {}

    bool beginSend(const QString& path) override {
        mFiles << path;
        if (mScenario == QLatin1String("refuse"))
            return false;
        if (mScenario == QLatin1String("crash"))
            QTimer::singleShot(50, [] { std::_Exit(3); });
        const QList<int> states = mScenario == QLatin1String("noise")      ? QList{1, 3, 0, 5, 2}
                                  : mScenario == QLatin1String("fail")     ? QList{1, 4}
                                  : mScenario == QLatin1String("complete") ? QList{1, 2}
                                                                           : QList<int>{};
        for (int i = 0; i < states.size(); ++i)
            QTimer::singleShot(20 * (i + 1) + (states[i] == 2 ? 100 : 0), this,
                               [this, state = states[i]] { emit progress(state, 0); });
        return true;
    }

public slots:
    Q_SCRIPTABLE void AddDevice(int id, const QString& name) { emit deviceChanged(true, id, name); }
    Q_SCRIPTABLE void RemoveDevice(int id, const QString& name) {
        emit deviceChanged(false, id, name);
    }
    Q_SCRIPTABLE void EmitProgress(int state) { emit progress(state, 0); }
    Q_SCRIPTABLE void SetScenario(const QString& scenario) { mScenario = scenario; }
    Q_SCRIPTABLE QStringList Files() { return mFiles; }

private:
    QString mScenario = QStringLiteral("complete");
    QStringList mFiles;
};

TransportBackend* makeBackend(QObject* parent) {
    auto* backend = new ScriptedBackend(parent);
    QDBusConnection::sessionBus().registerObject(QStringLiteral("/control"), backend,
                                                 QDBusConnection::ExportScriptableSlots);
    return backend;
}

} // namespace

int main(int argc, char** argv) {
    return runTransportCompanion(argc, argv, QString::fromLocal8Bit(argc > 1 ? argv[1] : "Fake"),
                                 &makeBackend);
}

#include "FakeTransport.moc"
