#pragma once

#include <QString>
#include <QStringList>
#include <pugixml.hpp>

// The preferences store: one XML file that several applications share, held whole in memory.
//
//   <APPLICATIONS><APPLICATION name="tessaly"><SECTIONS>
//     <SECTION name="preferences"><KEY name="Language">en-us</KEY></SECTION>
//   </SECTIONS></APPLICATION></APPLICATIONS>
//
// Reads and writes go to the subtree of the current application; values are strings. The file
// is read in the encoding it names and written as UTF-8, on SaveXmlFile() and when the store
// ends with unsaved changes. A file that cannot
// be read is kept as "<file>.bak" before the store starts afresh.
class clsPropertiesXML {
public:
    clsPropertiesXML();
    ~clsPropertiesXML();
    clsPropertiesXML(const clsPropertiesXML&) = delete;
    clsPropertiesXML& operator=(const clsPropertiesXML&) = delete;

    bool Initialize(const QString& xmlFileName = {}, const QString& applicationName = {});

    QString XmlFileName() const { return mFileName; }
    void setXmlFileName(const QString& fileName);
    QString ApplicationName() const { return mApplicationName; }
    void setApplicationName(const QString& name);
    void SetDefaultXmlFileName();
    void SetDefaultApplicationName();

    short GetApplicationNodes(QStringList& names);
    short GetSectionNodes(QStringList& names);
    short GetKeyNodes(QStringList& names, const QString& section);

    bool SaveXmlFile();

    QString GetProp(const QString& section, const QString& key, const QString& defaultValue);
    short SetProp(const QString& section, const QString& key, const QString& value);
    short GetPropList(QStringList& list, const QString& section, const QString& separator);
    short SetPropList(const QString& section, const QStringList& list, const QString& separator);

    void DeleteApplication(const QString& application);
    void DeletePropSection(const QString& section);
    void DeleteProp(const QString& section, const QString& key);

    // Adds to the current application's subtree each section and key of the default preferences
    // file (same tree, the installed tessaly.xml) that the store lacks, in the defaults' order.
    // A value the store has is never changed, not even an empty one; a default without text
    // is not added (it reads as its default all the same). Marks the store dirty when it added
    // anything. Returns the number of keys added, or -1 when the defaults file cannot be read
    // or is not a preferences file; the store is then left as it was. A store without its
    // application (a file with a foreign root) raises the missing-object failure, as every
    // access does.
    int AddMissingDefaults(const QString& defaultsFile);

    // Whether the document differs from the file (it stays set after a save).
    bool isDirty() const { return mDirty; }
    bool isInitialized() const { return mInitialized; }

private:
    void bindApplication();
    void loadDocument(const QString& file);
    pugi::xml_node findApplicationNode(const QString& application);
    pugi::xml_node findKeyNode(const QString& section, const QString& key);
    pugi::xml_node findSectionNode(const QString& section);

    void ensureInitialized();
    pugi::xml_node applicationNode() const; // raises the missing-object failure when absent

    QString mFileName;
    QString mApplicationName;
    pugi::xml_document mDocument;
    pugi::xml_document mDetached; // holds the application node after DeleteApplication
    pugi::xml_node mApplicationNode;
    pugi::xml_node mSectionsNode;
    bool mDirty = false;
    bool mInitialized = false;
    bool mKeepFile = false; // an unusable file that could not be kept aside is never overwritten
};
