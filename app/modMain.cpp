#include "app/modMain.h"

#include "app/SingleInstance.h"
#include "app/TessalyApplication.h"
#include "app/frmMain.h"
#include "config/clsProperties.h"
#include "config/clsPropertiesXML.h"
#include "config/clsXMLocalizer.h"
#include "config/modConfig.h"
#include "config/modLanguage.h"
#include "controls/QtDialogResponder.h"
#include "controls/ctlMainMenu.h"
#include "controls/frmSplash.h"
#include "document/clsMessage.h"
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
#include <QLabel>
#include <QSaveFile>
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

void releaseSharedObjects() {
    if (SharedConfig* shared = SharedConfig::current())
        shared->releaseProperties(); // saves a changed store
}

namespace {

// TESSALY_SMOKE_REPORT=<file> lets a script check a started program from outside. Every box is
// answered with its default button and recorded instead of shown (dialogs are cancelled, pop-up
// menus choose nothing). Once start-up has ended, the current message is saved through the
// window's Save As path under TESSALY_SMOKE_NAME ("Smoke test" when unset); then <file>
// receives, one "name=value" line each: the window title, the message name the window showed,
// the menu bar's captions joined by "|", the saved file, whether the save succeeded ("1"/"0"),
// and the boxes shown. Then the program exits the normal way.
class SmokeRun : public QObject, public DialogResponder {
public:
    SmokeRun(QObject* parent, QString reportFile)
        : QObject(parent), mFile(std::move(reportFile)), mPrevious(dialogResponder()) {
        setDialogResponder(this);
        connect(qApp, &QCoreApplication::aboutToQuit, this, [this] {
            if (dialogResponder() == this)
                setDialogResponder(mPrevious);
        });
    }
    ~SmokeRun() override {
        if (dialogResponder() == this)
            setDialogResponder(nullptr);
    }

    void watch(frmMain* window) {
        mWindow = window;
        auto* poll = new QTimer(this);
        connect(poll, &QTimer::timeout, this, [this, poll] {
            if (gStarting || !mWindow->isVisible())
                return;
            poll->stop();
            run();
        });
        poll->start(20);
    }

    int msgBox(const QString& text, int style, const QString& title) override {
        mBoxes << title + QStringLiteral(": ") +
                      QString(text).replace(QLatin1Char('\n'), QLatin1Char(' '));
        return mExiting ? int(Vb::Yes) : msgBoxDefaultAnswer(style);
    }
    bool chooseColor(QWidget*, std::int32_t&, int) override { return false; }
    bool getOpenFileName(QWidget*, QString&, const QString&, const QString&, const QString&,
                         const QString&) override {
        return false;
    }
    QString popupChoice(QMenu*, const QPoint&) override { return {}; }

private:
    QStringList menuCaptions() const {
        QStringList captions;
        if (const auto* menu = mWindow->findChild<ctlMainMenu*>())
            for (int i = 0; i < ctlMainMenu::kMenuCount; ++i)
                captions << (menu->MenuLabel(i) ? menu->MenuLabel(i)->text() : QString());
        return captions;
    }

    void run() {
        QStringList lines;
        lines << QStringLiteral("title=") + mWindow->windowTitle();
        lines << QStringLiteral("message=") +
                     (mWindow->message() ? mWindow->message()->name() : QString());
        lines << QStringLiteral("menu=") + menuCaptions().join(QLatin1Char('|'));

        const QString name = qEnvironmentVariableIsEmpty("TESSALY_SMOKE_NAME")
                                 ? QStringLiteral("Smoke test")
                                 : qEnvironmentVariable("TESSALY_SMOKE_NAME");
        const qsizetype boxesBefore = mBoxes.size();
        mWindow->SaveMessageAs(name);
        const clsMessage* message = mWindow->message();
        const QString file =
            message ? joinPath(message->Path(), QStringLiteral("message.xml")) : QString();
        const bool saved = message && mBoxes.size() == boxesBefore && !mWindow->changed() &&
                           QFileInfo::exists(file);
        lines << QStringLiteral("file=") + file;
        lines << QStringLiteral("saved=") + (saved ? QStringLiteral("1") : QStringLiteral("0"));
        lines << QStringLiteral("boxes=") + QString::number(mBoxes.size());
        for (const QString& box : mBoxes)
            lines << QStringLiteral("box=") + box;
        write(lines.join(QLatin1Char('\n')) + QLatin1Char('\n'));

        mExiting = true; // yes to the exit question
        mWindow->RequestExit();
    }

    void write(const QString& text) const {
        QSaveFile out(mFile);
        const QByteArray bytes = text.toUtf8();
        if (!out.open(QIODevice::WriteOnly) || out.write(bytes) != bytes.size() || !out.commit())
            qWarning("tessaly: cannot write the smoke report %s", qPrintable(mFile));
    }

    QString mFile;
    DialogResponder* mPrevious;
    frmMain* mWindow = nullptr;
    QStringList mBoxes;
    bool mExiting = false;
};

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
    // The sound layer comes with the audio subsystem.

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
