#pragma once

#include <QObject>
#include <QString>
#include <QStringList>
#include <cstdint>
#include <memory>

class clsMessage;
class QImage;
class StatusSink;

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
    // Where the store's boxes go: a failure to list or delete, the question before deleting for
    // good. The window gives its sink; without one (or with nullptr) the quiet sink answers.
    void setStatusSink(StatusSink* sink);
    // kind 0: both outputs, 1: the template, 2: the installation package; others do nothing.
    void SetTemplateFileType(std::int32_t kind);
    void ClearTemplateFileType(std::int32_t kind);
    bool makeTemplate() const { return mMakeTemplate; }
    bool makeSis() const { return mMakeSis; }

    // Fills `names` with "<name>\t<creation date>" for each message folder, in the order the
    // file system gives them, and returns their count - 1 (-1: an empty store, `names` then
    // stays as it was). A failure goes to the status sink as a box titled "ListMessages".
    std::int16_t ListMessages(QStringList& names);
    // A new message with no slides; nothing reaches the disk until it is saved. Null when
    // `name` cannot name a message (messageNameProblem).
    std::shared_ptr<clsMessage> CreateMsg(const QString& name);
    // The stored message with its slide pictures; a picture that cannot be read leaves the
    // slide without one. Null when the document cannot be shown (clsMessage::readProblem):
    // the caller reports that the message could not be opened, and the folder stays as it is.
    std::shared_ptr<clsMessage> OpenMsg(const QString& name);
    bool SaveMsg(clsMessage& message);
    // Saves the message under `newName`, then takes that name; false with the message and its
    // folder unchanged on a failure (clsMessage::SaveMessageAs).
    bool SaveMsgAs(clsMessage& message, const QString& newName);
    // Renames the message's folder and the message; false (and nothing changed) on a failure,
    // also when `newName` is another message's folder.
    bool RenameMsg(clsMessage& message, const QString& newName);
    // Copies the files (not the sub-folders) of one message folder into another, overwriting.
    bool CopyMsg(const QString& fromName, const QString& toName);
    // Moves the message's folder to the trash. Where no trash can be used the status sink is
    // asked first, and only a Yes deletes the folder for good. A failure goes to the sink as a
    // box, except for an untitled message, which may have no folder yet.
    bool DeleteMsg(const QString& name, bool askUser);
    // Run at start: clears the working folders a save interrupted by a crash left in the store.
    // Where the message folder itself is missing (the crash fell while the new folder was taking
    // the old one's place), the newly written folder, or failing that the previous one, is put
    // back in its place first.
    void RecoverInterruptedSaves();
    // Writes `picture` as BMP (kind 0), BMP and JPEG (1) or GIF (2) beside `filePath`.
    bool SavePictureBoxImage(const QString& filePath, const QImage& picture, std::int32_t kind);

signals:
    // Progress of publishing: a slide of a total, or with `slide` below 1 a phase in `total`.
    void ProsessingSlide(std::int16_t slide, std::int16_t total);

private:
    void recoverMessage(const QString& name, const QStringList& staged,
                        const QStringList& previous);

protected:
    // The store folder of a message, checked: raises a failure when the store is not set up or
    // the name cannot be a folder of it.
    QString messageFolder(const QString& name) const;

    QString mMessagePath;
    QString mMessageFile;
    bool mFileSystem = false; // Initialize has run
    StatusSink* mSink;
    bool mMakeTemplate = true;
    bool mMakeSis = true;
};
