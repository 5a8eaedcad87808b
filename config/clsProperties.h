#pragma once

#include <QString>
#include <QStringList>

// A thin store over an INI file, with the limits of the classic profile functions: a value is
// cut at 255 characters, and at most 4096 characters of a section or of the section list are
// seen. Section and key names match without regard to case. Only the import of an older
// installation's settings uses it.
class clsProperties {
public:
    clsProperties();

    QString IniFileName() const { return mIniFileName; }
    void setIniFileName(const QString& fileName) { mIniFileName = fileName; }
    void SetDefaultIniFileName();

    QString GetProp(const QString& section, const QString& key, const QString& defaultValue) const;
    short SetProp(const QString& section, const QString& key, const QString& value);
    short GetSections(QStringList& list) const;
    short GetPropList(const QString& section, QStringList& list) const;
    short SetPropList(const QString& section, const QStringList& list);

    static constexpr int kValueBuffer = 256;
    static constexpr int kListBuffer = 4096;

private:
    struct Section {
        QString name;
        QStringList lines; // the lines below the header, as in the file
    };
    struct Contents {
        QStringList preamble; // lines before the first section
        QList<Section> sections;
        // The section of that name (case does not count); with `create`, a new one at the end.
        Section* section(const QString& name, bool create);
    };
    bool read(Contents& contents) const;
    bool write(const Contents& contents) const;

    QString mIniFileName;
};
