#pragma once

#include "config/clsPropertiesXML.h"
#include "support/TestHome.h"

#include <QString>
#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

// A fresh application folder with a preferences store whose language catalogue the test fills,
// and language files written by the test into the language folder.
class LocalizerFixture : public ::testing::Test {
protected:
    LocalizerFixture() {
        props.SetProp(u"paths"_s, u"language"_s, u"\\language\\tessaly\\"_s);
        addLanguage(u"en-us"_s, u"English,1"_s);
    }
    void addLanguage(const QString& code, const QString& record) {
        props.SetProp(u"languages"_s, code, record);
    }
    // Writes <language folder><code>.xml with the given forms and strings content.
    void writeLanguage(const QString& code, const QString& forms, const QString& strings) {
        writeRawLanguage(code, u"<?xml version=\"1.0\" encoding=\"utf-8\"?>\n<langtab><forms>%1"
                               "</forms><strings>%2</strings></langtab>\n"_s.arg(forms, strings)
                                   .toUtf8());
    }
    void writeRawLanguage(const QString& code, const QByteArray& bytes) {
        home.write(u"language/tessaly/"_s + code + u".xml"_s, bytes);
    }
    static QString str(const QString& key, const QString& text) {
        return u"<string name=\"%1\"><text>%2</text></string>"_s.arg(key, text);
    }

    TestHome home;
    clsPropertiesXML props;
};
