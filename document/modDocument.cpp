#include "document/modDocument.h"

#include "platform/Failure.h"

#include <QFile>
#include <QFileInfo>
#include <QRandomGenerator>
#include <cmath>
#include <limits>
#include <vector>

static void initDocumentResources() {
    Q_INIT_RESOURCE(documentResources);
}

QString getAttr(const pugi::xml_node& element, const char* name) {
    if (!element)
        return {};
    const pugi::xml_attribute attribute = element.attribute(name);
    if (!attribute)
        return {};
    return QString::fromUtf8(attribute.value());
}

void setAttr(pugi::xml_node element, const char* name, const QString& value, const char* source) {
    if (!element)
        raiseObjectNotSet(QString::fromUtf8(source));
    pugi::xml_attribute attribute = element.attribute(name);
    if (!attribute)
        attribute = element.append_attribute(name);
    attribute.set_value(value.toUtf8().constData());
}

namespace {
double parseNumber(const QString& text, bool emptyIsZero, const char* source) {
    const QString trimmed = text.trimmed();
    if (trimmed.isEmpty()) {
        if (emptyIsZero)
            return 0;
        raiseFailure(FailureNumber::TypeMismatch, QString::fromUtf8(source));
    }
    bool ok = false;
    const double value = trimmed.toDouble(&ok);
    if (!ok || !std::isfinite(value))
        raiseFailure(FailureNumber::TypeMismatch, QString::fromUtf8(source));
    return std::nearbyint(value); // the default rounding mode rounds halves to even
}

template <typename T> T checkedRange(double value, const char* source) {
    if (value < static_cast<double>(std::numeric_limits<T>::min()) ||
        value > static_cast<double>(std::numeric_limits<T>::max()))
        raiseFailure(FailureNumber::Overflow, QString::fromUtf8(source));
    return static_cast<T>(value);
}
} // namespace

std::int32_t toLong(const QString& text, bool emptyIsZero, const char* source) {
    return checkedRange<std::int32_t>(parseNumber(text, emptyIsZero, source), source);
}

std::int16_t toInt16(const QString& text, bool emptyIsZero, const char* source) {
    return checkedRange<std::int16_t>(parseNumber(text, emptyIsZero, source), source);
}

QString boolText(bool value) {
    return value ? QStringLiteral("True") : QStringLiteral("False");
}

const QString& illegalNameCharacters() {
    static const QString characters = QStringLiteral("!\"#¤%&/()=?'*.:,;|{[]}\\§½@£$<>+¨~^´`");
    return characters;
}

QString messageNameProblem(const QString& name) {
    if (name.isEmpty())
        return QStringLiteral("A message needs a name");
    for (const QChar c : name) {
        if (illegalNameCharacters().contains(c))
            return QStringLiteral("\"%1\" cannot name a message: it may not hold \"%2\"")
                .arg(name, QString(c));
        if (c.category() == QChar::Other_Control)
            return QStringLiteral("A message name may not hold a control character");
    }
    return {};
}

namespace {
const QString kStagedPrefix = QStringLiteral(".tessaly-save-");
const QString kPreviousPrefix = QStringLiteral(".tessaly-old-");
} // namespace

QString newSaveWorkingFolder(const QString& root, SaveWorkingFolder::Kind kind,
                             const QString& messageName) {
    const QString prefix = kind == SaveWorkingFolder::Staged ? kStagedPrefix : kPreviousPrefix;
    for (;;) {
        const QString candidate = root + prefix + messageName + QLatin1Char('-') +
                                  QStringLiteral("%1").arg(QRandomGenerator::global()->generate(),
                                                           8, 16, QLatin1Char('0'));
        const QFileInfo info(candidate);
        if (!info.exists() && !info.isSymLink())
            return candidate;
    }
}

std::optional<SaveWorkingFolder> parseSaveWorkingFolder(const QString& folderName) {
    SaveWorkingFolder folder;
    QString rest;
    if (folderName.startsWith(kStagedPrefix)) {
        folder.kind = SaveWorkingFolder::Staged;
        rest = folderName.mid(kStagedPrefix.size());
    } else if (folderName.startsWith(kPreviousPrefix)) {
        folder.kind = SaveWorkingFolder::Previous;
        rest = folderName.mid(kPreviousPrefix.size());
    } else {
        return std::nullopt;
    }
    const qsizetype dash = rest.lastIndexOf(QLatin1Char('-'));
    if (dash <= 0 || rest.size() - dash - 1 != 8)
        return std::nullopt;
    folder.messageName = rest.left(dash);
    return folder;
}

const QByteArray& emptySlideBitmap() {
    static const QByteArray bytes = [] {
        initDocumentResources();
        QFile file(QStringLiteral(":/tessaly/resources/200.bmp"));
        if (!file.open(QIODevice::ReadOnly))
            return QByteArray();
        return file.readAll();
    }();
    return bytes;
}

pugi::xml_node correspondingNode(const pugi::xml_node& oldRoot, const pugi::xml_node& newRoot,
                                 const pugi::xml_node& node) {
    std::vector<int> offsets;
    pugi::xml_node current = node;
    while (current && current != oldRoot) {
        int offset = 0;
        for (pugi::xml_node sibling = current.previous_sibling(); sibling;
             sibling = sibling.previous_sibling())
            ++offset;
        offsets.push_back(offset);
        current = current.parent();
    }
    if (!current)
        return {};
    pugi::xml_node mapped = newRoot;
    for (auto it = offsets.rbegin(); it != offsets.rend() && mapped; ++it) {
        pugi::xml_node child = mapped.first_child();
        for (int i = 0; i < *it && child; ++i)
            child = child.next_sibling();
        mapped = child;
    }
    return mapped;
}

bool isInside(const pugi::xml_node& node, const pugi::xml_node& ancestor) {
    for (pugi::xml_node current = node; current; current = current.parent())
        if (current == ancestor)
            return true;
    return false;
}
