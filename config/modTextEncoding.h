#pragma once

#include <QByteArray>
#include <QByteArrayView>
#include <QString>
#include <pugixml.hpp>

// Reading text that older installations and other tools wrote in encodings other than UTF-8.

// Decodes bytes of the Windows western code page (1252): like Latin-1, except that 0x80-0x9F
// hold the euro sign, curly quotes, dashes and the like. The five bytes the code page leaves
// free stand for the control characters of the same number.
QString decodeWindows1252(QByteArrayView bytes);

// Parses an XML file's bytes into `document` in the encoding its byte-order mark or declaration
// names: UTF-8 (the default; bytes that are not UTF-8 at all are taken as Windows-1252), UTF-16
// with a mark, ISO-8859-1, Windows-1252, and any other encoding the toolkit knows by name. The
// document then holds UTF-8, and a declaration in it says so. False when the bytes do not parse or
// name an encoding that cannot be read.
bool loadXmlBytes(pugi::xml_document& document, const QByteArray& bytes, unsigned parseOptions);
