#pragma once

#include "config/clsPropertiesXML.h"
#include "support/TestHome.h"

#include <QString>
#include <gtest/gtest.h>

// A fresh application folder with a preferences store whose language catalogue the test fills,
// and language files written by the test into the language folder.
class LocalizerFixture : public ::testing::Test {
protected:
    LocalizerFixture() {
        props.SetProp(QStringLiteral("paths"), QStringLiteral("language"),
                      QStringLiteral("\\language\\tessaly\\"));
        props.SetProp(QStringLiteral("languages"), QStringLiteral("en-us"),
                      QStringLiteral("English,1"));
    }

    void addLanguage(const QString& code, const QString& record) {
        props.SetProp(QStringLiteral("languages"), code, record);
    }

    // Writes <language folder><code>.xml with the given forms and strings content.
    void writeLanguage(const QString& code, const QString& forms, const QString& strings) {
        const QString text = QStringLiteral("<?xml version=\"1.0\" encoding=\"utf-8\"?>\n<langtab>"
                                            "<forms>%1</forms><strings>%2</strings></langtab>\n")
                                 .arg(forms, strings);
        writeRawLanguage(code, text.toUtf8());
    }

    void writeRawLanguage(const QString& code, const QByteArray& bytes) {
        home.write(QStringLiteral("language/tessaly/") + code + QStringLiteral(".xml"), bytes);
    }

    static QString str(const QString& key, const QString& text) {
        return QStringLiteral("<string name=\"%1\"><text>%2</text></string>").arg(key, text);
    }

    TestHome home;
    clsPropertiesXML props;
};
