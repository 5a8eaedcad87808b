#include "store/clsMMSManager.h"

#include "config/modConfig.h"
#include "document/clsMessage.h"
#include "document/modDocument.h"
#include "imaging/modPictureSave.h"
#include "platform/Failure.h"
#include "platform/FolderSwap.h"
#include "platform/StatusSink.h"
#include "platform/Trash.h"
#include "platform/modDialogs.h"
#include "platform/modShared.h"
#include "platform/modText.h"

#include <QDateTime>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QImage>
#include <QLocale>
#include <QMap>
#include <QRandomGenerator>
#include <QRegularExpression>
#include <cstdio>

namespace {
constexpr const char* kSource = "clsMMSManager";
constexpr int kFileAlreadyExists = FailureNumber::FileAlreadyExists;
constexpr int kPathFileAccessError = FailureNumber::PathFileAccess;

[[noreturn]] void fail(int number, const QString& description = {}) {
    raiseFailure(number, QString::fromUtf8(kSource), description);
}

// The date a message folder was made, as the desktop shows a date and time.
QString creationText(const QFileInfo& info) {
    QDateTime when = info.birthTime();
    if (!when.isValid())
        when = info.metadataChangeTime();
    if (!when.isValid())
        when = info.lastModified();
    // The locale's short date with a four-digit year and its time with seconds, without a zone.
    const QLocale locale;
    QString dateFormat = locale.dateFormat(QLocale::ShortFormat);
    if (!dateFormat.contains(QLatin1String("yyyy")))
        dateFormat.replace(QLatin1String("yy"), QLatin1String("yyyy"));
    QString timeFormat = locale.timeFormat(QLocale::LongFormat);
    timeFormat.remove(QRegularExpression(QStringLiteral("\\s*\\bt+\\b")));
    return locale.toString(when.toLocalTime(),
                           dateFormat + QLatin1Char(' ') + timeFormat.trimmed());
}

// Copies `from` over `to` through a temporary file beside it, so that a failed copy leaves the
// old `to` as it was.
void copyOver(const QString& from, const QString& to) {
    const QString temporary =
        to + QStringLiteral(".tessaly-copy-%1")
                 .arg(QRandomGenerator::global()->generate(), 8, 16, QLatin1Char('0'));
    if (!QFile::copy(from, temporary)) {
        QFile::remove(temporary);
        fail(kPathFileAccessError, QStringLiteral("Cannot copy %1").arg(from));
    }
    if (::rename(QFile::encodeName(temporary).constData(), QFile::encodeName(to).constData()) !=
        0) {
        QFile::remove(temporary);
        fail(kPathFileAccessError, QStringLiteral("Cannot replace %1").arg(to));
    }
}
} // namespace

clsMMSManager::clsMMSManager(QObject* parent) : QObject(parent), mSink(&quietSink()) {}
clsMMSManager::~clsMMSManager() = default;

void clsMMSManager::Initialize(const QString& messagePath, const QString& messageFile) {
    QString path = messagePath;
    path.replace(QLatin1Char('\\'), QLatin1Char('/'));
    if (!path.isEmpty() && !path.endsWith(QLatin1Char('/')))
        path += QLatin1Char('/');
    mMessagePath = path;
    mMessageFile = messageFile;
    mFileSystem = true;
    // A fresh installation has no store folder yet; make it so that listing finds an empty store.
    if (!mMessagePath.isEmpty())
        QDir().mkpath(mMessagePath);
}

void clsMMSManager::setStatusSink(StatusSink* sink) {
    mSink = sink ? sink : &quietSink();
}

void clsMMSManager::SetTemplateFileType(std::int32_t kind) {
    if (kind == 0 || kind == 1)
        mMakeTemplate = true;
    if (kind == 0 || kind == 2)
        mMakeSis = true;
}

void clsMMSManager::ClearTemplateFileType(std::int32_t kind) {
    if (kind == 0 || kind == 1)
        mMakeTemplate = false;
    if (kind == 0 || kind == 2)
        mMakeSis = false;
}

QString clsMMSManager::messageFolder(const QString& name) const {
    if (!mFileSystem)
        raiseObjectNotSet(QString::fromUtf8(kSource));
    if (mMessagePath.isEmpty())
        fail(FailureNumber::PathNotFound);
    // The same rule as saving: a name that is empty, hidden or reaches outside the store would
    // act on the store itself, on a working folder or on another folder.
    const QString problem = messageNameProblem(name);
    if (!problem.isEmpty())
        fail(kPathFileAccessError, problem);
    return mMessagePath + name;
}

std::int16_t clsMMSManager::ListMessages(QStringList& names) {
    int count = 0;
    QStringList found;
    try {
        if (!mFileSystem)
            raiseObjectNotSet(QString::fromUtf8(kSource));
        QDir store(mMessagePath);
        if (mMessagePath.isEmpty() || !store.exists())
            fail(FailureNumber::PathNotFound);
        // Folders whose names begin with "." are the store's own working folders.
        const QFileInfoList folders =
            store.entryInfoList(QDir::Dirs | QDir::NoDotAndDotDot, QDir::Unsorted);
        for (const QFileInfo& folder : folders) {
            found << folder.fileName() + QLatin1Char('\t') + creationText(folder);
            ++count;
        }
    } catch (const Failure& failure) {
        mSink->ask(failure.description() + QStringLiteral("\r\nError code: ") +
                       QString::number(failure.number()),
                   Vb::Critical, QStringLiteral("ListMessages"));
    }
    if (count > 0)
        names = found;
    return static_cast<std::int16_t>(count - 1);
}

std::shared_ptr<clsMessage> clsMMSManager::CreateMsg(const QString& name) {
    if (!messageNameProblem(name).isEmpty())
        return nullptr;
    auto message = std::make_shared<clsMessage>();
    message->Initialize(mMessagePath, mMessageFile, name);
    message->setDefaultDuration(
        toLong(preference(QStringLiteral("preferences"), QStringLiteral("SlideDuration"),
                          QStringLiteral("3000")),
               false, kSource));
    return message;
}

std::shared_ptr<clsMessage> clsMMSManager::OpenMsg(const QString& name) {
    auto message = std::make_shared<clsMessage>();
    message->Initialize(mMessagePath, mMessageFile, name);
    if (!message->readProblem().isEmpty())
        return nullptr;
    try {
        message->setDefaultDuration(
            toLong(preference(QStringLiteral("preferences"), QStringLiteral("SlideDuration"),
                              QStringLiteral("3000")),
                   false, kSource));
    } catch (const Failure&) {
        // An unreadable preference leaves the default duration as it was; the open goes on.
    }
    if (clsSlides* slides = message->Slides()) {
        const QString folder = mMessagePath + name + QLatin1Char('/');
        for (const auto& slide : *slides) {
            // A picture that is missing or unreadable leaves the slide without one. Saving would
            // put the empty picture in place of an unreadable one, so the message keeps it.
            const QString file = slide->ImageFile();
            QImage picture;
            if (!file.isEmpty() && !file.contains(QLatin1Char('/')) &&
                QFileInfo(folder + file).isFile() && !picture.load(folder + file))
                message->keepUnreadable(file);
            slide->setImage(picture);
        }
    }
    return message;
}

bool clsMMSManager::SaveMsg(clsMessage& message) {
    return message.SaveMessage();
}

bool clsMMSManager::SaveMsgAs(clsMessage& message, const QString& newName) {
    return message.SaveMessageAs(newName);
}

bool clsMMSManager::RenameMsg(clsMessage& message, const QString& newName) {
    try {
        const QString target = messageFolder(newName);
        QString from = message.Path();
        if (from.endsWith(QLatin1Char('/')))
            from.chop(1);
        if (!QFileInfo(from).isDir())
            fail(FailureNumber::PathNotFound, QStringLiteral("Path not found"));
        // A name that the file system takes for the message's own folder ("trip" for "Trip"
        // where case is ignored) only changes its spelling; any other existing entry is taken.
        const bool taken = QFileInfo::exists(target) || QFileInfo(target).isSymLink();
        if (taken && !sameFileSystemEntry(from, target))
            fail(kFileAlreadyExists, QStringLiteral("File already exists"));
        // A document without its MESSAGE element has no name to change: the folder stays.
        if (!message.hasMessageElement())
            raiseObjectNotSet(QString::fromUtf8(kSource));
        if (!QDir().rename(from, target))
            fail(kPathFileAccessError, QStringLiteral("Path/File access error"));
        message.setName(newName);
        return true;
    } catch (const Failure&) {
        return false;
    }
}

bool clsMMSManager::CopyMsg(const QString& fromName, const QString& toName) {
    try {
        const QString from = messageFolder(fromName);
        const QString to = messageFolder(toName);
        if (!QFileInfo(from).isDir())
            fail(FailureNumber::PathNotFound);
        const QFileInfoList files =
            QDir(from).entryInfoList(QDir::Files | QDir::Hidden, QDir::Name);
        if (files.isEmpty())
            fail(FailureNumber::FileNotFound);
        if (!QFileInfo(to).isDir() && !QDir().mkpath(to))
            fail(FailureNumber::PathNotFound);
        for (const QFileInfo& file : files)
            copyOver(file.filePath(), to + QLatin1Char('/') + file.fileName());
        return true;
    } catch (const Failure&) {
        return false;
    }
}

bool clsMMSManager::DeleteMsg(const QString& name, bool askUser) {
    Q_UNUSED(askUser) // the desktop's trash never asks; deleting for good always does
    try {
        const QString folder = messageFolder(name);
        if (!QFileInfo(folder).isDir())
            fail(FailureNumber::PathNotFound, QStringLiteral("Path not found"));
        if (trashAvailable()) {
            if (!moveToTrash(folder))
                fail(kPathFileAccessError,
                     QStringLiteral("Cannot move %1 to the trash").arg(folder));
            return true;
        }
        if (mSink->ask(localText(QStringLiteral("STR_DELETE_FOR_GOOD")) +
                           QStringLiteral("\r\n\r\n") + name,
                       Vb::YesNo | Vb::Question | Vb::DefaultButton2,
                       localText(QStringLiteral("STR_DELETE_MSG"))) != Vb::Yes)
            return false;
        if (!deleteForGood(folder))
            fail(kPathFileAccessError, QStringLiteral("Cannot delete %1").arg(folder));
        return true;
    } catch (const Failure& failure) {
        if (name != gUntitledName)
            mSink->ask(localText(QStringLiteral("STR_ERROR_DEL_MSG")) + QStringLiteral("\r\n") +
                           failure.description(),
                       Vb::Critical, localText(QStringLiteral("STR_ERROR")));
        return false;
    }
}

void clsMMSManager::RecoverInterruptedSaves() {
    if (!mFileSystem || mMessagePath.isEmpty())
        return;
    QMap<QString, QStringList> staged;
    QMap<QString, QStringList> previous;
    const QStringList entries =
        QDir(mMessagePath).entryList(QDir::Dirs | QDir::Hidden | QDir::NoDotAndDotDot, QDir::Name);
    for (const QString& entry : entries) {
        const auto working = parseSaveWorkingFolder(entry);
        if (!working || !messageNameProblem(working->messageName).isEmpty())
            continue;
        auto& list = working->kind == SaveWorkingFolder::Staged ? staged : previous;
        list[working->messageName] << mMessagePath + entry;
    }
    QStringList names = staged.keys() + previous.keys();
    names.removeDuplicates();
    for (const QString& name : names)
        recoverMessage(name, staged.value(name), previous.value(name));
}

void clsMMSManager::recoverMessage(const QString& name, const QStringList& staged,
                                   const QStringList& previous) {
    const QString target = mMessagePath + name;
    const auto holdsDocument = [this](const QString& folder) {
        return QFileInfo(folder + QLatin1Char('/') + mMessageFile).isFile();
    };
    const QFileInfo targetInfo(target);
    if (!targetInfo.exists() && !targetInfo.isSymLink()) {
        // A new folder is written whole before it takes the old one's place, and it carries the
        // document from its first moment: one with the document is the newest save.
        QStringList candidates;
        for (const QString& folder : staged)
            if (holdsDocument(folder))
                candidates << folder;
        candidates += previous;
        for (const QString& folder : candidates)
            if (QDir().rename(folder, target))
                break;
    }
    // What is left is a working copy of a message that is in its place, or a new folder that
    // never got as far as its document.
    const bool inPlace = QFileInfo(target).isDir();
    for (const QString& folder : staged + previous)
        if (QFileInfo(folder).isDir() && (inPlace || !holdsDocument(folder)))
            QDir(folder).removeRecursively();
}

bool clsMMSManager::SavePictureBoxImage(const QString& filePath, const QImage& picture,
                                        std::int32_t kind) {
    return ::SavePictureBoxImage(filePath, picture, kind, QStringLiteral("picDownload"), *mSink);
}
