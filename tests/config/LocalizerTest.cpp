// The localiser's tables: loading a language file, string look-up and parameters, the form
// table's keys and failures, the language catalogue, fonts by code page.
#include "LocalizerSupport.h"

#include "config/clsXMLocalizer.h"
#include "platform/Failure.h"
#include "platform/modLocale.h"
#include "platform/modText.h"

#include <QFont>
#include <memory>
#include <tuple>

namespace {

const QString kForms =
    u"<form name=\"frmMain\" caption=\"Main window\"><control name=\"cmdOk\" index=\"\">"
    "<caption>OK</caption><text>Confirm</text></control><x name=\"lblItem\" index=\"2\">"
    "<caption>Second</caption></x></form><!-- outside forms --><form name=\"frmA\" caption=\"A\">"
    "<c name=\"opt\" index=\"0\"><caption>zero<!-- x --></caption></c><c name=\"opt\" "
    "index=\"1\"><caption>one</caption></c></form><form name=\"frmB\" caption=\"B\"><c "
    "name=\"opt\" index=\"0\"><caption>B</caption></c></form>"_s;

} // namespace

using LocalizerStrings = LocalizerFixture;

TEST_F(LocalizerStrings, StringTableAndParameters) {
    writeLanguage(u"en-us"_s, {},
                  str(u"STR_TWICE"_s, u"first"_s) + str(u"str_twice"_s, u"second"_s) +
                      str(u"STR_FILE"_s, u"The file %0 exists.%nReplace %0?"_s) +
                      str(u"STR_ELEVEN"_s, u"%0|%1|%10"_s) + str(u"STR_CHAIN"_s, u"[%0][%1]"_s) +
                      str(u"STR_CASE"_s, u"%N %n"_s) +
                      // no children: not entered; children but no text: entered empty; the last
                      // text child wins, text below it is joined, blanks stay; a comment is
                      // passed over
                      u"<string name=\"STR_EMPTY\"/><string name=\"STR_NOTEXT\"><note>x</note>"
                      "</string><string name=\"STR_TWO\"><text>one</text><text>t<b>w</b>o </text>"
                      "</string><!-- a comment --><string name=\"STR_UTF\"><text>Über &amp; "
                      "&lt;x&gt;</text></string>"_s);
    auto localizer = std::make_unique<clsXMLocalizer>(props);
    // Before any language is set every key stands for itself, for lower layers too.
    EXPECT_EQ(localizer->GetString(u"STR_UTF"_s) + localizer->GetLanguage(), u"STR_UTF"_s);
    EXPECT_EQ(localText(u"STR_UTF"_s), u"STR_UTF"_s);
    ASSERT_TRUE(localizer->SetLanguage(u"en-us"_s));
    EXPECT_EQ(localText(u"str_utf"_s), u"Über & <x>"_s);
    const std::pair<QString, QString> strings[] = {
        {u"STR_MISSING"_s, u"STR_MISSING"_s},
        {u"Str_Twice"_s, u"second"_s},
        {u"STR_EMPTY"_s, u"STR_EMPTY"_s},
        {u"STR_NOTEXT"_s, QString()},
        {u"STR_TWO"_s, u"two "_s},
        {u"STR_UTF"_s, u"Über & <x>"_s},
        {u"STR_FILE"_s, u"The file %0 exists.%nReplace %0?"_s}};
    for (const auto& [key, text] : strings)
        EXPECT_EQ(localizer->GetString(key), text) << key.toStdString();

    QStringList eleven;
    for (int i = 0; i <= 10; ++i)
        eleven << u"p%1."_s.arg(QChar(u'a' + i));
    const std::tuple<QString, QStringList, QString> withParameters[] = {
        {u"STR_FILE"_s, {u"a.wav"_s}, u"The file a.wav exists.\r\nReplace a.wav?"_s},
        {u"STR_FILE"_s, {}, u"The file %0 exists.\r\nReplace %0?"_s},
        {u"STR_CASE"_s, {}, u"%N \r\n"_s}, // case sensitive
        // "%10" is eaten by "%1" before its own turn.
        {u"STR_ELEVEN"_s, eleven, u"pa.|pb.|pb.0"_s},
        // A parameter that holds a later marker is replaced in that marker's turn.
        {u"STR_CHAIN"_s, {u"%1"_s, u"x"_s}, u"[x][x]"_s},
        {u"STR_CHAIN"_s, {u"y"_s, u"%0"_s}, u"[y][%0]"_s},
        // A missing key comes back as it stands.
        {u"STR_MISSING%n"_s, {u"x"_s}, u"STR_MISSING%n"_s},
    };
    for (const auto& [key, params, text] : withParameters)
        EXPECT_EQ(localizer->GetStringPar(key, params), text) << params.join(u',').toStdString();
    // The lower layers' look-up goes with the localiser.
    localizer.reset();
    EXPECT_EQ(localText(u"str_utf"_s), u"str_utf"_s);
}

using LocalizerLanguages = LocalizerFixture;

TEST_F(LocalizerLanguages, SetLanguage) {
    addLanguage(u"de-de"_s, u"Deutsch,0"_s);
    addLanguage(u"fr-fr"_s, u"Francais,1"_s);
    addLanguage(u"it-it"_s, u"Italiano,1"_s);
    writeLanguage(u"en-us"_s, kForms, str(u"STR_ERROR"_s, u"Error"_s));
    writeLanguage(u"de-de"_s, {}, str(u"STR_ERROR"_s, u"Fehler"_s));
    writeLanguage(u"xx-xx"_s, {}, str(u"STR_ERROR"_s, u"Xrror"_s));
    writeRawLanguage(u"it-it"_s, "<langtab><strings><string name=\"STR_ERROR\">");
    clsXMLocalizer localizer(props);
    // A disabled language falls back to English.
    EXPECT_TRUE(localizer.SetLanguage(u"de-de"_s));
    EXPECT_EQ(localizer.GetLanguage(), u"en-us"_s);
    EXPECT_EQ(localizer.GetString(u"STR_ERROR"_s), u"Error"_s);
    // A file alone does not make a language: the catalogue must name it.
    EXPECT_FALSE(localizer.SetLanguage(u"xx-xx"_s));
    EXPECT_EQ(localizer.GetLanguage(), u"en-us"_s);
    EXPECT_EQ(localizer.GetFormText(u"frmMain_caption"_s), u"Main window"_s);
    // Enabled by any text other than "0".
    addLanguage(u"de-de"_s, u"Deutsch,yes"_s);
    EXPECT_TRUE(localizer.SetLanguage(u"de-de"_s));
    EXPECT_EQ(localizer.GetString(u"STR_ERROR"_s), u"Fehler"_s);
    // Broken XML or no file: true all the same, and nothing is left of the former language.
    for (const QString& code : {u"it-it"_s, u"fr-fr"_s}) {
        ASSERT_TRUE(localizer.SetLanguage(u"en-us"_s));
        EXPECT_TRUE(localizer.SetLanguage(code));
        EXPECT_EQ(localizer.GetLanguage(), code);
        EXPECT_EQ(localizer.GetString(u"STR_ERROR"_s), u"STR_ERROR"_s);
        EXPECT_EQ(localizer.GetFormText(u"frmMain_cmdOk__caption"_s), QString());
    }
}

TEST_F(LocalizerLanguages, FormTable) {
    writeLanguage(u"en-us"_s, kForms, {});
    clsXMLocalizer localizer(props);
    ASSERT_NO_THROW(localizer.SetLanguage(u"en-us"_s));
    const std::pair<QString, QString> cases[] = {
        {u"frmMain_caption"_s, u"Main window"_s},
        {u"frmMain_cmdOk__caption"_s, u"OK"_s},
        {u"frmMain_cmdOk__text"_s, u"Confirm"_s},
        {u"frmMain_lblItem_2_caption"_s, u"Second"_s},
        {u"frmMain_lblItem_2_text"_s, QString()},
        {u"FRMMAIN_cmdOk__caption"_s, QString()}, // form keys compare exactly
        {u"frmA_opt_0_caption"_s, u"zero"_s},
        {u"frmA_opt_1_caption"_s, u"one"_s},
        {u"frmB_opt_0_caption"_s, u"B"_s}};
    for (const auto& [key, text] : cases)
        EXPECT_EQ(localizer.GetFormText(key), text) << key.toStdString();
}

TEST_F(LocalizerLanguages, DamagedFormsFailTheLoadAfterTheStrings) {
    const QString control = u"<c name=\"cmdOk\" index=\"\"><caption>OK</caption></c>"_s;
    // A comment among a form's controls, the same control twice, the same form twice (its title
    // key repeats), a control without its index attribute.
    const std::pair<QString, int> cases[] = {
        {u"<form name=\"frmA\" caption=\"A\"><!-- no -->"_s + control + u"</form>"_s,
         FailureNumber::ObjectNotSet},
        {u"<form name=\"frmA\" caption=\"A\">"_s + control + control + u"</form>"_s, 457},
        {u"<form name=\"frmA\" caption=\"A\"/><form name=\"frmA\" caption=\"A\"/>"_s, 457},
        {u"<form name=\"frmA\" caption=\"A\"><c name=\"cmdOk\"/></form>"_s,
         FailureNumber::ObjectNotSet},
    };
    for (const auto& [forms, number] : cases) {
        SCOPED_TRACE(forms.toStdString());
        writeLanguage(u"en-us"_s, forms, str(u"STR_ERROR"_s, u"Error"_s));
        clsXMLocalizer localizer(props);
        try {
            localizer.SetLanguage(u"en-us"_s);
            ADD_FAILURE() << "the load went through";
        } catch (const Failure& failure) {
            EXPECT_EQ(failure.number(), number);
        }
        EXPECT_EQ(localizer.GetString(u"STR_ERROR"_s), u"Error"_s);
    }
}

TEST_F(LocalizerLanguages, Catalogue) {
    addLanguage(u"de-de"_s, u"Deutsch,1"_s);
    addLanguage(u"fr-fr"_s, u"Francais,0"_s);
    addLanguage(u"sv-se"_s, u"Svenska,1,extra"_s);
    clsXMLocalizer localizer(props);
    std::array<QStringList, 2> list{QStringList{u"old"_s}, QStringList{}};
    EXPECT_EQ(localizer.GetAvaliableLanguage(list), 3);
    EXPECT_EQ(list[0], (QStringList{u"en-us"_s, u"de-de"_s, u"sv-se"_s}));
    EXPECT_EQ(list[1], (QStringList{u"English"_s, u"Deutsch"_s, u"Svenska"_s}));
    EXPECT_TRUE(localizer.IsLanguageInstalled(u"de-de"_s));
    EXPECT_FALSE(localizer.IsLanguageInstalled(u"fr-fr"_s));
    EXPECT_FALSE(localizer.IsLanguageInstalled(u"it-it"_s));
    // A record without its enabled field is a bounds failure.
    addLanguage(u"de-de"_s, u"Deutsch"_s);
    EXPECT_THROW(localizer.IsLanguageInstalled(u"de-de"_s), Failure);
    EXPECT_THROW(localizer.GetAvaliableLanguage(list), Failure);
    EXPECT_THROW(localizer.SetLanguage(u"de-de"_s), Failure);
    // No catalogue: no languages, and the list is left alone.
    props.DeletePropSection(u"languages"_s);
    list = {QStringList{u"kept"_s}, QStringList{}};
    EXPECT_EQ(localizer.GetAvaliableLanguage(list), 0);
    EXPECT_EQ(list[0], QStringList{u"kept"_s});
    EXPECT_FALSE(localizer.SetLanguage(u"en-us"_s));
}

TEST_F(LocalizerLanguages, LanguageFolder) {
    writeLanguage(u"en-us"_s, {}, {}); // the user's folder has its own languages
    const QString folder = home.path() + u"/language/tessaly/"_s;
    EXPECT_EQ(clsXMLocalizer(props).GetLangPath(), folder);
    // Without the key the folder is "\language\" and the executable's name.
    props.DeleteProp(u"paths"_s, u"language"_s);
    EXPECT_EQ(clsXMLocalizer(props).GetLangPath(), folder);
    // A stored folder keeps its form: no separator is added.
    props.SetProp(u"paths"_s, u"language"_s, home.path() + u"/lang"_s);
    home.write(u"langen-us.xml"_s, "<langtab><strings>" + str(u"STR_X"_s, u"found"_s).toUtf8() +
                                       "</strings></langtab>");
    clsXMLocalizer localizer(props);
    EXPECT_EQ(localizer.GetLangPath(), home.path() + u"/lang"_s);
    ASSERT_TRUE(localizer.SetLanguage(u"en-us"_s));
    EXPECT_EQ(localizer.GetString(u"STR_X"_s), u"found"_s);
}

using LocalizerFonts = LocalizerFixture;

TEST_F(LocalizerFonts, CodePagesAndFonts) {
    clsXMLocalizer localizer(props);
    // A locale of each code page, and the ones whose code page differs from their language's.
    const std::pair<int, int> codePages[] = {
        {1033, 1252}, {1045, 1250}, {1049, 1251}, {0x0C1A, 1251}, {0x081A, 1250},
        {1032, 1253}, {1055, 1254}, {1037, 1255}, {1025, 1256},   {1061, 1257},
        {1066, 1258}, {1054, 874},  {1041, 932},  {2052, 936},    {4100, 936},
        {1042, 949},  {1028, 950},  {3076, 950},  {0x0439, 0},    {0x7F7F, 0}};
    for (const auto& [locale, codePage] : codePages)
        EXPECT_EQ(localizer.GetCodePage(locale), codePage) << "locale " << locale;

    // Code page, size, name, size after (a larger one stays); a named font has fonts of this
    // system to stand in when it is missing, the others are left to the system.
    const std::tuple<int, int, QString, int> fonts[] = {
        {1252, 8, u"Tahoma"_s, 8},
        {932, 8, u"\uFF2D\uFF33\u0020\uFF30\u30B4\u30B7\u30C3\u30AF"_s, 9},
        {936, 12, u"\u5B8B\u4F53"_s, 12},
        {949, 8, u"\uAD74\uB9BC"_s, 9},
        {950, 8, u"\u65B0\u7D30\u660E\u9AD4"_s, 9},
        {1250, 8, {}, 8},
        {1257, 8, {}, 8},
        {874, 8, {}, 8}};
    for (const auto& [codePage, size, name, sizeAfter] : fonts) {
        QFont font(u"Courier"_s, size);
        localizer.SetProperFont(font, codePage);
        EXPECT_EQ(font.family(), name) << codePage;
        EXPECT_EQ(font.pointSize(), sizeAfter) << codePage;
        EXPECT_EQ(font.families().size() > 1, !name.isEmpty()) << codePage;
    }
}
