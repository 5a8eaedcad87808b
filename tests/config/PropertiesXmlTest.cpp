#include "config/clsPropertiesXML.h"
#include "platform/Failure.h"

#include "support/TestHome.h"

#include <QFile>
#include <QFileInfo>
#include <QStringConverter>
#include <gtest/gtest.h>
#include <memory>

namespace {

const QByteArray kHeader = "<?xml version=\"1.0\" encoding=\"utf-8\"?>\r\n";

class PropertiesXml : public ::testing::Test {
protected:
    TestHome home;
    QString file() const { return home.file(QStringLiteral("tessaly.xml")); }
    QByteArray contents() const { return home.read(QStringLiteral("tessaly.xml")); }
    std::unique_ptr<clsPropertiesXML> open() {
        auto store = std::make_unique<clsPropertiesXML>();
        store->Initialize(file(), QString());
        return store;
    }
    void writeFile(const QByteArray& text) { home.write(QStringLiteral("tessaly.xml"), text); }
};

const QString pref = QStringLiteral("preferences");

} // namespace

TEST_F(PropertiesXml, DefaultsNameTheExecutableAndItsFolder) {
    clsPropertiesXML store;
    EXPECT_EQ(store.XmlFileName(), file());
    EXPECT_EQ(store.ApplicationName(), QStringLiteral("tessaly"));
    EXPECT_FALSE(store.isInitialized());
    // The first read initialises the store by itself.
    EXPECT_EQ(store.GetProp(pref, QStringLiteral("Language"), QStringLiteral("en-us")),
              QStringLiteral("en-us"));
    EXPECT_TRUE(store.isInitialized());
}

TEST_F(PropertiesXml, NewFileComesIntoBeingAtTheEndWithTheExactLayout) {
    {
        auto store = open();
        EXPECT_EQ(store->GetProp(pref, QStringLiteral("ShowSplash"), QStringLiteral("1")),
                  QStringLiteral("1"));
        EXPECT_EQ(store->SetProp(pref, QStringLiteral("Language"), QStringLiteral("de-de")), 1);
        EXPECT_FALSE(QFileInfo::exists(file())) << "nothing is written before the end";
    }
    EXPECT_EQ(contents(), kHeader +
                              "<APPLICATIONS><APPLICATION name=\"tessaly\"><SECTIONS><SECTION "
                              "name=\"preferences\"><KEY name=\"Language\">de-de</KEY></SECTION>"
                              "</SECTIONS></APPLICATION></APPLICATIONS>\r\n");
}

TEST_F(PropertiesXml, ReadingNeverWrites) {
    writeFile(kHeader + "<APPLICATIONS><APPLICATION name=\"tessaly\"><SECTIONS/></APPLICATION>"
                        "</APPLICATIONS>");
    const QByteArray before = contents();
    {
        auto store = open();
        EXPECT_EQ(store->GetProp(pref, QStringLiteral("Absent"), QStringLiteral("d")),
                  QStringLiteral("d"));
        EXPECT_FALSE(store->isDirty());
    }
    EXPECT_EQ(contents(), before);
}

TEST_F(PropertiesXml, MissingFileReadsDefaultsWithoutWritingOnRead) {
    {
        clsPropertiesXML store;
        store.setApplicationName(QString()); // nothing to bind: nothing to write
        store.Initialize(file(), QString());
        EXPECT_EQ(store.GetProp(pref, QStringLiteral("x"), QStringLiteral("7")),
                  QStringLiteral("7"));
    }
    // The default application gets bound on a missing file, so that file comes into being.
    { auto store = open(); }
    EXPECT_TRUE(contents().startsWith(kHeader + "<APPLICATIONS><APPLICATION name=\"tessaly\">"));
}

TEST_F(PropertiesXml, SetPropReportsChangesOnly) {
    writeFile(kHeader + "<APPLICATIONS><APPLICATION name=\"tessaly\"><SECTIONS><SECTION "
                        "name=\"preferences\"><KEY name=\"A\">1</KEY></SECTION></SECTIONS>"
                        "</APPLICATION></APPLICATIONS>");
    auto store = open();
    EXPECT_EQ(store->SetProp(pref, QStringLiteral("A"), QStringLiteral("1")), 0);
    EXPECT_FALSE(store->isDirty()) << "an unchanged value is no change";
    EXPECT_EQ(store->SetProp(pref, QStringLiteral("A"), QStringLiteral("2")), 1);
    EXPECT_TRUE(store->isDirty()) << "a new value for an existing key is a change";
    EXPECT_EQ(store->GetProp(pref, QStringLiteral("A"), QString()), QStringLiteral("2"));
    // Names are case sensitive.
    EXPECT_EQ(
        store->GetProp(QStringLiteral("Preferences"), QStringLiteral("A"), QStringLiteral("none")),
        QStringLiteral("none"));
    EXPECT_EQ(store->GetProp(pref, QStringLiteral("a"), QStringLiteral("none")),
              QStringLiteral("none"));
}

TEST_F(PropertiesXml, AKeyStoredEmptyCannotBeChangedAgain) {
    auto store = open();
    EXPECT_EQ(store->SetProp(pref, QStringLiteral("E"), QString()), 1);
    EXPECT_EQ(store->GetProp(pref, QStringLiteral("E"), QStringLiteral("dflt")),
              QStringLiteral("dflt"));
    EXPECT_EQ(store->SetProp(pref, QStringLiteral("E"), QStringLiteral("text")), 0);
    EXPECT_EQ(store->GetProp(pref, QStringLiteral("E"), QStringLiteral("dflt")),
              QStringLiteral("dflt"));
}

TEST_F(PropertiesXml, EmptyKeyMakesTheSectionButIsNotAChange) {
    writeFile(kHeader + "<APPLICATIONS><APPLICATION name=\"tessaly\"><SECTIONS/></APPLICATION>"
                        "</APPLICATIONS>");
    auto store = open();
    EXPECT_FALSE(store->isDirty());
    EXPECT_EQ(store->SetProp(QStringLiteral("fresh"), QString(), QStringLiteral("v")), 0);
    EXPECT_FALSE(store->isDirty());
    QStringList sections;
    EXPECT_EQ(store->GetSectionNodes(sections), 0);
    EXPECT_EQ(sections, QStringList{QStringLiteral("fresh")});
}

TEST_F(PropertiesXml, ApostrophesBreakTheQuery) {
    auto store = open();
    EXPECT_THROW(store->GetProp(QStringLiteral("it's"), QStringLiteral("k"), QString()), Failure);
    EXPECT_THROW(store->GetProp(pref, QStringLiteral("o'clock"), QString()), Failure);
    EXPECT_EQ(store->SetProp(pref, QStringLiteral("o'clock"), QStringLiteral("v")), 0);
}

TEST_F(PropertiesXml, ApplicationNamesAreLowerCaseAndRebind) {
    auto store = open();
    store->SetProp(pref, QStringLiteral("K"), QStringLiteral("tessaly value"));
    store->setApplicationName(QStringLiteral("ABC"));
    EXPECT_EQ(store->ApplicationName(), QStringLiteral("abc"));
    EXPECT_EQ(store->GetProp(pref, QStringLiteral("K"), QStringLiteral("none")),
              QStringLiteral("none"));
    store->SetProp(pref, QStringLiteral("K"), QStringLiteral("abc value"));
    store->setApplicationName(QString()); // ignored
    EXPECT_EQ(store->ApplicationName(), QStringLiteral("abc"));
    QStringList apps;
    EXPECT_EQ(store->GetApplicationNodes(apps), 1);
    EXPECT_EQ(apps, (QStringList{QStringLiteral("tessaly"), QStringLiteral("abc")}));
    store->setApplicationName(QStringLiteral("Tessaly"));
    EXPECT_EQ(store->GetProp(pref, QStringLiteral("K"), QString()),
              QStringLiteral("tessaly value"));
}

TEST_F(PropertiesXml, FileNameIsFixedAfterTheFirstRead) {
    clsPropertiesXML store;
    store.setXmlFileName(file());
    store.GetProp(pref, QStringLiteral("x"), QString());
    store.setXmlFileName(home.file(QStringLiteral("other.xml")));
    EXPECT_EQ(store.XmlFileName(), file());
    EXPECT_TRUE(store.Initialize(home.file(QStringLiteral("other.xml")), QString()));
    EXPECT_EQ(store.XmlFileName(), file());
}

TEST_F(PropertiesXml, ListsWithCommentsAndSeparators) {
    writeFile(kHeader +
              "<APPLICATIONS><APPLICATION name=\"tessaly\"><SECTIONS>"
              "<SECTION name=\"s\"><KEY name=\"a\">1</KEY><!-- note --><KEY "
              "name=\"b\">2</KEY></SECTION><SECTION name=\"bad\"><KEY name=\"e\"/></SECTION>"
              "</SECTIONS></APPLICATION></APPLICATIONS>");
    auto store = open();
    QStringList list;
    EXPECT_EQ(store->GetPropList(list, QStringLiteral("s"), QStringLiteral("=")), 2);
    EXPECT_EQ(list, (QStringList{QStringLiteral("a=1"), QString(), QStringLiteral("b=2")}));
    EXPECT_EQ(store->GetPropList(list, QStringLiteral("none"), QStringLiteral("=")), -1);
    EXPECT_TRUE(list.isEmpty());
    EXPECT_THROW(store->GetPropList(list, QStringLiteral("bad"), QStringLiteral("=")), Failure);

    QStringList keys;
    EXPECT_EQ(store->GetKeyNodes(keys, QStringLiteral("s")), 1);
    EXPECT_EQ(keys, (QStringList{QStringLiteral("a"), QStringLiteral("b")}));
    EXPECT_THROW(store->GetKeyNodes(keys, QStringLiteral("none")), Failure);

    EXPECT_EQ(store->SetPropList(
                  QStringLiteral("s"),
                  {QStringLiteral("one=1"), QStringLiteral("two"), QStringLiteral("t=h=ree")},
                  QStringLiteral("=")),
              0);
    EXPECT_EQ(store->GetPropList(list, QStringLiteral("s"), QStringLiteral("=")), 0);
    EXPECT_EQ(list, QStringList{QStringLiteral("one=1")});
}

TEST_F(PropertiesXml, Deletes) {
    auto store = open();
    store->SetProp(pref, QStringLiteral("a"), QStringLiteral("1"));
    store->SetProp(pref, QStringLiteral("b"), QStringLiteral("2"));
    store->DeleteProp(pref, QStringLiteral("a"));
    EXPECT_EQ(store->GetProp(pref, QStringLiteral("a"), QStringLiteral("gone")),
              QStringLiteral("gone"));
    store->DeletePropSection(pref);
    EXPECT_EQ(store->GetProp(pref, QStringLiteral("b"), QStringLiteral("gone")),
              QStringLiteral("gone"));

    clsPropertiesXML fresh; // deletes do nothing before the first use
    fresh.DeleteApplication(QStringLiteral("tessaly"));
    EXPECT_FALSE(fresh.isInitialized());
}

TEST_F(PropertiesXml, DeletedApplicationLeavesWritesDetached) {
    {
        auto store = open();
        store->DeleteApplication(QStringLiteral("tessaly"));
        store->SetProp(pref, QStringLiteral("lost"), QStringLiteral("1"));
    }
    EXPECT_FALSE(contents().contains("lost"));
    EXPECT_FALSE(contents().contains("APPLICATION "));
}

TEST_F(PropertiesXml, SaveDoesNotClearTheDirtyFlag) {
    auto store = open();
    store->SetProp(pref, QStringLiteral("a"), QStringLiteral("1"));
    EXPECT_TRUE(store->SaveXmlFile());
    EXPECT_TRUE(store->isDirty());
}

TEST_F(PropertiesXml, IllFormedFileIsKeptAsBackup) {
    const QByteArray broken = "<APPLICATIONS><APPLICATION name=\"tessaly\"><SECTIONS>";
    writeFile(broken);
    {
        auto store = open();
        EXPECT_EQ(store->GetProp(pref, QStringLiteral("Language"), QStringLiteral("en-us")),
                  QStringLiteral("en-us"));
        store->SetProp(pref, QStringLiteral("Language"), QStringLiteral("de-de"));
    }
    EXPECT_EQ(home.read(QStringLiteral("tessaly.xml.bak")), broken);
    EXPECT_TRUE(contents().contains("<KEY name=\"Language\">de-de</KEY>"));
}

TEST_F(PropertiesXml, ForeignRootMakesTheStoreUnusable) {
    writeFile("<OTHER/>");
    auto store = open();
    EXPECT_THROW(store->GetProp(pref, QStringLiteral("a"), QString()), Failure);
    EXPECT_EQ(store->SetProp(pref, QStringLiteral("a"), QStringLiteral("1")), 0);
}

TEST_F(PropertiesXml, SaveFailsQuietlyWhereTheFileCannotBeWritten) {
    clsPropertiesXML store;
    store.Initialize(home.file(QStringLiteral("no/such/folder/x.xml")), QString());
    store.SetProp(pref, QStringLiteral("a"), QStringLiteral("1"));
    EXPECT_FALSE(store.SaveXmlFile());
    EXPECT_EQ(store.GetProp(pref, QStringLiteral("a"), QString()), QStringLiteral("1"));
}

TEST_F(PropertiesXml, UnicodeValuesRoundTrip) {
    const QString value = QStringLiteral("Grüße – 日本 & <tags>");
    { open()->SetProp(pref, QStringLiteral("u"), value); }
    EXPECT_EQ(open()->GetProp(pref, QStringLiteral("u"), QString()), value);
}

namespace {

QByteArray preferencesFile(const QByteArray& sections) {
    return kHeader + "<APPLICATIONS><APPLICATION name=\"tessaly\"><SECTIONS>" + sections +
           "</SECTIONS></APPLICATION></APPLICATIONS>";
}

const QByteArray kDefaults = preferencesFile(
    "<SECTION name=\"preferences\"><KEY name=\"A\">def-a</KEY><!-- note --><KEY name=\"E\">"
    "def-e</KEY><KEY name=\"Skin\"/><KEY name=\"B\">def-b</KEY></SECTION>"
    "<SECTION name=\"paths\"><KEY name=\"language\">\\language\\</KEY></SECTION>");

} // namespace

TEST_F(PropertiesXml, MissingDefaultsFillAFreshStoreInOrder) {
    home.write(QStringLiteral("defaults.xml"), kDefaults);
    {
        auto store = open();
        EXPECT_EQ(store->AddMissingDefaults(home.file(QStringLiteral("defaults.xml"))), 4);
        EXPECT_TRUE(store->isDirty());
    }
    // A default without text is left out: it would read as the default anyway, and an empty
    // key could never be given a value.
    EXPECT_EQ(contents(), preferencesFile("<SECTION name=\"preferences\"><KEY name=\"A\">def-a"
                                          "</KEY><KEY name=\"E\">def-e</KEY><KEY name=\"B\">"
                                          "def-b</KEY></SECTION><SECTION name=\"paths\"><KEY "
                                          "name=\"language\">\\language\\</KEY></SECTION>") +
                              "\r\n");
}

TEST_F(PropertiesXml, MissingDefaultsNeverOverwriteTheUsersValues) {
    home.write(QStringLiteral("defaults.xml"), kDefaults);
    writeFile(preferencesFile("<SECTION name=\"preferences\"><KEY name=\"E\"/><KEY name=\"A\">"
                              "mine</KEY></SECTION>"));
    auto store = open();
    EXPECT_EQ(store->AddMissingDefaults(home.file(QStringLiteral("defaults.xml"))), 2);
    EXPECT_EQ(store->GetProp(pref, QStringLiteral("A"), QString()), QStringLiteral("mine"));
    EXPECT_EQ(store->GetProp(pref, QStringLiteral("E"), QStringLiteral("none")),
              QStringLiteral("none"))
        << "the user's empty key stays empty";
    EXPECT_EQ(store->GetProp(pref, QStringLiteral("B"), QString()), QStringLiteral("def-b"));
    QStringList keys;
    store->GetKeyNodes(keys, pref);
    EXPECT_EQ(keys, (QStringList{QStringLiteral("E"), QStringLiteral("A"), QStringLiteral("B")}));
    EXPECT_EQ(store->GetProp(QStringLiteral("paths"), QStringLiteral("language"), QString()),
              QStringLiteral("\\language\\"));

    // A store that lacks nothing stays clean.
    { auto saved = std::move(store); }
    auto complete = open();
    EXPECT_EQ(complete->AddMissingDefaults(home.file(QStringLiteral("defaults.xml"))), 0);
    EXPECT_FALSE(complete->isDirty());
}

TEST_F(PropertiesXml, UnreadableDefaultsChangeNothing) {
    writeFile(preferencesFile("<SECTION name=\"preferences\"><KEY name=\"A\">1</KEY></SECTION>"));
    home.write(QStringLiteral("broken.xml"), kDefaults.left(kDefaults.size() - 20));
    home.write(QStringLiteral("foreign.xml"), "<OTHER><SECTION name=\"x\"/></OTHER>");
    const QByteArray before = contents();
    {
        auto store = open();
        for (const char* name : {"absent.xml", "broken.xml", "foreign.xml"})
            EXPECT_EQ(store->AddMissingDefaults(home.file(QString::fromLatin1(name))), -1) << name;
        EXPECT_FALSE(store->isDirty());
    }
    EXPECT_EQ(contents(), before);
}

TEST_F(PropertiesXml, ShippedDefaultsMendADamagedFile) {
    TestHome shipped(true);
    const QString defaults = shipped.file(QStringLiteral("tessaly.xml"));
    writeFile("<APPLICATIONS><APPLICATION name=\"tessaly\">"); // damaged: kept as .bak
    {
        auto store = open();
        EXPECT_GT(store->AddMissingDefaults(defaults), 50);
        EXPECT_TRUE(store->SaveXmlFile());
    }
    EXPECT_TRUE(QFileInfo::exists(file() + QStringLiteral(".bak")));
    // Every key of the shipped file is there with its value.
    clsPropertiesXML reference;
    reference.Initialize(defaults, QString());
    auto store = open();
    QStringList sections;
    ASSERT_GT(reference.GetSectionNodes(sections), 3);
    for (const QString& section : sections) {
        QStringList keys;
        reference.GetKeyNodes(keys, section);
        for (const QString& key : keys) {
            const QString value = reference.GetProp(section, key, QStringLiteral("<none>"));
            EXPECT_EQ(store->GetProp(section, key, QStringLiteral("<none>")), value)
                << section.toStdString() << "/" << key.toStdString();
        }
    }
}

TEST_F(PropertiesXml, FilesAreReadInTheEncodingTheyName) {
    const QString value = QString::fromUtf16(u"caf\u00e9 \u20ac \u201cq\u201d \u2013\u2014");
    const auto utf16 = [](QStringConverter::Encoding encoding, const QString& text) {
        return QByteArray(QStringEncoder(encoding, QStringEncoder::Flag::WriteBom).encode(text));
    };
    const QString body = QStringLiteral("<APPLICATIONS><APPLICATION name=\"tessaly\"><SECTIONS>"
                                        "<SECTION name=\"preferences\"><KEY name=\"v\">%1</KEY>"
                                        "</SECTION></SECTIONS></APPLICATION></APPLICATIONS>");
    const QByteArray cp1252 = "caf\xE9 \x80 \x93q\x94 \x96\x97";
    const std::pair<const char*, QByteArray> files[] = {
        {"utf-8", kHeader + body.arg(value).toUtf8()},
        {"utf-8 with mark", "\xEF\xBB\xBF" + kHeader + body.arg(value).toUtf8()},
        {"utf-16le with mark",
         utf16(QStringConverter::Utf16LE,
               QStringLiteral("<?xml version=\"1.0\" encoding=\"UTF-16\"?>") + body.arg(value))},
        {"utf-16be with mark", utf16(QStringConverter::Utf16BE, body.arg(value))},
        {"windows-1252", "<?xml version=\"1.0\" encoding=\"Windows-1252\"?>" +
                             body.arg(QStringLiteral("%1")).toLatin1().replace("%1", cp1252)},
        {"undeclared code page", body.arg(QStringLiteral("%1")).toLatin1().replace("%1", cp1252)},
    };
    for (const auto& [name, bytes] : files) {
        SCOPED_TRACE(name);
        writeFile(bytes);
        {
            auto store = open();
            EXPECT_EQ(store->GetProp(pref, QStringLiteral("v"), QString()), value);
            store->SetProp(pref, QStringLiteral("w"), QStringLiteral("1"));
        }
        // Saved again as UTF-8, and declared so where the file had a declaration.
        QStringDecoder utf8(QStringDecoder::Utf8);
        EXPECT_TRUE(QString(utf8.decode(contents())).contains(value));
        EXPECT_FALSE(utf8.hasError());
        EXPECT_FALSE(contents().contains("1252") || contents().contains("UTF-16"));
        EXPECT_EQ(open()->GetProp(pref, QStringLiteral("v"), QString()), value);
    }
    // ISO-8859-1 keeps 0x80-0x9F as the control characters they are there.
    writeFile("<?xml version=\"1.0\" encoding=\"ISO-8859-1\"?>" +
              body.arg(QStringLiteral("%1")).toLatin1().replace("%1", "caf\xE9 \xA4\x80"));
    EXPECT_EQ(open()->GetProp(pref, QStringLiteral("v"), QString()),
              QString::fromUtf16(u"caf\u00e9 \u00a4\u0080"));
}
