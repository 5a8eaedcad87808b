#pragma once

#include <QString>

class clsPropertiesXML;

// The language choice of start-up, over the "languages", "langid" and "paths" sections of the
// preferences.

// The code that the "langid" table gives for the system's language, lower-cased, or "en-us".
QString getSystemLanguageCode(clsPropertiesXML& properties);

// Whether a language is installed, not disabled, and has its file in the language folder.
// A catalogue record without a second field is a raised failure.
bool isLanguageAvailable(clsPropertiesXML& properties, const QString& code);

// The folder of the language files, ending with "/".
QString languageFolder(clsPropertiesXML& properties);
