#include "config/modTextEncoding.h"

#include <QRegularExpression>
#include <QStringDecoder>
#include <cstring>

namespace {

// Code points of the bytes 0x80-0x9F in code page 1252; the unassigned five keep their number.
constexpr char16_t kWindows1252High[32] = {
    0x20AC, 0x0081, 0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021, 0x02C6, 0x2030, 0x0160,
    0x2039, 0x0152, 0x008D, 0x017D, 0x008F, 0x0090, 0x2018, 0x2019, 0x201C, 0x201D, 0x2022,
    0x2013, 0x2014, 0x02DC, 0x2122, 0x0161, 0x203A, 0x0153, 0x009D, 0x017E, 0x0178,
};

// The encoding named in an XML declaration at the start of `bytes` ("" when there is none).
QByteArray declaredXmlEncoding(QByteArrayView bytes) {
    if (!bytes.startsWith("<?xml"))
        return {};
    const qsizetype end = bytes.indexOf("?>");
    if (end < 0)
        return {};
    static const QRegularExpression pattern(
        QStringLiteral("\\sencoding\\s*=\\s*([\"'])([A-Za-z][A-Za-z0-9._:-]*)\\1"));
    const QRegularExpressionMatch match =
        pattern.match(QString::fromLatin1(bytes.first(end).data(), end));
    return match.hasMatch() ? match.captured(2).toLatin1() : QByteArray();
}

enum class XmlEncoding { Auto, Utf8, Latin1, Windows1252, Named };

bool hasByteOrderMark(QByteArrayView bytes) {
    return bytes.startsWith("\xEF\xBB\xBF") || bytes.startsWith("\xFF\xFE") ||
           bytes.startsWith("\xFE\xFF");
}

XmlEncoding classify(QByteArrayView bytes, QByteArray& name) {
    if (hasByteOrderMark(bytes))
        return XmlEncoding::Auto; // the mark decides
    name = declaredXmlEncoding(bytes).toLower();
    if (name.isEmpty() || name == "utf-8" || name == "utf8")
        return XmlEncoding::Utf8;
    if (name.startsWith("utf-16") || name.startsWith("utf-32") || name == "ucs-2")
        return XmlEncoding::Auto; // no mark: the parser tells the byte order from "<?"
    if (name == "iso-8859-1" || name == "iso_8859-1" || name == "latin1" || name == "latin-1" ||
        name == "l1" || name == "us-ascii" || name == "ascii")
        return XmlEncoding::Latin1;
    if (name == "windows-1252" || name == "cp1252" || name == "x-cp1252")
        return XmlEncoding::Windows1252;
    return XmlEncoding::Named;
}

// The document is held, and saved, as UTF-8: a declaration that named another encoding would
// no longer be true.
void declareUtf8(pugi::xml_document& document) {
    for (pugi::xml_node node = document.first_child(); node; node = node.next_sibling()) {
        if (node.type() != pugi::node_declaration)
            continue;
        pugi::xml_attribute encoding = node.attribute("encoding");
        if (encoding && std::strcmp(encoding.value(), "utf-8") != 0 &&
            std::strcmp(encoding.value(), "UTF-8") != 0)
            encoding.set_value("utf-8");
        return;
    }
}

bool isUtf8(const QByteArray& bytes) {
    QStringDecoder decoder(QStringDecoder::Utf8);
    const QString text = decoder.decode(bytes);
    return !decoder.hasError();
}

bool parse(pugi::xml_document& document, const QByteArray& bytes, unsigned options,
           pugi::xml_encoding encoding) {
    return static_cast<bool>(document.load_buffer(
        bytes.constData(), static_cast<size_t>(bytes.size()), options, encoding));
}

} // namespace

QString decodeWindows1252(QByteArrayView bytes) {
    QString text(bytes.size(), Qt::Uninitialized);
    QChar* out = text.data();
    for (const char c : bytes) {
        const auto byte = static_cast<unsigned char>(c);
        *out++ = QChar(byte >= 0x80 && byte < 0xA0 ? kWindows1252High[byte - 0x80]
                                                   : static_cast<char16_t>(byte));
    }
    return text;
}

bool loadXmlBytes(pugi::xml_document& document, const QByteArray& bytes, unsigned parseOptions) {
    QByteArray name;
    bool loaded = false;
    switch (classify(bytes, name)) {
    case XmlEncoding::Auto:
        loaded = parse(document, bytes, parseOptions, pugi::encoding_auto);
        break;
    case XmlEncoding::Utf8:
        // Bytes that are not UTF-8 at all come from an older tool that wrote the Windows code
        // page without saying so.
        loaded = isUtf8(bytes) ? parse(document, bytes, parseOptions, pugi::encoding_utf8)
                               : parse(document, decodeWindows1252(bytes).toUtf8(), parseOptions,
                                       pugi::encoding_utf8);
        break;
    case XmlEncoding::Latin1:
        loaded = parse(document, bytes, parseOptions, pugi::encoding_latin1);
        break;
    case XmlEncoding::Windows1252:
        loaded =
            parse(document, decodeWindows1252(bytes).toUtf8(), parseOptions, pugi::encoding_utf8);
        break;
    case XmlEncoding::Named: {
        QStringDecoder decoder(name.constData());
        if (!decoder.isValid())
            return false;
        const QString text = decoder.decode(bytes);
        if (decoder.hasError())
            return false;
        loaded = parse(document, text.toUtf8(), parseOptions, pugi::encoding_utf8);
        break;
    }
    }
    if (loaded)
        declareUtf8(document);
    return loaded;
}
