#pragma once

#include <QByteArray>
#include <QString>
#include <cstdint>
#include <memory>
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

// Why `name` cannot name a message folder in the store, or "" when it can. The store's own
// working folders begin with "." and are never listed, so a message name may not; nor may it
// hold a path separator ("/" here, "\\" where the messages were made) or be empty.
QString messageNameProblem(const QString& name);

// The node of `newRoot`'s tree that stands where `node` stands in `oldRoot`'s tree, found by the
// position of each ancestor among its siblings; null when `node` is not inside `oldRoot`.
pugi::xml_node correspondingNode(const pugi::xml_node& oldRoot, const pugi::xml_node& newRoot,
                                 const pugi::xml_node& node);

// Whether `node` is `ancestor` or lies below it.
bool isInside(const pugi::xml_node& node, const pugi::xml_node& ancestor);
