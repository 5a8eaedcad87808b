#pragma once

#include <QString>
#include <memory>

class QWidget;

// The media command layer of the program: one operation per command string, each sent to the
// sound service (modMCI.h) with a default alias standing in for an empty `alias`. Every command
// operation returns the service's result (0 for success) and keeps it as the last error; a query
// hands its reply back through its out parameter. No operation shows a message. The video
// commands are here as well; this service answers them as unsupported.
class clsMCIManager {
public:
    clsMCIManager();
    ~clsMCIManager();
    clsMCIManager(const clsMCIManager&) = delete;
    clsMCIManager& operator=(const clsMCIManager&) = delete;

    // Properties.
    QString FileName() const { return mFileName; }
    // Keeps the path when the file exists, and as it stands when it does not exist yet.
    void setFileName(const QString& value);
    QString mciDeviceType() const { return mDeviceType; }
    QString mciAlias() const { return mAlias; }
    QString mciFileExtension() const { return mFileExtension; }
    long mciDeviceID() const { return mDeviceId; }
    QString mciFileName() const { return mMciFileName; }
    QString mciSaveFileExtension() const { return mSaveFileExtension; }
    long lastError() const { return mLastError; }
    // The reply of the last query.
    QString reply() const { return mReply; }

    // Video and general media commands.
    long stepFrames(long frames, const QString& alias = {});
    long restoreSizeDefault(const QString& alias = {});
    // type 1 avivideo, 2 mpegvideo, else by the file's extension.
    long openMovieType(const QString& alias, int type);
    long openMovieTypeWindow(const QString& alias, long parent, const QString& style, int type);
    long minimizeMovie(const QString& alias = {});
    long hideMovie(const QString& alias = {});
    long showMovie(const QString& alias = {});
    long restoreMovie(const QString& alias = {});
    long playMovie(const QString& alias = {});
    long playFullScreen(const QString& alias = {});
    long stopMovie(const QString& alias = {});
    long pauseMovie(const QString& alias = {});
    long resumeMovie(const QString& alias = {});
    long closeMovie();
    long setVideoOff();
    long setVideoOn();
    long getBitsPerPixel(long& bits, const QString& alias = {});
    long getMovieInput(QString& text, const QString& alias = {});
    long getMovieOutput(QString& text, const QString& alias = {});
    long getAudioStatus(QString& text, const QString& alias = {});
    long getVideoStatus(QString& text, const QString& alias = {});
    long getTimeFormat(QString& text, const QString& alias = {});
    long sizeLocateMovie(long x, long y, long width, long height, const QString& alias = {});
    // True when the mode begins with "playing".
    bool isMoviePlaying(const QString& alias = {});
    // The mode, lower-cased.
    long getStatus(QString& mode, const QString& alias = {});
    long checkDeviceReady(QString& text, const QString& alias = {});
    long checkSoundDeviceReady(QString& text, const QString& alias = {});
    long getDeviceName(QString& text, const QString& alias = {});
    long getDeviceVersion(QString& text, const QString& alias = {});
    long getNominalFrameRate(long& rate, const QString& alias = {});
    long getFramePerSecRate(double& rate, const QString& alias = {});
    long getCurrentSize(QString& text, const QString& alias = {});
    long getDefaultSize(QString& text, const QString& alias = {});
    long extractCurrentMovieSize(long& width, long& height, const QString& alias = {});
    long extractDefaultMovieSize(long& width, long& height, const QString& alias = {});
    long getLengthInFrames(long& frames, const QString& alias = {});
    long getLengthInMS(long& milliseconds, const QString& alias = {});
    long getLengthInSec(double& seconds, const QString& alias = {});
    long getPositionInMS(long& milliseconds, const QString& alias = {});
    long getPositionInFrames(long& frames, const QString& alias = {});
    long getPositionInSec(double& seconds, const QString& alias = {});
    long getFormatPosition(QString& text, const QString& alias = {});
    long getFormatLength(QString& text, const QString& alias = {});
    long getRate(long& rate, const QString& alias = {});
    long getVolume(long& level, const QString& alias = {});
    long getLeftVolume(long& level, const QString& alias = {});
    long getRightVolume(long& level, const QString& alias = {});
    long setVolume(long level, const QString& alias = {});
    long setLeftVolume(long level, const QString& alias = {});
    long setRightVolume(long level, const QString& alias = {});
    long setSpeed(long speed, const QString& alias = {});
    long setAudioOff(const QString& alias = {});
    long setAudioOn(const QString& alias = {});
    long setLeftOff(const QString& alias = {});
    long setRightOff(const QString& alias = {});
    long setLeftOn(const QString& alias = {});
    long setRightOn(const QString& alias = {});
    long setDoorOpen();
    long setDoorClosed();
    long setPositionTo(double seconds, const QString& alias = {});
    long restartMovie(const QString& alias = {});
    long rewindByMS(long amount, const QString& alias = {});
    long rewindBySeconds(double amount, const QString& alias = {});
    long forwardByMS(long amount, const QString& alias = {});
    long forwardBySeconds(double amount, const QString& alias = {});
    long rewindByFrames(long amount, const QString& alias = {});
    long forwardByFrames(long amount, const QString& alias = {});

    // Sound commands.
    long openSound(const QString& alias = {});
    long openWavSound(const QString& alias = {});
    long openSequencerSound(const QString& alias = {});
    long saveSound(const QString& fileName, const QString& alias = {});
    long playSound(const QString& alias = {});
    long playSoundFromTo(long from, long to, const QString& alias = {});
    long stopSound(const QString& alias = {});
    long stopAllSound();
    long closeSound(const QString& alias = {});
    long closeAllSound();
    struct RecordFormat {
        long milliseconds = 6000;
        long alignment = 2;
        long channels = 1;
        long bitsPerSample = 16;
        long samplesPerSec = 8000;
        long bytesPerSec = 16000;
    };
    long recordWaveSound(const QString& alias, const RecordFormat& format);
    long getSoundLengthInMS(QString& text, const QString& alias = {});
    long getSoundSamplesPerSec(QString& text, const QString& alias = {});
    long getSoundBitsPerSample(QString& text, const QString& alias = {});

    // Supporting operations.
    QString checkError(long code) const;
    QString checkLatestError() const;
    bool hasSoundDevices() const;
    bool hasUnicodeApis() const;
    // The path when the file exists, "" when not (paths need no short form here).
    static QString getShortPath(const QString& path);
    // Waits `seconds` while the user interface keeps running.
    static void timeOut(double seconds);
    // Asks for a file and opens it under `alias` (see the operation's description in the
    // source). The result is 0 on success or cancel (then mciFileName() is empty), else the
    // service's error.
    long browseOpenFileAlias(const QString& alias, const QString& filter, int filterIndex,
                             const QString& title, QWidget* ownerWindow, const QString& initialDir,
                             bool isSound);

    // "m:ss", or "h:m:ss" from an hour on.
    static QString formatTime(long milliseconds);
    // The name from its first "." to its end, or "." and its last three characters.
    static QString fileExtensionOf(const QString& name);
    // The device type of the current file extension ("sequencer", "waveaudio", ...) or "".
    QString deviceTypeOf(bool isSound) const;

private:
    QString aliasOr(const QString& alias) const;
    long send(const QString& command);
    long query(const QString& command, QString& reply);
    long queryNumber(const QString& command, long& value);
    long lengthIn(const QString& format, const QString& alias, long& value);
    long positionIn(const QString& format, const QString& formatFlags, const QString& alias,
                    long& value);
    long moveBy(const QString& format, long amount, const QString& alias);
    long extractSize(const QString& command, long& width, long& height);

    long mLastError = 0;
    long mDeviceId = 0;
    QString mFileName;
    QString mReply;
    QString mDeviceType;
    QString mAlias;
    QString mFileExtension;
    QString mMciFileName;
    QString mSaveFileExtension;
};

// The program's one command layer, or nullptr while none is in place. Main puts it in place at
// start and drops it when the main window unloads.
clsMCIManager* gMCIManager();
// Puts `manager` in place (nullptr drops the one in place).
void setMCIManager(std::unique_ptr<clsMCIManager> manager);
