#pragma once

#include "document/clsDrawObject.h"
#include "document/clsDrawProperties.h"
#include "document/modDocument.h"

#include <QStringList>
#include <cstdint>
#include <memory>
#include <vector>

// The draw objects of one slide and its background: the DRAWOBJECTS element with one BACKGROUND
// and any number of DRAWOBJECT children. The collection is 1-based and keeps the file's order.
class clsDrawObjects {
public:
    using Objects = std::vector<std::shared_ptr<clsDrawObject>>;

    clsDrawObjects();

    // Makes DRAWOBJECTS under `slideElement` with a BACKGROUND in the preferred background colour.
    void Initialize(XmlDocument document, pugi::xml_node slideElement);
    // Binds to an existing DRAWOBJECTS; a missing BACKGROUND is added in mid grey.
    void LoadXmlNodes(XmlDocument document, pugi::xml_node slideElement,
                      pugi::xml_node drawObjectsElement);

    // Empties the collection and removes every DRAWOBJECT element; the background stays.
    void Clear();
    // The object at `index` (1-based); an index out of range raises a failure.
    std::shared_ptr<clsDrawObject> Item(int index) const;
    int Count() const { return static_cast<int>(mObjects.size()); }
    // Takes the object out of the collection only: its element stays in the document.
    void Remove(int index);
    Objects::const_iterator begin() const { return mObjects.begin(); }
    Objects::const_iterator end() const { return mObjects.end(); }

    // A new object at the end with the record's values; null on failure.
    std::shared_ptr<clsDrawObject> Add(const clsDrawProperties& properties);

    // Reading copies the attribute `type` into the background's `url` and gives "".
    QString BackType();
    void setBackType(const QString& value);
    std::int32_t BackColor() const;
    void setBackColor(std::int32_t value);
    QString BackPicture() const;
    void setBackPicture(const QString& value);

    // The media type names the collection knows: none, text, bitmap, JPEG and GIF.
    const QStringList& mediaTypes() const { return mMediaTypes; }

    pugi::xml_node drawObjectsElement() const { return mDrawObjectsElement; }
    pugi::xml_node backgroundElement() const { return mBackgroundElement; }

    // Moves the collection and every object it handed out onto another copy of the slide.
    void rebind(XmlDocument document, const pugi::xml_node& oldRoot, const pugi::xml_node& newRoot);

private:
    std::shared_ptr<clsDrawObject> track(std::shared_ptr<clsDrawObject> object);

    QStringList mMediaTypes;
    Objects mObjects;
    // Every object handed out, so that one still held elsewhere keeps a valid element when its
    // element leaves the document.
    std::vector<std::weak_ptr<clsDrawObject>> mIssued;
    XmlDocument mDocument;
    pugi::xml_node mSlideElement;
    pugi::xml_node mDrawObjectsElement;
    pugi::xml_node mBackgroundElement;
};
