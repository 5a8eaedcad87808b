#include "document/clsDrawObjects.h"

#include "config/modConfig.h"

#include "platform/Failure.h"

#include <cstring>

namespace {
constexpr const char* kSource = "clsDrawObjects";
}

clsDrawObjects::clsDrawObjects()
    : mMediaTypes{QStringLiteral("none"), QStringLiteral("text/plain"),
                  QStringLiteral("image/bitmap"), QStringLiteral("image/jpg"),
                  QStringLiteral("image/gif")} {}

void clsDrawObjects::Initialize(XmlDocument document, pugi::xml_node slideElement) {
    if (!slideElement)
        raiseObjectNotSet(QString::fromUtf8(kSource));
    mObjects.clear();
    mDocument = std::move(document);
    mSlideElement = slideElement;
    mDrawObjectsElement = mSlideElement.append_child("DRAWOBJECTS");
    mBackgroundElement = mDrawObjectsElement.append_child("BACKGROUND");
    setAttr(mBackgroundElement, "name", QStringLiteral("background"), kSource);
    setAttr(mBackgroundElement, "color",
            preference(QStringLiteral("preferences"), QStringLiteral("BackgroundColor"),
                       QStringLiteral("16777215")),
            kSource);
}

void clsDrawObjects::LoadXmlNodes(XmlDocument document, pugi::xml_node slideElement,
                                  pugi::xml_node drawObjectsElement) {
    if (!drawObjectsElement)
        raiseObjectNotSet(QString::fromUtf8(kSource));
    mObjects.clear();
    mDocument = std::move(document);
    mSlideElement = slideElement;
    mDrawObjectsElement = drawObjectsElement;
    for (pugi::xml_node element : mDrawObjectsElement.children("DRAWOBJECT")) {
        auto object = std::make_shared<clsDrawObject>();
        object->LoadXmlNodes(mDocument, mDrawObjectsElement, element);
        mObjects.push_back(track(object));
    }
    mBackgroundElement = mDrawObjectsElement.child("BACKGROUND");
    if (!mBackgroundElement) {
        mBackgroundElement = mDrawObjectsElement.append_child("BACKGROUND");
        setAttr(mBackgroundElement, "name", QStringLiteral("background"), kSource);
        setAttr(mBackgroundElement, "color", QStringLiteral("8421504"), kSource);
    }
}

std::shared_ptr<clsDrawObject> clsDrawObjects::track(std::shared_ptr<clsDrawObject> object) {
    std::erase_if(mIssued, [](const std::weak_ptr<clsDrawObject>& w) { return w.expired(); });
    mIssued.push_back(object);
    return object;
}

void clsDrawObjects::Clear() {
    mObjects.clear();
    if (!mDrawObjectsElement)
        return;
    std::vector<pugi::xml_node> doomed;
    for (pugi::xml_node child : mDrawObjectsElement.children())
        if (std::strcmp(child.name(), "BACKGROUND") != 0)
            doomed.push_back(child);
    // An object still held by a caller keeps working on a copy of its element.
    for (const auto& weak : mIssued) {
        auto object = weak.lock();
        if (!object)
            continue;
        for (const pugi::xml_node& node : doomed) {
            if (object->element() == node) {
                auto limbo = std::make_shared<pugi::xml_document>();
                pugi::xml_node copy = limbo->append_copy(node);
                object->rebind(limbo, node, copy);
                break;
            }
        }
    }
    for (const pugi::xml_node& node : doomed)
        mDrawObjectsElement.remove_child(node);
}

std::shared_ptr<clsDrawObject> clsDrawObjects::Item(int index) const {
    if (index < 1 || index > Count())
        raiseFailure(FailureNumber::SubscriptOutOfRange, QString::fromUtf8(kSource));
    return mObjects[static_cast<size_t>(index - 1)];
}

void clsDrawObjects::Remove(int index) {
    if (index < 1 || index > Count())
        raiseFailure(FailureNumber::SubscriptOutOfRange, QString::fromUtf8(kSource));
    mObjects.erase(mObjects.begin() + (index - 1));
}

std::shared_ptr<clsDrawObject> clsDrawObjects::Add(const clsDrawProperties& properties) {
    try {
        auto object = std::make_shared<clsDrawObject>();
        object->Initialize(mDocument, mDrawObjectsElement, properties.name);
        mObjects.push_back(track(object));
        object->SetAllPproperties(properties);
        return object;
    } catch (const Failure&) {
        return nullptr;
    }
}

QString clsDrawObjects::BackType() {
    // Reading hands the stored type on to the background picture, as the program always has.
    setBackPicture(getAttr(mBackgroundElement, "type"));
    return {};
}

void clsDrawObjects::setBackType(const QString& value) {
    setAttr(mBackgroundElement, "type", value, kSource);
}

std::int32_t clsDrawObjects::BackColor() const {
    return toLong(getAttr(mBackgroundElement, "color"), true, kSource);
}

void clsDrawObjects::setBackColor(std::int32_t value) {
    setAttr(mBackgroundElement, "color", QString::number(value), kSource);
}

QString clsDrawObjects::BackPicture() const {
    return getAttr(mBackgroundElement, "url");
}

void clsDrawObjects::setBackPicture(const QString& value) {
    setAttr(mBackgroundElement, "url", value, kSource);
}

void clsDrawObjects::rebind(XmlDocument document, const pugi::xml_node& oldRoot,
                            const pugi::xml_node& newRoot) {
    for (const auto& weak : mIssued) {
        auto object = weak.lock();
        if (object && isInside(object->element(), oldRoot))
            object->rebind(document, oldRoot, newRoot);
    }
    mSlideElement = correspondingNode(oldRoot, newRoot, mSlideElement);
    mDrawObjectsElement = correspondingNode(oldRoot, newRoot, mDrawObjectsElement);
    mBackgroundElement = correspondingNode(oldRoot, newRoot, mBackgroundElement);
    mDocument = std::move(document);
}
