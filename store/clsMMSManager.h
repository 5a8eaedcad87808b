#pragma once

#include <QObject>
#include <QString>
#include <QStringList>
#include <cstdint>
#include <memory>
#include <optional>
#include <pugixml.hpp>

class clsMessage;
class clsSlide;
class Failure;
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

    // Publishes `message` into the folder "mms" of its message folder: a picture per slide in the
    // preference ImageFormat (jpg, gif, bmp), the slide's sound (a WAV converted to AMR when
    // `convertSound`), its text, texts.xml and mms.smil, then fits the pictures under the largest
    // message size when they are JPEG, writes the send request mms.mms when asked (setMakePdu),
    // then the packages the template file types ask for (mms.tpl, mms.pkg and mms.sis).
    // `timeFormat` 1 writes durations as "3.000s", any other value as "3000ms". Progress goes
    // out through ProsessingSlide. Returns the status: 0 success, 1 the folder or the
    // presentation could not be made, 2 a picture, 3 a sound could not be converted, 4 the send
    // request or packing failed; GetSaveAsMMSStatus() then says "OK", what fitting under the
    // largest size did or what is still above it (both status 0: every file is written), or the
    // failure's text.
    std::int32_t SaveAsMMS(clsMessage& message, bool convertSound, std::int32_t timeFormat);
    QString GetSaveAsMMSStatus() const { return mStatusText; }
    // The files of the last publication, in the order they were made, separated by ";".
    QString fileList() const { return mFileList; }
    // The picture format publishing writes ("jpg", "gif", "bmp"); "" (the default) reads the
    // preference ImageFormat at each SaveAsMMS.
    void setPictureFormat(const QString& format) { mPictureFormat = format; }
    // A folder searched for companion programs (makesis) before the executable's folder and
    // <prefix>/libexec/tessaly; "" for none.
    void setCompanionFolder(const QString& folder) { mCompanionFolder = folder; }
    // Whether publishing also writes mms/mms.mms, the message as one MMS send request to `to`
    // (phone numbers or e-mail addresses), outside the packages. Until this is called, the
    // preference MakePdu ("1": yes) decides at each SaveAsMMS, with no recipients.
    void setMakePdu(bool make, const QStringList& to = {});
    // The companion program `name` as found, or "".
    QString companionProgram(const QString& name) const;
    // The largest message publishing aims at, in bytes; 0 (the default) reads the preference
    // MaxMessageSize at each SaveAsMMS. Above it, JPEG slide pictures are published at lower
    // qualities until the message fits; what is still too large is told in the status text.
    void setMaxMessageSize(std::int64_t bytes) { mMaxMessageSize = bytes; }
    // The presentation and the text list as publishing starts them ("<name>" stands for the
    // message's name), for whoever builds them the same way.
    static QByteArray presentationTemplate();
    static QByteArray textsTemplate();

signals:
    // Progress of publishing: a slide of a total, or with `slide` below 1 a phase in `total`.
    void ProsessingSlide(std::int16_t slide, std::int16_t total);

private:
    void recoverMessage(const QString& name, const QStringList& staged,
                        const QStringList& previous);

    // Where and how one publication writes.
    struct PublishTarget {
        QString messageFolder; // with a closing "/"
        QString outputFolder;  // the folder "mms" in it, with a closing "/"
        QString format;        // the preference ImageFormat
        bool convertSound = true;
        std::int32_t timeFormat = 0;
    };
    // The steps of SaveAsMMS.
    bool prepareOutputFolder(const QString& outputFolder);
    void makeTextsDocument(const QString& messageName);
    pugi::xml_node makeSmilDocument(const QString& messageName);
    void publishSlide(clsSlide& slide, pugi::xml_node body, const PublishTarget& target);
    void saveDocuments(const QString& outputFolder);
    void addToFileList(const QString& name);
    void writeSlideText(pugi::xml_node parElement, clsSlide& slide, const QString& outputFolder);
    QString convertSlidePicture(clsSlide& slide, const QString& outputFolder,
                                const QString& messageFolder, const QString& format);
    QString convertSlideSound(int index, const QString& soundPath, const QString& outputFolder,
                              const QString& messageFolder, bool convertSound);
    // Packaging of the published files.
    bool packTemplate(const QString& outputFolder, const QString& name, const QString& fileList);
    bool packSis(const QString& messageName, const QString& outputFolder, const QString& name,
                 const QString& fileList);
    void runMakesis(const QString& packagePath);
    bool makePdu() const;
    // Records a failed step: `status` and the failure's text under `key`.
    void setFailure(std::int32_t status, const QString& key, const Failure& failure);
    void phase(std::int16_t slide, std::int16_t total);
    // Publishes the JPEG pictures at lower qualities while the message is above the largest
    // size; leaves the outcome in mFitNote (clsMMSManagerFit.cpp).
    void fitToBudget(const PublishTarget& target);

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
    pugi::xml_document mTextsDocument;
    pugi::xml_document mSmilDocument;
    pugi::xml_node mMessageElement;
    QString mFileList;
    std::int32_t mStatus = 1;
    QString mStatusText;
    QString mCompanionFolder;
    QString mPictureFormat;
    std::optional<bool> mMakePdu;
    QStringList mPduTo;
    std::int64_t mMaxMessageSize = 0;
    QString mFitNote; // what fitting did, "" when the message fitted as written
};
