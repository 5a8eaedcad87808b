#include "document/clsDrawObject.h"

#include "platform/Failure.h"

namespace {
constexpr const char* kSource = "clsDrawObject";
}

void clsDrawObject::Initialize(XmlDocument document, pugi::xml_node drawObjectsElement,
                               const QString& name) {
    if (!drawObjectsElement)
        raiseObjectNotSet(QString::fromUtf8(kSource));
    mDocument = std::move(document);
    mDrawObjectsElement = drawObjectsElement;
    mElement = mDrawObjectsElement.append_child("DRAWOBJECT");
    set("name", name);
}

void clsDrawObject::LoadXmlNodes(XmlDocument document, pugi::xml_node drawObjectsElement,
                                 pugi::xml_node element) {
    mDocument = std::move(document);
    mDrawObjectsElement = drawObjectsElement;
    mElement = element;
}

void clsDrawObject::set(const char* attribute, const QString& value) {
    setAttr(mElement, attribute, value, kSource);
}

QString clsDrawObject::name() const {
    return getAttr(mElement, "name");
}
void clsDrawObject::setName(const QString& value) {
    set("name", value);
}
QString clsDrawObject::typ() const {
    return getAttr(mElement, "type");
}
void clsDrawObject::setTyp(const QString& value) {
    set("type", value);
}
QString clsDrawObject::Image() const {
    return getAttr(mElement, "image");
}
void clsDrawObject::setImage(const QString& value) {
    set("image", value);
}
QString clsDrawObject::Text() const {
    return getAttr(mElement, "text");
}
void clsDrawObject::setText(const QString& value) {
    set("text", value);
}
QString clsDrawObject::XPos() const {
    return getAttr(mElement, "x");
}
void clsDrawObject::setXPos(const QString& value) {
    set("x", value);
}
QString clsDrawObject::Ypos() const {
    return getAttr(mElement, "y");
}
void clsDrawObject::setYpos(const QString& value) {
    set("y", value);
}
QString clsDrawObject::Width() const {
    return getAttr(mElement, "w");
}
void clsDrawObject::setWidth(const QString& value) {
    set("w", value);
}
QString clsDrawObject::Height() const {
    return getAttr(mElement, "h");
}
void clsDrawObject::setHeight(const QString& value) {
    set("h", value);
}
QString clsDrawObject::fontName() const {
    return getAttr(mElement, "fname");
}
void clsDrawObject::setFontName(const QString& value) {
    set("fname", value);
}
QString clsDrawObject::fontSize() const {
    return getAttr(mElement, "fsize");
}
void clsDrawObject::setFontSize(const QString& value) {
    set("fsize", value);
}
QString clsDrawObject::fontColor() const {
    return getAttr(mElement, "fcolor");
}
void clsDrawObject::setFontColor(const QString& value) {
    set("fcolor", value);
}
QString clsDrawObject::fontAlign() const {
    return getAttr(mElement, "falign");
}
void clsDrawObject::setFontAlign(const QString& value) {
    set("falign", value);
}
QString clsDrawObject::zorder() const {
    return getAttr(mElement, "zorder");
}
void clsDrawObject::setZorder(const QString& value) {
    set("zorder", value);
}

void clsDrawObject::SetAllPproperties(const clsDrawProperties& p) {
    set("name", p.name);
    set("type", p.typ);
    set("x", QString::number(p.X));
    set("y", QString::number(p.Y));
    set("w", QString::number(p.w));
    set("h", QString::number(p.h));
    set("zorder", QString::number(p.zorder));
    if (p.typ == QLatin1String("image")) {
        set("image", p.Data);
    } else {
        set("text", p.Data);
        set("fname", p.fontName);
        set("fsize", QString::number(p.fontSize));
        set("fcolor", QString::number(p.fontColor));
        set("falign", QString::number(p.fontAlign));
        set("fbold", boolText(p.fontBold));
        set("fitalic", boolText(p.fontItalic));
        set("funderline", boolText(p.fontUnderline));
    }
}

clsDrawProperties clsDrawObject::GetAllPproperties() const {
    clsDrawProperties p;
    p.name = name();
    p.typ = typ();
    p.X = toInt16(XPos(), false, kSource);
    p.Y = toInt16(Ypos(), false, kSource);
    p.w = toInt16(Width(), false, kSource);
    p.h = toInt16(Height(), false, kSource);
    p.zorder = toInt16(zorder(), false, kSource);
    if (p.typ == QLatin1String("image")) {
        p.Data = Image();
    } else {
        p.Data = Text();
        p.fontName = fontName();
        p.fontSize = toInt16(fontSize(), false, kSource);
        p.fontColor = toLong(fontColor(), false, kSource);
        p.fontAlign = toInt16(fontAlign(), false, kSource);
        p.fontBold = getAttr(mElement, "fbold") == QLatin1String("True");
        p.fontItalic = getAttr(mElement, "fitalic") == QLatin1String("True");
        p.fontUnderline = getAttr(mElement, "funderline") == QLatin1String("True");
    }
    return p;
}

void clsDrawObject::rebind(XmlDocument document, const pugi::xml_node& oldRoot,
                           const pugi::xml_node& newRoot) {
    mElement = correspondingNode(oldRoot, newRoot, mElement);
    mDrawObjectsElement = correspondingNode(oldRoot, newRoot, mDrawObjectsElement);
    mDocument = std::move(document);
}
