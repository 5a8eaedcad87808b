// The send request of a published message, in the binary encoding of MMS over WSP.
#include "store/modMmsPdu.h"

#include <QFile>
#include <QRegularExpression>
#include <QSaveFile>
#include <QUuid>
#include <algorithm>
#include <pugixml.hpp>

namespace {
// Header fields of the request and of the body parts (with the high bit set).
constexpr char kMessageType = char(0x8C);
constexpr char kTransactionId = char(0x98);
constexpr char kVersion = char(0x8D);
constexpr char kFrom = char(0x89);
constexpr char kSubject = char(0x96);
constexpr char kTo = char(0x97);
constexpr char kContentType = char(0x84);
constexpr char kPartContentId = char(0xC0);
constexpr char kPartContentLocation = char(0x8E);
// Values.
constexpr char kSendRequest = char(0x80);
constexpr char kVersion12 = char(0x92); // major 1 in bits 4-6, minor 2 in bits 0-3
constexpr char kInsertAddress = char(0x81);
constexpr char kUtf8 = char(0xEA); // charset 106
constexpr char kMultipartRelated = char(0xB3);
constexpr char kCharsetParameter = char(0x81);
constexpr char kTypeParameter = char(0x89);
constexpr char kStartParameter = char(0x8A);
constexpr const char* kPresentationType = "application/smil";

// The content types with a one-octet code.
char wellKnownType(const QByteArray& type) {
    static const struct {
        const char* name;
        unsigned char code;
    } known[] = {{"text/plain", 0x03},
                 {"image/gif", 0x1D},
                 {"image/jpeg", 0x1E},
                 {"image/png", 0x20},
                 {"image/vnd.wap.wbmp", 0x21}};
    for (const auto& entry : known)
        if (type == entry.name)
            return char(0x80 | entry.code);
    return 0;
}

QByteArray uintvar(quint32 value) {
    QByteArray bytes(1, char(value & 0x7F));
    while (value >>= 7)
        bytes.prepend(char(0x80 | (value & 0x7F)));
    return bytes;
}

QByteArray valueLength(qsizetype length) {
    return length <= 30 ? QByteArray(1, char(length)) : char(31) + uintvar(quint32(length));
}

// A NUL ends a text: none may stand inside one. An octet from 128 up at the start is quoted so
// it cannot be read as a code.
QByteArray textString(const QByteArray& text) {
    QByteArray bytes = text;
    bytes.replace('\0', QByteArray());
    if (!bytes.isEmpty() && quint8(bytes.at(0)) >= 0x80)
        bytes.prepend(char(0x7F));
    return bytes + '\0';
}

QByteArray encodedString(const QString& text) {
    const QByteArray utf8 = text.toUtf8();
    if (std::none_of(utf8.begin(), utf8.end(), [](char c) { return quint8(c) >= 0x80; }))
        return textString(utf8);
    const QByteArray value = kUtf8 + textString(utf8);
    return valueLength(value.size()) + value;
}

// A type like "text/plain; charset=utf-8": the media alone, or with its parameters in the
// general form. A UTF-8 charset takes its code, other parameters go as name and value texts.
QByteArray contentType(const QString& type) {
    const QStringList pieces = type.split(QLatin1Char(';'), Qt::SkipEmptyParts);
    const QByteArray media = pieces.value(0).trimmed().toLatin1();
    const char code = wellKnownType(media);
    QByteArray value = code ? QByteArray(1, code) : textString(media);
    if (pieces.size() < 2)
        return value;
    for (const QString& parameter : pieces.mid(1)) {
        const QByteArray name = parameter.section(QLatin1Char('='), 0, 0).trimmed().toUtf8();
        const QByteArray setting = parameter.section(QLatin1Char('='), 1).trimmed().toUtf8();
        if (name.toLower() == "charset" && setting.toLower() == "utf-8")
            value += QByteArray(1, kCharsetParameter) + kUtf8;
        else
            value += textString(name) + textString(setting);
    }
    return valueLength(value.size()) + value;
}

QByteArray part(const MmsPart& entry) {
    const QByteArray name = entry.name.toUtf8();
    const QByteArray headers = contentType(entry.contentType) + kPartContentId + '"' +
                               textString('<' + name + '>') + kPartContentLocation +
                               textString(name);
    return uintvar(quint32(headers.size())) + uintvar(quint32(entry.data.size())) + headers +
           entry.data;
}

QByteArray bodyType(const MmsPdu& pdu) {
    QByteArray value(1, kMultipartRelated);
    if (!pdu.parts.empty())
        value += kTypeParameter + textString(kPresentationType) + kStartParameter +
                 textString('<' + pdu.parts.front().name.toUtf8() + '>');
    return valueLength(value.size()) + value;
}

// The names the presentation uses, in its order, each once.
QStringList namedFiles(const pugi::xml_document& smil) {
    QStringList names;
    for (const pugi::xpath_node& node : smil.select_nodes("/smil/body//*[@src]")) {
        const QString name = QString::fromUtf8(node.node().attribute("src").value());
        if (!name.isEmpty() && !names.contains(name))
            names << name;
    }
    return names;
}

bool readPart(const QString& folder, const QString& name, MmsPart& entry, QString* problem) {
    QFile file(folder + name);
    const bool plain = !name.contains(QLatin1Char('/')) && !name.contains(QLatin1Char('\\')) &&
                       name != QLatin1String("..") && name != QLatin1String(".");
    if (!plain || !file.open(QIODevice::ReadOnly)) {
        *problem = QStringLiteral("The presentation names %1, which cannot be read from %2")
                       .arg(name, folder);
        return false;
    }
    entry = {name, mmsContentType(name), file.readAll()};
    return true;
}

bool addRecipients(MmsPdu& pdu, const QStringList& to, QString& problem) {
    for (const QString& recipient : to) {
        pdu.to << mmsAddress(recipient);
        if (pdu.to.constLast().isEmpty()) {
            problem =
                QStringLiteral("%1 is neither a phone number nor an e-mail address").arg(recipient);
            return false;
        }
    }
    return true;
}

// The presentation of `folder`, then the files it names.
bool addParts(MmsPdu& pdu, const QString& folder, QString& problem) {
    MmsPart presentation;
    if (!readPart(folder, QStringLiteral("mms.smil"), presentation, &problem))
        return false;
    pugi::xml_document smil;
    if (!smil.load_buffer(presentation.data.constData(), std::size_t(presentation.data.size()))) {
        problem = QStringLiteral("%1mms.smil is not a presentation").arg(folder);
        return false;
    }
    pdu.parts.push_back(presentation);
    for (const QString& name : namedFiles(smil))
        if (!readPart(folder, name, pdu.parts.emplace_back(), &problem))
            return false;
    return true;
}
} // namespace

QByteArray mmsSendRequest(const MmsPdu& pdu) {
    QByteArray bytes;
    bytes += QByteArray(1, kMessageType) + kSendRequest;
    bytes += kTransactionId + textString(pdu.transactionId.toUtf8());
    bytes += QByteArray(1, kVersion) + kVersion12;
    bytes += QByteArray(1, kFrom) + char(1) + kInsertAddress;
    bytes += kSubject + encodedString(pdu.subject);
    for (const QString& address : pdu.to)
        bytes += kTo + encodedString(address);
    bytes += kContentType + bodyType(pdu);
    bytes += uintvar(quint32(pdu.parts.size()));
    for (const MmsPart& entry : pdu.parts)
        bytes += part(entry);
    return bytes;
}

QString mmsAddress(const QString& recipient) {
    static const QRegularExpression number(QStringLiteral("^\\+?[0-9]{3,20}$"));
    static const QRegularExpression mail(
        QStringLiteral("^[A-Za-z0-9._%+-]+@[A-Za-z0-9-]+(\\.[A-Za-z0-9-]+)+$"));
    QString digits = recipient.trimmed();
    digits.remove(QRegularExpression(QStringLiteral("[ -]")));
    if (number.match(digits).hasMatch())
        return digits + QStringLiteral("/TYPE=PLMN");
    return mail.match(recipient.trimmed()).hasMatch() ? recipient.trimmed() : QString();
}

QString mmsContentType(const QString& fileName) {
    static const struct {
        const char* extension;
        const char* type;
    } types[] = {{"smil", kPresentationType}, {"txt", "text/plain; charset=utf-8"},
                 {"jpg", "image/jpeg"},       {"jpeg", "image/jpeg"},
                 {"gif", "image/gif"},        {"bmp", "image/bmp"},
                 {"png", "image/png"},        {"amr", "audio/amr"},
                 {"wav", "audio/wav"},        {"mp3", "audio/mpeg"},
                 {"mid", "audio/midi"},       {"midi", "audio/midi"}};
    const QString extension = fileName.contains(QLatin1Char('.'))
                                  ? fileName.section(QLatin1Char('.'), -1).toLower()
                                  : QString();
    for (const auto& entry : types)
        if (extension == QLatin1String(entry.extension))
            return QString::fromLatin1(entry.type);
    return QStringLiteral("application/octet-stream");
}

bool writeMmsPdu(const QString& outputFolder, const QString& subject, const QStringList& to,
                 QString* problem) {
    QString ignored;
    QString& why = problem ? *problem : ignored;
    MmsPdu pdu;
    pdu.subject = subject;
    pdu.transactionId = QUuid::createUuid().toString(QUuid::Id128);
    if (!addRecipients(pdu, to, why) || !addParts(pdu, outputFolder, why))
        return false;
    const QString path = outputFolder + QStringLiteral("mms.mms");
    const QByteArray bytes = mmsSendRequest(pdu);
    QSaveFile file(path);
    if (!file.open(QIODevice::WriteOnly) || file.write(bytes) != bytes.size() || !file.commit()) {
        why = QStringLiteral("Cannot write %1").arg(path);
        return false;
    }
    return true;
}
