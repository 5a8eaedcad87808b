#include "app/modMain.h"

#include "app/SingleInstance.h"
#include "app/SmokeRun.h"
#include "app/TessalyApplication.h"
#include "app/frmMain.h"
#include "audio/clsMCIManager.h"
#include "audio/modMCI.h"
#include "audio/modPlaySound.h"
#include "config/clsProperties.h"
#include "config/clsPropertiesXML.h"
#include "config/clsXMLocalizer.h"
#include "config/modConfig.h"
#include "config/modLanguage.h"
#include "controls/QtDialogResponder.h"
#include "controls/frmSplash.h"
#include "platform/AppPaths.h"
#include "platform/Failure.h"
#include "platform/VbFormat.h"
#include "platform/modDialogs.h"
#include "platform/modLocale.h"
#include "platform/modShared.h"
#include "platform/modText.h"

#include <QDateTime>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QTimer>
#include <cstdlib>
#include <memory>
#include <utility>

namespace {

QString gStep;

const QString kPreferences = QStringLiteral("preferences");

// Writes `code`, or the part before its first "-", or "en-us", whichever is available first.
QString availableLanguageFor(QString code) {
    if (isLanguageAvailable(*gProperties(), code))
        return code;
    if (code.contains(QLatin1Char('-')))
        code = code.section(QLatin1Char('-'), 0, 0);
    return isLanguageAvailable(*gProperties(), code) ? code : QStringLiteral("en-us");
}

// The `Language` value that a legacy `LanguageID` entry stands for.
QString legacyLanguage(QString value) {
    if (!value.startsWith(QLatin1Char('H')))
        value = langIdToKey(value.toInt());
    const QString entry = gProperties()->GetProp(QStringLiteral("langid"), value, QString());
    if (entry.isEmpty())
        return QStringLiteral("en-us");
    QString code = entry.section(QLatin1Char(';'), 0, 0).toLower();
    if (!gProperties()->GetProp(QStringLiteral("languages"), code, QString()).isEmpty())
        return code;
    code = code.section(QLatin1Char('-'), 0, 0).toLower();
    if (!gProperties()->GetProp(QStringLiteral("languages"), code, QString()).isEmpty())
        return code;
    return QStringLiteral("en-us");
}

bool showSplashWanted() {
    return gProperties()->GetProp(kPreferences, QStringLiteral("ShowSplash"),
                                  QStringLiteral("1")) == QLatin1String("1");
}

QString commandLineOf(const QStringList& arguments) {
    QStringList parts;
    for (qsizetype i = 1; i < arguments.size(); ++i) {
        const QString& a = arguments[i];
        parts << (a.contains(QLatin1Char(' ')) ? QLatin1Char('"') + a + QLatin1Char('"') : a);
    }
    const QString line = parts.join(QLatin1Char(' '));
    if (line.isEmpty())
        return {};
    return line.startsWith(QLatin1Char(' ')) ? line : QLatin1Char(' ') + line;
}

void showSplash() {
    gSplashActive = true;
    frmSplash* splash = frmSplash::Load(); // translates itself when it loads
    splash->show();
    QCoreApplication::processEvents();
}

} // namespace

QString currentStep() {
    return gStep;
}

void chooseFirstRunLanguage() {
    const QString initialized =
        gProperties()->GetProp(kPreferences, QStringLiteral("Initialized"), QString());
    if (!initialized.isEmpty() && initialized != QLatin1String("0"))
        return;
    gProperties()->SetProp(kPreferences, QStringLiteral("Language"),
                           availableLanguageFor(getSystemLanguageCode(*gProperties())));
    gProperties()->SetProp(kPreferences, QStringLiteral("Initialized"), QStringLiteral("1"));
}

void importLegacySettings() {
    const QString file = joinPath(appFolder(), exeBaseName() + QStringLiteral(".ini"));
    if (!QFileInfo::exists(file))
        return;

    clsProperties ini;
    ini.setIniFileName(file);
    const bool deleteAfter = ini.GetProp(QStringLiteral("this"), QStringLiteral("Delete"),
                                         QStringLiteral("0")) == QLatin1String("1");
    const bool writeLog = ini.GetProp(QStringLiteral("this"), QStringLiteral("Log"),
                                      QStringLiteral("0")) == QLatin1String("1");

    bool result = false;
    QStringList sections;
    if (ini.GetSections(sections) >= 0) {
        for (const QString& section : sections) {
            if (section == QLatin1String("this"))
                continue;
            QStringList entries;
            ini.GetPropList(section, entries);
            for (const QString& entry : entries) {
                const QStringList fields = entry.split(QLatin1Char('='));
                QString key = fields.value(0);
                QString value = fields.value(1);
                if (key == QLatin1String("LanguageID")) {
                    key = QStringLiteral("Language");
                    value = legacyLanguage(value);
                }
                gProperties()->SetProp(section, key, value);
            }
        }
        gProperties()->SaveXmlFile();
        result = true;
    }

    if (writeLog) {
        const QString stamp = Format(QDateTime::currentDateTime(), QStringLiteral("yymmdd_HhNnSs"));
        gProperties()->SetProp(QStringLiteral("AutoUpdate"), QStringLiteral("U_") + stamp,
                               result ? QStringLiteral("OK") : QStringLiteral("ERROR"));
    }
    if (deleteAfter) {
        QFile(file).setPermissions(QFile::ReadOwner | QFile::WriteOwner);
        QFile::remove(file);
    }
}

int completePreferences(clsPropertiesXML& properties) {
    const QString data = installedDataFolder();
    if (data.isEmpty())
        return -1;
    const QString defaults = joinPath(data, exeBaseName() + QStringLiteral(".xml"));
    // A portable install's own file is its defaults as well.
    if (QFileInfo(defaults) == QFileInfo(properties.XmlFileName()))
        return 0;
    const int added = properties.AddMissingDefaults(defaults);
    if (added > 0) {
        QDir().mkpath(QFileInfo(properties.XmlFileName()).path());
        properties.SaveXmlFile();
    }
    return added;
}

void reportFailure(const Failure& failure, const QString& step) {
    if (failure.number() == FailureNumber::PrinterError) {
        MsgBox(QStringLiteral(
                   "There is no printer installed.\nInstall a printer and restart the program."),
               Vb::Critical, QStringLiteral("Printer Error"));
        return;
    }
    MsgBox(localText(QStringLiteral("STR_ERROR_UNEXPECTED")) + step + QStringLiteral("\n\n") +
               failure.description() + QStringLiteral(" (") + QString::number(failure.number()) +
               QLatin1Char(')'),
           Vb::Critical, localText(QStringLiteral("STR_ERROR")));
}

bool hasWaveOutDevice() {
    return waveOutGetNumDevs() >= 1;
}

void releaseSharedObjects() {
    stopPlaying();
    if (SharedConfig* shared = SharedConfig::current())
        shared->releaseProperties(); // saves a changed store
    if (clsMCIManager* sound = gMCIManager()) {
        sound->closeSound(QStringLiteral("csound"));
        sound->closeSound(QStringLiteral("playsound"));
        setMCIManager(nullptr);
    }
}

namespace {

// The start-up steps; a failure leaves them at once for the handler.
void runStartup(TessalyApplication& app, SharedConfig& shared) {
    gUserLCID = userDefaultLCID();
    gDecimalSeparator = localeDecimalSeparator();

    gStep = QStringLiteral("ModMain.Main - Program Properties");
    clsPropertiesXML& properties = shared.setProperties(std::make_unique<clsPropertiesXML>());
    gStarting = true;
    completePreferences(properties);

    SmokeRun* smoke = nullptr;
    if (!qEnvironmentVariableIsEmpty("TESSALY_SMOKE_REPORT"))
        smoke = new SmokeRun(&app, qEnvironmentVariable("TESSALY_SMOKE_REPORT"));

    if (showSplashWanted())
        showSplash();

    chooseFirstRunLanguage();
    importLegacySettings();

    gStep = QStringLiteral("ModMain.Main - clsMCIManager");
    setMCIManager(std::make_unique<clsMCIManager>());

    gStep = QStringLiteral("ModMain.Main - clsXMLLocalizer");
    clsXMLocalizer& localizer = shared.setLocalizer(std::make_unique<clsXMLocalizer>(properties));
    const QString language =
        properties.GetProp(kPreferences, QStringLiteral("Language"), QStringLiteral("en-us"));
    gStep = QStringLiteral("ModMain.Main - clsXMLLocalizer.SetLanguage");
    localizer.SetLanguage(language);

    gCommandLine = commandLineOf(app.arguments());

    auto* window = new frmMain();
    gMainWindow = window;
    gStep = QStringLiteral("ModMain.Main - frmMain.Show");
    window->show();
    if (smoke)
        smoke->watch(window);

    // For start-up timing (scripts/startup-time.sh): leave as soon as the window is up.
    if (qEnvironmentVariableIsSet("TESSALY_QUIT_WHEN_SHOWN"))
        QTimer::singleShot(0, &app, [] { std::_Exit(0); });

    // The splash shows once more over the main window and runs its own timed life.
    if (showSplashWanted())
        showSplash();
}

} // namespace

int Main(int argc, char** argv) {
    TessalyApplication app(argc, argv);
    const QtDialogResponder dialogs; // boxes and dialogs show from here on

    // A second start brings the first one forward and leaves without a word.
    SingleInstance instance(SingleInstance::defaultKey());
    if (instance.activateRunningInstance())
        return 0;
    if (!instance.listen([] {
            if (gMainWindow) {
                gMainWindow->showNormal();
                gMainWindow->raise();
                gMainWindow->activateWindow();
            }
        })) {
        // Another start won the race for the socket: it is the one instance.
        if (instance.activateRunningInstance())
            return 0;
    }

    // The preferences store and the localiser live until the event loop has ended (the main
    // window's unload saves and drops the store before that).
    SharedConfig shared;
    try {
        runStartup(app, shared);
    } catch (const Failure& failure) {
        reportFailure(failure, gStep);
        return 1;
    } catch (const std::exception& e) {
        reportFailure(Failure(FailureNumber::InvalidProcedureCall, QStringLiteral("Main"),
                              QString::fromLocal8Bit(e.what())),
                      gStep);
        return 1;
    }
    return app.exec();
}
