// Prints what a first start learns from the system's locale: the language id key, the language
// code of the "langid" table and whether that language is available. The language tests run
// it with a given LANG, since the toolkit reads the system locale once per process.
#include "config/clsPropertiesXML.h"
#include "config/modLanguage.h"
#include "platform/modLocale.h"

#include <QCoreApplication>
#include <cstdio>

int main(int argc, char** argv) {
    QCoreApplication app(argc, argv);
    clsPropertiesXML properties;
    const QString code = getSystemLanguageCode(properties);
    const bool available = isLanguageAvailable(properties, code);
    std::printf("%s %s %s\n", qPrintable(langIdToKey(0)), qPrintable(code),
                available ? "available" : "unavailable");
    return 0;
}
