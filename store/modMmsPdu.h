#pragma once

#include <QByteArray>
#include <QString>
#include <QStringList>
#include <vector>

// A published message as one MMS send request (m-send-req, MMS 1.2) in the binary encoding the
// phones and relays read: the headers, then a multipart/related body whose first part, the
// presentation, is its start.

// One part of the body. Its Content-Location is `name` and its Content-ID "<name>".
struct MmsPart {
    QString name;
    QString contentType; // "image/jpeg", "text/plain; charset=utf-8", ...
    QByteArray data;
};

struct MmsPdu {
    QString transactionId;
    QString subject;
    QStringList to;             // addresses as mmsAddress gives them
    std::vector<MmsPart> parts; // the first one is the SMIL presentation
};

// The encoded request. The sender is left to the relay (the insert-address token).
QByteArray mmsSendRequest(const MmsPdu& pdu);

// A recipient as an address of the request: a phone number ("+491701234567", spaces and "-"
// dropped) gives "+491701234567/TYPE=PLMN", an e-mail address stays as it is; "" when
// `recipient` is neither.
QString mmsAddress(const QString& recipient);

// The content type of a published file, by its extension.
QString mmsContentType(const QString& fileName);

// Writes `outputFolder`/mms.mms (the folder with a closing "/"): mms.smil of that folder as the
// start, then each file it names, in the order it names them. `to` holds phone numbers or
// e-mail addresses. False with `problem` set, and mms.mms as it was, when the presentation cannot
// be read, names a file that is not there, a recipient is not an address, or the file cannot be
// written.
bool writeMmsPdu(const QString& outputFolder, const QString& subject, const QStringList& to,
                 QString* problem);
