#include "document/clsSlide.h"

#include "platform/Failure.h"

namespace {
constexpr const char* kSource = "clsSlide";

pugi::xml_node childAt(const pugi::xml_node& parent, int position) {
    pugi::xml_node child = parent.first_child();
    for (int i = 0; i < position && child; ++i)
        child = child.next_sibling();
    return child;
}
} // namespace

clsSlide::clsSlide() = default;
clsSlide::~clsSlide() = default;

void clsSlide::Initialize(XmlDocument document, pugi::xml_node slidesElement, const QString& name,
                          int index, int mode, std::int32_t duration) {
    if (!slidesElement)
        raiseObjectNotSet(QString::fromUtf8(kSource));
    mDocument = std::move(document);
    mSlidesElement = slidesElement;

    // Both insertions go before the child at position index - 1 (from 0); the caller of an
    // insertion after a slide passes that slide's index + 1. No child there means append.
    pugi::xml_node anchor;
    if (mode == BeforeIndex || mode == AtIndex)
        anchor = childAt(mSlidesElement, index - 1);
    mSlideElement = anchor ? mSlidesElement.insert_child_before("SLIDE", anchor)
                           : mSlidesElement.append_child("SLIDE");
    setAttr(mSlideElement, "name", name, kSource);
    setAttr(mSlideElement, "index", QString::number(index), kSource);
    setAttr(mSlideElement, "dur", QString::number(duration), kSource);
    mImageElement = mSlideElement.append_child("IMAGE");
    mSoundElement = mSlideElement.append_child("SOUND");
    mTextElement = mSlideElement.append_child("TEXT");
    mDrawObjects = std::make_unique<clsDrawObjects>();
    mDrawObjects->Initialize(mDocument, mSlideElement);
}

void clsSlide::LoadXmlNodes(XmlDocument document, pugi::xml_node slidesElement,
                            pugi::xml_node slideElement) {
    if (!slideElement)
        raiseObjectNotSet(QString::fromUtf8(kSource));
    mDocument = std::move(document);
    mSlidesElement = slidesElement;
    mSlideElement = slideElement;
    mImageElement = mSlideElement.child("IMAGE");
    mSoundElement = mSlideElement.child("SOUND");
    mTextElement = mSlideElement.child("TEXT");
    mDrawObjects = std::make_unique<clsDrawObjects>();
    const pugi::xml_node drawObjects = mSlideElement.child("DRAWOBJECTS");
    if (drawObjects)
        mDrawObjects->LoadXmlNodes(mDocument, mSlideElement, drawObjects);
    else
        mDrawObjects->Initialize(mDocument, mSlideElement);
}

QString clsSlide::name() const {
    return getAttr(mSlideElement, "name");
}

int clsSlide::Index() const {
    return toInt16(getAttr(mSlideElement, "index"), true, kSource);
}

void clsSlide::setIndex(int value) {
    setAttr(mSlideElement, "index", QString::number(value), kSource);
    if (!mImageElement) // a slide of a hand-made file may lack IMAGE; the url must still follow
        mImageElement = mSlideElement.prepend_child("IMAGE");
    setAttr(mImageElement, "url", name() + QLatin1Char('_') + QString::number(value), kSource);
}

std::int32_t clsSlide::Duration() const {
    return toLong(getAttr(mSlideElement, "dur"), true, kSource);
}

void clsSlide::setDuration(std::int32_t value) {
    setAttr(mSlideElement, "dur", QString::number(value), kSource);
}

std::int32_t clsSlide::SoundDuration() const {
    return toLong(getAttr(mSoundElement, "dur"), true, kSource);
}

void clsSlide::setSoundDuration(std::int32_t value) {
    setAttr(mSoundElement, "dur", QString::number(value), kSource);
}

QString clsSlide::ImageFile() const {
    return name() + QLatin1Char('_') + getAttr(mSlideElement, "index") + QStringLiteral(".bmp");
}

std::int32_t clsSlide::Color() const {
    return mDrawObjects ? mDrawObjects->BackColor() : 0;
}

void clsSlide::setColor(std::int32_t value) {
    if (!mDrawObjects)
        raiseObjectNotSet(QString::fromUtf8(kSource));
    mDrawObjects->setBackColor(value);
}

QString clsSlide::Sound() const {
    return getAttr(mSoundElement, "url");
}
void clsSlide::setSound(const QString& value) {
    setAttr(mSoundElement, "url", value, kSource);
}

QString clsSlide::Text() const {
    QString text = getAttr(mTextElement, "text");
    text.replace(QStringLiteral("\r\n"), QStringLiteral("\n"));
    text.replace(QLatin1Char('\r'), QLatin1Char('\n'));
    text.replace(QLatin1Char('\n'), QStringLiteral("\r\n"));
    return text;
}

void clsSlide::setText(const QString& value) {
    setAttr(mTextElement, "text", value, kSource);
}

void clsSlide::SetImageAttribute(const QString& name, const QString& value) {
    setAttr(mImageElement, name.toUtf8().constData(), value, kSource);
}
QString clsSlide::GetImageAttribute(const QString& name) const {
    return getAttr(mImageElement, name.toUtf8().constData());
}
void clsSlide::SetSoundAttribute(const QString& name, const QString& value) {
    setAttr(mSoundElement, name.toUtf8().constData(), value, kSource);
}
QString clsSlide::GetSoundAttribute(const QString& name) const {
    return getAttr(mSoundElement, name.toUtf8().constData());
}
void clsSlide::SetTextAttribute(const QString& name, const QString& value) {
    setAttr(mTextElement, name.toUtf8().constData(), value, kSource);
}
QString clsSlide::GetTextAttribute(const QString& name) const {
    return getAttr(mTextElement, name.toUtf8().constData());
}

void clsSlide::detach() {
    if (!mSlideElement)
        return;
    const pugi::xml_node old = mSlideElement;
    auto limbo = std::make_shared<pugi::xml_document>();
    const pugi::xml_node copy = limbo->append_copy(old);
    if (mDrawObjects)
        mDrawObjects->rebind(limbo, old, copy);
    mImageElement = correspondingNode(old, copy, mImageElement);
    mSoundElement = correspondingNode(old, copy, mSoundElement);
    mTextElement = correspondingNode(old, copy, mTextElement);
    mSlideElement = copy;
    pugi::xml_node parent = old.parent();
    if (parent)
        parent.remove_child(old);
    mSlidesElement = pugi::xml_node();
    mDocument = std::move(limbo);
}
