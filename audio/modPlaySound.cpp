#include "audio/modPlaySound.h"

#include "audio/clsMCIManager.h"
#include "audio/modMCI.h"
#include "platform/modDialogs.h"
#include "platform/modText.h"

#include <QCursor>
#include <QGuiApplication>

namespace {

// The arrow with the hourglass while a call runs; the pointer comes back on every way out.
class BusyPointer {
public:
    BusyPointer() : mShown(qGuiApp != nullptr) {
        if (mShown)
            QGuiApplication::setOverrideCursor(QCursor(Qt::BusyCursor));
    }
    ~BusyPointer() {
        if (mShown)
            QGuiApplication::restoreOverrideCursor();
    }
    BusyPointer(const BusyPointer&) = delete;
    BusyPointer& operator=(const BusyPointer&) = delete;

private:
    bool mShown;
};

QString quoted(const QString& path) {
    return QLatin1Char('"') + path + QLatin1Char('"');
}

bool isMidiExtension(const QString& extension) {
    return extension == QLatin1String("MID") || extension == QLatin1String("MIDI") ||
           extension == QLatin1String("MI");
}

// Opens the file under `playsound` by its upper-cased extension; 263 for no sound type.
long openPlaySound(const QString& extension, const QString& path) {
    if (extension == QLatin1String("WAV"))
        return mciSendString(QStringLiteral("open waveaudio!") + quoted(path) +
                             QStringLiteral(" alias playsound"));
    if (isMidiExtension(extension))
        return mciSendString(QStringLiteral("open sequencer!") + quoted(path) +
                             QStringLiteral(" alias playsound"));
    return Mci::InvalidDeviceName;
}

// A status reply as a field of the description: the text, or "-1" when the query failed.
QString statusField(const QString& item) {
    QString reply;
    if (mciSendString(QStringLiteral("status playsound ") + item, &reply))
        return QStringLiteral("-1");
    return reply;
}

} // namespace

std::int32_t playFile(const QString& fileName) {
    const BusyPointer busy;
    const qsizetype dot = fileName.lastIndexOf(QLatin1Char('.'));
    if (dot < 0)
        return 0;
    const QString extension = fileName.mid(dot + 1).toUpper();
    const QString path = clsMCIManager::getShortPath(fileName);
    mciSendString(QStringLiteral("stop playsound"));
    if (path.isEmpty())
        return 0;
    mciSendString(QStringLiteral("close playsound"));
    if (openPlaySound(extension, path) != Mci::NoError)
        return 0;
    if (const long played = mciSendString(QStringLiteral("play playsound from 1"))) {
        MsgBox(mciGetErrorString(played), Vb::OKOnly, localText(QStringLiteral("STR_ERROR")));
        return 0;
    }
    mciSendString(QStringLiteral("set playsound time format ms"));
    QString reply;
    if (mciSendString(QStringLiteral("status playsound length"), &reply))
        reply = QStringLiteral("0");
    return reply.toInt();
}

void stopPlaying() {
    mciSendString(QStringLiteral("stop playsound"));
}

QString getSoundInfo(const QString& fileName) {
    const BusyPointer busy;
    const qsizetype dot = fileName.lastIndexOf(QLatin1Char('.'));
    if (dot < 0)
        return QStringLiteral("---;-1;-1;-1");
    const QString extension = fileName.mid(dot + 1).toUpper();
    QString result = extension;
    const QString path = clsMCIManager::getShortPath(fileName);
    mciSendString(QStringLiteral("stop playsound"));
    if (path.isEmpty())
        return result;
    mciSendString(QStringLiteral("close playsound"));
    if (extension == QLatin1String("IMY"))
        return result + QStringLiteral(";-1;-1;-1"); // an iMelody file has no device
    if (openPlaySound(extension, path) != Mci::NoError)
        return result;
    mciSendString(QStringLiteral("set playsound time format ms"));
    for (const char* item : {"length", "samplespersec", "bitspersample"})
        result += QLatin1Char(';') + statusField(QLatin1String(item));
    mciSendString(QStringLiteral("stop playsound"));
    return result;
}

std::int32_t getPlayPosition() {
    QString mode;
    if (mciSendString(QStringLiteral("status playsound mode"), &mode) ||
        mode != QLatin1String("playing"))
        return 0;
    QString position;
    if (mciSendString(QStringLiteral("status playsound position"), &position))
        return 0;
    return position.toInt();
}
