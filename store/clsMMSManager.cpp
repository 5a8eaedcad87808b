#include "store/clsMMSManager.h"

#include "config/modConfig.h"
#include "document/clsMessage.h"
#include "document/modDocument.h"
#include "imaging/modPictureSave.h"
#include "platform/Failure.h"
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

clsMMSManager::clsMMSManager(QObject* parent) : QObject(parent) {}
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
        MsgBox(failure.description() + QStringLiteral("\r\nError code: ") +
                   QString::number(failure.number()),
               Vb::Critical, QStringLiteral("ListMessages"));
    }
    if (count > 0)
        names = found;
    return static_cast<std::int16_t>(count - 1);
}

std::shared_ptr<clsMessage> clsMMSManager::CreateMsg(const QString& name) {
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

bool clsMMSManager::RenameMsg(clsMessage& message, const QString& newName) {
    try {
        const QString target = messageFolder(newName);
        QString from = message.Path();
        if (from.endsWith(QLatin1Char('/')))
            from.chop(1);
        if (!QFileInfo(from).isDir())
            fail(FailureNumber::PathNotFound);
        if (QFileInfo::exists(target) || QFileInfo(target).isSymLink())
            fail(kFileAlreadyExists);
        // A document without its MESSAGE element has no name to change: the folder stays.
        if (!message.hasMessageElement())
            raiseObjectNotSet(QString::fromUtf8(kSource));
        if (!QDir().rename(from, target))
            fail(kPathFileAccessError);
        try {
            message.setName(newName);
        } catch (const Failure&) {
            QDir().rename(target, from);
            throw;
        }
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
    Q_UNUSED(askUser) // the desktop's trash never asks
    try {
        const QString folder = messageFolder(name);
        if (!QFileInfo(folder).isDir())
            fail(FailureNumber::PathNotFound);
        return moveToTrash(folder);
    } catch (const Failure& failure) {
        if (name != gUntitledName)
            MsgBox(localText(QStringLiteral("STR_ERROR_DEL_MSG")) + QStringLiteral("\r\n") +
                       failure.description(),
                   Vb::Critical, localText(QStringLiteral("STR_ERROR")));
        return false;
    }
}

bool clsMMSManager::SavePictureBoxImage(const QString& filePath, const QImage& picture,
                                        std::int32_t kind) {
    return ::SavePictureBoxImage(filePath, picture, kind);
}
