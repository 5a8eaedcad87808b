#pragma once

#include <QObject>
#include <QString>
#include <QStringList>
#include <cstdint>
#include <memory>

class clsMessage;
class QImage;

// The store of messages: one sub-folder of the store folder per message, named after it, with
// message.xml and the slide pictures. The folder list is the message list. The main window owns
// one manager.
class clsMMSManager : public QObject {
    Q_OBJECT

public:
    explicit clsMMSManager(QObject* parent = nullptr);
    ~clsMMSManager() override;

    // Sets the store folder and the document's file name. Until this has run, the operations
    // that need the store fail.
    void Initialize(const QString& messagePath, const QString& messageFile);
    // The store folder, with a closing "/".
    QString GetMessagePath() const { return mMessagePath; }
    QString GetSaveAsMMSStatus() const { return mStatusText; }
    // kind 0: both outputs, 1: the template, 2: the installation package; others do nothing.
    void SetTemplateFileType(std::int32_t kind);
    void ClearTemplateFileType(std::int32_t kind);
    bool makeTemplate() const { return mMakeTemplate; }
    bool makeSis() const { return mMakeSis; }

    // Fills `names` with "<name>\t<creation date>" for each message folder, in the order the
    // file system gives them, and returns their count - 1 (-1: an empty store, `names` then
    // stays as it was). A failure is shown in a box titled "ListMessages".
    std::int16_t ListMessages(QStringList& names);
    // A new message with no slides; nothing reaches the disk until it is saved.
    std::shared_ptr<clsMessage> CreateMsg(const QString& name);
    // The stored message with its slide pictures; a picture that cannot be read leaves the
    // slide without one.
    std::shared_ptr<clsMessage> OpenMsg(const QString& name);
    bool SaveMsg(clsMessage& message);
    // Renames the message's folder and the message; false (and nothing changed) on a failure.
    bool RenameMsg(clsMessage& message, const QString& newName);
    // Copies the files (not the sub-folders) of one message folder into another, overwriting.
    bool CopyMsg(const QString& fromName, const QString& toName);
    // Moves the message's folder to the trash. A failure is shown in a box, except for an
    // untitled message, which may have no folder yet.
    bool DeleteMsg(const QString& name, bool askUser);
    // Writes `picture` as BMP (kind 0), BMP and JPEG (1) or GIF (2) beside `filePath`.
    bool SavePictureBoxImage(const QString& filePath, const QImage& picture, std::int32_t kind);

signals:
    // Progress of publishing: a slide of a total, or with `slide` below 1 a phase in `total`.
    void ProsessingSlide(std::int16_t slide, std::int16_t total);

protected:
    // The store folder of a message, checked: raises a failure when the store is not set up or
    // the name cannot be a folder of it.
    QString messageFolder(const QString& name) const;

    QString mMessagePath;
    QString mMessageFile;
    bool mFileSystem = false; // Initialize has run
    QString mFileList;
    std::int32_t mStatus = 0;
    QString mStatusText;
    bool mMakeTemplate = true;
    bool mMakeSis = true;
};
