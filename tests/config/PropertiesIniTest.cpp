#include "config/clsProperties.h"

#include "support/TestHome.h"

#include <QStringConverter>
#include <gtest/gtest.h>

TEST(PropertiesIni, DefaultFileAndMissingFile) {
    TestHome home;
    clsProperties ini;
    EXPECT_EQ(ini.IniFileName(), home.file(QStringLiteral("tessaly.ini")));
    QStringList list{QStringLiteral("stale")};
    EXPECT_EQ(ini.GetSections(list), -1);
    EXPECT_TRUE(list.isEmpty());
    EXPECT_EQ(ini.GetProp(QStringLiteral("a"), QStringLiteral("b"), QStringLiteral("d")),
              QStringLiteral("d"));
    home.write(QStringLiteral("tessaly.ini"), "");
    EXPECT_EQ(ini.GetSections(list), -1);
}

TEST(PropertiesIni, ReadsSectionsAndEntriesInFileOrder) {
    TestHome home;
    home.write(QStringLiteral("tessaly.ini"),
               "[this]\r\nDelete=1\r\n\r\n[Preferences]\r\n; a comment\r\nLanguageID = 1033 \r\n"
               "Path=a=b\r\nQuoted=\"x y\"\r\n[Other]\r\nk=v\r\n");
    clsProperties ini;
    QStringList list;
    EXPECT_EQ(ini.GetSections(list), 2);
    EXPECT_EQ(list, (QStringList{QStringLiteral("this"), QStringLiteral("Preferences"),
                                 QStringLiteral("Other")}));
    EXPECT_EQ(ini.GetPropList(QStringLiteral("preferences"), list), 2);
    EXPECT_EQ(list, (QStringList{QStringLiteral("LanguageID=1033"), QStringLiteral("Path=a=b"),
                                 QStringLiteral("Quoted=\"x y\"")}));
    EXPECT_EQ(ini.GetProp(QStringLiteral("THIS"), QStringLiteral("delete"), QStringLiteral("0")),
              QStringLiteral("1"));
    EXPECT_EQ(ini.GetProp(QStringLiteral("Preferences"), QStringLiteral("Quoted"), QString()),
              QStringLiteral("x y"));
}

TEST(PropertiesIni, ValuesAreCutAt255Characters) {
    TestHome home;
    clsProperties ini;
    const QString longValue(300, QLatin1Char('v'));
    EXPECT_NE(ini.SetProp(QStringLiteral("s"), QStringLiteral("k"), longValue), 0);
    EXPECT_EQ(ini.GetProp(QStringLiteral("s"), QStringLiteral("k"), QString()),
              QString(255, QLatin1Char('v')));
}

TEST(PropertiesIni, ListsSeeAtMost4096Characters) {
    TestHome home;
    QByteArray text = "[big]\r\n";
    for (int i = 0; i < 300; ++i)
        text += "key" + QByteArray::number(i).rightJustified(3, '0') +
                "=value_value\r\n"; // 18 characters
    home.write(QStringLiteral("tessaly.ini"), text);
    clsProperties ini;
    QStringList list;
    const short last = ini.GetPropList(QStringLiteral("big"), list);
    // 4094 characters hold 215 items of 18 and their NULs, and 9 characters of the next.
    EXPECT_EQ(last, 215);
    EXPECT_EQ(list.first(), QStringLiteral("key000=value_value"));
    EXPECT_EQ(list.at(214), QStringLiteral("key214=value_value"));
    EXPECT_EQ(list.last(), QStringLiteral("key215=va"));
}

TEST(PropertiesIni, WritesKeepTheRestOfTheFile) {
    TestHome home;
    home.write(QStringLiteral("tessaly.ini"), "; top\r\n[a]\r\nx=1\r\n\r\n[b]\r\ny=2\r\n");
    clsProperties ini;
    ini.SetProp(QStringLiteral("a"), QStringLiteral("z"), QStringLiteral("3"));
    ini.SetProp(QStringLiteral("A"), QStringLiteral("X"), QStringLiteral("9"));
    ini.SetPropList(QStringLiteral("b"), {QStringLiteral("p=1"), QStringLiteral("q=2")});
    EXPECT_EQ(home.read(QStringLiteral("tessaly.ini")),
              QByteArray("; top\r\n[a]\r\nx=9\r\nz=3\r\n\r\n[b]\r\np=1\r\nq=2\r\n"));
}

TEST(PropertiesIni, OlderFilesInTheWindowsCodePageOrUtf16) {
    TestHome home;
    clsProperties ini;
    const QString expected =
        QString::fromUtf16(u"\u20ac \u201cq\u201d \u2018s\u2019 \u2013\u2014 \u00e9");
    home.write(QStringLiteral("tessaly.ini"),
               "[s]\r\nk=\x80 \x93q\x94 \x91s\x92 \x96\x97 \xE9\r\n");
    EXPECT_EQ(ini.GetProp(QStringLiteral("s"), QStringLiteral("k"), QString()), expected);
    home.write(QStringLiteral("tessaly.ini"),
               QStringEncoder(QStringConverter::Utf16LE, QStringConverter::Flag::WriteBom)
                   .encode(QStringLiteral("[s]\r\nk=") + expected + QStringLiteral("\r\n")));
    EXPECT_EQ(ini.GetProp(QStringLiteral("s"), QStringLiteral("k"), QString()), expected);
    QStringList sections;
    EXPECT_EQ(ini.GetSections(sections), 0);
}
