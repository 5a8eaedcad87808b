#include "document/clsMessage.h"

#include "platform/Failure.h"
#include "platform/FolderSwap.h"
#include "platform/modShared.h"

#include <QBuffer>
#include <QDir>
#include <QFile>
#include <QFileInfo>
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

QByteArray encoded(const QString& path) {
    return QFile::encodeName(path);
}

// Whether another entry of `root` is the folder `target` under another name, as on a file system
// that ignores case ("Trip" and "TRIP") or folds other differences of spelling.
QString otherNameOfFolder(const QString& root, const QString& name) {
    const QString target = root + name;
    const QStringList entries =
        QDir(root).entryList(QDir::AllEntries | QDir::NoDotAndDotDot | QDir::Hidden | QDir::System);
    for (const QString& entry : entries)
        if (entry != name && sameFileSystemEntry(target, root + entry))
            return entry;
    return {};
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
    mChanged = true; // on every path, also after loading a complete file

    if (!loadDocument())
        loadTemplate();
    bindElements(messageName);
}

bool clsMessage::loadDocument() {
    const QString file = mPath + mFileName;
    if (mFileName.isEmpty() || !QFileInfo(file).isFile())
        return false;
    QFile input(file);
    if (input.open(QIODevice::ReadOnly)) {
        const QByteArray bytes = input.readAll();
        const bool whole = input.error() == QFileDevice::NoError;
        if (whole && mDocument->load_buffer(bytes.constData(), static_cast<size_t>(bytes.size()),
                                            pugi::parse_default | pugi::parse_declaration))
            return true;
        mBackups.push_back({mFileName, bytes, whole, file});
    } else {
        // There but not readable: the next save keeps it as a backup.
        mBackups.push_back({mFileName, {}, false, file});
    }
    // The fresh document knows nothing of the folder's pictures; the first save would drop them
    // or write new slides over them, so they are kept beside the document's backup.
    const QStringList files = QDir(mPath).entryList(QDir::Files | QDir::Hidden, QDir::Name);
    for (const QString& other : files)
        if (other != mFileName && !other.endsWith(QLatin1String(".bak")))
            keepUnreadable(other);
    return false;
}

void clsMessage::loadTemplate() {
    mDocument->reset();
    mDocument->load_string(kTemplate);
    pugi::xml_node declaration =
        mDocument->insert_child_before(pugi::node_declaration, mDocument->first_child());
    declaration.append_attribute("version") = "1.0";
    declaration.append_attribute("encoding") = "utf-8";
}

void clsMessage::bindElements(const QString& messageName) {
    mRootElement = mDocument->child("ROOT");
    if (!mRootElement)
        return;
    mHeaderElement = mRootElement.child("HEADER");
    mMessageElement = mRootElement.child("MESSAGE");
    mSlides = std::make_unique<clsSlides>();
    if (!mMessageElement) {
        mMessageElement = mRootElement.append_child("MESSAGE");
        setAttr(mMessageElement, "name", messageName, kSource);
        mSlides->Initialize(mDocument, mMessageElement);
        return;
    }
    const pugi::xml_node slidesElement = mMessageElement.child("SLIDES");
    if (slidesElement)
        mSlides->LoadXmlNodes(mDocument, mMessageElement, slidesElement);
    else
        mSlides->Initialize(mDocument, mMessageElement);
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

bool clsMessage::SaveMessageAs(const QString& newName) {
    if (newName == mName && newName == name())
        return SaveMessage();
    if (!mMessageElement) {
        mLastError = QStringLiteral("The document has no message to name");
        return false;
    }
    // The name as it is, to be put back when the save under the new one fails.
    const pugi::xml_attribute attribute = mMessageElement.attribute("name");
    const bool hadAttribute = static_cast<bool>(attribute);
    const std::string oldAttribute = hadAttribute ? attribute.value() : std::string();
    const QString oldName = mName;
    const bool wasChanged = mChanged;

    setName(newName);
    if (SaveMessage())
        return true;
    if (hadAttribute)
        mMessageElement.attribute("name").set_value(oldAttribute.c_str());
    else
        mMessageElement.remove_attribute("name");
    mName = oldName;
    mPath = mRootPath + mName + QLatin1Char('/');
    mChanged = wasChanged;
    return false;
}

QString clsMessage::readProblem() const {
    if (!mSlides)
        return QStringLiteral("The document has no ROOT element");
    try {
        for (const auto& slide : *mSlides) {
            // Every number the program reads of a slide when it shows it.
            (void)slide->Index();
            (void)slide->Duration();
            (void)slide->SoundDuration();
            (void)slide->Color();
            const clsDrawObjects* objects = slide->DrawObjects();
            for (int index = 1; objects && index <= objects->Count(); ++index)
                (void)objects->Item(index)->GetAllPproperties();
        }
    } catch (const Failure& failure) {
        return failure.description();
    }
    return {};
}

void clsMessage::saveFolder() {
    const QString target = checkedSaveTarget();
    const QString staging = stageFolder(target);
    swapIntoPlace(staging, target);
}

QString clsMessage::checkedSaveTarget() const {
    if (mRootPath.isEmpty())
        fail(FailureNumber::PathNotFound);
    const QString problem = messageNameProblem(mName);
    if (!problem.isEmpty())
        fail(kPathFileAccessError, problem);
    if (!QDir(mRootPath).exists() && !QDir().mkpath(mRootPath))
        fail(FailureNumber::PathNotFound, QStringLiteral("Path not found: %1").arg(mRootPath));

    const QString target = mRootPath + mName;
    const QFileInfo targetInfo(target);
    if ((targetInfo.exists() || targetInfo.isSymLink()) &&
        (!targetInfo.isDir() || targetInfo.isSymLink()))
        fail(kFileAlreadyExists,
             QStringLiteral("\"%1\" is in the way of the message folder").arg(target));
    // Where the file system takes this name for another message's folder, saving would write
    // over that message.
    const QString other = otherNameOfFolder(mRootPath, mName);
    if (!other.isEmpty())
        fail(kFileAlreadyExists, QStringLiteral("The folder \"%1\" already exists").arg(other));
    return target;
}

QString clsMessage::stageFolder(const QString& target) const {
    const QString staging = newSaveWorkingFolder(mRootPath, SaveWorkingFolder::Staged, mName);
    if (!QDir().mkdir(staging))
        fail(kPathFileAccessError, QStringLiteral("Cannot make a folder in %1").arg(mRootPath));
    try {
        const std::string xml = serialise();
        writeWhole(staging + QLatin1Char('/') + mFileName,
                   QByteArray(xml.data(), static_cast<qsizetype>(xml.size())));
        writeSlidePictures(staging);
        writeBackups(staging, target);
    } catch (const Failure&) {
        QDir(staging).removeRecursively();
        throw;
    }
    return staging;
}

void clsMessage::writeSlidePictures(const QString& staging) const {
    if (!mSlides)
        return;
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

void clsMessage::swapIntoPlace(const QString& staging, const QString& target) const {
    const QFileInfo targetInfo(target);
    if (!targetInfo.exists()) {
        if (!QDir().rename(staging, target)) {
            QDir(staging).removeRecursively();
            fail(kPathFileAccessError, QStringLiteral("Cannot make the folder %1").arg(target));
        }
        return;
    }
    const QString aside = newSaveWorkingFolder(mRootPath, SaveWorkingFolder::Previous, mName);
    QString reason;
    if (!swapFolders(staging, target, aside, &reason)) {
        // Whatever is left beside the message is not the message: the message is in its place.
        if (QFileInfo(target).isDir()) {
            QDir(staging).removeRecursively();
            QDir(aside).removeRecursively();
        }
        fail(kPathFileAccessError,
             QStringLiteral("Cannot replace the folder %1: %2").arg(target, reason));
    }
    // The previous folder, wherever the trade left it.
    QDir(staging).removeRecursively();
    QDir(aside).removeRecursively();
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
