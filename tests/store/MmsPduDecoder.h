#pragma once
// A reader of MMS send requests for the tests, from the public description of the encoding
// (MMS encapsulation 1.2 over WSP), sharing nothing with the writer. It knows the fields our
// requests hold and throws on anything else. Content types read as "media;name=value...".
#include <QList>
#include <QMap>
#include <QStringList>
#include <stdexcept>

using namespace Qt::StringLiterals;

struct DecodedPart {
    QString type, contentId, location;
    QByteArray data;
};
struct DecodedPdu {
    QString transactionId;
    QStringList headers; // "name=value" in their order; a subject with its charset "subject(106)"
    QList<DecodedPart> parts;
};

class PduReader {
public:
    explicit PduReader(const QByteArray& bytes) : b(bytes) {}

    DecodedPdu read() {
        DecodedPdu pdu;
        for (int field = octet(); field != 0x84; field = octet()) {
            if (field == 0x98)
                pdu.headers << u"transaction="_s + (pdu.transactionId = QString::fromUtf8(text()));
            else if (field == 0x8C || field == 0x8D)
                pdu.headers << (field == 0x8C
                                    ? u"type=%1"_s.arg(octet())
                                    : u"version=%1.%2"_s.arg(peek() >> 4 & 7).arg(octet() & 15));
            else if (field == 0x89 && length() == 1 && octet() == 0x81)
                pdu.headers << u"from=insert"_s;
            else if (field == 0x96 || field == 0x97)
                pdu.headers << (field == 0x96 ? u"subject"_s : u"to"_s) + encodedString();
            else
                throw std::runtime_error("unknown header field " + std::to_string(field));
        }
        pdu.headers << u"content-type="_s + contentType();
        for (quint32 count = uintvar(); count > 0; --count) {
            DecodedPart part;
            const qsizetype headers = uintvar(), size = uintvar(), end = p + headers;
            part.type = contentType();
            while (p < end) {
                const int field = octet();
                if (field == 0xC0 && octet() == '"')
                    part.contentId = QString::fromUtf8(text());
                else if (field == 0x8E)
                    part.location = QString::fromUtf8(text());
                else
                    throw std::runtime_error("unknown part header");
            }
            need(p == end, "part headers length");
            part.data = take(size);
            pdu.parts << part;
        }
        need(p == b.size(), "bytes after the last part");
        return pdu;
    }

private:
    static void need(bool ok, const char* what) {
        if (!ok)
            throw std::runtime_error(what);
    }
    QByteArray take(qsizetype n) {
        need(p + n <= b.size(), "the request ends early");
        p += n;
        return b.mid(p - n, n);
    }
    int octet() { return quint8(take(1).at(0)); }
    int peek() { return p < b.size() ? quint8(b.at(p)) : -1; }
    quint32 uintvar() {
        quint32 value = 0;
        for (int i = 0, o = 0x80; o & 0x80; ++i)
            value = (need(i < 5, "uintvar"), value << 7 | ((o = octet()) & 0x7F));
        return value;
    }
    // Value-length: a short length, or the quote 31 and a uintvar.
    qsizetype length() {
        return peek() == 31  ? (octet(), uintvar())
               : peek() < 31 ? octet()
                             : throw std::runtime_error("length");
    }
    // Text-string (its quote dropped) up to the NUL.
    QByteArray text() {
        const qsizetype end = b.indexOf('\0', p);
        const QByteArray t = (need(end >= 0, "text"), take(end - p + 1).chopped(1));
        return t.startsWith('\x7F') ? t.mid(1) : t;
    }
    // Short or long integer.
    int integer() {
        int value = octet();
        if (value & 0x80)
            return value & 0x7F;
        for (const char c : take(value))
            value = value << 8 | quint8(c);
        return value;
    }
    // "=text", or "(charset)=text" for the form with a charset.
    QString encodedString() {
        if (peek() > 31)
            return u'=' + QString::fromLatin1(text());
        const qsizetype end = length() + p;
        const int charset = integer();
        const QByteArray t = text();
        need(p == end, "encoded string");
        return u"(%1)="_s.arg(charset) +
               (charset == 106 ? QString::fromUtf8(t) : QString::fromLatin1(t));
    }
    QString contentType() {
        static const QMap<int, QString> known{{0x03, "text/plain"},
                                              {0x1D, "image/gif"},
                                              {0x1E, "image/jpeg"},
                                              {0x20, "image/png"},
                                              {0x33, "application/vnd.wap.multipart.related"}};
        const auto media = [&] {
            return peek() & 0x80 ? known.value(octet() & 0x7F, u"?"_s)
                                 : QString::fromLatin1(text());
        };
        if (peek() > 31)
            return media();
        const qsizetype end = length() + p;
        QString type = media();
        static const QMap<int, QString> names{{0x81, "charset"}, {0x89, "type"}, {0x8A, "start"}};
        while (p < end) {
            // A well-known parameter by its code, an untyped one by its name as a text.
            const bool coded = peek() & 0x80;
            const QString name = coded ? names.value(octet()) : QString::fromUtf8(text());
            need(!name.isEmpty(), "parameter");
            type += u';' + name + u'=' +
                    (coded && name == u"charset"_s ? QString::number(integer())
                                                   : QString::fromUtf8(text()));
        }
        need(p == end, "content type length");
        return type;
    }

    const QByteArray& b;
    qsizetype p = 0;
};
