// tessaly-publish: publishes a stored message from the command line, as the send window does,
// without a display.
//
//     tessaly-publish MESSAGE_FOLDER [--format jpg|gif|bmp] [--time s|ms]
//                     [--convert-sound yes|no] [--packages none|tpl|sis|tpl,sis]
//                     [--pdu [--to NUMBER]...] [--max-size BYTES]
//
// Unset options take the program's preferences. Exit code 0 after a complete publication (a
// note on stderr when the pictures were fitted to the largest size, or the message is still
// above it); the publication's status (1 to 4) with its text on stderr when it failed; 64 for a
// bad command line, 66 when the folder holds no message.
#include "config/clsPropertiesXML.h"
#include "config/clsXMLocalizer.h"
#include "config/modConfig.h"
#include "document/clsMessage.h"
#include "platform/AppPaths.h"
#include "platform/Failure.h"
#include "platform/modText.h"
#include "store/clsMMSManager.h"
#include "store/modMmsPdu.h"

#include <QCommandLineParser>
#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QTemporaryDir>
#include <cstdio>
#include <memory>
#include <unistd.h>

namespace {
constexpr int kUsageError = 64;
constexpr int kNoInput = 66;

struct Options {
    QString folder;
    QString format;
    std::int32_t timeFormat = 0;
    bool convertSound = true;
    bool makeTemplate = true;
    bool makeSis = true;
    bool makePdu = false; // false: the preference MakePdu decides
    QStringList to;
    std::int64_t maxSize = 0; // 0: the preference MaxMessageSize
};

void say(const QString& text) {
    std::fputs(text.toLocal8Bit().constData(), stderr);
}

[[noreturn]] void usage(const QCommandLineParser& parser, const QString& problem) {
    say(problem + QLatin1Char('\n') + parser.helpText());
    std::exit(kUsageError);
}

// The command line, with the preferences for what it leaves out.
Options readOptions(const QCoreApplication& app) {
    QCommandLineParser parser;
    parser.setApplicationDescription(
        QStringLiteral("Publishes a message folder as MMS files and packages in its folder mms."));
    parser.addHelpOption();
    parser.addPositionalArgument(QStringLiteral("MESSAGE_FOLDER"),
                                 QStringLiteral("The folder of the message."));
    parser.addOption({QStringLiteral("format"), QStringLiteral("Picture format: jpg, gif or bmp."),
                      QStringLiteral("format")});
    parser.addOption(
        {QStringLiteral("time"), QStringLiteral("Durations in s or ms."), QStringLiteral("unit")});
    parser.addOption({QStringLiteral("convert-sound"),
                      QStringLiteral("Convert WAV sound to AMR: yes or no."),
                      QStringLiteral("answer")});
    parser.addOption({QStringLiteral("packages"),
                      QStringLiteral("Packages to make: none, tpl, sis or tpl,sis."),
                      QStringLiteral("kinds")});
    parser.addOption({QStringLiteral("pdu"),
                      QStringLiteral("Also write mms.mms, the message as an MMS send request.")});
    parser.addOption({QStringLiteral("to"),
                      QStringLiteral("A recipient of mms.mms (repeatable): a phone number or an "
                                     "e-mail address."),
                      QStringLiteral("number")});
    parser.addOption({QStringLiteral("max-size"),
                      QStringLiteral("The largest message size in bytes; pictures are fitted."),
                      QStringLiteral("bytes")});
    parser.process(app);
    if (parser.positionalArguments().size() != 1)
        usage(parser, QStringLiteral("Name one message folder."));

    Options options;
    options.folder = parser.positionalArguments().constFirst();
    const auto preferenceOf = [](const char* key, const char* fallback) {
        return preference(QStringLiteral("preferences"), QString::fromLatin1(key),
                          QString::fromLatin1(fallback));
    };
    options.format = parser.isSet(QStringLiteral("format"))
                         ? parser.value(QStringLiteral("format")).toLower()
                         : preferenceOf("ImageFormat", "jpg");
    if (parser.isSet(QStringLiteral("format")) &&
        !QStringList{QStringLiteral("jpg"), QStringLiteral("gif"), QStringLiteral("bmp")}.contains(
            options.format))
        usage(parser, QStringLiteral("--format takes jpg, gif or bmp."));

    const QString time = parser.isSet(QStringLiteral("time")) ? parser.value(QStringLiteral("time"))
                                                              : preferenceOf("MMSTimeFormat", "ms");
    if (parser.isSet(QStringLiteral("time")) && time != QLatin1String("s") &&
        time != QLatin1String("ms"))
        usage(parser, QStringLiteral("--time takes s or ms."));
    options.timeFormat = time == QLatin1String("s") ? 1 : 0;

    const QString convert = parser.value(QStringLiteral("convert-sound"));
    if (parser.isSet(QStringLiteral("convert-sound")) && convert != QLatin1String("yes") &&
        convert != QLatin1String("no"))
        usage(parser, QStringLiteral("--convert-sound takes yes or no."));
    options.convertSound = convert != QLatin1String("no");

    if (parser.isSet(QStringLiteral("packages"))) {
        const QString kinds = parser.value(QStringLiteral("packages"));
        const QStringList words = kinds.split(QLatin1Char(','));
        options.makeTemplate = words.contains(QStringLiteral("tpl"));
        options.makeSis = words.contains(QStringLiteral("sis"));
        for (const QString& word : words)
            if (word != QLatin1String("tpl") && word != QLatin1String("sis") &&
                !(word == QLatin1String("none") && words.size() == 1))
                usage(parser, QStringLiteral("--packages takes none, tpl, sis or tpl,sis."));
    }
    options.makePdu = parser.isSet(QStringLiteral("pdu"));
    options.to = parser.values(QStringLiteral("to"));
    if (!options.to.isEmpty() && !options.makePdu)
        usage(parser, QStringLiteral("--to goes with --pdu."));
    for (const QString& recipient : options.to)
        if (mmsAddress(recipient).isEmpty())
            usage(parser, QStringLiteral("--to takes a phone number or an e-mail address, not %1.")
                              .arg(recipient));
    if (parser.isSet(QStringLiteral("max-size"))) {
        bool ok = false;
        options.maxSize = parser.value(QStringLiteral("max-size")).toLongLong(&ok);
        if (!ok || options.maxSize <= 0)
            usage(parser, QStringLiteral("--max-size takes a number of bytes above 0."));
    }
    return options;
}

// The user's preferences (or, without them, the installed defaults) and language. The store
// reads a copy in `scratch`: whatever it would write back goes there, never to the user's file.
void loadConfig(SharedConfig& shared, const QTemporaryDir& scratch) {
    QString source = joinPath(appFolder(), QStringLiteral("tessaly.xml"));
    if (!QFileInfo(source).isFile())
        source = joinPath(installedDataFolder(), QStringLiteral("tessaly.xml"));
    const QString copy = scratch.filePath(QStringLiteral("tessaly.xml"));
    if (!scratch.isValid() || !QFileInfo(source).isFile() || !QFile::copy(source, copy))
        return; // the built-in defaults serve
    auto properties = std::make_unique<clsPropertiesXML>();
    properties->Initialize(copy, QStringLiteral("tessaly"));
    clsPropertiesXML& store = shared.setProperties(std::move(properties));
    try {
        shared.setLocalizer(std::make_unique<clsXMLocalizer>(store))
            .SetLanguage(store.GetProp(QStringLiteral("preferences"), QStringLiteral("Language"),
                                       QStringLiteral("en-us")));
    } catch (const Failure&) {
        // Without a language file the texts show their keys.
        shared.releaseLocalizer();
    }
}

// One line on the terminal, rewritten for each stage (the escape clears what a longer line
// left behind).
void showProgress(std::int16_t slide, std::int16_t total) {
    QString text;
    if (slide >= 1)
        text = localTextPar(QStringLiteral("STR_PROCESS"),
                            {QString::number(slide), QString::number(total)});
    else if (total == 1)
        text = localText(QStringLiteral("STR_COMPRESS"));
    else if (total == 2)
        text = localText(QStringLiteral("STR_READY"));
    say(QLatin1Char('\r') + text + QStringLiteral("\x1b[K") +
        (slide < 1 && total == 2 ? QStringLiteral("\n") : QString()));
}
} // namespace

int main(int argc, char** argv) {
    // The program's preferences and portable marker carry its name, not this command's.
    if (qEnvironmentVariableIsEmpty("TESSALY_EXE_NAME"))
        qputenv("TESSALY_EXE_NAME", "tessaly");
    QCoreApplication app(argc, argv);
    QCoreApplication::setApplicationName(QStringLiteral("tessaly-publish"));
    const QTemporaryDir scratch;
    SharedConfig shared;
    loadConfig(shared, scratch);
    const Options options = readOptions(app);

    const QFileInfo folder(QDir::cleanPath(QDir(options.folder).absolutePath()));
    const QString messageFile = [] {
        const QString file =
            preference(QStringLiteral("paths"), QStringLiteral("messagefile"), QString());
        return file.isEmpty() ? QStringLiteral("message.xml") : file;
    }();
    if (!folder.isDir() ||
        !QFileInfo(folder.absoluteFilePath() + QLatin1Char('/') + messageFile).isFile()) {
        say(QStringLiteral("%1 holds no message (%2)\n").arg(options.folder, messageFile));
        return kNoInput;
    }

    clsMMSManager manager;
    manager.Initialize(folder.absoluteDir().absolutePath(), messageFile);
    manager.setPictureFormat(options.format);
    manager.setMaxMessageSize(options.maxSize);
    if (!options.makeTemplate)
        manager.ClearTemplateFileType(1);
    if (!options.makeSis)
        manager.ClearTemplateFileType(2);
    if (options.makePdu)
        manager.setMakePdu(true, options.to);
    if (isatty(STDERR_FILENO))
        QObject::connect(&manager, &clsMMSManager::ProsessingSlide, &showProgress);

    const std::shared_ptr<clsMessage> message = manager.OpenMsg(folder.fileName());
    if (!message) {
        say(QStringLiteral("%1 holds a message that cannot be read\n").arg(options.folder));
        return kNoInput;
    }
    const std::int32_t status =
        manager.SaveAsMMS(*message, options.convertSound, options.timeFormat);
    if (status != 0 || manager.GetSaveAsMMSStatus() != QLatin1String("OK"))
        say(manager.GetSaveAsMMSStatus() + QLatin1Char('\n'));
    return status;
}
