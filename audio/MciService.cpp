#include "audio/MciService.h"

#include "audio/AudioBackend.h"
#include "audio/MciCommand.h"
#include "audio/MciDevice.h"
#include "audio/modMCI.h"

#include <QFileInfo>

namespace {

const QStringList& knownVerbs() {
    static const QStringList verbs{
        QStringLiteral("open"),   QStringLiteral("close"),     QStringLiteral("play"),
        QStringLiteral("record"), QStringLiteral("stop"),      QStringLiteral("pause"),
        QStringLiteral("resume"), QStringLiteral("seek"),      QStringLiteral("save"),
        QStringLiteral("set"),    QStringLiteral("setaudio"),  QStringLiteral("status"),
        QStringLiteral("info"),   QStringLiteral("capability")};
    return verbs;
}

// Commands of the classic interface that this service knows but does not carry out: the
// video, editing and hardware ones.
const QStringList& unsupportedVerbs() {
    static const QStringList verbs{
        QStringLiteral("window"),   QStringLiteral("put"),      QStringLiteral("where"),
        QStringLiteral("step"),     QStringLiteral("realize"),  QStringLiteral("update"),
        QStringLiteral("freeze"),   QStringLiteral("unfreeze"), QStringLiteral("cue"),
        QStringLiteral("signal"),   QStringLiteral("setvideo"), QStringLiteral("configure"),
        QStringLiteral("capture"),  QStringLiteral("copy"),     QStringLiteral("cut"),
        QStringLiteral("paste"),    QStringLiteral("delete"),   QStringLiteral("undo"),
        QStringLiteral("load"),     QStringLiteral("list"),     QStringLiteral("spin"),
        QStringLiteral("escape"),   QStringLiteral("sysinfo"),  QStringLiteral("settimecode"),
        QStringLiteral("settuner"), QStringLiteral("monitor"),  QStringLiteral("reserve"),
        QStringLiteral("restore"),  QStringLiteral("sync")};
    return verbs;
}

// The device type a file's last extension stands for, "" when none.
QString typeOfExtension(const QString& element) {
    const QString name = QFileInfo(element).fileName();
    const qsizetype dot = name.lastIndexOf(QLatin1Char('.'));
    const QString extension = dot < 0 ? QString() : name.mid(dot + 1).toLower();
    static const QStringList sequencer{QStringLiteral("mid"), QStringLiteral("midi"),
                                       QStringLiteral("rmi"), QStringLiteral("mi")};
    static const QStringList wave{QStringLiteral("wav"), QStringLiteral("wave")};
    static const QStringList media{
        QStringLiteral("mp3"),  QStringLiteral("au"),   QStringLiteral("snd"),
        QStringLiteral("aif"),  QStringLiteral("aifc"), QStringLiteral("aiff"),
        QStringLiteral("mpa"),  QStringLiteral("mp2"),  QStringLiteral("m3u"),
        QStringLiteral("mpeg"), QStringLiteral("mpg"),  QStringLiteral("mpe"),
        QStringLiteral("m1v"),  QStringLiteral("mpv2"), QStringLiteral("mp2v")};
    if (sequencer.contains(extension))
        return QStringLiteral("sequencer");
    if (wave.contains(extension))
        return QStringLiteral("waveaudio");
    if (media.contains(extension))
        return QStringLiteral("mpegvideo");
    if (extension == QLatin1String("avi"))
        return QStringLiteral("avivideo");
    return {};
}

// 0 and the type of a device name, or the error for names no device here answers to.
long deviceTypeOf(const QString& name, MciDevice::Type& type) {
    const QString lower = name.toLower();
    if (lower == QLatin1String("waveaudio"))
        type = MciDevice::Type::WaveAudio;
    else if (lower == QLatin1String("sequencer"))
        type = MciDevice::Type::Sequencer;
    else if (lower == QLatin1String("mpegvideo"))
        type = MciDevice::Type::MpegVideo;
    else if (QStringList{QStringLiteral("avivideo"), QStringLiteral("cdaudio"),
                         QStringLiteral("digitalvideo"), QStringLiteral("videodisc"),
                         QStringLiteral("vcr"), QStringLiteral("overlay"),
                         QStringLiteral("scanner"), QStringLiteral("animation"),
                         QStringLiteral("dat")}
                 .contains(lower))
        return Mci::DeviceNotInstalled;
    else
        return Mci::InvalidDeviceName;
    return Mci::NoError;
}

bool isDeviceTypeName(const QString& name) {
    MciDevice::Type type;
    return deviceTypeOf(name, type) != Mci::InvalidDeviceName;
}

} // namespace

MciService& MciService::instance() {
    static MciService service;
    return service;
}

MciService::~MciService() {
    closeAll();
    audiobackend::shutdown();
}

void MciService::closeAll() {
    mDevices.clear();
}

MciDevice* MciService::find(const QString& alias) const {
    const auto it = mDevices.find(alias.toLower());
    return it == mDevices.end() ? nullptr : it->second.get();
}

std::int64_t MciService::firstFrameTime(const QString& alias) const {
    const MciDevice* device = find(alias);
    return device ? device->firstFrameTime() : 0;
}

long MciService::send(const QString& command, QString* answer) {
    QString reply;
    MciCommand parsed;
    long result = parseMciCommand(command, parsed);
    if (!result)
        result = dispatch(parsed, reply);
    if (answer)
        *answer = result ? QString() : reply;
    return result;
}

long MciService::dispatch(const MciCommand& command, QString& answer) {
    if (command.verb == QLatin1String("open"))
        return openCommand(command);
    if (command.device.compare(QLatin1String("all"), Qt::CaseInsensitive) == 0)
        return allCommand(command);
    const bool known = knownVerbs().contains(command.verb);
    if (!known && !unsupportedVerbs().contains(command.verb))
        return Mci::UnrecognizedCommand;
    MciDevice* device = find(command.device);
    if (!device) {
        if (isDeviceTypeName(command.device)) {
            MciDevice::Type type;
            const long error = deviceTypeOf(command.device, type);
            return error ? error : Mci::InvalidDeviceName;
        }
        return Mci::InvalidDeviceName;
    }
    if (!known)
        return Mci::UnsupportedFunction;
    MciWords words(command.words);
    const QString& verb = command.verb;
    if (verb == QLatin1String("close")) {
        mDevices.erase(command.device.toLower());
        return Mci::NoError;
    }
    if (verb == QLatin1String("play"))
        return device->play(words);
    if (verb == QLatin1String("record"))
        return device->record(words);
    if (verb == QLatin1String("stop") || verb == QLatin1String("pause") ||
        verb == QLatin1String("resume")) {
        while (!words.atEnd())
            if (!words.accept("notify") && !words.accept("wait"))
                return Mci::UnrecognizedKeyword;
        return verb == QLatin1String("stop")    ? device->stop()
               : verb == QLatin1String("pause") ? device->pause()
                                                : device->resume();
    }
    if (verb == QLatin1String("seek"))
        return device->seek(words);
    if (verb == QLatin1String("save"))
        return device->save(words);
    if (verb == QLatin1String("set"))
        return device->set(words);
    if (verb == QLatin1String("setaudio"))
        return device->setaudio(words);
    if (verb == QLatin1String("status"))
        return device->status(words, answer);
    if (verb == QLatin1String("info"))
        return device->info(words, answer);
    return device->capability(words, answer);
}

long MciService::allCommand(const MciCommand& command) {
    const QString& verb = command.verb;
    MciWords words(command.words);
    if (verb == QLatin1String("set") && words.accept("video"))
        return Mci::UnsupportedFunction;
    if (verb != QLatin1String("close") && verb != QLatin1String("stop") &&
        verb != QLatin1String("pause") && verb != QLatin1String("resume"))
        return knownVerbs().contains(verb) || unsupportedVerbs().contains(verb)
                   ? Mci::CannotUseAll
                   : Mci::UnrecognizedCommand;
    while (!words.atEnd())
        if (!words.accept("notify") && !words.accept("wait"))
            return Mci::UnrecognizedKeyword;
    if (verb == QLatin1String("close")) {
        closeAll();
        return Mci::NoError;
    }
    for (auto& [alias, device] : mDevices) {
        if (verb == QLatin1String("stop"))
            device->stop();
        else if (verb == QLatin1String("pause"))
            device->pause();
        else
            device->resume();
    }
    return Mci::NoError;
}

long MciService::openCommand(const MciCommand& command) {
    QString type;
    QString element = command.device;
    QString alias;
    bool isNew = false;
    const qsizetype bang = element.indexOf(QLatin1Char('!'));
    if (bang > 0 && isDeviceTypeName(element.left(bang))) {
        type = element.left(bang);
        element = element.mid(bang + 1);
    } else if (element.compare(QLatin1String("new"), Qt::CaseInsensitive) == 0) {
        isNew = true;
        element.clear();
    } else if (isDeviceTypeName(element)) {
        type = element;
        element.clear();
    }
    MciWords words(command.words);
    while (!words.atEnd()) {
        QString value;
        long long number = 0;
        if (words.accept("type")) {
            if (!words.takeValue(value))
                return Mci::MissingStringArgument;
            if (!type.isEmpty() && type.compare(value, Qt::CaseInsensitive) != 0)
                return Mci::FlagsNotCompatible;
            type = value;
        } else if (words.accept("alias")) {
            if (!alias.isEmpty())
                return Mci::DuplicateFlags;
            if (!words.takeValue(alias) || alias.isEmpty())
                return Mci::MissingStringArgument;
        } else if (words.accept("buffer") || words.accept("parent")) {
            if (const long error = words.takeNumber(number))
                return error;
        } else if (words.accept("style")) {
            if (!words.takeValue(value))
                return Mci::MissingStringArgument;
        } else if (!words.accept("shareable") && !words.accept("notify") && !words.accept("wait")) {
            return Mci::UnrecognizedKeyword;
        }
    }
    if (isNew && alias.isEmpty())
        return Mci::NewRequiresAlias;
    if (isNew && type.isEmpty())
        return Mci::DeviceTypeRequired;
    if (alias.isEmpty())
        alias = element.isEmpty() ? type : element;
    long id = 0;
    return open(type, element, alias, id);
}

long MciService::open(const QString& type, const QString& element, const QString& alias,
                      long& deviceId) {
    QString typeName = type;
    if (typeName.isEmpty()) {
        typeName = typeOfExtension(element);
        if (typeName.isEmpty())
            return element.isEmpty() ? Mci::MissingDeviceName : Mci::ExtensionNotFound;
    }
    MciDevice::Type deviceType;
    if (const long error = deviceTypeOf(typeName, deviceType))
        return error;
    if (alias.isEmpty())
        return Mci::MissingStringArgument;
    if (find(alias))
        return Mci::DuplicateAlias;
    auto device = std::make_unique<MciDevice>(deviceType, alias, element, mNextId);
    if (const long error = device->load())
        return error;
    deviceId = mNextId++;
    mDevices[alias.toLower()] = std::move(device);
    return Mci::NoError;
}

// ---- The entry points

long mciSendString(const QString& command, QString* answer) {
    return MciService::instance().send(command, answer);
}

int waveOutGetNumDevs() {
    return audiobackend::outputDeviceCount();
}
