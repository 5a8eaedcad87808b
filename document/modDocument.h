#pragma once

#include <QByteArray>
#include <QString>
#include <cstdint>
#include <memory>
#include <optional>
#include <pugixml.hpp>

// Helpers shared by the message document classes. The XML document is the only store of a
// message's values: every property reads or writes an attribute at once.

// One message document, shared by every object that holds a node of it, so that a slide or a
// draw object kept by a caller stays usable after the message that made it is gone.
using XmlDocument = std::shared_ptr<pugi::xml_document>;

// Failure numbers of the conversions the document makes.
namespace DocumentFailure {
inline constexpr int Overflow = 6;
inline constexpr int TypeMismatch = 13;
} // namespace DocumentFailure

// The attribute `name` of `element` as text; "" when the element or the attribute is missing.
QString getAttr(const pugi::xml_node& element, const char* name);
// Stores `value` as the attribute `name` of `element`, adding the attribute when it is missing.
// Raises the missing-object failure when `element` is null.
void setAttr(pugi::xml_node element, const char* name, const QString& value, const char* source);

// Number conversions of attribute text. "" is a type mismatch unless `emptyIsZero`; text that is
// not a number is a type mismatch; a value outside the type's range overflows. Decimal fractions
// round to the nearest whole number, halves to even, as the program's number conversion does.
std::int32_t toLong(const QString& text, bool emptyIsZero, const char* source);
std::int16_t toInt16(const QString& text, bool emptyIsZero, const char* source);

// "True" or "False".
QString boolText(bool value);

// The bytes of the built-in picture that stands for an empty slide (resource 200): a 160 by 120
// bitmap with 256 colours.
const QByteArray& emptySlideBitmap();

// The characters a message name may not hold. The message list refuses them as they are typed;
// "," among them keeps a comma-joined list of names unambiguous, "/" and "\\" keep a name inside
// the store, and "." keeps the store's own hidden working folders apart from messages.
const QString& illegalNameCharacters();

// Why `name` cannot name a message folder in the store, or "" when it can: it is empty, holds
// one of illegalNameCharacters(), a null or another control character.
QString messageNameProblem(const QString& name);

// The hidden working folders a save makes in the store: the new folder being written (Staged)
// and, where the file system cannot trade two names in one step, the previous folder stepped
// aside (Previous). They carry the message's name, so that a folder left over by a crash shows
// whose it is and can be put back.
struct SaveWorkingFolder {
    enum Kind { Staged, Previous };
    Kind kind = Staged;
    QString messageName;
};
// A free name for a working folder of `messageName` in `root` (with its closing "/").
QString newSaveWorkingFolder(const QString& root, SaveWorkingFolder::Kind kind,
                             const QString& messageName);
// What the store entry `folderName` is, when it is a save's working folder.
std::optional<SaveWorkingFolder> parseSaveWorkingFolder(const QString& folderName);

// The node of `newRoot`'s tree that stands where `node` stands in `oldRoot`'s tree, found by the
// position of each ancestor among its siblings; null when `node` is not inside `oldRoot`.
pugi::xml_node correspondingNode(const pugi::xml_node& oldRoot, const pugi::xml_node& newRoot,
                                 const pugi::xml_node& node);

// Whether `node` is `ancestor` or lies below it.
bool isInside(const pugi::xml_node& node, const pugi::xml_node& ancestor);
