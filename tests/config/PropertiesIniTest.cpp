#include "config/clsProperties.h"
#include "support/TestHome.h"

#include <QStringConverter>
#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

TEST(PropertiesIni, ReadsSectionsAndEntriesInFileOrder) {
    TestHome home;
    clsProperties ini;
    EXPECT_EQ(ini.IniFileName(), home.file(u"tessaly.ini"_s));
    QStringList list{u"stale"_s};
    EXPECT_EQ(ini.GetSections(list), -1); // no file
    EXPECT_TRUE(list.isEmpty());
    EXPECT_EQ(ini.GetProp(u"a"_s, u"b"_s, u"d"_s), u"d"_s);
    home.write(u"tessaly.ini"_s, "");
    EXPECT_EQ(ini.GetSections(list), -1); // an empty one
    home.write(u"tessaly.ini"_s,
               "[this]\r\nDelete=1\r\n\r\n[Preferences]\r\n; a comment\r\nLanguageID = 1033 \r\n"
               "Path=a=b\r\nQuoted=\"x y\"\r\n[Other]\r\nk=v\r\n");
    EXPECT_EQ(ini.GetSections(list), 2);
    EXPECT_EQ(list, (QStringList{u"this"_s, u"Preferences"_s, u"Other"_s}));
    EXPECT_EQ(ini.GetPropList(u"preferences"_s, list), 2);
    EXPECT_EQ(list, (QStringList{u"LanguageID=1033"_s, u"Path=a=b"_s, u"Quoted=\"x y\""_s}));
    EXPECT_EQ(ini.GetProp(u"THIS"_s, u"delete"_s, u"0"_s), u"1"_s);
    EXPECT_EQ(ini.GetProp(u"Preferences"_s, u"Quoted"_s, QString()), u"x y"_s);
}

TEST(PropertiesIni, ValuesAndListsAreCutAsTheProfileFunctionsCutThem) {
    TestHome home;
    clsProperties ini;
    EXPECT_NE(ini.SetProp(u"s"_s, u"k"_s, QString(300, u'v')), 0);
    EXPECT_EQ(ini.GetProp(u"s"_s, u"k"_s, QString()), QString(255, u'v'));

    QByteArray text = "[big]\r\n";
    for (int i = 0; i < 300; ++i) // 18 characters each
        text += "key" + QByteArray::number(i).rightJustified(3, '0') + "=value_value\r\n";
    home.write(u"tessaly.ini"_s, text);
    QStringList list;
    // 4094 characters hold 215 items of 18 and their NULs, and 9 characters of the next.
    EXPECT_EQ(ini.GetPropList(u"big"_s, list), 215);
    EXPECT_EQ(list.at(214), u"key214=value_value"_s);
    EXPECT_EQ(list.last(), u"key215=va"_s);
}

TEST(PropertiesIni, WritesKeepTheRestOfTheFile) {
    TestHome home;
    home.write(u"tessaly.ini"_s, "; top\r\n[a]\r\nx=1\r\n\r\n[b]\r\ny=2\r\n");
    clsProperties ini;
    ini.SetProp(u"a"_s, u"z"_s, u"3"_s);
    ini.SetProp(u"A"_s, u"X"_s, u"9"_s);
    ini.SetPropList(u"b"_s, {u"p=1"_s, u"q=2"_s});
    EXPECT_EQ(home.read(u"tessaly.ini"_s),
              QByteArray("; top\r\n[a]\r\nx=9\r\nz=3\r\n\r\n[b]\r\np=1\r\nq=2\r\n"));
}

TEST(PropertiesIni, OlderFilesInTheWindowsCodePageOrUtf16) {
    TestHome home;
    clsProperties ini;
    const QString expected = u"€ “q” ‘s’ –— é"_s;
    home.write(u"tessaly.ini"_s, "[s]\r\nk=\x80 \x93q\x94 \x91s\x92 \x96\x97 \xE9\r\n");
    EXPECT_EQ(ini.GetProp(u"s"_s, u"k"_s, QString()), expected);
    home.write(u"tessaly.ini"_s,
               QStringEncoder(QStringConverter::Utf16LE, QStringConverter::Flag::WriteBom)
                   .encode(u"[s]\r\nk="_s + expected + u"\r\n"_s));
    EXPECT_EQ(ini.GetProp(u"s"_s, u"k"_s, QString()), expected);
    QStringList sections;
    EXPECT_EQ(ini.GetSections(sections), 0);
}
