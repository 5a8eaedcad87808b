#include "config/clsProperties.h"

#include "config/modTextEncoding.h"
#include "platform/AppPaths.h"

#include <QFile>
#include <QSaveFile>
#include <QStringDecoder>

namespace {

// "key=value" split into a trimmed key and value; a line without "=" has no key.
bool splitEntry(const QString& line, QString& key, QString& value) {
    const auto equals = line.indexOf(QLatin1Char('='));
    if (equals < 0)
        return false;
    key = line.left(equals).trimmed();
    value = line.mid(equals + 1).trimmed();
    return !key.isEmpty();
}

bool isEntryLine(const QString& line) {
    const QString t = line.trimmed();
    return !t.isEmpty() && !t.startsWith(QLatin1Char(';'));
}

// The profile functions' view of a list: items joined by NUL into a buffer of kListBuffer
// characters. What does not fit is cut, the last item possibly inside; then trailing NULs and
// blanks go and the rest is split at NUL.
QStringList throughListBuffer(const QStringList& items) {
    QString data = items.join(QChar(u'\0'));
    const int room = clsProperties::kListBuffer - 2;
    if (data.size() > room)
        data.truncate(room);
    while (!data.isEmpty() && (data.back() == QChar(u'\0') || data.back() == QLatin1Char(' ')))
        data.chop(1);
    if (data.isEmpty())
        return {};
    return data.split(QChar(u'\0'));
}

// The text of the file: UTF-16 or UTF-8 by its byte-order mark, else UTF-8 when the bytes are
// that, else the Windows code page in which older installations wrote their settings.
QString decodeIni(const QByteArray& bytes) {
    if (const auto marked = QStringConverter::encodingForData(bytes);
        marked && *marked != QStringConverter::Utf8)
        return QStringDecoder(*marked).decode(bytes);
    QStringDecoder utf8(QStringDecoder::Utf8);
    const QString text = utf8.decode(bytes);
    return utf8.hasError() ? decodeWindows1252(bytes) : text;
}

} // namespace

clsProperties::clsProperties() {
    SetDefaultIniFileName();
}

void clsProperties::SetDefaultIniFileName() {
    mIniFileName = joinPath(appFolder(), exeBaseName() + QStringLiteral(".ini"));
}

bool clsProperties::read(Contents& contents) const {
    QFile file(mIniFileName);
    if (!file.open(QIODevice::ReadOnly))
        return false;
    const QString text = decodeIni(file.readAll());
    const QStringList lines = text.split(QLatin1Char('\n'));
    Section* current = nullptr;
    for (QString line : lines) {
        if (line.endsWith(QLatin1Char('\r')))
            line.chop(1);
        const QString t = line.trimmed();
        if (t.startsWith(QLatin1Char('[')) && t.contains(QLatin1Char(']'))) {
            contents.sections.append({t.mid(1, t.indexOf(QLatin1Char(']')) - 1).trimmed(), {}});
            current = &contents.sections.last();
        } else if (current) {
            current->lines << line;
        } else {
            contents.preamble << line;
        }
    }
    // The final newline of the file makes no line of its own.
    QStringList& tail = current ? current->lines : contents.preamble;
    if (!tail.isEmpty() && tail.last().isEmpty())
        tail.removeLast();
    return true;
}

bool clsProperties::write(const Contents& contents) const {
    QString text;
    for (const QString& line : contents.preamble)
        text += line + QStringLiteral("\r\n");
    for (const Section& section : contents.sections) {
        text += QLatin1Char('[') + section.name + QStringLiteral("]\r\n");
        for (const QString& line : section.lines)
            text += line + QStringLiteral("\r\n");
    }
    QSaveFile file(mIniFileName);
    if (!file.open(QIODevice::WriteOnly))
        return false;
    file.write(text.toUtf8());
    return file.commit();
}

clsProperties::Section* clsProperties::Contents::section(const QString& name, bool create) {
    for (Section& s : sections)
        if (s.name.compare(name, Qt::CaseInsensitive) == 0)
            return &s;
    if (!create)
        return nullptr;
    sections.append({name, {}});
    return &sections.last();
}

QString clsProperties::GetProp(const QString& section, const QString& key,
                               const QString& defaultValue) const {
    Contents contents;
    QString result = defaultValue;
    const Section* found = read(contents) ? contents.section(section, false) : nullptr;
    for (const QString& line : found ? found->lines : QStringList()) {
        QString k, v;
        if (isEntryLine(line) && splitEntry(line, k, v) &&
            k.compare(key, Qt::CaseInsensitive) == 0) {
            if (v.size() >= 2 &&
                ((v.front() == QLatin1Char('"') && v.back() == QLatin1Char('"')) ||
                 (v.front() == QLatin1Char('\'') && v.back() == QLatin1Char('\''))))
                v = v.mid(1, v.size() - 2);
            result = v;
            break;
        }
    }
    return result.left(kValueBuffer - 1);
}

short clsProperties::SetProp(const QString& section, const QString& key, const QString& value) {
    Contents contents;
    read(contents);
    Section* target = contents.section(section, true);
    bool replaced = false;
    for (QString& line : target->lines) {
        QString k, v;
        if (isEntryLine(line) && splitEntry(line, k, v) &&
            k.compare(key, Qt::CaseInsensitive) == 0) {
            line = k + QLatin1Char('=') + value;
            replaced = true;
            break;
        }
    }
    if (!replaced) {
        // New keys go after the last entry, before any blank lines that end the section.
        qsizetype at = target->lines.size();
        while (at > 0 && target->lines[at - 1].trimmed().isEmpty())
            --at;
        target->lines.insert(at, key + QLatin1Char('=') + value);
    }
    return write(contents) ? 1 : 0;
}

short clsProperties::GetSections(QStringList& list) const {
    Contents contents;
    QStringList names;
    if (read(contents))
        for (const Section& s : contents.sections)
            names << s.name;
    list = throughListBuffer(names);
    return static_cast<short>(list.size() - 1);
}

short clsProperties::GetPropList(const QString& section, QStringList& list) const {
    Contents contents;
    QStringList entries;
    const Section* found = read(contents) ? contents.section(section, false) : nullptr;
    for (const QString& line : found ? found->lines : QStringList()) {
        QString k, v;
        if (isEntryLine(line) && splitEntry(line, k, v))
            entries << k + QLatin1Char('=') + v;
    }
    list = throughListBuffer(entries);
    return static_cast<short>(list.size() - 1);
}

short clsProperties::SetPropList(const QString& section, const QStringList& list) {
    Contents contents;
    read(contents);
    Section* target = contents.section(section, true);
    target->lines = list;
    return write(contents) ? 1 : 0;
}
