// Publishing of a message: the MMS presentation, its media and the packages made from them.
#include "config/modConfig.h"
#include "document/clsMessage.h"
#include "document/clsSlide.h"
#include "imaging/DIWriteJpg.h"
#include "imaging/cDIBSectionSave.h"
#include "imaging/modPictureSave.h"
#include "platform/AppPaths.h"
#include "platform/Failure.h"
#include "platform/StatusSink.h"
#include "platform/VbFormat.h"
#include "platform/modText.h"
#include "store/AMRConverter.h"
#include "store/clsMMSManager.h"
#include "store/clsRunPgm.h"
#include "store/modMmsPdu.h"
#include "store/modTar.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QImage>
#include <QRegularExpression>
#include <QSaveFile>
#include <sstream>

namespace {
constexpr const char* kSource = "clsMMSManager.SaveAsMMS";
constexpr const char* kPackageName = "mms";
// The longest makesis may take over one package before the publication counts as failed.
constexpr int kMakesisLimitMs = 120000;

const char* const kSmilTemplate[] = {
    "<smil>",
    "<head>",
    "<meta name=\"title\" content=\"<name>\" />",
    "<meta name=\"author\" content=\"MMS\" />",
    "<layout>",
    "<root-layout width=\"160\" height=\"160\" />",
    "<region id=\"Image\" width=\"160\" height=\"120\" left=\"0\" top=\"0\" />",
    "<region id=\"Text\" width=\"160\" height=\"20\" left=\"0\" top=\"120\" />",
    "</layout>",
    "</head>",
    "<body>",
    "</body>",
    "</smil>",
};
const char* const kTextsTemplate[] = {"<mms-text-files>", "<message>", "</message>",
                                      "</mms-text-files>"};

template <std::size_t N> QByteArray joinLines(const char* const (&lines)[N]) {
    QByteArray text;
    for (std::size_t i = 0; i < N; ++i) {
        if (i)
            text += "\r\n";
        text += lines[i];
    }
    return text;
}

[[noreturn]] void fail(int number, const QString& source, const QString& description = {}) {
    raiseFailure(number, source, description);
}

void writeWhole(const QString& path, const QByteArray& bytes, const QString& source) {
    QSaveFile file(path);
    if (!file.open(QIODevice::WriteOnly) || file.write(bytes) != bytes.size() || !file.commit())
        fail(FailureNumber::PathFileAccess, source, QStringLiteral("Cannot write %1").arg(path));
}

// The document as the program saves XML: its declaration, then the tree without indentation.
QByteArray serialised(const pugi::xml_document& document) {
    std::ostringstream out;
    document.save(out, "", pugi::format_raw | pugi::format_no_declaration, pugi::encoding_utf8);
    return QByteArray::fromStdString(out.str());
}

void loadTemplate(pugi::xml_document& document, const QByteArray& text) {
    document.reset();
    const pugi::xml_parse_result parsed = document.load_buffer(
        text.constData(), std::size_t(text.size()), pugi::parse_default, pugi::encoding_utf8);
    if (!parsed)
        fail(FailureNumber::XmlLayer, QString::fromUtf8(kSource),
             QString::fromUtf8(parsed.description()));
    pugi::xml_node declaration =
        document.insert_child_before(pugi::node_declaration, document.first_child());
    declaration.append_attribute("version") = "1.0";
    declaration.append_attribute("encoding") = "utf-8";
}

QByteArray utf8(const QString& text) {
    return text.toUtf8();
}

QString quoted(const QString& text) {
    return QLatin1Char('"') + text + QLatin1Char('"');
}

// The entries of a file list that go into a package: every one but the texts, which travel in
// texts.xml.
QStringList packedFiles(const QString& fileList) {
    QStringList files;
    for (const QString& entry : fileList.split(QLatin1Char(';'), Qt::SkipEmptyParts))
        if (!entry.contains(QLatin1String(".txt"), Qt::CaseInsensitive))
            files << entry;
    return files;
}

// Whether `text` may stand as it is between the quotes of an XML attribute: no "<", no quote,
// no control character, and "&" only where it begins a reference. The parser takes some of these
// without a word; the presentation must stay readable by any player.
bool fitsAttribute(const QString& text) {
    static const QRegularExpression illegal(QStringLiteral(
        "[<\"\\x00-\\x08\\x0B\\x0C\\x0E-\\x1F]|&(?!(#[0-9]+|#x[0-9A-Fa-f]+|[A-Za-z_][\\w.-]*);)"));
    return !illegal.match(text).hasMatch();
}

// A name that can be a folder of the store: publishing must not reach outside it.
bool isStoreFolderName(const QString& name) {
    return !name.isEmpty() && name != QLatin1String(".") && name != QLatin1String("..") &&
           !name.contains(QLatin1Char('/')) && !name.contains(QLatin1Char('\\'));
}
} // namespace

std::int32_t clsMMSManager::SaveAsMMS(clsMessage& message, bool convertSound,
                                      std::int32_t timeFormat) {
    mStatus = 1;
    mStatusText = localText(QStringLiteral("STR_ERROR"));
    mFileList.clear();
    mFitNote.clear();
    const QString format = !mPictureFormat.isEmpty()
                               ? mPictureFormat
                               : preference(QStringLiteral("preferences"),
                                            QStringLiteral("ImageFormat"), QStringLiteral("jpg"));
    const QString name = message.name();
    try {
        if (!mFileSystem || mMessagePath.isEmpty() || !isStoreFolderName(name))
            fail(FailureNumber::PathNotFound, QString::fromUtf8(kSource));
        PublishTarget target;
        target.messageFolder = mMessagePath + name + QLatin1Char('/');
        target.outputFolder = target.messageFolder + QStringLiteral("mms/");
        target.format = format;
        target.convertSound = convertSound;
        target.timeFormat = timeFormat;
        const QString& outputFolder = target.outputFolder;
        if (prepareOutputFolder(outputFolder)) {
            makeTextsDocument(name);
            const pugi::xml_node body = makeSmilDocument(name);
            clsSlides* slides = message.Slides();
            const int count = slides ? slides->Count() : 0;
            for (int index = 1; index <= count; ++index) {
                phase(std::int16_t(index), std::int16_t(count));
                publishSlide(*slides->Item(index), body, target);
            }
            phase(-1, 1);
            saveDocuments(outputFolder);
            // The send request carries the fitted pictures.
            fitToBudget(target);
            // mms.mms stays out of the file list, so no package carries it.
            QString problem;
            if (makePdu() && !writeMmsPdu(outputFolder, name, mPduTo, &problem))
                setFailure(4, QStringLiteral("STR_ERROR_TAR_PACK"),
                           Failure(FailureNumber::PathFileAccess, problem, {}));
            if (mMakeTemplate)
                packTemplate(outputFolder, QString::fromUtf8(kPackageName), mFileList);
            if (mMakeSis)
                packSis(name, outputFolder, QString::fromUtf8(kPackageName), mFileList);
            if (mStatus == 1) {
                mStatus = 0;
                mStatusText = mFitNote.isEmpty() ? QStringLiteral("OK") : mFitNote;
            }
        }
    } catch (const Failure& failure) {
        // The folder, the presentation or a slide's document could not be had: nothing more is
        // published and the status stays unspecified.
        mStatus = 1;
        mStatusText =
            localText(QStringLiteral("STR_ERROR")) + QStringLiteral(" (") +
            QString::number(failure.number()) + QStringLiteral(") ") + failure.source() +
            (failure.description().isEmpty() ? QString()
                                             : QStringLiteral(": ") + failure.description());
    }
    phase(-1, 2);
    return mStatus;
}

void clsMMSManager::setMakePdu(bool make, const QStringList& to) {
    mMakePdu = make;
    mPduTo = to;
}

bool clsMMSManager::makePdu() const {
    return mMakePdu.value_or(preference(QStringLiteral("preferences"), QStringLiteral("MakePdu"),
                                        QStringLiteral("0")) == QLatin1String("1"));
}

void clsMMSManager::phase(std::int16_t slide, std::int16_t total) {
    if (slide > 0)
        mSink->progress(slide, total);
    emit ProsessingSlide(slide, total);
    mSink->breathe();
}

bool clsMMSManager::prepareOutputFolder(const QString& outputFolder) {
    // Emptying goes through the folder itself only: a link named "mms" would empty its target.
    if (QFileInfo(QDir::cleanPath(outputFolder)).isSymLink())
        fail(FailureNumber::PathFileAccess, QString::fromUtf8(kSource),
             QStringLiteral("%1 is a link").arg(outputFolder));
    QDir folder(outputFolder);
    if (!folder.exists())
        return QDir().mkpath(outputFolder);
    // An earlier publication's files go; folders inside stay.
    const QFileInfoList files =
        folder.entryInfoList(QDir::Files | QDir::Hidden | QDir::System, QDir::Name);
    for (const QFileInfo& file : files) {
        QFile::setPermissions(file.filePath(), file.permissions() | QFileDevice::WriteOwner);
        if (!QFile::remove(file.filePath()))
            fail(FailureNumber::PermissionDenied, QString::fromUtf8(kSource),
                 QStringLiteral("Cannot remove %1").arg(file.filePath()));
    }
    return true;
}

void clsMMSManager::makeTextsDocument(const QString& messageName) {
    loadTemplate(mTextsDocument, joinLines(kTextsTemplate));
    mMessageElement = mTextsDocument.child("mms-text-files").child("message");
    mMessageElement.append_child("title").text().set(utf8(messageName).constData());
}

pugi::xml_node clsMMSManager::makeSmilDocument(const QString& messageName) {
    // The name goes into the template as text: a name with a character an attribute cannot
    // hold makes the template unreadable, and the publication stops there.
    if (!fitsAttribute(messageName))
        fail(FailureNumber::XmlLayer, QString::fromUtf8(kSource),
             QStringLiteral("The name \"%1\" cannot stand in an attribute").arg(messageName));
    QByteArray text = joinLines(kSmilTemplate);
    text.replace("<name>", utf8(messageName));
    loadTemplate(mSmilDocument, text);
    const pugi::xml_node body = mSmilDocument.child("smil").child("body");
    if (!body)
        raiseObjectNotSet(QString::fromUtf8(kSource));
    return body;
}

void clsMMSManager::publishSlide(clsSlide& slide, pugi::xml_node body,
                                 const PublishTarget& target) {
    const std::int32_t duration = slide.Duration();
    if (duration < 1)
        return;
    pugi::xml_node par = body.append_child("par");
    const QString dur = target.timeFormat == 1 ? Format(duration / 1000.0, QStringLiteral("0.000s"),
                                                        QStringLiteral("."))
                                               : Format(duration, QStringLiteral("0ms"));
    par.append_attribute("dur") = utf8(dur).constData();

    const QString picture =
        convertSlidePicture(slide, target.outputFolder, target.messageFolder, target.format);
    if (!picture.isEmpty()) {
        pugi::xml_node img = par.append_child("img");
        img.append_attribute("src") = utf8(picture).constData();
        img.append_attribute("region") = "Image";
        addToFileList(picture);
    }
    const QString sound = slide.Sound();
    if (!sound.isEmpty()) {
        const QString published = convertSlideSound(slide.Index(), sound, target.outputFolder,
                                                    target.messageFolder, target.convertSound);
        par.append_child("audio").append_attribute("src") = utf8(published).constData();
        addToFileList(published);
    }
    writeSlideText(par, slide, target.outputFolder);
}

void clsMMSManager::saveDocuments(const QString& outputFolder) {
    writeWhole(outputFolder + QStringLiteral("texts.xml"), serialised(mTextsDocument),
               QString::fromUtf8(kSource));
    addToFileList(QStringLiteral("texts.xml"));
    writeWhole(outputFolder + QStringLiteral("mms.smil"), serialised(mSmilDocument),
               QString::fromUtf8(kSource));
    addToFileList(QStringLiteral("mms.smil"));
}

void clsMMSManager::addToFileList(const QString& name) {
    // A step that made no file adds no entry: the packages name only files that exist.
    if (name.isEmpty())
        return;
    if (!mFileList.isEmpty())
        mFileList += QLatin1Char(';');
    mFileList += name;
}

void clsMMSManager::setFailure(std::int32_t status, const QString& key, const Failure& failure) {
    mStatus = status;
    mStatusText = localText(key) + QStringLiteral(" (") + QString::number(failure.number()) +
                  QStringLiteral(") ") + failure.source();
}

void clsMMSManager::writeSlideText(pugi::xml_node parElement, clsSlide& slide,
                                   const QString& outputFolder) {
    const QString text = slide.Text();
    if (text.isEmpty())
        return;
    QString file =
        slide.name() + QLatin1Char('_') + QString::number(slide.Index()) + QStringLiteral(".txt");
    file.replace(QLatin1Char(' '), QLatin1Char('_'));
    writeWhole(outputFolder + file, utf8(text + QStringLiteral("\r\n")),
               QStringLiteral("writeSlideText"));
    pugi::xml_node element = parElement.append_child("text");
    element.append_attribute("src") = utf8(file).constData();
    element.append_attribute("region") = "Text";
    if (mMessageElement) {
        pugi::xml_node entry = mMessageElement.append_child("file");
        entry.append_attribute("filename") = utf8(file).constData();
        entry.text().set(utf8(text).constData());
    }
    addToFileList(file);
}

QString clsMMSManager::convertSlidePicture(clsSlide& slide, const QString& outputFolder,
                                           const QString& messageFolder, const QString& format) {
    const QString kind = format.toUpper();
    const QString source = messageFolder + slide.ImageFile();
    const QString stem = slide.name() + QLatin1Char('_') + QString::number(slide.Index());
    try {
        if (kind == QLatin1String("BMP")) {
            QImage picture;
            if (!picture.load(source))
                fail(FailureNumber::InvalidPicture, QStringLiteral("LoadPicture"));
            SavePicture(picture, outputFolder + stem + QStringLiteral(".bmp"));
            return stem + QStringLiteral(".bmp");
        }
        if (kind == QLatin1String("JPG")) {
            const int result =
                DIWriteJpg(QFile::encodeName(outputFolder + stem + QStringLiteral(".jpg")),
                           QFile::encodeName(source), 90, 0);
            if (result != 0)
                fail(result, QStringLiteral("DIWriteJpg"));
            return stem + QStringLiteral(".jpg");
        }
        if (kind == QLatin1String("GIF")) {
            QImage pictureBox;
            if (!pictureBox.load(source))
                fail(FailureNumber::InvalidPicture, QStringLiteral("LoadPicture"));
            int bits = 8;
            cDIBSectionSave writer(*mSink);
            writer.Save(pictureBox, QStringLiteral("picWork"), nullptr,
                        outputFolder + stem + QStringLiteral(".gif"), bits);
            return stem + QStringLiteral(".gif");
        }
        // An unknown format writes nothing: the picture element names the bare stem.
        return stem;
    } catch (const Failure& failure) {
        setFailure(2, QStringLiteral("STR_ERROR_PICT_CONV"), failure);
        return {};
    }
}

QString clsMMSManager::convertSlideSound(int index, const QString& soundPath,
                                         const QString& outputFolder, const QString& messageFolder,
                                         bool convertSound) {
    const QString path = toSlashes(soundPath);
    const QString name = fileNameOf(path);
    if (!name.contains(QLatin1Char('.')))
        return {};
    QString extension = name.mid(name.lastIndexOf(QLatin1Char('.')));
    const QString stem = QStringLiteral("Slide_") + QString::number(index);
    // A sound given without a folder lies in the message's folder.
    const QString source = QDir::isAbsolutePath(path) ? path : messageFolder + path;
    try {
        const QString copy = outputFolder + stem + extension;
        QFile::remove(copy);
        if (!QFile::copy(source, copy))
            fail(FailureNumber::FileNotFound, QStringLiteral("FileCopy"),
                 QStringLiteral("Cannot copy %1").arg(source));
        if (convertSound && extension.toUpper() == QLatin1String(".WAV")) {
            const int result =
                wav2amr(QFile::encodeName(copy),
                        QFile::encodeName(outputFolder + stem + QStringLiteral(".amr")), "MR102");
            if (result != AmrOk)
                fail(result, QStringLiteral("wav2amr"));
            extension = QStringLiteral(".amr");
        }
        return stem + extension;
    } catch (const Failure& failure) {
        setFailure(3, QStringLiteral("STR_ERROR_AUDIO_CONV"), failure);
        return {};
    }
}

bool clsMMSManager::packTemplate(const QString& outputFolder, const QString& name,
                                 const QString& fileList) {
    try {
        QString command = QStringLiteral("--use-directory=0 --display-dialog=0 -fc ") +
                          quoted(outputFolder + name + QStringLiteral(".tpl"));
        for (const QString& entry : packedFiles(fileList))
            command += QLatin1Char(' ') + quoted(outputFolder + entry);
        QByteArray output(512, '\0');
        if (Tar(0, command.toLocal8Bit(), output.data(), std::uint32_t(output.size())) == 0)
            return true;
        // Tar says why in its output; a template that was not made is a packing failure.
        setFailure(4, QStringLiteral("STR_ERROR_TAR_PACK"),
                   Failure(FailureNumber::PathFileAccess, QStringLiteral("Tar"),
                           QString::fromLocal8Bit(output.constData()).trimmed()));
        return false;
    } catch (const Failure& failure) {
        setFailure(4, QStringLiteral("STR_ERROR_TAR_PACK"), failure);
        return false;
    }
}

bool clsMMSManager::packSis(const QString& messageName, const QString& outputFolder,
                            const QString& name, const QString& fileList) {
    try {
        const QString package = outputFolder + name + QStringLiteral(".pkg");
        QByteArray lines;
        const auto line = [&lines](const QString& text) { lines += utf8(text) + "\r\n"; };
        line(QStringLiteral("#{\"%1\"},(0x101F8A52),1,0,0,TYPE=SISUPGRADE").arg(messageName));
        line(QStringLiteral("(0x101F8A52),1,0,0,{\"CopyOnlyStub\"}"));
        line(QStringLiteral("(0x101F80BE), 1, 0, 0, {\"NorvaneQ50xPlatformProductID\"}"));
        for (const QString& entry : packedFiles(fileList))
            line(QStringLiteral("\"%1%2\"-\"!:\\documents\\MMS\\Templates\\%3\\%2\"")
                     .arg(outputFolder, entry, messageName));
        writeWhole(package, lines, QStringLiteral("packSis"));
        runMakesis(package);
        return true;
    } catch (const Failure& failure) {
        setFailure(4, QStringLiteral("STR_ERROR_TAR_PACK"), failure);
        return false;
    }
}

void clsMMSManager::runMakesis(const QString& packagePath) {
    const QString source = QStringLiteral("makesis");
    const QString program = companionProgram(source);
    if (program.isEmpty())
        fail(FailureNumber::FileNotFound, source, QStringLiteral("makesis is not installed"));
    clsRunPgm runner;
    if (!runner.run(QString(), quoted(program) + QLatin1Char(' ') + quoted(packagePath), 6))
        fail(FailureNumber::FileNotFound, source);
    if (!runner.waitUntilEnded(kMakesisLimitMs)) {
        runner.terminate();
        fail(FailureNumber::PathFileAccess, source, QStringLiteral("makesis did not finish"));
    }
    // The tool writes mms.sis beside the package; without it there is nothing to send.
    const QString sis = packagePath.left(packagePath.size() - 4) + QStringLiteral(".sis");
    if (runner.GetExitCode() != 0 || !QFileInfo(sis).isFile())
        fail(runner.GetExitCode() != 0 ? runner.GetExitCode() : FailureNumber::FileNotFound,
             source);
}

QString clsMMSManager::companionProgram(const QString& name) const {
    QStringList folders;
    if (!mCompanionFolder.isEmpty())
        folders << mCompanionFolder;
    if (QCoreApplication::instance()) {
        const QString bin = QCoreApplication::applicationDirPath();
        folders << bin << bin + QStringLiteral("/../libexec/tessaly");
    }
    for (const QString& folder : folders) {
        const QFileInfo candidate(joinPath(folder, name));
        if (candidate.isFile() && candidate.isExecutable())
            return candidate.absoluteFilePath();
    }
    return {};
}

QByteArray clsMMSManager::presentationTemplate() {
    return joinLines(kSmilTemplate);
}

QByteArray clsMMSManager::textsTemplate() {
    return joinLines(kTextsTemplate);
}
