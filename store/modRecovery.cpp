#include "store/modRecovery.h"

#include "document/clsMessage.h"
#include "document/clsSlide.h"
#include "document/clsSlides.h"
#include "platform/AppPaths.h"
#include "platform/Failure.h"
#include "store/clsMMSManager.h"

#include <QDir>
#include <QFileInfo>
#include <QImage>
#include <QSaveFile>

namespace {

const QString kDocument = QStringLiteral("message.xml");
const QString kCopy = QStringLiteral("message");       // the complete copy
const QString kWriting = QStringLiteral(".writing");   // a copy being written
const QString kPrevious = QStringLiteral(".previous"); // the copy being replaced

QString pictureFile(int position) {
    return QStringLiteral("Slide_%1.bmp").arg(position);
}

QString folderOf(const QString& name) {
    return joinPath(recoveryFolder(), name);
}

bool writeFile(const QString& path, const QByteArray& bytes) {
    QSaveFile file(path);
    return file.open(QIODevice::WriteOnly) && file.write(bytes) == bytes.size() && file.commit();
}

bool writePicture(const QString& path, const QImage& picture) {
    QSaveFile file(path);
    return file.open(QIODevice::WriteOnly) && picture.save(&file, "BMP") && file.commit();
}

// The document and one picture per slide, by position, into `folder`.
bool writeFolder(const clsMessage& message, const QString& folder) {
    const std::string text = message.serialise();
    if (!writeFile(joinPath(folder, kDocument), QByteArray::fromStdString(text)))
        return false;
    if (const clsSlides* slides = message.Slides()) {
        int position = 0;
        for (const auto& slide : *slides) {
            ++position;
            if (!slide->Image().isNull() &&
                !writePicture(joinPath(folder, pictureFile(position)), slide->Image()))
                return false;
        }
    }
    return true;
}

// The folder of the complete copy: the copy itself, or the one a replacement left behind.
QString readableFolder() {
    for (const QString& name : {kCopy, kPrevious})
        if (QFileInfo(joinPath(folderOf(name), kDocument)).isFile())
            return folderOf(name);
    return {};
}

// The copy as written, with the pictures put back on its slides.
std::shared_ptr<clsMessage> readCopy() {
    const QString folder = readableFolder();
    if (folder.isEmpty())
        return nullptr;
    auto saved = std::make_shared<clsMessage>();
    saved->Initialize(recoveryFolder(), kDocument, QFileInfo(folder).fileName());
    if (!saved->Slides() || !saved->hasMessageElement())
        return nullptr;
    int position = 0;
    for (const auto& slide : *saved->Slides()) {
        QImage picture;
        if (picture.load(joinPath(folder, pictureFile(++position))))
            slide->setImage(picture);
    }
    return saved;
}

} // namespace

QString recoveryFolder() {
    return joinPath(appFolder(), QStringLiteral("Recovery"));
}

bool writeRecoveryCopy(const clsMessage& message) {
    QDir writing(folderOf(kWriting));
    writing.removeRecursively();
    if (!QDir().mkpath(writing.path()))
        return false;
    try {
        if (!writeFolder(message, writing.path())) {
            writing.removeRecursively();
            return false;
        }
    } catch (const Failure&) {
        writing.removeRecursively();
        return false;
    }
    // Swap: the old copy steps aside until the new one stands in its place.
    QDir root(recoveryFolder());
    QDir(folderOf(kPrevious)).removeRecursively();
    if (root.exists(kCopy) && !root.rename(kCopy, kPrevious))
        return false;
    if (!root.rename(kWriting, kCopy)) {
        root.rename(kPrevious, kCopy);
        return false;
    }
    QDir(folderOf(kPrevious)).removeRecursively();
    return true;
}

bool hasRecoveryCopy() {
    return !readableFolder().isEmpty();
}

QString recoveryCopyName() {
    const auto saved = readCopy();
    return saved ? saved->name() : QString();
}

std::shared_ptr<clsMessage> restoreRecoveryCopy(clsMMSManager& store) {
    try {
        const auto saved = readCopy();
        if (!saved || saved->name().isEmpty())
            return nullptr;
        // A message of the store under that name, emptied and filled from the copy; the stored
        // folder itself is not touched until the user saves.
        auto message = store.CreateMsg(saved->name());
        if (!message || !message->Slides())
            return nullptr;
        while (message->Slides()->Count() > 0)
            message->DeleteSlide(1);
        for (const auto& from : *saved->Slides()) {
            const auto to = message->Slides()->Add();
            if (!to)
                return nullptr;
            message->CopySlide(*to, *from);
        }
        if (!saved->Created().isEmpty())
            message->setCreated(saved->Created());
        return message;
    } catch (const Failure&) {
        return nullptr;
    }
}

void removeRecoveryCopy() {
    QDir(recoveryFolder()).removeRecursively();
}
