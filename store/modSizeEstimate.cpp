// The size of a message as it would be published, estimated while it is composed.
#include "store/modSizeEstimate.h"

#include "config/modConfig.h"
#include "document/clsMessage.h"
#include "document/clsSlide.h"
#include "document/modDocument.h"
#include "imaging/cDIBSectionSave.h"
#include "platform/AppPaths.h"
#include "platform/Failure.h"
#include "platform/VbFormat.h"
#include "store/clsMMSManager.h"

#include <QCryptographicHash>
#include <QDir>
#include <QFileInfo>
#include <QTemporaryDir>
#include <csetjmp>
#include <cstdio>
#include <pugixml.hpp>
#include <sstream>

#include <jpeglib.h>
#include <sndfile.h>

namespace {
constexpr std::int64_t kAmrHeaderBytes = 6;
constexpr std::int64_t kAmrFrameBytes = 27; // MR102, its header byte included
constexpr std::int64_t kAmrFrameSamples = 160;
constexpr std::int64_t kAmrRate = 8000;
constexpr qsizetype kCacheLimit = 2000;

struct JpegErrors {
    jpeg_error_mgr base;
    std::jmp_buf jump;
};
void onJpegError(j_common_ptr info) {
    std::longjmp(reinterpret_cast<JpegErrors*>(info->err)->jump, 1);
}
void onJpegMessage(j_common_ptr, int) {}

// The JPEG bytes of a blue-green-red picture with the encoder settings of DIWriteJpg; 0 when
// the encoder fails. No object with a destructor lives between setjmp and longjmp.
std::int64_t jpegBytes(const QImage& bgr, int quality) {
    jpeg_compress_struct info;
    JpegErrors errors;
    unsigned char* buffer = nullptr;
    unsigned long size = 0;
    info.err = jpeg_std_error(&errors.base);
    errors.base.error_exit = onJpegError;
    errors.base.emit_message = onJpegMessage;
    if (setjmp(errors.jump)) {
        jpeg_destroy_compress(&info);
        std::free(buffer);
        return 0;
    }
    jpeg_create_compress(&info);
    jpeg_mem_dest(&info, &buffer, &size);
    info.image_width = JDIMENSION(bgr.width());
    info.image_height = JDIMENSION(bgr.height());
    info.input_components = 3;
    info.in_color_space = JCS_EXT_BGR;
    jpeg_set_defaults(&info);
    jpeg_set_quality(&info, quality, TRUE);
    jpeg_start_compress(&info, TRUE);
    while (info.next_scanline < info.image_height) {
        JSAMPROW row = const_cast<JSAMPROW>(bgr.constScanLine(int(info.next_scanline)));
        jpeg_write_scanlines(&info, &row, 1);
    }
    jpeg_finish_compress(&info);
    jpeg_destroy_compress(&info);
    const auto bytes = std::int64_t(size);
    std::free(buffer);
    return bytes;
}

// The GIF bytes of a picture, written by the program's GIF writer into a scratch folder.
std::int64_t gifBytes(const QImage& picture) {
    const QTemporaryDir scratch;
    if (!scratch.isValid())
        return 0;
    const QString file = scratch.filePath(QStringLiteral("estimate.gif"));
    try {
        int bits = 8;
        cDIBSectionSave writer;
        writer.Save(picture, QStringLiteral("picWork"), nullptr, file, bits);
    } catch (const Failure&) {
        return 0; // publishing fails on this picture too and writes none
    }
    return QFileInfo(file).size();
}

// What publishing reads for a slide: the picture the save wrote, the empty slide without one.
const QImage& publishedSource(const clsSlide& slide) {
    static const QImage empty = QImage::fromData(emptySlideBitmap());
    return slide.Image().isNull() ? empty : slide.Image();
}

QByteArray pictureDigest(const QImage& picture) {
    QCryptographicHash hash(QCryptographicHash::Sha1);
    const qsizetype rowBytes = qsizetype(picture.width()) * picture.depth() / 8;
    for (int y = 0; y < picture.height(); ++y)
        hash.addData(
            QByteArrayView(reinterpret_cast<const char*>(picture.constScanLine(y)), rowBytes));
    return hash.result() + QByteArray::number(picture.width()) + 'x' +
           QByteArray::number(picture.height());
}

QByteArray serialised(const pugi::xml_document& document) {
    std::ostringstream out;
    document.save(out, "", pugi::format_raw | pugi::format_no_declaration, pugi::encoding_utf8);
    return QByteArray::fromStdString(out.str());
}

// A template of publishing with its declaration, as publishing starts its documents.
bool loadTemplate(pugi::xml_document& document, const QByteArray& text) {
    if (!document.load_buffer(text.constData(), std::size_t(text.size()), pugi::parse_default,
                              pugi::encoding_utf8))
        return false;
    pugi::xml_node declaration =
        document.insert_child_before(pugi::node_declaration, document.first_child());
    declaration.append_attribute("version") = "1.0";
    declaration.append_attribute("encoding") = "utf-8";
    return true;
}

// The sound's name in the folder mms: "Slide_<index>" with its extension, ".amr" for a converted
// WAV, "" for a file name without an extension (publishing copies no such sound).
QString publishedSoundName(const clsSlide& slide, bool convert) {
    const QString name = fileNameOf(toSlashes(slide.Sound()));
    if (!name.contains(QLatin1Char('.')))
        return {};
    QString extension = name.mid(name.lastIndexOf(QLatin1Char('.')));
    if (convert && extension.toUpper() == QLatin1String(".WAV"))
        extension = QStringLiteral(".amr");
    return QStringLiteral("Slide_") + QString::number(slide.Index()) + extension;
}

// texts.xml and mms.smil as publishing builds them, with the same names and attributes.
struct Documents {
    pugi::xml_document texts;
    pugi::xml_document smil;
    pugi::xml_node message;
    pugi::xml_node body;

    explicit Documents(const QString& name) {
        QByteArray smilText = clsMMSManager::presentationTemplate();
        smilText.replace("<name>", name.toUtf8());
        if (loadTemplate(texts, clsMMSManager::textsTemplate())) {
            message = texts.child("mms-text-files").child("message");
            message.append_child("title").text().set(name.toUtf8().constData());
        }
        if (loadTemplate(smil, smilText))
            body = smil.child("smil").child("body");
    }

    void addSlide(const clsSlide& slide, const PublishSettings& settings) {
        pugi::xml_node par = body.append_child("par");
        const std::int32_t duration = slide.Duration();
        const QString dur =
            settings.timeFormat == 1
                ? Format(duration / 1000.0, QStringLiteral("0.000s"), QStringLiteral("."))
                : Format(duration, QStringLiteral("0ms"));
        par.append_attribute("dur") = dur.toUtf8().constData();
        const QString stem = slide.name() + QLatin1Char('_') + QString::number(slide.Index());
        const QString format = settings.format.toLower();
        const bool known = format == QLatin1String("jpg") || format == QLatin1String("gif") ||
                           format == QLatin1String("bmp");
        pugi::xml_node img = par.append_child("img");
        img.append_attribute("src") =
            (known ? stem + QLatin1Char('.') + format : stem).toUtf8().constData();
        img.append_attribute("region") = "Image";
        if (!slide.Sound().isEmpty())
            par.append_child("audio").append_attribute("src") =
                publishedSoundName(slide, settings.convertSound).toUtf8().constData();
        const QString text = slide.Text();
        if (text.isEmpty())
            return;
        QString file = stem + QStringLiteral(".txt");
        file.replace(QLatin1Char(' '), QLatin1Char('_'));
        pugi::xml_node element = par.append_child("text");
        element.append_attribute("src") = file.toUtf8().constData();
        element.append_attribute("region") = "Text";
        pugi::xml_node entry = message.append_child("file");
        entry.append_attribute("filename") = file.toUtf8().constData();
        entry.text().set(text.toUtf8().constData());
    }

    std::int64_t bytes() const { return serialised(texts).size() + serialised(smil).size(); }
};

// Frames at 8 kHz a sound of `frames` at `rate` becomes after resampling.
std::int64_t amrBytes(std::int64_t frames, int rate) {
    const std::int64_t samples =
        rate == kAmrRate ? frames : (frames * kAmrRate + rate / 2) / std::int64_t(rate);
    return kAmrHeaderBytes + kAmrFrameBytes * ((samples + kAmrFrameSamples - 1) / kAmrFrameSamples);
}
} // namespace

std::int64_t maxMessageSize() {
    bool ok = false;
    const std::int64_t value =
        preference(QStringLiteral("preferences"), QStringLiteral("MaxMessageSize"),
                   QString::number(kDefaultMaxMessageSize))
            .trimmed()
            .toLongLong(&ok);
    return ok && value > 0 ? value : kDefaultMaxMessageSize;
}

MessageSize clsSizeEstimator::Estimate(const clsMessage& message, const PublishSettings& settings) {
    MessageSize size;
    Documents documents(message.name());
    if (const clsSlides* slides = message.Slides()) {
        for (const auto& slide : *slides) {
            if (slide->Duration() < 1)
                continue; // publishing leaves such a slide out
            size.pictures +=
                PictureSize(publishedSource(*slide), settings.format, settings.jpegQuality);
            const QString sound = toSlashes(slide->Sound());
            if (!publishedSoundName(*slide, settings.convertSound).isEmpty())
                size.sounds +=
                    SoundSize(QDir::isAbsolutePath(sound) ? sound : settings.messageFolder + sound,
                              settings.convertSound);
            documents.addSlide(*slide, settings);
        }
    }
    size.documents = documents.bytes();
    return size;
}

std::int64_t clsSizeEstimator::PictureSize(const QImage& picture, const QString& format,
                                           int jpegQuality) {
    if (picture.isNull())
        return 0;
    const QString kind = format.toLower();
    if (kind == QLatin1String("bmp")) // 24 bits, rows padded to 4 bytes, behind a 54-byte head
        return 54 + std::int64_t((picture.width() * 3 + 3) & ~3) * picture.height();
    // The same image object unchanged since it was last measured has the same contents: its
    // digest is kept, so that a warm estimate reads no pixels.
    if (mDigests.size() > kCacheLimit || mPictures.size() > kCacheLimit)
        clear(); // a long session of edits leaves many pictures that are gone
    QByteArray& digest = mDigests[picture.cacheKey()];
    if (digest.isEmpty())
        digest = pictureDigest(picture.convertToFormat(QImage::Format_RGB32));
    const QByteArray key = digest + kind.toLatin1() + '@' + QByteArray::number(jpegQuality);
    if (const auto found = mPictures.constFind(key); found != mPictures.constEnd())
        return *found;
    std::int64_t bytes = 0;
    if (kind == QLatin1String("jpg"))
        bytes = jpegBytes(
            picture.convertToFormat(QImage::Format_RGB32).convertToFormat(QImage::Format_BGR888),
            jpegQuality);
    else if (kind == QLatin1String("gif"))
        bytes = gifBytes(picture.convertToFormat(QImage::Format_RGB32));
    mPictures.insert(key, bytes);
    return bytes;
}

std::int64_t clsSizeEstimator::SoundSize(const QString& path, bool convert) {
    const QFileInfo file(path);
    if (!file.isFile())
        return 0;
    const bool toAmr = convert && file.suffix().toUpper() == QLatin1String("WAV");
    if (!toAmr)
        return file.size();
    const QString key = file.absoluteFilePath() + QLatin1Char('|') +
                        QString::number(file.lastModified().toMSecsSinceEpoch()) +
                        QLatin1Char('|') + QString::number(file.size());
    if (const auto found = mSounds.constFind(key); found != mSounds.constEnd())
        return *found;
    SF_INFO info{};
    SNDFILE* handle = sf_open(QFile::encodeName(path).constData(), SFM_READ, &info);
    std::int64_t bytes = 0;
    if (handle) {
        if (info.frames > 0 && info.samplerate > 0)
            bytes = amrBytes(info.frames, info.samplerate);
        sf_close(handle);
    }
    mSounds.insert(key, bytes);
    return bytes;
}

void clsSizeEstimator::clear() {
    mDigests.clear();
    mPictures.clear();
    mSounds.clear();
}

MessageSize publishedSize(const QString& outputFolder, const QString& fileList) {
    MessageSize size;
    for (const QString& entry : fileList.split(QLatin1Char(';'), Qt::SkipEmptyParts)) {
        const QString suffix = QFileInfo(entry).suffix().toLower();
        if (suffix == QLatin1String("txt"))
            continue;
        const std::int64_t bytes = QFileInfo(outputFolder + entry).size();
        if (suffix == QLatin1String("xml") || suffix == QLatin1String("smil"))
            size.documents += bytes;
        else if (suffix == QLatin1String("jpg") || suffix == QLatin1String("gif") ||
                 suffix == QLatin1String("bmp"))
            size.pictures += bytes;
        else
            size.sounds += bytes;
    }
    return size;
}

QString kilobytes(std::int64_t bytes) {
    return QString::number((bytes + 1023) / 1024) + QStringLiteral(" KB");
}
