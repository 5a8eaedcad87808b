// The shipped language files: every key the program asks for, every window entry of the English
// file in every other language, markers kept, menu texts usable in menu strings; and the
// language that a first start picks from the system's locale.
#include "config/clsPropertiesXML.h"
#include "config/clsXMLocalizer.h"
#include "config/modLanguage.h"
#include "platform/modLocale.h"
#include "support/TestHome.h"

#include <QCoreApplication>
#include <QDir>
#include <QDirIterator>
#include <QFile>
#include <QFileInfo>
#include <QMap>
#include <QProcess>
#include <QRegularExpression>
#include <QSet>
#include <gtest/gtest.h>
#include <pugixml.hpp>

namespace {

// The keys of the string table that the program asks for: every literal of the key forms in
// the program's sources (tests and tools aside).
QStringList programKeys() {
    static const QRegularExpression literal(
        QStringLiteral("\"((?:STR|BTN|MNU|ERR|CHK|APP|ASK)_[A-Z0-9_]+)\""));
    const QDir root(sourceDataFolder() + QStringLiteral("/.."));
    QSet<QString> keys;
    QDirIterator it(root.absolutePath(), {QStringLiteral("*.cpp"), QStringLiteral("*.h")},
                    QDir::Files, QDirIterator::Subdirectories);
    while (it.hasNext()) {
        const QString path = it.next();
        const QString top = root.relativeFilePath(path).section(QLatin1Char('/'), 0, 0);
        if (top == QLatin1String("tests") || top == QLatin1String("bench") ||
            top.startsWith(QLatin1String("build")) || top.startsWith(QLatin1Char('.')))
            continue;
        QFile file(path);
        if (!file.open(QIODevice::ReadOnly))
            continue;
        const QString text = QString::fromUtf8(file.readAll());
        for (auto match = literal.globalMatch(text); match.hasNext();)
            keys.insert(match.next().captured(1));
    }
    QStringList sorted(keys.begin(), keys.end());
    sorted.sort();
    return sorted;
}

// Texts that become items of pop-up menu strings, where ",", ";", "|", "!" and "#" have
// meanings of their own and a lone "-" is a separator.
const char* const kMenuItemKeys[] = {
    "MNU_FILE_DELETE",        "MNU_FILE_EXIT",          "MNU_FILE_NEW",
    "MNU_FILE_OPEN",          "MNU_FILE_OPEN_TPL",      "MNU_FILE_SAVE",
    "MNU_FILE_SAVEAS",        "MNU_FILE_SAVEAS_SIS",    "MNU_FILE_SAVEAS_TPL",
    "MNU_FILE_SETTINGS",      "MNU_HELP_ABOUT",         "MNU_SLIDE_ADD",
    "MNU_SLIDE_AFTER",        "MNU_SLIDE_BACKGROUND",   "MNU_SLIDE_BEFORE",
    "MNU_SLIDE_DELETE",       "MNU_SLIDE_DELETE_IMAGE", "MNU_SLIDE_DELETE_SLIDE",
    "MNU_SLIDE_DELETE_SOUND", "MNU_SLIDE_DELETE_TEXT",  "MNU_SLIDE_DOWNLOAD_PICTURE",
    "MNU_SLIDE_DUPLICATE",    "MNU_SLIDE_INSERT",       "MNU_SLIDE_PREVIEW",
    "STR_ADD_TEXT",           "STR_PICTURE_FILE",       "STR_PICTURE_BACKGROUND",
    "STR_BACKGROUND_COLOR",   "STR_DUPLICATE",          "STR_DELETE",
    "STR_BRING_TO_FRONT",     "STR_SEND_TO_BACK",       "STR_PREVIEW_LOOP",
};

QString shippedLanguageFolder() {
    return sourceDataFolder() + QStringLiteral("/language/tessaly");
}

QStringList shippedLanguageCodes() {
    QStringList codes;
    const QFileInfoList files =
        QDir(shippedLanguageFolder()).entryInfoList({QStringLiteral("*.xml")}, QDir::Files);
    for (const QFileInfo& file : files)
        codes << file.completeBaseName();
    return codes;
}

// A language file read independently of the localiser: string keys (upper-cased) with their
// texts, and form-table keys with theirs.
struct LanguageFile {
    QMap<QString, QString> strings;
    QMap<QString, QString> forms;
    QString error;
};

QString textOf(const pugi::xml_node& node) {
    std::string out;
    for (const pugi::xpath_node& piece : node.select_nodes(".//text()"))
        out += piece.node().value();
    return QString::fromStdString(out);
}

LanguageFile readLanguageFile(const QString& code) {
    LanguageFile result;
    pugi::xml_document document;
    const QString path = shippedLanguageFolder() + QLatin1Char('/') + code + QStringLiteral(".xml");
    const pugi::xml_parse_result parsed = document.load_file(path.toLocal8Bit().constData());
    if (!parsed) {
        result.error = QString::fromUtf8(parsed.description());
        return result;
    }
    for (const auto& entry : document.select_nodes("/langtab/strings/string")) {
        const QString key = QString::fromUtf8(entry.node().attribute("name").value()).toUpper();
        result.strings[key] = textOf(entry.node().child("text"));
    }
    for (const auto& formEntry : document.select_nodes("/langtab/forms/form")) {
        const pugi::xml_node form = formEntry.node();
        const QString name = QString::fromUtf8(form.attribute("name").value());
        result.forms[name + QStringLiteral("_caption")] =
            QString::fromUtf8(form.attribute("caption").value());
        for (const pugi::xml_node& control : form.children()) {
            const QString stem =
                name + QLatin1Char('_') + QString::fromUtf8(control.attribute("name").value()) +
                QLatin1Char('_') + QString::fromUtf8(control.attribute("index").value()) +
                QLatin1Char('_');
            for (const char* kind : {"caption", "text"})
                if (control.child(kind))
                    result.forms[stem + QString::fromLatin1(kind)] = textOf(control.child(kind));
        }
    }
    return result;
}

QSet<QString> markersOf(const QString& text) {
    static const QRegularExpression marker(QStringLiteral("%(n|\\d)"));
    QSet<QString> found;
    for (auto it = marker.globalMatch(text); it.hasNext();)
        found.insert(it.next().captured(0));
    return found;
}

} // namespace

TEST(ShippedLanguages, EnglishAndGermanAreShippedAndRegistered) {
    const QStringList codes = shippedLanguageCodes();
    EXPECT_TRUE(codes.contains(QStringLiteral("en-us")));
    EXPECT_TRUE(codes.contains(QStringLiteral("de-de")));

    TestHome home(true);
    clsPropertiesXML props;
    for (const QString& code : codes) {
        EXPECT_TRUE(isLanguageAvailable(props, code)) << code.toStdString();
        // Some system language leads to it.
        QStringList langIds;
        props.GetPropList(langIds, QStringLiteral("langid"), QStringLiteral("="));
        bool reached = false;
        for (const QString& entry : langIds)
            reached = reached ||
                      entry.section(QLatin1Char('='), 1).section(QLatin1Char(';'), 0, 0) == code;
        EXPECT_TRUE(reached) << code.toStdString() << " has no langid entry";
    }
    clsXMLocalizer localizer(props);
    std::array<QStringList, 2> list;
    EXPECT_EQ(localizer.GetAvaliableLanguage(list), codes.size());
    EXPECT_EQ(QSet<QString>(list[1].begin(), list[1].end()),
              (QSet<QString>{QStringLiteral("English"), QStringLiteral("Deutsch")}));
}

TEST(ShippedLanguages, EveryLanguageHasEveryKeyAndEveryWindowEntry) {
    const LanguageFile english = readLanguageFile(QStringLiteral("en-us"));
    ASSERT_TRUE(english.error.isEmpty()) << english.error.toStdString();
    ASSERT_FALSE(english.forms.isEmpty());

    // The scan sees the program's keys (a scan that finds nothing would prove nothing).
    const QStringList keys = programKeys();
    ASSERT_GT(keys.size(), 40);
    ASSERT_TRUE(keys.contains(QStringLiteral("STR_UNTITLED")));
    ASSERT_TRUE(keys.contains(QStringLiteral("MNU_FILE_OPEN")));

    TestHome home(true);
    clsPropertiesXML props;
    for (const QString& code : shippedLanguageCodes()) {
        SCOPED_TRACE(code.toStdString());
        const LanguageFile file = readLanguageFile(code);
        ASSERT_TRUE(file.error.isEmpty()) << file.error.toStdString();

        // The localiser loads it without a failure and finds the same texts.
        props.SetProp(QStringLiteral("languages"), code, code + QStringLiteral(",1"));
        clsXMLocalizer localizer(props);
        ASSERT_NO_THROW(localizer.SetLanguage(code));
        ASSERT_EQ(localizer.GetLanguage(), code);

        for (const QString& k : keys) {
            EXPECT_TRUE(file.strings.contains(k)) << "missing string " << k.toStdString();
            EXPECT_FALSE(file.strings.value(k).trimmed().isEmpty())
                << "empty string " << k.toStdString();
            EXPECT_EQ(localizer.GetString(k), file.strings.value(k, k)) << k.toStdString();
        }
        for (auto it = english.strings.cbegin(); it != english.strings.cend(); ++it) {
            EXPECT_TRUE(file.strings.contains(it.key()))
                << "missing string " << it.key().toStdString();
            EXPECT_EQ(markersOf(file.strings.value(it.key())), markersOf(it.value()))
                << "markers of " << it.key().toStdString();
        }
        for (auto it = english.forms.cbegin(); it != english.forms.cend(); ++it) {
            EXPECT_TRUE(file.forms.contains(it.key()))
                << "missing entry " << it.key().toStdString();
            // An entry that holds text in English holds text in every language.
            if (!it.value().isEmpty()) {
                EXPECT_FALSE(file.forms.value(it.key()).isEmpty())
                    << "empty entry " << it.key().toStdString();
            }
        }
        for (auto it = file.forms.cbegin(); it != file.forms.cend(); ++it)
            EXPECT_EQ(localizer.GetFormText(it.key()), it.value()) << it.key().toStdString();
    }
}

TEST(ShippedLanguages, MenuTextsFitIntoMenuStrings) {
    for (const QString& code : shippedLanguageCodes()) {
        const LanguageFile file = readLanguageFile(code);
        for (const char* key : kMenuItemKeys) {
            const QString text = file.strings.value(QString::fromLatin1(key));
            EXPECT_FALSE(text.contains(QRegularExpression(QStringLiteral("[,;|!#]"))))
                << code.toStdString() << " " << key << ": " << text.toStdString();
            EXPECT_FALSE(text.startsWith(QLatin1Char('-'))) << code.toStdString() << " " << key;
        }
    }
}

TEST(ShippedLanguages, TheSystemsOwnTextsStandAsTheyAre) {
    const LanguageFile english = readLanguageFile(QStringLiteral("en-us"));
    const std::pair<const char*, const char*> fixed[] = {
        {"frmSettings_chkAskNewSlide__caption", "Ask before adding a new slide"},
        {"frmSettings_chkShowSplash__caption", "Show splash screen at program start"},
        {"frmSettings_ctlDockState_2_caption", "Remember last docking state"},
        {"frmSettings_chkTimeFormat_1_caption", "Seconds"},
        {"frmSettings_chkCommunication_3_caption", "Use Q500/Q600 file manager"},
        {"frmDownloadImage_optImageFmt_0_caption", "Download as JPG"},
        {"frmDownloadImage_lblCaption__caption", "Download picture to phone"},
        {"frmMain_lblTotalTimeDesc__caption", "Total time:"},
    };
    for (const auto& [key, text] : fixed)
        EXPECT_EQ(english.forms.value(QString::fromLatin1(key)), QString::fromUtf8(text)) << key;
}

namespace {

// Runs the probe program with a system locale of `lang` over the app folder `home`; gives its
// one line of output: the language id key, the system language code and whether it is
// available.
QString probeWithLocale(const TestHome& home, const QString& lang) {
    QProcess probe;
    QProcessEnvironment env = QProcessEnvironment::systemEnvironment();
    for (const char* name : {"LC_ALL", "LC_MESSAGES", "LC_CTYPE", "LC_NUMERIC", "LANGUAGE"})
        env.remove(QString::fromLatin1(name));
    env.insert(QStringLiteral("LANG"), lang);
    env.insert(QStringLiteral("TESSALY_HOME"), home.path());
    env.insert(QStringLiteral("TESSALY_EXE_NAME"), QStringLiteral("tessaly"));
    probe.setProcessEnvironment(env);
    probe.start(QCoreApplication::applicationDirPath() + QStringLiteral("/localizer_probe"), {});
    if (!probe.waitForFinished(15000))
        return QStringLiteral("probe did not finish");
    return QString::fromUtf8(probe.readAllStandardOutput()).trimmed() +
           QString::fromUtf8(probe.readAllStandardError()).trimmed();
}

} // namespace

// Start-up on a first run: the system's locale picks the language file.
TEST(StartupLanguage, SystemLocaleChoosesTheLanguageOnFirstRun) {
    TestHome home(true);
    const std::pair<const char*, const char*> cases[] = {
        {"de_DE.UTF-8", "H0407 de-de available"},
        {"de_AT.UTF-8", "H0C07 de-de available"},
        {"de_CH.UTF-8", "H0807 de-de available"},
        {"de_LU.UTF-8", "H1007 de-de available"},
        {"en_US.UTF-8", "H0409 en-us available"},
        {"en_GB.UTF-8", "H0809 en-us available"},
        // A language the locale table does not know counts as US English.
        {"sw_KE.UTF-8", "H0409 en-us available"},
        {"C", "H0409 en-us available"},
    };
    for (const auto& [lang, expected] : cases)
        EXPECT_EQ(probeWithLocale(home, QString::fromLatin1(lang)), QString::fromLatin1(expected));
    // A language id without a catalogue entry gives English too.
    home.write(QStringLiteral("tessaly.xml"),
               home.read(QStringLiteral("tessaly.xml"))
                   .replace("<KEY name=\"H0C07\">de-de;de-at</KEY>", ""));
    EXPECT_EQ(probeWithLocale(home, QStringLiteral("de_AT.UTF-8")),
              QStringLiteral("H0C07 en-us available"));
}
