#include "document/clsMessage.h"

#include "platform/Failure.h"
#include "platform/modShared.h"

#include <QBuffer>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QRandomGenerator>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <fcntl.h>
#include <sstream>
#include <unistd.h>

namespace {
constexpr const char* kSource = "clsMessage";
constexpr int kPathFileAccessError = FailureNumber::PathFileAccess;
constexpr int kFileAlreadyExists = FailureNumber::FileAlreadyExists;

// A new message document; the line ends are carriage return and line feed.
constexpr const char* kTemplate = "<ROOT>\r\n"
                                  "<HEADER>\r\n"
                                  "<CONTENT version=\"1.0\" type=\"Tessaly messages\" />\r\n"
                                  "</HEADER>\r\n"
                                  "</ROOT>";

[[noreturn]] void fail(int number, const QString& description = {}) {
    raiseFailure(number, QString::fromUtf8(kSource), description);
}

QString normalisedRoot(const QString& rootPath) {
    QString root = rootPath;
    root.replace(QLatin1Char('\\'), QLatin1Char('/'));
    if (!root.isEmpty() && !root.endsWith(QLatin1Char('/')))
        root += QLatin1Char('/');
    return root;
}

void writeWhole(const QString& path, const QByteArray& bytes) {
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly | QIODevice::Truncate))
        fail(kPathFileAccessError,
             QStringLiteral("Cannot write %1: %2").arg(path, file.errorString()));
    if (file.write(bytes) != bytes.size() || !file.flush())
        fail(kPathFileAccessError,
             QStringLiteral("Cannot write %1: %2").arg(path, file.errorString()));
    file.close();
    if (file.error() != QFileDevice::NoError)
        fail(kPathFileAccessError,
             QStringLiteral("Cannot write %1: %2").arg(path, file.errorString()));
}

QByteArray bitmapBytes(const QImage& picture) {
    QByteArray bytes;
    QBuffer buffer(&bytes);
    buffer.open(QIODevice::WriteOnly);
    const QImage rgb = picture.format() == QImage::Format_RGB32
                           ? picture
                           : picture.convertToFormat(QImage::Format_RGB32);
    if (!rgb.save(&buffer, "BMP"))
        fail(kPathFileAccessError, QStringLiteral("The picture cannot be written as a bitmap"));
    return bytes;
}

// A hidden working folder beside the messages. It carries the message's name so that a folder
// left over by a crash shows whose it is.
QString uniqueSibling(const QString& root, const QString& purpose, const QString& name) {
    const QString shown = name.left(80);
    for (;;) {
        const QString candidate =
            root + QStringLiteral(".tessaly-%1-%2-%3")
                       .arg(purpose, shown)
                       .arg(QRandomGenerator::global()->generate(), 8, 16, QLatin1Char('0'));
        if (!QFileInfo::exists(candidate) && !QFileInfo(candidate).isSymLink())
            return candidate;
    }
}

QByteArray encoded(const QString& path) {
    return QFile::encodeName(path);
}

// Trades the names of two folders in one step; false with errno set when that cannot be done.
bool exchange(const QString& first, const QString& second) {
    return ::renameat2(AT_FDCWD, encoded(first).constData(), AT_FDCWD, encoded(second).constData(),
                       RENAME_EXCHANGE) == 0;
}
} // namespace

clsMessage::clsMessage() = default;
clsMessage::~clsMessage() = default;

void clsMessage::Initialize(const QString& rootPath, const QString& fileName,
                            const QString& messageName) {
    mRootPath = normalisedRoot(rootPath);
    mName = messageName;
    mPath = mRootPath + mName + QLatin1Char('/');
    mFileName = fileName;
    mDocument = std::make_shared<pugi::xml_document>();
    mSlides.reset();
    mRootElement = mHeaderElement = mMessageElement = pugi::xml_node();

    mBackups.clear();

    bool loaded = false;
    const QString file = mPath + mFileName;
    if (!mFileName.isEmpty() && QFileInfo(file).isFile()) {
        QFile input(file);
        if (input.open(QIODevice::ReadOnly)) {
            const QByteArray bytes = input.readAll();
            const pugi::xml_parse_result result =
                mDocument->load_buffer(bytes.constData(), static_cast<size_t>(bytes.size()),
                                       pugi::parse_default | pugi::parse_declaration);
            loaded = static_cast<bool>(result) && input.error() == QFileDevice::NoError;
            if (!loaded)
                mBackups.push_back({mFileName, bytes, input.error() == QFileDevice::NoError, file});
        } else {
            // There but not readable: the next save keeps it as a backup.
            mBackups.push_back({mFileName, {}, false, file});
        }
        // The fresh document knows nothing of the folder's pictures; the first save would drop
        // them or write new slides over them, so they are kept beside the document's backup.
        if (!loaded) {
            const QStringList files = QDir(mPath).entryList(QDir::Files | QDir::Hidden, QDir::Name);
            for (const QString& other : files)
                if (other != mFileName && !other.endsWith(QLatin1String(".bak")))
                    keepUnreadable(other);
        }
    }
    if (!loaded) {
        mDocument->reset();
        mDocument->load_string(kTemplate);
        pugi::xml_node declaration =
            mDocument->insert_child_before(pugi::node_declaration, mDocument->first_child());
        declaration.append_attribute("version") = "1.0";
        declaration.append_attribute("encoding") = "utf-8";
        mChanged = true;
    }

    mRootElement = mDocument->child("ROOT");
    if (!mRootElement) {
        mChanged = true;
        return;
    }
    mHeaderElement = mRootElement.child("HEADER");

    mMessageElement = mRootElement.child("MESSAGE");
    mSlides = std::make_unique<clsSlides>();
    if (!mMessageElement) {
        mMessageElement = mRootElement.append_child("MESSAGE");
        setAttr(mMessageElement, "name", messageName, kSource);
        mSlides->Initialize(mDocument, mMessageElement);
    } else {
        const pugi::xml_node slidesElement = mMessageElement.child("SLIDES");
        if (slidesElement)
            mSlides->LoadXmlNodes(mDocument, mMessageElement, slidesElement);
        else
            mSlides->Initialize(mDocument, mMessageElement);
    }
    mChanged = true;
}

QString clsMessage::name() const {
    return getAttr(mMessageElement, "name");
}

void clsMessage::setName(const QString& value) {
    setAttr(mMessageElement, "name", value, kSource);
    mName = value;
    mPath = mRootPath + mName + QLatin1Char('/');
    mChanged = true;
}

void clsMessage::keepUnreadable(const QString& fileName) {
    if (fileName.isEmpty() || fileName.contains(QLatin1Char('/')))
        return;
    for (const Backup& backup : mBackups)
        if (backup.fileName == fileName)
            return;
    const QString path = mPath + fileName;
    Backup backup{fileName, {}, false, path};
    QFile input(path);
    if (input.open(QIODevice::ReadOnly)) {
        backup.bytes = input.readAll();
        backup.haveBytes = input.error() == QFileDevice::NoError;
    }
    mBackups.push_back(backup);
}

QStringList clsMessage::backupNames() const {
    QStringList names;
    for (const Backup& backup : mBackups)
        names << backup.fileName + QStringLiteral(".bak");
    return names;
}

QString clsMessage::Created() const {
    return getAttr(mMessageElement, "created");
}

void clsMessage::setCreated(const QString& value) {
    setAttr(mMessageElement, "created", value, kSource);
    mChanged = true;
}

std::int32_t clsMessage::DefaultDuration() const {
    return mSlides ? mSlides->DefaultDuration() : -1;
}

void clsMessage::setDefaultDuration(std::int32_t value) {
    if (mSlides)
        mSlides->setDefaultDuration(value);
}

void clsMessage::DeleteSlide(int index) {
    if (mSlides && mSlides->Count() > 0 && mSlides->Item(index))
        mSlides->Remove(index);
}

bool clsMessage::SaveImage(const QImage& picture, const QString& fileStem,
                           const QString& extension) {
    mChanged = true;
    try {
        writeWhole(mPath + fileStem + QLatin1Char('.') + extension, bitmapBytes(picture));
        return true;
    } catch (const Failure& failure) {
        mLastError = failure.description();
        return false;
    }
}

std::string clsMessage::serialise() const {
    std::ostringstream out;
    mDocument->save(out, "", pugi::format_raw | pugi::format_no_declaration, pugi::encoding_utf8);
    return out.str();
}

bool clsMessage::SaveMessage() {
    mLastError.clear();
    try {
        saveFolder();
        mChanged = false;
        // The backups now lie in the saved folder; later saves carry them from there.
        for (Backup& backup : mBackups)
            backup.source =
                mRootPath + mName + QLatin1Char('/') + backup.fileName + QStringLiteral(".bak");
        return true;
    } catch (const Failure& failure) {
        mLastError = failure.description();
        return false;
    }
}

void clsMessage::saveFolder() {
    if (mRootPath.isEmpty())
        fail(FailureNumber::PathNotFound);
    const QString problem = messageNameProblem(mName);
    if (!problem.isEmpty())
        fail(kPathFileAccessError, problem);
    QDir root(mRootPath);
    if (!root.exists() && !QDir().mkpath(mRootPath))
        fail(FailureNumber::PathNotFound, QStringLiteral("Path not found: %1").arg(mRootPath));

    // A folder whose name differs only by case is the same folder on the file systems the
    // messages were made for: the save cannot go there.
    const QStringList folders = root.entryList(QDir::Dirs | QDir::NoDotAndDotDot | QDir::Hidden);
    for (const QString& folder : folders)
        if (folder != mName && folder.compare(mName, Qt::CaseInsensitive) == 0)
            fail(kFileAlreadyExists,
                 QStringLiteral("The folder \"%1\" already exists").arg(folder));

    const QString target = mRootPath + mName;
    const QFileInfo targetInfo(target);
    if ((targetInfo.exists() || targetInfo.isSymLink()) &&
        (!targetInfo.isDir() || targetInfo.isSymLink()))
        fail(kFileAlreadyExists,
             QStringLiteral("\"%1\" is in the way of the message folder").arg(target));

    // Build the new folder beside the old one.
    const QString staging = uniqueSibling(mRootPath, QStringLiteral("save"), mName);
    if (!QDir().mkdir(staging))
        fail(kPathFileAccessError, QStringLiteral("Cannot make a folder in %1").arg(mRootPath));
    try {
        const std::string xml = serialise();
        writeWhole(staging + QLatin1Char('/') + mFileName,
                   QByteArray(xml.data(), static_cast<qsizetype>(xml.size())));
        if (mSlides) {
            const QByteArray& empty = emptySlideBitmap();
            if (empty.isEmpty())
                fail(FailureNumber::FileNotFound,
                     QStringLiteral("The built-in empty slide picture is missing"));
            for (const auto& slide : *mSlides) {
                const QString file = slide->ImageFile();
                if (file.contains(QLatin1Char('/')) || file.contains(QLatin1Char('\\')))
                    fail(kPathFileAccessError,
                         QStringLiteral("\"%1\" cannot name a slide picture").arg(file));
                writeWhole(staging + QLatin1Char('/') + file,
                           slide->Image().isNull() ? empty : bitmapBytes(slide->Image()));
            }
        }
        writeBackups(staging, target);
    } catch (...) {
        QDir(staging).removeRecursively();
        throw;
    }

    // Swap it in. Where the file system can trade two names in one step the message is always
    // under its own name; elsewhere the old folder steps aside for a moment first.
    if (targetInfo.exists()) {
        if (exchange(staging, target)) {
            QDir(staging).removeRecursively(); // now the old folder
        } else if (errno != EINVAL && errno != ENOSYS) {
            const QString reason = QString::fromLocal8Bit(std::strerror(errno));
            QDir(staging).removeRecursively();
            fail(kPathFileAccessError,
                 QStringLiteral("Cannot replace the folder %1: %2").arg(target, reason));
        } else {
            const QString previous = uniqueSibling(mRootPath, QStringLiteral("old"), mName);
            if (!QDir().rename(target, previous)) {
                QDir(staging).removeRecursively();
                fail(kPathFileAccessError,
                     QStringLiteral("Cannot replace the folder %1").arg(target));
            }
            if (!QDir().rename(staging, target)) {
                QDir().rename(previous, target);
                QDir(staging).removeRecursively();
                fail(kPathFileAccessError, QStringLiteral("Cannot make the folder %1").arg(target));
            }
            QDir(previous).removeRecursively();
        }
    } else if (!QDir().rename(staging, target)) {
        QDir(staging).removeRecursively();
        fail(kPathFileAccessError, QStringLiteral("Cannot make the folder %1").arg(target));
    }
}

void clsMessage::writeBackups(const QString& staging, const QString& target) const {
    QStringList written;
    for (const Backup& backup : mBackups) {
        const QString name = backup.fileName + QStringLiteral(".bak");
        const QString to = staging + QLatin1Char('/') + name;
        if (backup.haveBytes) {
            writeWhole(to, backup.bytes);
        } else if (::link(encoded(backup.source).constData(), encoded(to).constData()) != 0 &&
                   !QFile::copy(backup.source, to)) {
            // A file that can be neither read nor linked would be lost by this save.
            fail(kPathFileAccessError,
                 QStringLiteral("Cannot keep a backup of %1, which could not be read")
                     .arg(backup.source));
        }
        written << name;
    }
    // Backups an earlier save kept stay with the message.
    const QFileInfoList kept = QDir(target).entryInfoList(QStringList{QStringLiteral("*.bak")},
                                                          QDir::Files | QDir::Hidden, QDir::Name);
    for (const QFileInfo& file : kept) {
        if (written.contains(file.fileName()))
            continue;
        const QString to = staging + QLatin1Char('/') + file.fileName();
        if (::link(encoded(file.filePath()).constData(), encoded(to).constData()) != 0 &&
            !QFile::copy(file.filePath(), to))
            fail(kPathFileAccessError,
                 QStringLiteral("Cannot keep the backup %1").arg(file.filePath()));
    }
}

void clsMessage::CopySlide(clsSlide& destination, clsSlide& source) {
    destination.setColor(source.Color());
    destination.setDuration(source.Duration());
    destination.setSoundDuration(source.SoundDuration());
    destination.setImage(source.Image());
    destination.setSound(source.Sound());
    destination.setText(source.Text());
    clsDrawObjects* to = destination.DrawObjects();
    clsDrawObjects* from = source.DrawObjects();
    if (!to || !from)
        raiseObjectNotSet(QString::fromUtf8(kSource));
    to->setBackColor(from->BackColor());
    to->setBackPicture(from->BackPicture());
    // Copying a slide onto itself adds to the collection it reads: take the count once.
    const int count = from->Count();
    for (int index = 1; index <= count; ++index)
        to->Add(from->Item(index)->GetAllPproperties());
}
