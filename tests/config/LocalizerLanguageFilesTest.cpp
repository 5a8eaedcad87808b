// The shipped language files: every key the program asks for, every window entry of the English
// file in every other language, markers kept, menu texts usable in menu strings.
#include "config/clsPropertiesXML.h"
#include "config/clsXMLocalizer.h"
#include "config/modLanguage.h"
#include "support/TestHome.h"

#include <QDir>
#include <QDirIterator>
#include <QRegularExpression>
#include <QSet>
#include <gtest/gtest.h>
#include <pugixml.hpp>

using namespace Qt::StringLiterals;

namespace {

// The keys of the string table that the program asks for: every literal of the key forms in
// the program's sources (tests and tools aside).
QStringList programKeys() {
    static const QRegularExpression literal(u"\"((?:STR|BTN|MNU|ERR|CHK|APP|ASK)_[A-Z0-9_]+)\""_s);
    const QDir root(sourceDataFolder() + u"/.."_s);
    QSet<QString> keys;
    QDirIterator it(root.absolutePath(), {u"*.cpp"_s, u"*.h"_s}, QDir::Files,
                    QDirIterator::Subdirectories);
    while (it.hasNext()) {
        const QString path = it.next();
        const QString top = root.relativeFilePath(path).section(u'/', 0, 0);
        if (top == u"tests"_s || top == u"bench"_s || top.startsWith(u"build"_s) ||
            top.startsWith(u'.'))
            continue;
        QFile file(path);
        if (file.open(QIODevice::ReadOnly))
            for (auto match = literal.globalMatch(QString::fromUtf8(file.readAll()));
                 match.hasNext();)
                keys.insert(match.next().captured(1));
    }
    return QStringList(keys.begin(), keys.end());
}

// Keys that become items of pop-up menu strings, where ",", ";", "|", "!" and "#" have
// meanings of their own and a lone "-" is a separator.
bool isMenuItemKey(const QString& key) {
    static const QSet<QString> others{
        u"STR_ADD_TEXT"_s,         u"STR_PICTURE_FILE"_s, u"STR_PICTURE_BACKGROUND"_s,
        u"STR_BACKGROUND_COLOR"_s, u"STR_DUPLICATE"_s,    u"STR_DELETE"_s,
        u"STR_BRING_TO_FRONT"_s,   u"STR_SEND_TO_BACK"_s, u"STR_PREVIEW_LOOP"_s};
    return (key.startsWith(u"MNU_"_s) && key.count(u'_') > 1) || others.contains(key);
}

// The string keys (upper case) and form-table keys of a shipped file.
std::pair<QStringList, QStringList> keysOf(const QString& code) {
    pugi::xml_document document;
    const QString path = sourceDataFolder() + u"/language/tessaly/"_s + code + u".xml"_s;
    EXPECT_TRUE(document.load_file(path.toLocal8Bit().constData())) << code.toStdString();
    QStringList strings, forms;
    for (const auto& entry : document.select_nodes("/langtab/strings/string/@name"))
        strings << QString::fromUtf8(entry.attribute().value()).toUpper();
    for (const auto& entry : document.select_nodes("/langtab/forms/form")) {
        const QString form = QString::fromUtf8(entry.node().attribute("name").value());
        forms << form + u"_caption"_s;
        for (const pugi::xml_node& control : entry.node().children())
            for (const char* kind : {"caption", "text"})
                if (control.child(kind))
                    forms << u"%1_%2_%3_%4"_s.arg(
                        form, QString::fromUtf8(control.attribute("name").value()),
                        QString::fromUtf8(control.attribute("index").value()),
                        QString::fromLatin1(kind));
    }
    return {strings, forms};
}

QSet<QString> markersOf(const QString& text) {
    QSet<QString> found;
    for (auto it = QRegularExpression(u"%(n|\\d)"_s).globalMatch(text); it.hasNext();)
        found.insert(it.next().captured(0));
    return found;
}

} // namespace

TEST(ShippedLanguages, EveryLanguageHoldsWhatTheProgramAsks) {
    // The scan sees the program's keys (a scan that finds nothing would prove nothing).
    const QStringList keys = programKeys();
    ASSERT_GT(keys.size(), 40);
    ASSERT_TRUE(keys.contains(u"STR_UNTITLED"_s) && keys.contains(u"MNU_FILE_OPEN"_s));
    QStringList codes;
    for (const QFileInfo& file : QDir(sourceDataFolder() + u"/language/tessaly"_s).entryInfoList())
        if (file.suffix() == u"xml"_s)
            codes << file.completeBaseName();
    ASSERT_TRUE(codes.contains(u"en-us"_s) && codes.contains(u"de-de"_s));

    TestHome home(true);
    clsPropertiesXML props;
    clsXMLocalizer english(props), localizer(props);
    ASSERT_TRUE(english.SetLanguage(u"en-us"_s));
    const auto [englishStrings, englishForms] = keysOf(u"en-us"_s);
    ASSERT_FALSE(englishForms.isEmpty());
    std::array<QStringList, 2> catalogue;
    EXPECT_EQ(localizer.GetAvaliableLanguage(catalogue), codes.size());
    for (const QString& code : codes) {
        SCOPED_TRACE(code.toStdString());
        EXPECT_TRUE(isLanguageAvailable(props, code));
        ASSERT_NO_THROW(localizer.SetLanguage(code));
        ASSERT_EQ(localizer.GetLanguage(), code);
        const auto [strings, forms] = keysOf(code);
        for (const QString& key : keys + englishStrings) {
            const QString text = localizer.GetString(key);
            EXPECT_TRUE(strings.contains(key) && !text.trimmed().isEmpty()) << key.toStdString();
            EXPECT_EQ(markersOf(text), markersOf(english.GetString(key))) << key.toStdString();
            EXPECT_FALSE(isMenuItemKey(key) &&
                         (text.contains(QRegularExpression(u"[,;|!#]"_s)) || text.startsWith(u'-')))
                << key.toStdString() << ": " << text.toStdString();
        }
        // An entry that holds text in English holds text in every language.
        for (const QString& key : englishForms)
            EXPECT_TRUE(forms.contains(key) && (english.GetFormText(key).isEmpty() ||
                                                !localizer.GetFormText(key).isEmpty()))
                << key.toStdString();
    }
}

// The texts of the original program stand as they were.
TEST(ShippedLanguages, TheSystemsOwnTextsStandAsTheyAre) {
    TestHome home(true);
    clsPropertiesXML props;
    clsXMLocalizer english(props);
    ASSERT_TRUE(english.SetLanguage(u"en-us"_s));
    const std::pair<const char*, const char*> fixed[] = {
        {"frmSettings_chkAskNewSlide__caption", "Ask before adding a new slide"},
        {"frmSettings_chkShowSplash__caption", "Show splash screen at program start"},
        {"frmSettings_ctlDockState_2_caption", "Remember last docking state"},
        {"frmSettings_chkTimeFormat_1_caption", "Seconds"},
        {"frmSettings_chkCommunication_0_caption", "Disable phone communication"},
        {"frmDownloadImage_optImageFmt_0_caption", "Download as JPG"},
        {"frmDownloadImage_lblCaption__caption", "Download picture to phone"},
        {"frmMain_lblTotalTimeDesc__caption", "Total time:"}};
    for (const auto& [key, text] : fixed)
        EXPECT_EQ(english.GetFormText(QString::fromLatin1(key)), QString::fromUtf8(text)) << key;
}
