#pragma once

#include <QFont>
#include <QHash>
#include <QList>
#include <QString>
#include <QStringList>
#include <array>

class clsPropertiesXML;

// Gives every window and message its text in the chosen language. A language file
// (<language folder><code>.xml) is read whole into two tables when a language is set: strings
// for messages (keys compare without regard to case) and form texts for window titles,
// captions and tool tips (keys such as "frmMain_cmdOk__caption").
class clsXMLocalizer {
public:
    explicit clsXMLocalizer(clsPropertiesXML& properties);
    ~clsXMLocalizer();
    clsXMLocalizer(const clsXMLocalizer&) = delete;
    clsXMLocalizer& operator=(const clsXMLocalizer&) = delete;

    // list[0] holds the codes, list[1] the display names of the enabled languages.
    short GetAvaliableLanguage(std::array<QStringList, 2>& list);
    QString GetLanguage() const;
    bool SetLanguage(const QString& language);
    bool IsLanguageInstalled(const QString& language);
    QString GetLangPath() const;
    QString GetString(const QString& key) const;
    QString GetStringPar(const QString& key, const QStringList& params) const;
    void SetProperFont(QFont& font, int codePage);
    int GetCodePage(int locale) const;

    // Module functions of the localiser live in config/modLanguage.h (getSystemLanguageCode,
    // isLanguageAvailable) and platform/modLocale.h (langIdToKey); GetOsName below.

    // The locale whose code page decides the fonts of windows: 0, the default, takes the
    // system's (the user's locale); any other value stands for it.
    void SetThreadLocale(int lcid);
    int ThreadLocale() const;

    // Whether windows keep their fonts under this locale (the English ones do).
    static bool IsEnglishLocale(int locale);

    // The text of a form-table key, empty when the key is missing. The walk over a window that
    // sets its texts from this table is TranslateForm of controls/modTranslate.h.
    QString GetFormText(const QString& key) const;

private:
    // Implementation details are the localiser's own; see clsXMLocalizer.cpp.
    struct Private;
    Private* d;
};

// "Linux_" and the kernel release.
QString GetOsName();
