// The folder transport: a phone whose storage is mounted as a folder (through gvfs or as mass
// storage). The folder comes from the program's preferences; the phone is connected while the
// folder exists, and sending copies the file into it.
#include "phone/TransportNames.h"
#include "phone/TransportService.h"

#include <QCommandLineParser>
#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QTimer>
#include <pugixml.hpp>

namespace {

const QString kSection = QStringLiteral("preferences");
const QString kKey = QStringLiteral("PhoneFolder");

class FolderBackend : public PolledTransportBackend {
    Q_OBJECT
public:
    FolderBackend(const QString& preferences, const QString& application, QObject* parent)
        : PolledTransportBackend(Transport::kLinkFolder, 1000, parent), mPreferences(preferences),
          mApplication(application) {}

    bool beginSend(const QString& path) override {
        check();
        const QFileInfo source(path);
        if (present().isEmpty() || !source.isFile())
            return false;
        // Reported once the program is back in its wait.
        QTimer::singleShot(0, this, [this, path] { copy(path); });
        return true;
    }

private:
    // The folder named by the preferences, read afresh so that a change is seen without a
    // start. The file is only read: it belongs to the program.
    QString folder() const {
        pugi::xml_document document;
        if (mPreferences.isEmpty() ||
            !document.load_file(QFile::encodeName(mPreferences).constData()))
            return QString();
        for (const pugi::xml_node& application :
             document.child("APPLICATIONS").children("APPLICATION")) {
            if (QString::fromUtf8(application.attribute("name").value()).toLower() !=
                mApplication.toLower())
                continue;
            for (const pugi::xml_node& section : application.child("SECTIONS").children("SECTION"))
                if (QString::fromUtf8(section.attribute("name").value()) == kSection)
                    for (const pugi::xml_node& key : section.children("KEY"))
                        if (QString::fromUtf8(key.attribute("name").value()) == kKey)
                            return resolved(QString::fromUtf8(key.text().get()));
        }
        return QString();
    }

    // Either separator is accepted; a value that begins with "\" lies below the application
    // folder, which holds the preferences file.
    QString resolved(QString value) const {
        if (value.startsWith(QLatin1Char('\\')))
            value.prepend(QFileInfo(mPreferences).absolutePath());
        return value.replace(QLatin1Char('\\'), QLatin1Char('/'));
    }

    // The folder, while it exists.
    QString probe() const override {
        const QString current = folder();
        return !current.isEmpty() && QFileInfo(current).isDir() ? QDir(current).absolutePath()
                                                                : QString();
    }

    void copy(const QString& path) {
        emit progress(Transport::kProgressActive, 0);
        const QString target = QDir(present()).filePath(QFileInfo(path).fileName());
        // Written beside under a temporary name, then put in place.
        const QString partial = target + QStringLiteral(".part");
        QFile::remove(partial);
        bool ok = QFile::copy(path, partial);
        if (ok) {
            QFile::remove(target);
            ok = QFile::rename(partial, target);
        }
        if (!ok)
            QFile::remove(partial);
        emit progress(ok ? Transport::kProgressDone : Transport::kProgressFailed, ok ? 100 : 0);
    }

    QString mPreferences;
    QString mApplication;
};

TransportBackend* makeBackend(QObject* parent) {
    QCommandLineParser parser;
    parser.addOption({QStringLiteral("preferences"), QStringLiteral("The preferences file."),
                      QStringLiteral("file")});
    parser.addOption({QStringLiteral("application"),
                      QStringLiteral("The application's name in that file."),
                      QStringLiteral("name"), QStringLiteral("tessaly")});
    parser.process(*QCoreApplication::instance());
    return new FolderBackend(parser.value(QStringLiteral("preferences")),
                             parser.value(QStringLiteral("application")), parent);
}

} // namespace

int main(int argc, char** argv) {
    return runTransportCompanion(argc, argv, QStringLiteral("Q500Communication"), &makeBackend);
}

#include "main.moc"
