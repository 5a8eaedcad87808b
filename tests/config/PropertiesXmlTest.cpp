#include "config/clsPropertiesXML.h"
#include "platform/Failure.h"

#include "support/TestHome.h"

#include <QFile>
#include <QFileInfo>
#include <QProcess>
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
    // And an independent parser reads it.
    QProcess python;
    python.start(QStringLiteral("python3"),
                 {QStringLiteral("-c"),
                  QStringLiteral("import sys,xml.etree.ElementTree as E;"
                                 "r=E.parse(sys.argv[1]).getroot();"
                                 "print(r.find('APPLICATION/SECTIONS/SECTION/KEY').text)"),
                  file()});
    ASSERT_TRUE(python.waitForFinished(10000));
    EXPECT_EQ(python.readAllStandardOutput().trimmed(), QByteArray("de-de"));
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
    auto store = open();
    EXPECT_EQ(store->SetProp(pref, QStringLiteral("A"), QStringLiteral("1")), 1);
    EXPECT_EQ(store->SetProp(pref, QStringLiteral("A"), QStringLiteral("1")), 0);
    EXPECT_EQ(store->SetProp(pref, QStringLiteral("A"), QStringLiteral("2")), 1);
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
