// The localiser's tables: loading a language file, string look-up and parameters, the form
// table's keys and failures, the language catalogue, fonts by code page.
#include "LocalizerSupport.h"

#include "config/clsXMLocalizer.h"
#include "platform/Failure.h"
#include "platform/modLocale.h"
#include "platform/modText.h"

#include <QFont>
#include <QLabel>
#include <QProcess>
#include <QWidget>
#include <memory>

namespace {

QString forms1() {
    return QStringLiteral(
        "<form name=\"frmMain\" caption=\"Main window\">"
        "<control name=\"cmdOk\" index=\"\"><caption>OK</caption><text>Confirm</text></control>"
        "<x name=\"lblItem\" index=\"2\"><caption>Second</caption></x>"
        "</form>");
}

} // namespace

using LocalizerStrings = LocalizerFixture;

TEST_F(LocalizerStrings, UnknownKeyGivesTheKeyItself) {
    writeLanguage(QStringLiteral("en-us"), forms1(), str(QStringLiteral("STR_A"), "a"));
    clsXMLocalizer localizer(props);
    ASSERT_TRUE(localizer.SetLanguage(QStringLiteral("en-us")));
    EXPECT_EQ(localizer.GetString(QStringLiteral("STR_MISSING")), QStringLiteral("STR_MISSING"));
    // The key comes back as it stands: "%n" is not replaced for a missing key.
    EXPECT_EQ(localizer.GetStringPar(QStringLiteral("STR_MISSING%n"), {QStringLiteral("x")}),
              QStringLiteral("STR_MISSING%n"));
    // Before any language is set every key stands for itself.
    clsXMLocalizer fresh(props);
    EXPECT_EQ(fresh.GetString(QStringLiteral("STR_A")), QStringLiteral("STR_A"));
    EXPECT_EQ(fresh.GetLanguage(), QString());
}

TEST_F(LocalizerStrings, KeysIgnoreCaseAndTheLastEntryWins) {
    writeLanguage(QStringLiteral("en-us"), {},
                  str(QStringLiteral("STR_TWICE"), "first") +
                      str(QStringLiteral("str_twice"), "second") +
                      str(QStringLiteral("STR_Other"), "other"));
    clsXMLocalizer localizer(props);
    ASSERT_TRUE(localizer.SetLanguage(QStringLiteral("en-us")));
    EXPECT_EQ(localizer.GetString(QStringLiteral("STR_TWICE")), QStringLiteral("second"));
    EXPECT_EQ(localizer.GetString(QStringLiteral("Str_Twice")), QStringLiteral("second"));
    EXPECT_EQ(localizer.GetString(QStringLiteral("STR_OTHER")), QStringLiteral("other"));
}

TEST_F(LocalizerStrings, EntryShapes) {
    writeLanguage(QStringLiteral("en-us"), {},
                  // no children: not entered
                  QStringLiteral("<string name=\"STR_EMPTY\"/>") +
                      // children but no text: entered with an empty text
                      QStringLiteral("<string name=\"STR_NOTEXT\"><note>x</note></string>") +
                      // the last text child wins; text below it is joined
                      QStringLiteral("<string name=\"STR_TWO\"><text>one</text><text>t<b>w</b>o"
                                     "</text></string>") +
                      // leading and trailing blanks of a text stay
                      QStringLiteral("<string name=\"STR_BLANKS\"><text>Slide </text></string>") +
                      // a comment among the strings is passed over
                      QStringLiteral("<!-- a comment --><string name=\"STR_UTF\"><text>Über "
                                     "&amp; &lt;x&gt;</text></string>"));
    clsXMLocalizer localizer(props);
    ASSERT_TRUE(localizer.SetLanguage(QStringLiteral("en-us")));
    EXPECT_EQ(localizer.GetString(QStringLiteral("STR_EMPTY")), QStringLiteral("STR_EMPTY"));
    EXPECT_EQ(localizer.GetString(QStringLiteral("STR_NOTEXT")), QString());
    EXPECT_EQ(localizer.GetString(QStringLiteral("STR_TWO")), QStringLiteral("two"));
    EXPECT_EQ(localizer.GetString(QStringLiteral("STR_BLANKS")), QStringLiteral("Slide "));
    EXPECT_EQ(localizer.GetString(QStringLiteral("STR_UTF")), QStringLiteral("Über & <x>"));
}

TEST_F(LocalizerStrings, StringParReplacesLineBreaksAndNumberedMarkers) {
    writeLanguage(QStringLiteral("en-us"), {},
                  str(QStringLiteral("STR_FILE"), "The file %0 exists.%nReplace %0?") +
                      str(QStringLiteral("STR_PROCESS"), "Slide %0 of %1") +
                      str(QStringLiteral("STR_ELEVEN"), "%0|%1|%10") +
                      str(QStringLiteral("STR_CHAIN"), "[%0][%1]") +
                      str(QStringLiteral("STR_CASE"), "%N %n"));
    clsXMLocalizer localizer(props);
    ASSERT_TRUE(localizer.SetLanguage(QStringLiteral("en-us")));

    EXPECT_EQ(localizer.GetStringPar(QStringLiteral("STR_FILE"), {QStringLiteral("a.wav")}),
              QStringLiteral("The file a.wav exists.\r\nReplace a.wav?"));
    // Without parameters "%n" is still replaced; GetString leaves it.
    EXPECT_EQ(localizer.GetStringPar(QStringLiteral("STR_FILE"), {}),
              QStringLiteral("The file %0 exists.\r\nReplace %0?"));
    EXPECT_EQ(localizer.GetString(QStringLiteral("STR_FILE")),
              QStringLiteral("The file %0 exists.%nReplace %0?"));
    EXPECT_EQ(localizer.GetStringPar(QStringLiteral("STR_PROCESS"),
                                     {QStringLiteral("3"), QStringLiteral("7")}),
              QStringLiteral("Slide 3 of 7"));
    // Replacement is case sensitive: "%N" stays.
    EXPECT_EQ(localizer.GetStringPar(QStringLiteral("STR_CASE"), {}), QStringLiteral("%N \r\n"));

    // Eleven parameters: the marker "%10" is eaten by "%1" before its own turn.
    QStringList eleven;
    for (int i = 0; i <= 10; ++i)
        eleven << QStringLiteral("p%1.").arg(QChar(u'a' + i));
    EXPECT_EQ(localizer.GetStringPar(QStringLiteral("STR_ELEVEN"), eleven),
              QStringLiteral("pa.|pb.|pb.0"));

    // A parameter that holds a later marker is replaced in that marker's turn.
    EXPECT_EQ(localizer.GetStringPar(QStringLiteral("STR_CHAIN"),
                                     {QStringLiteral("%1"), QStringLiteral("x")}),
              QStringLiteral("[x][x]"));
    // ... but not one that holds an earlier marker.
    EXPECT_EQ(localizer.GetStringPar(QStringLiteral("STR_CHAIN"),
                                     {QStringLiteral("y"), QStringLiteral("%0")}),
              QStringLiteral("[y][%0]"));
}

TEST_F(LocalizerStrings, LowerLayersReadTextsThroughTheInstalledLookup) {
    writeLanguage(QStringLiteral("en-us"), {}, str(QStringLiteral("STR_ERROR"), "Error!"));
    EXPECT_EQ(localText(QStringLiteral("STR_ERROR")), QStringLiteral("STR_ERROR"));
    {
        clsXMLocalizer localizer(props);
        // Creating the localiser alone installs nothing.
        EXPECT_EQ(localText(QStringLiteral("STR_ERROR")), QStringLiteral("STR_ERROR"));
        ASSERT_TRUE(localizer.SetLanguage(QStringLiteral("en-us")));
        EXPECT_EQ(localText(QStringLiteral("str_error")), QStringLiteral("Error!"));
        EXPECT_EQ(localText(QStringLiteral("STR_NONE")), QStringLiteral("STR_NONE"));
    }
    // Gone with the localiser.
    EXPECT_EQ(localText(QStringLiteral("STR_ERROR")), QStringLiteral("STR_ERROR"));
}

using LocalizerLanguages = LocalizerFixture;

TEST_F(LocalizerLanguages, DisabledLanguageFallsBackToEnglish) {
    addLanguage(QStringLiteral("de-de"), QStringLiteral("Deutsch,0"));
    writeLanguage(QStringLiteral("en-us"), {}, str(QStringLiteral("STR_ERROR"), "Error"));
    writeLanguage(QStringLiteral("de-de"), {}, str(QStringLiteral("STR_ERROR"), "Fehler"));
    clsXMLocalizer localizer(props);
    EXPECT_TRUE(localizer.SetLanguage(QStringLiteral("de-de")));
    EXPECT_EQ(localizer.GetLanguage(), QStringLiteral("en-us"));
    EXPECT_EQ(localizer.GetString(QStringLiteral("STR_ERROR")), QStringLiteral("Error"));

    // Enabled by any text other than "0".
    addLanguage(QStringLiteral("de-de"), QStringLiteral("Deutsch,yes"));
    EXPECT_TRUE(localizer.SetLanguage(QStringLiteral("de-de")));
    EXPECT_EQ(localizer.GetLanguage(), QStringLiteral("de-de"));
    EXPECT_EQ(localizer.GetString(QStringLiteral("STR_ERROR")), QStringLiteral("Fehler"));
}

TEST_F(LocalizerLanguages, UnknownLanguageChangesNothing) {
    writeLanguage(QStringLiteral("en-us"), forms1(), str(QStringLiteral("STR_ERROR"), "Error"));
    writeLanguage(QStringLiteral("xx-xx"), {}, str(QStringLiteral("STR_ERROR"), "Xrror"));
    clsXMLocalizer localizer(props);
    ASSERT_TRUE(localizer.SetLanguage(QStringLiteral("en-us")));
    // A file alone does not make a language: the catalogue must name it.
    EXPECT_FALSE(localizer.SetLanguage(QStringLiteral("xx-xx")));
    EXPECT_EQ(localizer.GetLanguage(), QStringLiteral("en-us"));
    EXPECT_EQ(localizer.GetString(QStringLiteral("STR_ERROR")), QStringLiteral("Error"));
    EXPECT_EQ(localizer.GetFormText(QStringLiteral("frmMain_caption")),
              QStringLiteral("Main window"));
}

TEST_F(LocalizerLanguages, UnreadableFileLeavesBothTablesEmpty) {
    addLanguage(QStringLiteral("de-de"), QStringLiteral("Deutsch,1"));
    addLanguage(QStringLiteral("fr-fr"), QStringLiteral("Francais,1"));
    writeLanguage(QStringLiteral("en-us"), forms1(), str(QStringLiteral("STR_ERROR"), "Error"));
    writeRawLanguage(QStringLiteral("de-de"), "<langtab><strings><string name=\"STR_ERROR\">"
                                              "<text>Fehler</text></string></strings>");
    clsXMLocalizer localizer(props);
    ASSERT_TRUE(localizer.SetLanguage(QStringLiteral("en-us")));

    // Broken XML: true all the same, and nothing is left of the former language.
    EXPECT_TRUE(localizer.SetLanguage(QStringLiteral("de-de")));
    EXPECT_EQ(localizer.GetLanguage(), QStringLiteral("de-de"));
    EXPECT_EQ(localizer.GetString(QStringLiteral("STR_ERROR")), QStringLiteral("STR_ERROR"));
    EXPECT_EQ(localizer.GetFormText(QStringLiteral("frmMain_caption")), QString());

    // No file at all.
    ASSERT_TRUE(localizer.SetLanguage(QStringLiteral("en-us")));
    EXPECT_TRUE(localizer.SetLanguage(QStringLiteral("fr-fr")));
    EXPECT_EQ(localizer.GetString(QStringLiteral("STR_ERROR")), QStringLiteral("STR_ERROR"));
    EXPECT_EQ(localizer.GetFormText(QStringLiteral("frmMain_cmdOk__caption")), QString());
}

TEST_F(LocalizerLanguages, FormTableKeys) {
    writeLanguage(QStringLiteral("en-us"), forms1(), {});
    clsXMLocalizer localizer(props);
    ASSERT_TRUE(localizer.SetLanguage(QStringLiteral("en-us")));
    EXPECT_EQ(localizer.GetFormText(QStringLiteral("frmMain_caption")),
              QStringLiteral("Main window"));
    EXPECT_EQ(localizer.GetFormText(QStringLiteral("frmMain_cmdOk__caption")),
              QStringLiteral("OK"));
    EXPECT_EQ(localizer.GetFormText(QStringLiteral("frmMain_cmdOk__text")),
              QStringLiteral("Confirm"));
    EXPECT_EQ(localizer.GetFormText(QStringLiteral("frmMain_lblItem_2_caption")),
              QStringLiteral("Second"));
    // Form keys compare exactly.
    EXPECT_EQ(localizer.GetFormText(QStringLiteral("FRMMAIN_cmdOk__caption")), QString());
    EXPECT_EQ(localizer.GetFormText(QStringLiteral("frmMain_lblItem_2_text")), QString());
}

TEST_F(LocalizerLanguages, CommentAmongAFormsControlsFailsTheLoad) {
    writeLanguage(QStringLiteral("en-us"),
                  QStringLiteral("<form name=\"frmA\" caption=\"A\"><!-- ok here? no -->"
                                 "<c name=\"cmdOk\" index=\"\"><caption>OK</caption></c></form>"),
                  str(QStringLiteral("STR_ERROR"), "Error"));
    clsXMLocalizer localizer(props);
    try {
        localizer.SetLanguage(QStringLiteral("en-us"));
        FAIL() << "the load went through";
    } catch (const Failure& failure) {
        EXPECT_EQ(failure.number(), FailureNumber::ObjectNotSet);
    }
    // The strings were read before the forms.
    EXPECT_EQ(localizer.GetString(QStringLiteral("STR_ERROR")), QStringLiteral("Error"));
}

TEST_F(LocalizerLanguages, CommentsOutsideFormsAreHarmless) {
    writeLanguage(QStringLiteral("en-us"),
                  QStringLiteral("<!-- windows --><form name=\"frmA\" caption=\"A\">"
                                 "<c name=\"cmdOk\" index=\"\"><caption>OK<!-- x --></caption>"
                                 "</c></form><!-- end -->"),
                  {});
    clsXMLocalizer localizer(props);
    EXPECT_NO_THROW(localizer.SetLanguage(QStringLiteral("en-us")));
    EXPECT_EQ(localizer.GetFormText(QStringLiteral("frmA_cmdOk__caption")), QStringLiteral("OK"));
}

TEST_F(LocalizerLanguages, DuplicateControlFailsTheLoad) {
    writeLanguage(QStringLiteral("en-us"),
                  QStringLiteral("<form name=\"frmA\" caption=\"A\">"
                                 "<c name=\"cmdOk\" index=\"\"><caption>OK</caption></c>"
                                 "<c name=\"cmdOk\" index=\"\"><text>tip</text></c>"
                                 "<c name=\"cmdOk\" index=\"\"><caption>again</caption></c>"
                                 "</form>"),
                  {});
    clsXMLocalizer localizer(props);
    try {
        localizer.SetLanguage(QStringLiteral("en-us"));
        FAIL() << "the load went through";
    } catch (const Failure& failure) {
        EXPECT_EQ(failure.number(), 457);
        EXPECT_EQ(failure.description(),
                  QStringLiteral("This key is already associated with an element of this "
                                 "collection"));
    }
}

TEST_F(LocalizerLanguages, TheSameControlInOtherArraysOrFormsIsNoDuplicate) {
    writeLanguage(
        QStringLiteral("en-us"),
        QStringLiteral("<form name=\"frmA\" caption=\"A\">"
                       "<c name=\"opt\" index=\"0\"><caption>zero</caption></c>"
                       "<c name=\"opt\" index=\"1\"><caption>one</caption></c></form>"
                       "<form name=\"frmB\" caption=\"B\">"
                       "<c name=\"opt\" index=\"0\"><caption>B zero</caption></c></form>"),
        {});
    clsXMLocalizer localizer(props);
    EXPECT_NO_THROW(localizer.SetLanguage(QStringLiteral("en-us")));
    EXPECT_EQ(localizer.GetFormText(QStringLiteral("frmA_opt_1_caption")), QStringLiteral("one"));
    EXPECT_EQ(localizer.GetFormText(QStringLiteral("frmB_opt_0_caption")),
              QStringLiteral("B zero"));

    // The same form twice repeats its title key.
    writeLanguage(QStringLiteral("en-us"),
                  QStringLiteral("<form name=\"frmA\" caption=\"A\"/><form name=\"frmA\" "
                                 "caption=\"A\"/>"),
                  {});
    EXPECT_THROW(localizer.SetLanguage(QStringLiteral("en-us")), Failure);
}

TEST_F(LocalizerLanguages, ControlWithoutIndexAttributeFailsTheLoad) {
    writeLanguage(QStringLiteral("en-us"),
                  QStringLiteral("<form name=\"frmA\" caption=\"A\">"
                                 "<c name=\"cmdOk\"><caption>OK</caption></c></form>"),
                  {});
    clsXMLocalizer localizer(props);
    EXPECT_THROW(localizer.SetLanguage(QStringLiteral("en-us")), Failure);
}

TEST_F(LocalizerLanguages, CatalogueOfEnabledLanguages) {
    addLanguage(QStringLiteral("de-de"), QStringLiteral("Deutsch,1"));
    addLanguage(QStringLiteral("fr-fr"), QStringLiteral("Francais,0"));
    addLanguage(QStringLiteral("sv-se"), QStringLiteral("Svenska,1,extra"));
    clsXMLocalizer localizer(props);
    std::array<QStringList, 2> list{QStringList{QStringLiteral("old")}, QStringList{}};
    EXPECT_EQ(localizer.GetAvaliableLanguage(list), 3);
    EXPECT_EQ(list[0], (QStringList{QStringLiteral("en-us"), QStringLiteral("de-de"),
                                    QStringLiteral("sv-se")}));
    EXPECT_EQ(list[1], (QStringList{QStringLiteral("English"), QStringLiteral("Deutsch"),
                                    QStringLiteral("Svenska")}));

    EXPECT_TRUE(localizer.IsLanguageInstalled(QStringLiteral("de-de")));
    EXPECT_FALSE(localizer.IsLanguageInstalled(QStringLiteral("fr-fr")));
    EXPECT_FALSE(localizer.IsLanguageInstalled(QStringLiteral("it-it")));
}

TEST_F(LocalizerLanguages, NoCatalogueGivesNoLanguages) {
    props.DeletePropSection(QStringLiteral("languages"));
    clsXMLocalizer localizer(props);
    std::array<QStringList, 2> list{QStringList{QStringLiteral("kept")}, QStringList{}};
    EXPECT_EQ(localizer.GetAvaliableLanguage(list), 0);
    EXPECT_EQ(list[0], QStringList{QStringLiteral("kept")});
    EXPECT_FALSE(localizer.SetLanguage(QStringLiteral("en-us")));
}

TEST_F(LocalizerLanguages, RecordWithoutEnabledFieldIsABoundsFailure) {
    addLanguage(QStringLiteral("de-de"), QStringLiteral("Deutsch"));
    clsXMLocalizer localizer(props);
    try {
        localizer.IsLanguageInstalled(QStringLiteral("de-de"));
        FAIL() << "no failure";
    } catch (const Failure& failure) {
        EXPECT_EQ(failure.number(), FailureNumber::SubscriptOutOfRange);
    }
    std::array<QStringList, 2> list;
    EXPECT_THROW(localizer.GetAvaliableLanguage(list), Failure);
    EXPECT_THROW(localizer.SetLanguage(QStringLiteral("de-de")), Failure);
}

TEST_F(LocalizerLanguages, LanguageFolder) {
    writeLanguage(QStringLiteral("en-us"), {}, {}); // the user's folder has its own languages
    {
        clsXMLocalizer localizer(props);
        EXPECT_EQ(localizer.GetLangPath(), home.path() + QStringLiteral("/language/tessaly/"));
    }
    // Without the key the folder is "\language\" and the executable's name.
    props.DeleteProp(QStringLiteral("paths"), QStringLiteral("language"));
    {
        clsXMLocalizer localizer(props);
        EXPECT_EQ(localizer.GetLangPath(), home.path() + QStringLiteral("/language/tessaly/"));
    }
    // A stored folder keeps its form: no separator is added.
    props.SetProp(QStringLiteral("paths"), QStringLiteral("language"),
                  home.path() + QStringLiteral("/lang"));
    home.write(QStringLiteral("langen-us.xml"),
               "<langtab><strings><string name=\"STR_X\"><text>found</text></string>"
               "</strings></langtab>");
    clsXMLocalizer localizer(props);
    EXPECT_EQ(localizer.GetLangPath(), home.path() + QStringLiteral("/lang"));
    ASSERT_TRUE(localizer.SetLanguage(QStringLiteral("en-us")));
    EXPECT_EQ(localizer.GetString(QStringLiteral("STR_X")), QStringLiteral("found"));
}

TEST(LocalizerModule, LanguageIdKeys) {
    EXPECT_EQ(langIdToKey(0x0409), QStringLiteral("H0409"));
    EXPECT_EQ(langIdToKey(0x0C0A), QStringLiteral("H0C0A"));
    EXPECT_EQ(langIdToKey(0x0007), QStringLiteral("H0007"));
}

TEST(LocalizerModule, OsNameIsTheKernelRelease) {
    QProcess uname;
    uname.start(QStringLiteral("uname"), {QStringLiteral("-r")});
    ASSERT_TRUE(uname.waitForFinished(5000));
    const QString release = QString::fromLocal8Bit(uname.readAllStandardOutput()).trimmed();
    ASSERT_FALSE(release.isEmpty());
    EXPECT_EQ(GetOsName(), QStringLiteral("Linux_") + release);
    // The first "_" field is the key of the infrared command.
    EXPECT_EQ(GetOsName().section(QLatin1Char('_'), 0, 0), QStringLiteral("Linux"));
}

using LocalizerFonts = LocalizerFixture;

TEST_F(LocalizerFonts, CodePagesOfLocales) {
    clsXMLocalizer localizer(props);
    const std::pair<int, int> cases[] = {
        {1033, 1252},   {2057, 1252}, {1031, 1252}, {3082, 1252}, {1053, 1252}, {1045, 1250},
        {1029, 1250},   {1038, 1250}, {1049, 1251}, {1058, 1251}, {1026, 1251}, {0x0C1A, 1251},
        {0x081A, 1250}, {1032, 1253}, {1055, 1254}, {1037, 1255}, {1025, 1256}, {1065, 1256},
        {1061, 1257},   {1062, 1257}, {1063, 1257}, {1066, 1258}, {1054, 874},  {1041, 932},
        {2052, 936},    {4100, 936},  {1042, 949},  {1028, 950},  {3076, 950},  {0x0439, 0},
        {0x7F7F, 0},    {0, 0},
    };
    for (const auto& [locale, codePage] : cases)
        EXPECT_EQ(localizer.GetCodePage(locale), codePage) << "locale " << locale;
}

TEST_F(LocalizerFonts, ProperFontByCodePage) {
    clsXMLocalizer localizer(props);
    QFont font(QStringLiteral("Courier"), 8);

    QFont western = font;
    localizer.SetProperFont(western, 1252);
    EXPECT_EQ(western.family(), QStringLiteral("Tahoma"));
    EXPECT_EQ(western.pointSize(), 8);

    QFont japanese = font;
    localizer.SetProperFont(japanese, 932);
    EXPECT_EQ(japanese.family(), QString::fromUtf16(u"\uFF2D\uFF33\u0020\uFF30\u30B4\u30B7"
                                                    u"\u30C3\u30AF"));
    EXPECT_EQ(japanese.pointSize(), 9);
    // Fonts of this system stand in when the named one is missing.
    EXPECT_GT(japanese.families().size(), 1);

    QFont chinese(QStringLiteral("Courier"), 12);
    localizer.SetProperFont(chinese, 936);
    EXPECT_EQ(chinese.family(), QString::fromUtf16(u"\u5B8B\u4F53"));
    EXPECT_EQ(chinese.pointSize(), 12); // larger than the minimum: stays

    QFont korean = font;
    localizer.SetProperFont(korean, 949);
    EXPECT_EQ(korean.family(), QString::fromUtf16(u"\uAD74\uB9BC"));
    EXPECT_EQ(korean.pointSize(), 9);

    QFont taiwan = font;
    localizer.SetProperFont(taiwan, 950);
    EXPECT_EQ(taiwan.family(), QString::fromUtf16(u"\u65B0\u7D30\u660E\u9AD4"));

    for (int codePage : {1250, 1251, 1253, 1254, 1255, 1256, 1257, 874, 0}) {
        QFont other = font;
        localizer.SetProperFont(other, codePage);
        EXPECT_TRUE(other.family().isEmpty()) << codePage;
        EXPECT_EQ(other.pointSize(), 8) << codePage;
    }

    EXPECT_EQ(clsXMLocalizer::CharSetOfCodePage(1252), 0);
    EXPECT_EQ(clsXMLocalizer::CharSetOfCodePage(932), 128);
    EXPECT_EQ(clsXMLocalizer::CharSetOfCodePage(936), 134);
    EXPECT_EQ(clsXMLocalizer::CharSetOfCodePage(949), 129);
    EXPECT_EQ(clsXMLocalizer::CharSetOfCodePage(950), 136);
    EXPECT_EQ(clsXMLocalizer::CharSetOfCodePage(1250), 238);
    EXPECT_EQ(clsXMLocalizer::CharSetOfCodePage(1251), 204);
    EXPECT_EQ(clsXMLocalizer::CharSetOfCodePage(1253), 161);
    EXPECT_EQ(clsXMLocalizer::CharSetOfCodePage(1254), 162);
    EXPECT_EQ(clsXMLocalizer::CharSetOfCodePage(1255), 177);
    EXPECT_EQ(clsXMLocalizer::CharSetOfCodePage(1256), 178);
    EXPECT_EQ(clsXMLocalizer::CharSetOfCodePage(1257), 186);
    EXPECT_EQ(clsXMLocalizer::CharSetOfCodePage(874), 1);
}

TEST_F(LocalizerFonts, WindowsFollowTheSystemLocaleNotTheLanguage) {
    addLanguage(QStringLiteral("zh-cn"), QStringLiteral("Chinese,1"));
    writeLanguage(QStringLiteral("en-us"), {}, {});
    writeLanguage(QStringLiteral("zh-cn"), {}, {});
    QWidget form;
    form.setObjectName(QStringLiteral("frmFonts"));
    auto* label = new QLabel(&form);
    label->setObjectName(QStringLiteral("lblA"));
    label->setFont(QFont(QStringLiteral("Courier"), 8));

    clsXMLocalizer localizer(props);
    // An English system locale leaves every font alone, even with a Chinese language.
    localizer.SetThreadLocale(1033);
    ASSERT_TRUE(localizer.SetLanguage(QStringLiteral("zh-cn")));
    ASSERT_TRUE(localizer.TranslateForm(&form));
    EXPECT_EQ(label->font().family(), QStringLiteral("Courier"));
    EXPECT_EQ(label->font().pointSize(), 8);

    // A Chinese system locale with English texts takes the font of code page 936.
    localizer.SetThreadLocale(2052);
    ASSERT_TRUE(localizer.SetLanguage(QStringLiteral("en-us")));
    ASSERT_TRUE(localizer.TranslateForm(&form));
    EXPECT_EQ(label->font().family(), QString::fromUtf16(u"\u5B8B\u4F53"));
    EXPECT_EQ(label->font().pointSize(), 9);

    // Custom controls fit their own controls the same way.
    QLabel loose;
    loose.setFont(QFont(QStringLiteral("Courier"), 8));
    localizer.SetThreadLocale(1049);
    localizer.ChangeCharSetUsrCtrl({&loose, nullptr});
    EXPECT_TRUE(loose.font().family().isEmpty());
    localizer.SetThreadLocale(3081); // English (Australia)
    QLabel untouched;
    untouched.setFont(QFont(QStringLiteral("Courier"), 8));
    localizer.ChangeCharSetUsrCtrl({&untouched});
    EXPECT_EQ(untouched.font().family(), QStringLiteral("Courier"));

    // By default the locale is the system's.
    localizer.SetThreadLocale(0);
    EXPECT_EQ(localizer.ThreadLocale(), userDefaultLCID());
}

TEST_F(LocalizerLanguages, DamagedFilesNeverCrashTheLoad) {
    // Every cut of a real language file either loads (with whatever it holds) or raises the
    // program's failure; nothing else escapes and the localiser stays usable.
    const QByteArray whole = TestHome(true).read(QStringLiteral("language/tessaly/en-us.xml"));
    ASSERT_GT(whole.size(), 1000);
    clsXMLocalizer localizer(props);
    int loaded = 0;
    int refused = 0;
    for (qsizetype cut = 0; cut < whole.size(); cut += 61) {
        writeRawLanguage(QStringLiteral("en-us"), whole.left(cut));
        try {
            EXPECT_TRUE(localizer.SetLanguage(QStringLiteral("en-us")));
            ++loaded;
        } catch (const Failure&) {
            ++refused;
        }
        EXPECT_EQ(localizer.GetString(QStringLiteral("STR_NOT_THERE")),
                  QStringLiteral("STR_NOT_THERE"));
    }
    EXPECT_GT(loaded, 0);
    writeRawLanguage(QStringLiteral("en-us"), whole);
    ASSERT_TRUE(localizer.SetLanguage(QStringLiteral("en-us")));
    EXPECT_EQ(localizer.GetString(QStringLiteral("STR_UNTITLED")), QStringLiteral("Untitled"));
    RecordProperty("refused", refused);
}
