#pragma once

#include "document/clsDrawProperties.h"
#include "document/modDocument.h"

#include <QString>

// One picture or text placed on a slide: a DRAWOBJECT element. Every property is the attribute's
// text as stored ("" when missing); callers convert.
class clsDrawObject {
public:
    // Creates a DRAWOBJECT named `name` at the end of DRAWOBJECTS.
    void Initialize(XmlDocument document, pugi::xml_node drawObjectsElement, const QString& name);
    // Binds to an existing DRAWOBJECT.
    void LoadXmlNodes(XmlDocument document, pugi::xml_node drawObjectsElement,
                      pugi::xml_node element);

    QString name() const;
    void setName(const QString& value);
    QString typ() const;
    void setTyp(const QString& value);
    QString Image() const;
    void setImage(const QString& value);
    QString Text() const;
    void setText(const QString& value);
    QString XPos() const;
    void setXPos(const QString& value);
    QString Ypos() const;
    void setYpos(const QString& value);
    QString Width() const;
    void setWidth(const QString& value);
    QString Height() const;
    void setHeight(const QString& value);
    QString fontName() const;
    void setFontName(const QString& value);
    QString fontSize() const;
    void setFontSize(const QString& value);
    QString fontColor() const;
    void setFontColor(const QString& value);
    QString fontAlign() const;
    void setFontAlign(const QString& value);
    QString zorder() const;
    void setZorder(const QString& value);

    // Writes the record's values: the common ones, then the picture path for "image", else the
    // text and its font.
    void SetAllPproperties(const clsDrawProperties& properties);
    // Reads them back. A numeric attribute that is empty or not a number raises a failure.
    clsDrawProperties GetAllPproperties() const;

    pugi::xml_node element() const { return mElement; }

    // Moves the object onto the same element of another copy of its tree (used when the element
    // leaves the message document but the object is still held).
    void rebind(XmlDocument document, const pugi::xml_node& oldRoot, const pugi::xml_node& newRoot);

private:
    void set(const char* attribute, const QString& value);

    XmlDocument mDocument;
    pugi::xml_node mDrawObjectsElement;
    pugi::xml_node mElement;
};
