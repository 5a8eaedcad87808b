#pragma once
// A reader of MMS send requests for the tests, from the public description of the encoding
// (MMS encapsulation 1.2 over WSP), sharing nothing with the writer. It knows the fields a send
// request of ours may hold and throws on anything else.
#include <QList>
#include <QMap>
#include <QString>
#include <stdexcept>

struct DecodedType {
    QString media;
    QMap<QString, QString> parameters; // "charset" as its number
};
struct DecodedPart {
    DecodedType type;
    QString contentId, location;
    QByteArray data;
};
struct DecodedPdu {
    int messageType = -1;
    QString transactionId, version, subject;
    int subjectCharset = 0; // 0: no charset given
    bool fromInserted = false;
    QStringList to;
    DecodedType type;
    QList<DecodedPart> parts;
};

class PduReader {
public:
    explicit PduReader(const QByteArray& bytes) : b(bytes) {}

    DecodedPdu read() {
        DecodedPdu pdu;
        for (bool more = true; more;) {
            switch (octet()) {
            case 0x8C:
                pdu.messageType = octet();
                break;
            case 0x98:
                pdu.transactionId = QString::fromUtf8(text());
                break;
            case 0x8D: {
                const int v = octet();
                pdu.version = QStringLiteral("%1.%2").arg((v >> 4) & 7).arg(v & 15);
                break;
            }
            case 0x89: {
                const int end = length() + p;
                pdu.fromInserted = octet() == 0x81 && p == end;
                break;
            }
            case 0x96:
                pdu.subject = encodedString(&pdu.subjectCharset);
                break;
            case 0x97:
                pdu.to << encodedString(nullptr);
                break;
            case 0x84:
                pdu.type = contentType();
                more = false;
                break;
            default:
                throw std::runtime_error("unknown header field at " + std::to_string(p - 1));
            }
        }
        for (quint32 count = uintvar(); count > 0; --count) {
            DecodedPart part;
            const quint32 headers = uintvar(), size = uintvar(), end = p + headers;
            part.type = contentType();
            while (p < int(end)) {
                const int field = octet();
                if (field == 0xC0 && octet() == '"')
                    part.contentId = QString::fromUtf8(text());
                else if (field == 0x8E)
                    part.location = QString::fromUtf8(text());
                else
                    throw std::runtime_error("unknown part header");
            }
            part.data = take(int(size));
            pdu.parts << part;
        }
        if (p != b.size())
            throw std::runtime_error("bytes after the last part");
        return pdu;
    }

private:
    int octet() { return quint8(take(1).at(0)); }
    int peek() {
        if (p >= b.size())
            throw std::runtime_error("the request ends early");
        return quint8(b.at(p));
    }
    QByteArray take(int n) {
        if (n < 0 || p + n > b.size())
            throw std::runtime_error("the request ends early");
        p += n;
        return b.mid(p - n, n);
    }
    quint32 uintvar() {
        quint32 value = 0;
        for (int i = 0, o = 0x80; (o & 0x80); ++i) {
            if (i == 5)
                throw std::runtime_error("uintvar too long");
            o = octet();
            value = (value << 7) | (o & 0x7F);
        }
        return value;
    }
    int length() { // Value-length: short length, or the quote 31 and a uintvar
        const int first = octet();
        if (first > 31)
            throw std::runtime_error("not a value length");
        return first == 31 ? int(uintvar()) : first;
    }
    QByteArray text() { // Text-string, its quote dropped
        const int end = b.indexOf('\0', p);
        if (end < 0)
            throw std::runtime_error("unterminated text");
        QByteArray t = take(end - p + 1).chopped(1);
        return t.startsWith('\x7F') ? t.mid(1) : t;
    }
    int integer() { // short integer or long integer
        const int first = octet();
        if (first & 0x80)
            return first & 0x7F;
        int value = 0;
        for (const char c : take(first))
            value = (value << 8) | quint8(c);
        return value;
    }
    QString encodedString(int* charset) {
        if (peek() > 31)
            return QString::fromLatin1(text());
        const int end = length() + p, set = integer();
        const QByteArray t = text();
        if (p != end)
            throw std::runtime_error("encoded string length");
        if (charset)
            *charset = set;
        return set == 106 ? QString::fromUtf8(t) : QString::fromLatin1(t);
    }
    QString media() {
        static const QMap<int, QString> known{{0x03, "text/plain"},
                                              {0x1D, "image/gif"},
                                              {0x1E, "image/jpeg"},
                                              {0x20, "image/png"},
                                              {0x33, "application/vnd.wap.multipart.related"}};
        if (peek() & 0x80)
            return known.value(octet() & 0x7F, QStringLiteral("(unknown)"));
        return QString::fromLatin1(text());
    }
    DecodedType contentType() {
        DecodedType type;
        if (peek() > 31)
            return {media(), {}};
        const int end = length() + p;
        type.media = media();
        while (p < end) {
            const int name = octet();
            if (name == 0x81)
                type.parameters[QStringLiteral("charset")] = QString::number(integer());
            else if (name == 0x89)
                type.parameters[QStringLiteral("type")] = QString::fromLatin1(text());
            else if (name == 0x8A)
                type.parameters[QStringLiteral("start")] = QString::fromUtf8(text());
            else
                throw std::runtime_error("unknown parameter");
        }
        if (p != end)
            throw std::runtime_error("content type length");
        return type;
    }

    const QByteArray& b;
    int p = 0;
};
