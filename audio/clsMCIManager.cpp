#include "audio/clsMCIManager.h"

#include "audio/MciService.h"
#include "audio/modMCI.h"
#include "platform/modDialogs.h"

#include <QCoreApplication>
#include <QDateTime>
#include <QEventLoop>
#include <QFileInfo>
#include <QTimer>
#include <cmath>

namespace {

std::unique_ptr<clsMCIManager>& sharedManager() {
    static std::unique_ptr<clsMCIManager> manager;
    return manager;
}

QString quoted(const QString& path) {
    return QLatin1Char('"') + path + QLatin1Char('"');
}

// The value of the leading digits of a reply; 0 when it has none.
long leadingNumber(const QString& text) {
    long value = 0;
    for (const QChar c : text) {
        if (c < QLatin1Char('0') || c > QLatin1Char('9'))
            break;
        value = value * 10 + (c.unicode() - '0');
    }
    return value;
}

QString number(long value) {
    return QString::number(value);
}

} // namespace

clsMCIManager* gMCIManager() {
    return sharedManager().get();
}

void setMCIManager(std::unique_ptr<clsMCIManager> manager) {
    sharedManager() = std::move(manager);
}

clsMCIManager::clsMCIManager() = default;
clsMCIManager::~clsMCIManager() = default;

// ---- The frame of every command

QString clsMCIManager::aliasOr(const QString& alias) const {
    return alias.isEmpty() ? mAlias : alias;
}

long clsMCIManager::send(const QString& command) {
    mLastError = mciSendString(command);
    return mLastError;
}

long clsMCIManager::query(const QString& command, QString& reply) {
    mLastError = mciSendString(command, &mReply);
    reply = mReply;
    return mLastError;
}

long clsMCIManager::queryNumber(const QString& command, long& value) {
    QString reply;
    const long error = query(command, reply);
    value = leadingNumber(reply);
    return error;
}

void clsMCIManager::setFileName(const QString& value) {
    const QString shortPath = getShortPath(value);
    mFileName = shortPath.isEmpty() ? value : shortPath;
}

// ---- Video and general media commands

long clsMCIManager::stepFrames(long frames, const QString& alias) {
    return send(QStringLiteral("step %1 by %2").arg(aliasOr(alias), number(frames)));
}

long clsMCIManager::restoreSizeDefault(const QString& alias) {
    return send(QStringLiteral("put %1 window").arg(aliasOr(alias)));
}

long clsMCIManager::openMovieType(const QString& alias, int type) {
    const QString a = aliasOr(alias);
    send(QStringLiteral("close ") + a);
    const QString typeText = type == 1   ? QStringLiteral(" type avivideo")
                             : type == 2 ? QStringLiteral(" type mpegvideo")
                                         : QString();
    return send(QStringLiteral("open ") + quoted(mFileName) + typeText + QStringLiteral(" alias ") +
                a);
}

long clsMCIManager::openMovieTypeWindow(const QString& alias, long parent, const QString& style,
                                        int type) {
    const QString a = aliasOr(alias);
    send(QStringLiteral("close ") + a);
    const QString typeText = type == 1   ? QStringLiteral(" type avivideo")
                             : type == 2 ? QStringLiteral(" type mpegvideo")
                                         : QString();
    return send(QStringLiteral("open ") + quoted(mFileName) + typeText + QStringLiteral(" alias ") +
                a + QStringLiteral(" parent ") + number(parent) + QStringLiteral(" style ") +
                style + QLatin1Char(' '));
}

long clsMCIManager::minimizeMovie(const QString& alias) {
    return send(QStringLiteral("window %1 state minimized").arg(aliasOr(alias)));
}

long clsMCIManager::hideMovie(const QString& alias) {
    return send(QStringLiteral("window %1 state hide").arg(aliasOr(alias)));
}

long clsMCIManager::showMovie(const QString& alias) {
    return send(QStringLiteral("window %1 state show").arg(aliasOr(alias)));
}

long clsMCIManager::restoreMovie(const QString& alias) {
    return send(QStringLiteral("window %1 state restore").arg(aliasOr(alias)));
}

long clsMCIManager::playMovie(const QString& alias) {
    return send(QStringLiteral("play ") + aliasOr(alias));
}

long clsMCIManager::playFullScreen(const QString& alias) {
    return send(QStringLiteral("play %1 fullscreen").arg(aliasOr(alias)));
}

long clsMCIManager::stopMovie(const QString& alias) {
    return send(QStringLiteral("stop ") + aliasOr(alias));
}

long clsMCIManager::pauseMovie(const QString& alias) {
    return send(QStringLiteral("pause ") + aliasOr(alias));
}

long clsMCIManager::resumeMovie(const QString& alias) {
    return send(QStringLiteral("resume ") + aliasOr(alias));
}

long clsMCIManager::closeMovie() {
    return send(QStringLiteral("close all"));
}

long clsMCIManager::setVideoOff() {
    return send(QStringLiteral("set all video off"));
}

long clsMCIManager::setVideoOn() {
    return send(QStringLiteral("set all video on"));
}

long clsMCIManager::getBitsPerPixel(long& bits, const QString& alias) {
    return queryNumber(QStringLiteral("status %1 bitsperpel").arg(aliasOr(alias)), bits);
}

long clsMCIManager::getMovieInput(QString& text, const QString& alias) {
    return query(QStringLiteral("status %1 monitor input").arg(aliasOr(alias)), text);
}

long clsMCIManager::getMovieOutput(QString& text, const QString& alias) {
    return query(QStringLiteral("status %1 monitor output").arg(aliasOr(alias)), text);
}

long clsMCIManager::getAudioStatus(QString& text, const QString& alias) {
    return query(QStringLiteral("status %1 audio").arg(aliasOr(alias)), text);
}

long clsMCIManager::getVideoStatus(QString& text, const QString& alias) {
    return query(QStringLiteral("status %1 video").arg(aliasOr(alias)), text);
}

long clsMCIManager::getTimeFormat(QString& text, const QString& alias) {
    return query(QStringLiteral("status %1 time format").arg(aliasOr(alias)), text);
}

long clsMCIManager::sizeLocateMovie(long x, long y, long width, long height, const QString& alias) {
    return send(QStringLiteral("put %1 window at %2 %3 %4 %5")
                    .arg(aliasOr(alias), number(x), number(y), number(width), number(height)));
}

bool clsMCIManager::isMoviePlaying(const QString& alias) {
    QString mode;
    query(QStringLiteral("status %1 mode").arg(aliasOr(alias)), mode);
    return mode.left(7) == QLatin1String("playing");
}

long clsMCIManager::getStatus(QString& mode, const QString& alias) {
    const long error = query(QStringLiteral("status %1 mode").arg(aliasOr(alias)), mode);
    mode = mode.toLower();
    return error;
}

long clsMCIManager::checkDeviceReady(QString& text, const QString& alias) {
    return query(QStringLiteral("status %1 ready").arg(aliasOr(alias)), text);
}

long clsMCIManager::checkSoundDeviceReady(QString& text, const QString& alias) {
    return checkDeviceReady(text, alias);
}

long clsMCIManager::getDeviceName(QString& text, const QString& alias) {
    return query(QStringLiteral("info %1 product").arg(aliasOr(alias)), text);
}

long clsMCIManager::getDeviceVersion(QString& text, const QString& alias) {
    return query(QStringLiteral("info %1 version").arg(aliasOr(alias)), text);
}

long clsMCIManager::getNominalFrameRate(long& rate, const QString& alias) {
    return queryNumber(QStringLiteral("status %1 nominal frame rate wait").arg(aliasOr(alias)),
                       rate);
}

long clsMCIManager::getFramePerSecRate(double& rate, const QString& alias) {
    long value = 0;
    const long error =
        queryNumber(QStringLiteral("status %1 frame rate").arg(aliasOr(alias)), value);
    rate = double(value) / 1000.0;
    return error;
}

long clsMCIManager::getCurrentSize(QString& text, const QString& alias) {
    return query(QStringLiteral("where %1 destination max").arg(aliasOr(alias)), text);
}

long clsMCIManager::getDefaultSize(QString& text, const QString& alias) {
    return query(QStringLiteral("where %1 source").arg(aliasOr(alias)), text);
}

long clsMCIManager::extractSize(const QString& command, long& width, long& height) {
    QString reply;
    const long error = query(command, reply);
    const QStringList numbers = reply.split(QLatin1Char(' '), Qt::SkipEmptyParts);
    width = leadingNumber(numbers.value(2));
    height = leadingNumber(numbers.value(3));
    return error;
}

long clsMCIManager::extractCurrentMovieSize(long& width, long& height, const QString& alias) {
    return extractSize(QStringLiteral("where %1 destination max").arg(aliasOr(alias)), width,
                       height);
}

long clsMCIManager::extractDefaultMovieSize(long& width, long& height, const QString& alias) {
    return extractSize(QStringLiteral("where %1 source").arg(aliasOr(alias)), width, height);
}

long clsMCIManager::lengthIn(const QString& format, const QString& alias, long& value) {
    const QString a = aliasOr(alias);
    send(QStringLiteral("set %1 time format %2").arg(a, format));
    return queryNumber(QStringLiteral("status %1 length").arg(a), value);
}

long clsMCIManager::positionIn(const QString& format, const QString& formatFlags,
                               const QString& alias, long& value) {
    const QString a = aliasOr(alias);
    send(QStringLiteral("set %1 time format %2%3").arg(a, format, formatFlags));
    return queryNumber(QStringLiteral("status %1 position").arg(a) +
                           (formatFlags.isEmpty() ? QStringLiteral(" wait") : QString()),
                       value);
}

long clsMCIManager::getLengthInFrames(long& frames, const QString& alias) {
    return lengthIn(QStringLiteral("frames"), alias, frames);
}

long clsMCIManager::getLengthInMS(long& milliseconds, const QString& alias) {
    return lengthIn(QStringLiteral("ms"), alias, milliseconds);
}

long clsMCIManager::getLengthInSec(double& seconds, const QString& alias) {
    long milliseconds = 0;
    const long error = getLengthInMS(milliseconds, alias);
    seconds = double(milliseconds) / 1000.0;
    return error;
}

long clsMCIManager::getPositionInMS(long& milliseconds, const QString& alias) {
    return positionIn(QStringLiteral("ms"), QString(), alias, milliseconds);
}

long clsMCIManager::getPositionInFrames(long& frames, const QString& alias) {
    return positionIn(QStringLiteral("frames"), QStringLiteral(" wait"), alias, frames);
}

long clsMCIManager::getPositionInSec(double& seconds, const QString& alias) {
    long milliseconds = 0;
    const long error = getPositionInMS(milliseconds, alias);
    seconds = double(milliseconds) / 1000.0;
    return error;
}

long clsMCIManager::getFormatPosition(QString& text, const QString& alias) {
    long milliseconds = 0;
    const long error = getPositionInMS(milliseconds, alias);
    text = formatTime(milliseconds);
    return error;
}

long clsMCIManager::getFormatLength(QString& text, const QString& alias) {
    long milliseconds = 0;
    const long error = getLengthInMS(milliseconds, alias);
    text = formatTime(milliseconds);
    return error;
}

long clsMCIManager::getRate(long& rate, const QString& alias) {
    return queryNumber(QStringLiteral("status %1 speed").arg(aliasOr(alias)), rate);
}

long clsMCIManager::getVolume(long& level, const QString& alias) {
    return queryNumber(QStringLiteral("status %1 volume").arg(aliasOr(alias)), level);
}

long clsMCIManager::getLeftVolume(long& level, const QString& alias) {
    return queryNumber(QStringLiteral("status %1 left volume").arg(aliasOr(alias)), level);
}

long clsMCIManager::getRightVolume(long& level, const QString& alias) {
    return queryNumber(QStringLiteral("status %1 right volume").arg(aliasOr(alias)), level);
}

long clsMCIManager::setVolume(long level, const QString& alias) {
    return send(QStringLiteral("setaudio %1 volume to %2").arg(aliasOr(alias), number(level)));
}

long clsMCIManager::setLeftVolume(long level, const QString& alias) {
    return send(QStringLiteral("setaudio %1 left volume to %2").arg(aliasOr(alias), number(level)));
}

long clsMCIManager::setRightVolume(long level, const QString& alias) {
    return send(
        QStringLiteral("setaudio %1 right volume to %2").arg(aliasOr(alias), number(level)));
}

long clsMCIManager::setSpeed(long speed, const QString& alias) {
    return send(QStringLiteral("set %1 speed %2").arg(aliasOr(alias), number(speed)));
}

long clsMCIManager::setAudioOff(const QString& alias) {
    return send(QStringLiteral("set %1 audio all off").arg(aliasOr(alias)));
}

long clsMCIManager::setAudioOn(const QString& alias) {
    return send(QStringLiteral("set %1 audio all on").arg(aliasOr(alias)));
}

long clsMCIManager::setLeftOff(const QString& alias) {
    return send(QStringLiteral("set %1 audio left off").arg(aliasOr(alias)));
}

long clsMCIManager::setRightOff(const QString& alias) {
    return send(QStringLiteral("set %1 audio right off").arg(aliasOr(alias)));
}

long clsMCIManager::setLeftOn(const QString& alias) {
    return send(QStringLiteral("set %1 audio left on").arg(aliasOr(alias)));
}

long clsMCIManager::setRightOn(const QString& alias) {
    return send(QStringLiteral("set %1 audio right on").arg(aliasOr(alias)));
}

long clsMCIManager::setDoorOpen() {
    return send(QStringLiteral("set cdaudio door open"));
}

long clsMCIManager::setDoorClosed() {
    return send(QStringLiteral("set cdaudio door closed"));
}

long clsMCIManager::setPositionTo(double seconds, const QString& alias) {
    const QString a = aliasOr(alias);
    const QString milliseconds = number(std::lround(seconds * 1000.0));
    if (isMoviePlaying(a))
        return send(QStringLiteral("play %1 from %2").arg(a, milliseconds));
    return send(QStringLiteral("seek %1 to %2").arg(a, milliseconds));
}

long clsMCIManager::restartMovie(const QString& alias) {
    send(QStringLiteral("seek %1 to start").arg(aliasOr(alias)));
    return playMovie(alias);
}

long clsMCIManager::moveBy(const QString& format, long amount, const QString& alias) {
    const QString a = aliasOr(alias);
    send(QStringLiteral("set %1 time format %2").arg(a, format));
    long position = 0;
    queryNumber(QStringLiteral("status %1 position").arg(a), position);
    return send(QStringLiteral("play %1 from %2").arg(a, number(std::max(0L, position + amount))));
}

long clsMCIManager::rewindByMS(long amount, const QString& alias) {
    return moveBy(QStringLiteral("ms"), -amount, alias);
}

long clsMCIManager::rewindBySeconds(double amount, const QString& alias) {
    return rewindByMS(std::lround(amount * 1000.0), alias);
}

long clsMCIManager::forwardByMS(long amount, const QString& alias) {
    return moveBy(QStringLiteral("ms"), amount, alias);
}

long clsMCIManager::forwardBySeconds(double amount, const QString& alias) {
    return forwardByMS(std::lround(amount * 1000.0), alias);
}

long clsMCIManager::rewindByFrames(long amount, const QString& alias) {
    return moveBy(QStringLiteral("frames"), -amount, alias);
}

long clsMCIManager::forwardByFrames(long amount, const QString& alias) {
    return moveBy(QStringLiteral("frames"), amount, alias);
}

// ---- Sound commands

long clsMCIManager::openSound(const QString& alias) {
    mAlias = alias;
    mFileExtension = fileExtensionOf(mFileName);
    mDeviceType = deviceTypeOf(true);
    // The device type stands right before the file name, as the command has always been
    // written; a type that was found makes a name no file has.
    return send(QStringLiteral("open ") + mDeviceType + quoted(mFileName) +
                QStringLiteral(" alias ") + aliasOr(alias));
}

long clsMCIManager::openWavSound(const QString& alias) {
    mAlias = alias;
    return send(QStringLiteral("open waveaudio!") + quoted(mFileName) + QStringLiteral(" alias ") +
                aliasOr(alias));
}

long clsMCIManager::openSequencerSound(const QString& alias) {
    mAlias = alias;
    return send(QStringLiteral("open sequencer!") + quoted(mFileName) + QStringLiteral(" alias ") +
                aliasOr(alias));
}

long clsMCIManager::saveSound(const QString& fileName, const QString& alias) {
    mSaveFileExtension = fileExtensionOf(fileName);
    return send(QStringLiteral("save %1 ").arg(aliasOr(alias)) + quoted(fileName));
}

long clsMCIManager::playSound(const QString& alias) {
    stopSound(alias);
    return send(QStringLiteral("play %1 from 1").arg(aliasOr(alias)));
}

long clsMCIManager::playSoundFromTo(long from, long to, const QString& alias) {
    stopSound(alias);
    return send(
        QStringLiteral("play %1 from %2 to %3").arg(aliasOr(alias), number(from), number(to)));
}

long clsMCIManager::stopSound(const QString& alias) {
    return send(QStringLiteral("stop ") + aliasOr(alias));
}

long clsMCIManager::stopAllSound() {
    return send(QStringLiteral("stop all"));
}

long clsMCIManager::closeSound(const QString& alias) {
    return send(QStringLiteral("close ") + aliasOr(alias));
}

long clsMCIManager::closeAllSound() {
    return send(QStringLiteral("close all"));
}

long clsMCIManager::recordWaveSound(const QString& alias, const RecordFormat& format) {
    const QString a = aliasOr(alias);
    closeSound(a);
    if (const long error = send(QStringLiteral("open new type waveaudio alias %1 buffer 9").arg(a)))
        return error;
    if (const long error =
            send(QStringLiteral("set %1 time format ms alignment %2 channels %3 bitspersample %4 "
                                "samplespersec %5 bytespersec %6")
                     .arg(a, number(format.alignment), number(format.channels),
                          number(format.bitsPerSample), number(format.samplesPerSec),
                          number(format.bytesPerSec))))
        return error;
    return send(QStringLiteral("record %1 to %2 notify").arg(a, number(format.milliseconds)));
}

long clsMCIManager::getSoundLengthInMS(QString& text, const QString& alias) {
    const QString a = aliasOr(alias);
    send(QStringLiteral("set %1 time format ms").arg(a));
    return query(QStringLiteral("status %1 length").arg(a), text);
}

long clsMCIManager::getSoundSamplesPerSec(QString& text, const QString& alias) {
    const QString a = aliasOr(alias);
    send(QStringLiteral("set %1 time format ms").arg(a));
    return query(QStringLiteral("status %1 samplespersec").arg(a), text);
}

long clsMCIManager::getSoundBitsPerSample(QString& text, const QString& alias) {
    const QString a = aliasOr(alias);
    send(QStringLiteral("set %1 time format ms").arg(a));
    return query(QStringLiteral("status %1 bitspersample").arg(a), text);
}

// ---- Supporting operations

QString clsMCIManager::checkError(long code) const {
    return mciGetErrorString(code);
}

QString clsMCIManager::checkLatestError() const {
    return mciGetErrorString(mLastError);
}

bool clsMCIManager::hasSoundDevices() const {
    return waveOutGetNumDevs() >= 1;
}

bool clsMCIManager::hasUnicodeApis() const {
    return true; // every name here is Unicode
}

QString clsMCIManager::getShortPath(const QString& path) {
    return !path.isEmpty() && QFileInfo::exists(path) ? path : QString();
}

void clsMCIManager::timeOut(double seconds) {
    // The start counts from its whole second, as the clock of the day is read.
    const QDateTime now = QDateTime::currentDateTime();
    const qint64 intoSecond = now.time().msec();
    const qint64 started = now.toMSecsSinceEpoch() - intoSecond + (intoSecond >= 500 ? 1000 : 0);
    const qint64 remaining =
        started + std::llround(seconds * 1000.0) - QDateTime::currentMSecsSinceEpoch();
    if (remaining <= 0)
        return;
    QEventLoop loop;
    QTimer::singleShot(std::chrono::milliseconds(remaining), &loop, &QEventLoop::quit);
    loop.exec();
}

QString clsMCIManager::formatTime(long milliseconds) {
    const long total = std::lround(double(milliseconds) / 1000.0);
    const long hours = total / 3600;
    const long minutes = (total % 3600) / 60;
    const long seconds = total % 60;
    QString text;
    if (hours >= 1)
        text = number(hours) + QLatin1Char(':');
    text += number(minutes) + QLatin1Char(':');
    text += QStringLiteral("%1").arg(seconds, 2, 10, QLatin1Char('0'));
    return text;
}

QString clsMCIManager::fileExtensionOf(const QString& name) {
    const qsizetype dot = name.indexOf(QLatin1Char('.'));
    if (dot < 0)
        return QLatin1Char('.') + name.right(3);
    QString extension = name.mid(dot);
    extension.remove(QChar(0));
    return extension;
}

QString clsMCIManager::deviceTypeOf(bool isSound) const {
    static const QStringList sequencer{QStringLiteral(".mid"), QStringLiteral(".midi"),
                                       QStringLiteral(".rmi")};
    static const QStringList wave{QStringLiteral(".wav"), QStringLiteral(".wave")};
    static const QStringList media{QStringLiteral(".mp3"), QStringLiteral(".m3u"),
                                   QStringLiteral(".au"),  QStringLiteral(".snd"),
                                   QStringLiteral(".aif"), QStringLiteral(".aifc"),
                                   QStringLiteral(".aiff")};
    static const QStringList video{QStringLiteral(".mpeg"), QStringLiteral(".mpg"),
                                   QStringLiteral(".mpe"),  QStringLiteral(".m1v"),
                                   QStringLiteral(".mp2"),  QStringLiteral(".mpv2"),
                                   QStringLiteral(".mp2v"), QStringLiteral(".mpa")};
    const QString& e = mFileExtension;
    if (isSound) {
        if (sequencer.contains(e))
            return QStringLiteral("sequencer");
        if (wave.contains(e))
            return QStringLiteral("waveaudio");
        if (media.contains(e))
            return QStringLiteral("mpegvideo");
    } else {
        if (video.contains(e))
            return QStringLiteral("mpegvideo");
        if (e == QLatin1String(".avi"))
            return QStringLiteral("avivideo");
    }
    return {};
}

long clsMCIManager::browseOpenFileAlias(const QString& alias, const QString& filter,
                                        int filterIndex, const QString& title, QWidget* ownerWindow,
                                        const QString& initialDir, bool isSound) {
    Q_UNUSED(filterIndex); // the dialog starts on its first filter
    // Callers hand the filter with NUL between its pairs, as the dialog of old wanted it.
    QString vbFilter = filter;
    vbFilter.replace(QChar(0), QLatin1Char('|'));
    while (vbFilter.endsWith(QLatin1Char('|')))
        vbFilter.chop(1);
    QString chosen;
    if (!GetOpenFileName(ownerWindow, chosen, title, vbFilter, QString(), initialDir) ||
        chosen.isEmpty()) {
        mMciFileName.clear();
        return Mci::NoError;
    }
    mMciFileName = chosen;
    mFileExtension = fileExtensionOf(chosen).toLower();
    mDeviceType = deviceTypeOf(isSound);
    mAlias = alias;
    long id = 0;
    const long error = MciService::instance().open(mDeviceType, mMciFileName, alias, id);
    if (!error)
        mDeviceId = id;
    mLastError = error;
    return error;
}
