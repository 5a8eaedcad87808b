#pragma once

#include "document/clsSlides.h"
#include "document/modDocument.h"

#include <QImage>
#include <QString>
#include <QStringList>
#include <cstdint>
#include <memory>
#include <vector>

// One message: a folder holding message.xml and a Slide_<index>.bmp per slide. The XML document
// is the only store of the message's values; saving writes it out whole with the pictures.
class clsMessage {
public:
    clsMessage();
    ~clsMessage();
    clsMessage(const clsMessage&) = delete;
    clsMessage& operator=(const clsMessage&) = delete;

    // Opens <rootPath><messageName>/<fileName>; a missing or unreadable file gives a fresh
    // document.
    void Initialize(const QString& rootPath, const QString& fileName, const QString& messageName);

    // Declared for completeness; it hands back no node.
    pugi::xml_node DOMParent() const { return {}; }

    // The `name` attribute of MESSAGE. Writing also renames the folder the message saves to.
    QString name() const;
    void setName(const QString& value);
    QString Created() const;
    void setCreated(const QString& value);
    // The message's folder, with a closing "/". Writing it changes nothing.
    QString Path() const { return mPath; }
    void setPath(const QString&) {}
    // Null when the document has no ROOT element.
    clsSlides* Slides() const { return mSlides.get(); }
    // -1 without a slide collection.
    std::int32_t DefaultDuration() const;
    void setDefaultDuration(std::int32_t value);

    void DeleteSlide(int index);
    // Writes `picture` as a bitmap to <Path><fileStem>.<extension>.
    bool SaveImage(const QImage& picture, const QString& fileStem, const QString& extension);
    // Writes the folder anew: message.xml and one bitmap per slide. The new folder is built
    // beside the old one and swapped in, so a failed save leaves the previous folder as it was.
    bool SaveMessage();
    // Saves the message under `newName` and only then takes that name. On a failure the message
    // keeps its name and folder, and the folder under `newName` is as it was.
    bool SaveMessageAs(const QString& newName);
    // Why the program cannot show this message as it was read ("" when it can): the document
    // has no ROOT element, or a number of a slide or draw object does not read as one.
    QString readProblem() const;
    // Records that <Path><fileName> would be lost by the next save because it could not be read
    // (or belongs to a document that could not be). Saving writes the folder anew, so every
    // later save keeps the file as <fileName>.bak instead. Initialize records an unreadable
    // document and the folder's other files itself.
    void keepUnreadable(const QString& fileName);
    // The names of the backups the next save writes (e.g. "message.xml.bak").
    QStringList backupNames() const;
    // Whether the document has the MESSAGE element that carries the name.
    bool hasMessageElement() const { return static_cast<bool>(mMessageElement); }
    // Copies the content of `source` into `destination`; the destination's draw objects stay.
    void CopySlide(clsSlide& destination, clsSlide& source);

    // Whether the message changed since it was last saved (for callers that want to know).
    bool isChanged() const { return mChanged; }
    // Why the last SaveMessage gave false ("" after a success).
    QString lastError() const { return mLastError; }
    // The message's document, as it would be saved.
    const pugi::xml_document& document() const { return *mDocument; }

    // The text of message.xml for the current document.
    std::string serialise() const;

private:
    // A file that could not be read when the message was loaded.
    struct Backup {
        QString fileName; // the name it had; the backup is this with ".bak"
        QByteArray bytes; // its content, when it could be read as bytes
        bool haveBytes = false;
        QString source; // where it is on disk otherwise
    };

    // The steps of Initialize: the file read when it parses (else its backups noted), the
    // template of a new document, the elements and slides found or made.
    bool loadDocument();
    void loadTemplate();
    void bindElements(const QString& messageName);

    void saveFolder();
    // The steps of saveFolder: the folder the message goes to, checked; the new folder written
    // beside it; the new folder put in its place.
    QString checkedSaveTarget() const;
    QString stageFolder(const QString& target) const;
    void writeSlidePictures(const QString& staging) const;
    void swapIntoPlace(const QString& staging, const QString& target) const;
    void writeBackups(const QString& staging, const QString& target) const;

    std::unique_ptr<clsSlides> mSlides;
    QString mRootPath;
    QString mPath;
    QString mFileName;
    QString mName;
    bool mChanged = false;
    XmlDocument mDocument;
    pugi::xml_node mRootElement;
    pugi::xml_node mHeaderElement;
    pugi::xml_node mMessageElement;
    QString mLastError;
    std::vector<Backup> mBackups;
};
