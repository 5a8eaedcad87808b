#include "config/clsPropertiesXML.h"
#include "platform/Failure.h"
#include "support/TestHome.h"

#include <QFileInfo>
#include <QStringConverter>
#include <gtest/gtest.h>
#include <memory>

using namespace Qt::StringLiterals;

namespace {

const QByteArray kHeader = "<?xml version=\"1.0\" encoding=\"utf-8\"?>\r\n";
const QString pref = u"preferences"_s;

QByteArray preferencesFile(const QByteArray& sections) {
    return kHeader + "<APPLICATIONS><APPLICATION name=\"tessaly\"><SECTIONS>" + sections +
           "</SECTIONS></APPLICATION></APPLICATIONS>";
}

class PropertiesXml : public ::testing::Test {
protected:
    TestHome home;
    QString file() const { return home.file(u"tessaly.xml"_s); }
    QByteArray contents() const { return home.read(u"tessaly.xml"_s); }
    std::unique_ptr<clsPropertiesXML> open() {
        auto store = std::make_unique<clsPropertiesXML>();
        store->Initialize(file(), QString());
        return store;
    }
    void writeFile(const QByteArray& text) { home.write(u"tessaly.xml"_s, text); }
};

} // namespace

TEST_F(PropertiesXml, NewFileComesIntoBeingAtTheEndWithTheExactLayout) {
    {
        clsPropertiesXML store;
        EXPECT_EQ(store.XmlFileName(), file());
        EXPECT_EQ(store.ApplicationName(), u"tessaly"_s);
        // The first read initialises the store by itself.
        EXPECT_EQ(store.GetProp(pref, u"ShowSplash"_s, u"1"_s), u"1"_s);
        EXPECT_TRUE(store.isInitialized());
        EXPECT_EQ(store.SetProp(pref, u"Language"_s, u"de-de"_s), 1);
        EXPECT_FALSE(QFileInfo::exists(file())) << "nothing is written before the end";
    }
    EXPECT_EQ(contents(), preferencesFile("<SECTION name=\"preferences\"><KEY name=\"Language\">"
                                          "de-de</KEY></SECTION>") +
                              "\r\n");
}

TEST_F(PropertiesXml, SetPropReportsChangesOnly) {
    writeFile(preferencesFile("<SECTION name=\"preferences\"><KEY name=\"A\">1</KEY></SECTION>"));
    auto store = open();
    EXPECT_EQ(store->GetProp(pref, u"Absent"_s, u"d"_s), u"d"_s);
    EXPECT_EQ(store->SetProp(pref, u"A"_s, u"1"_s), 0);
    EXPECT_FALSE(store->isDirty()) << "neither a read nor an unchanged value is a change";
    EXPECT_EQ(store->SetProp(pref, u"A"_s, u"2"_s), 1);
    EXPECT_TRUE(store->isDirty()) << "a new value for an existing key is a change";
    EXPECT_EQ(store->GetProp(pref, u"A"_s, QString()), u"2"_s);
    // Names are case sensitive.
    EXPECT_EQ(store->GetProp(u"Preferences"_s, u"A"_s, u"none"_s), u"none"_s);
    EXPECT_EQ(store->GetProp(pref, u"a"_s, u"none"_s), u"none"_s);
    // Saving leaves the flag set.
    EXPECT_TRUE(store->SaveXmlFile());
    EXPECT_TRUE(store->isDirty());
}

TEST_F(PropertiesXml, EmptyValuesEmptyKeysAndApostrophes) {
    writeFile(preferencesFile({}));
    auto store = open();
    // An empty key makes its section but is no change.
    EXPECT_EQ(store->SetProp(u"fresh"_s, QString(), u"v"_s), 0);
    EXPECT_FALSE(store->isDirty());
    QStringList sections;
    EXPECT_EQ(store->GetSectionNodes(sections), 0);
    // A key stored empty reads as the default and cannot be changed again.
    EXPECT_EQ(store->SetProp(pref, u"E"_s, QString()), 1);
    EXPECT_EQ(store->SetProp(pref, u"E"_s, u"text"_s), 0);
    EXPECT_EQ(store->GetProp(pref, u"E"_s, u"dflt"_s), u"dflt"_s);
    // An apostrophe breaks the look-up.
    EXPECT_THROW(store->GetProp(u"it's"_s, u"k"_s, QString()), Failure);
    EXPECT_EQ(store->SetProp(pref, u"o'clock"_s, u"v"_s), 0);
}

TEST_F(PropertiesXml, ApplicationNamesAreLowerCaseAndRebind) {
    auto store = open();
    store->SetProp(pref, u"K"_s, u"tessaly value"_s);
    store->setApplicationName(u"ABC"_s);
    EXPECT_EQ(store->ApplicationName(), u"abc"_s);
    EXPECT_EQ(store->GetProp(pref, u"K"_s, u"none"_s), u"none"_s);
    store->setApplicationName(QString()); // ignored
    QStringList apps;
    EXPECT_EQ(store->GetApplicationNodes(apps), 1);
    store->setApplicationName(u"Tessaly"_s);
    EXPECT_EQ(store->GetProp(pref, u"K"_s, QString()), u"tessaly value"_s);
    // The file name is fixed after the first read.
    EXPECT_TRUE(store->Initialize(home.file(u"other.xml"_s), QString()));
    EXPECT_EQ(store->XmlFileName(), file());
}

TEST_F(PropertiesXml, ListsWithCommentsAndSeparators) {
    writeFile(preferencesFile("<SECTION name=\"s\"><KEY name=\"a\">1</KEY><!-- note --><KEY "
                              "name=\"b\">2</KEY></SECTION><SECTION name=\"bad\"><KEY "
                              "name=\"e\"/></SECTION>"));
    auto store = open();
    QStringList list, keys;
    EXPECT_EQ(store->GetPropList(list, u"s"_s, u"="_s), 2);
    EXPECT_EQ(list, (QStringList{u"a=1"_s, QString(), u"b=2"_s}));
    EXPECT_EQ(store->GetPropList(list, u"none"_s, u"="_s), -1);
    EXPECT_THROW(store->GetPropList(list, u"bad"_s, u"="_s), Failure);
    EXPECT_EQ(store->GetKeyNodes(keys, u"s"_s), 1);
    EXPECT_THROW(store->GetKeyNodes(keys, u"none"_s), Failure);
    EXPECT_EQ(store->SetPropList(u"s"_s, {u"one=1"_s, u"two"_s, u"t=h=ree"_s}, u"="_s), 0);
    EXPECT_EQ(store->GetPropList(list, u"s"_s, u"="_s), 0);
    EXPECT_EQ(list, QStringList{u"one=1"_s});
}

TEST_F(PropertiesXml, Deletes) {
    {
        auto store = open();
        store->SetProp(pref, u"a"_s, u"1"_s);
        store->SetProp(u"other"_s, u"b"_s, u"2"_s);
        store->DeleteProp(pref, u"a"_s);
        store->DeletePropSection(u"other"_s);
        EXPECT_EQ(store->GetProp(pref, u"a"_s, u"gone"_s) + store->GetProp(u"other"_s, u"b"_s, {}),
                  u"gone"_s);
        // Writes after the application is deleted change a detached copy only.
        store->DeleteApplication(u"tessaly"_s);
        store->SetProp(pref, u"lost"_s, u"1"_s);
    }
    EXPECT_FALSE(contents().contains("lost") || contents().contains("APPLICATION "));
    clsPropertiesXML fresh; // deletes do nothing before the first use
    fresh.DeleteApplication(u"tessaly"_s);
    EXPECT_FALSE(fresh.isInitialized());
}

TEST_F(PropertiesXml, UnusableFilesAndFolders) {
    // An ill-formed file is kept as a backup before the store starts afresh.
    const QByteArray broken = "<APPLICATIONS><APPLICATION name=\"tessaly\"><SECTIONS>";
    writeFile(broken);
    open()->SetProp(pref, u"Language"_s, u"de-de"_s);
    EXPECT_EQ(home.read(u"tessaly.xml.bak"_s), broken);
    EXPECT_TRUE(contents().contains("<KEY name=\"Language\">de-de</KEY>"));
    // A foreign root leaves the store without its application.
    writeFile("<OTHER/>");
    auto foreign = open();
    EXPECT_THROW(foreign->GetProp(pref, u"a"_s, QString()), Failure);
    EXPECT_EQ(foreign->SetProp(pref, u"a"_s, u"1"_s), 0);
    // A folder that does not exist: the save fails quietly and the value stays.
    clsPropertiesXML nowhere;
    nowhere.Initialize(home.file(u"no/such/folder/x.xml"_s), QString());
    nowhere.SetProp(pref, u"a"_s, u"1"_s);
    EXPECT_FALSE(nowhere.SaveXmlFile());
    EXPECT_EQ(nowhere.GetProp(pref, u"a"_s, QString()), u"1"_s);
}

TEST_F(PropertiesXml, FilesAreReadInTheEncodingTheyName) {
    const QString value = u"café € “q” –— 日本 & <x>"_s, western = u"café € “q” –—"_s;
    const QString body = QString::fromLatin1(preferencesFile("<SECTION name=\"preferences\"><KEY "
                                                             "name=\"v\">%1</KEY></SECTION>"))
                             .section(u'\n', 1);
    const auto utf16 = [&](QStringConverter::Encoding encoding, const QString& declaration) {
        return QByteArray(QStringEncoder(encoding, QStringEncoder::Flag::WriteBom)
                              .encode(declaration + body.arg(value.toHtmlEscaped())));
    };
    const auto bytes = [&](const QByteArray& declaration, const QByteArray& text) {
        return declaration + body.toLatin1().replace("%1", text);
    };
    const QByteArray cp1252 = "caf\xE9 \x80 \x93q\x94 \x96\x97";
    const std::tuple<const char*, QByteArray, QString> files[] = {
        {"utf-8 with mark", "\xEF\xBB\xBF" + kHeader + body.arg(value.toHtmlEscaped()).toUtf8(),
         value},
        {"utf-16le",
         utf16(QStringConverter::Utf16LE, u"<?xml version=\"1.0\" encoding=\"UTF-16\"?>"_s), value},
        {"utf-16be", utf16(QStringConverter::Utf16BE, {}), value},
        {"windows-1252", bytes("<?xml version=\"1.0\" encoding=\"Windows-1252\"?>", cp1252),
         western},
        {"undeclared code page", bytes({}, cp1252), western},
        // ISO-8859-1 keeps 0x80-0x9F as the control characters they are there.
        {"iso-8859-1", bytes("<?xml version=\"1.0\" encoding=\"ISO-8859-1\"?>", "\xE9\xA4\x80"),
         u"é¤\u0080"_s},
    };
    for (const auto& [name, file, expected] : files) {
        SCOPED_TRACE(name);
        writeFile(file);
        EXPECT_EQ(open()->GetProp(pref, u"v"_s, QString()), expected);
        open()->SetProp(pref, u"w"_s, u"1"_s);
        // Saved again as UTF-8, and declared so: the value reads back the same.
        EXPECT_EQ(open()->GetProp(pref, u"v"_s, QString()), expected);
    }
}

namespace {

const QByteArray kDefaults = preferencesFile(
    "<SECTION name=\"preferences\"><KEY name=\"A\">def-a</KEY><!-- note --><KEY name=\"E\">"
    "def-e</KEY><KEY name=\"Skin\"/><KEY name=\"B\">def-b</KEY><KEY name=\"C\">def-c</KEY>"
    "</SECTION><SECTION name=\"paths\"><KEY name=\"language\">\\language\\</KEY></SECTION>");

} // namespace

TEST_F(PropertiesXml, MissingDefaultsNeverOverwriteTheUsersValues) {
    home.write(u"defaults.xml"_s, kDefaults);
    writeFile(preferencesFile("<SECTION name=\"preferences\"><KEY name=\"E\"/><KEY name=\"A\">"
                              "mine</KEY></SECTION>"));
    home.write(u"broken.xml"_s, kDefaults.left(kDefaults.size() - 20));
    home.write(u"foreign.xml"_s, "<OTHER><SECTION name=\"x\"/></OTHER>");
    {
        auto store = open();
        // Defaults that cannot be read change nothing.
        for (const char* name : {"absent.xml", "broken.xml", "foreign.xml"})
            EXPECT_EQ(store->AddMissingDefaults(home.file(QString::fromLatin1(name))), -1) << name;
        EXPECT_FALSE(store->isDirty());
        EXPECT_EQ(store->AddMissingDefaults(home.file(u"defaults.xml"_s)), 3);
        EXPECT_TRUE(store->isDirty());
    }
    // Added in the defaults' order after what the user has; the user's empty key stays empty,
    // and a default without text is left out: it would read as the default anyway, and an
    // empty key could never be given a value.
    EXPECT_EQ(contents(), preferencesFile("<SECTION name=\"preferences\"><KEY name=\"E\"/><KEY "
                                          "name=\"A\">mine</KEY><KEY name=\"B\">def-b</KEY><KEY "
                                          "name=\"C\">def-c</KEY></SECTION><SECTION name=\"paths\">"
                                          "<KEY name=\"language\">\\language\\</KEY></SECTION>") +
                              "\r\n");
    // A store that lacks nothing stays clean.
    auto complete = open();
    EXPECT_EQ(complete->AddMissingDefaults(home.file(u"defaults.xml"_s)), 0);
    EXPECT_FALSE(complete->isDirty());
}

TEST_F(PropertiesXml, ShippedDefaultsMendADamagedFile) {
    TestHome shipped(true);
    const QString defaults = shipped.file(u"tessaly.xml"_s);
    writeFile("<APPLICATIONS><APPLICATION name=\"tessaly\">"); // damaged: kept as .bak
    EXPECT_GT(open()->AddMissingDefaults(defaults), 50);
    EXPECT_TRUE(QFileInfo::exists(file() + u".bak"_s));
    // Every key of the shipped file is there with its value.
    clsPropertiesXML reference;
    reference.Initialize(defaults, QString());
    auto store = open();
    QStringList sections, keys;
    ASSERT_GT(reference.GetSectionNodes(sections), 3);
    for (const QString& section : sections) {
        reference.GetKeyNodes(keys, section);
        for (const QString& key : keys)
            EXPECT_EQ(store->GetProp(section, key, u"<none>"_s),
                      reference.GetProp(section, key, u"<none>"_s))
                << section.toStdString() << "/" << key.toStdString();
    }
}
