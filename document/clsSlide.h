#pragma once

#include "document/clsDrawObjects.h"
#include "document/modDocument.h"

#include <QImage>
#include <QString>
#include <cstdint>
#include <memory>

// One slide: a SLIDE element with IMAGE, SOUND, TEXT and DRAWOBJECTS. The slide's picture is
// held here in memory; every other value lives in the document.
class clsSlide {
public:
    // How Initialize places the new SLIDE under SLIDES.
    enum Placement { Append = 0, BeforeIndex = 1, AtIndex = 2 };

    clsSlide();
    ~clsSlide();
    clsSlide(const clsSlide&) = delete;
    clsSlide& operator=(const clsSlide&) = delete;

    void Initialize(XmlDocument document, pugi::xml_node slidesElement, const QString& name,
                    int index, int mode, std::int32_t duration);
    void LoadXmlNodes(XmlDocument document, pugi::xml_node slidesElement,
                      pugi::xml_node slideElement);

    QString name() const;
    // 1-based position; writing also points the IMAGE `url` at name + "_" + index.
    int Index() const;
    void setIndex(int value);
    std::int32_t Duration() const;
    void setDuration(std::int32_t value);
    std::int32_t SoundDuration() const;
    void setSoundDuration(std::int32_t value);
    // The picture's file name in the message folder, e.g. "Slide_3.bmp".
    QString ImageFile() const;
    const QImage& Image() const { return mImage; }
    void setImage(const QImage& picture) { mImage = picture; }
    std::int32_t Color() const;
    void setColor(std::int32_t value);
    QString Sound() const;
    void setSound(const QString& value);
    // Line ends read back as carriage return and line feed, whatever the file holds.
    QString Text() const;
    void setText(const QString& value);
    pugi::xml_node DOMElement() const { return mSlideElement; }

    void SetImageAttribute(const QString& name, const QString& value);
    QString GetImageAttribute(const QString& name) const;
    void SetSoundAttribute(const QString& name, const QString& value);
    QString GetSoundAttribute(const QString& name) const;
    void SetTextAttribute(const QString& name, const QString& value);
    QString GetTextAttribute(const QString& name) const;

    clsDrawObjects* DrawObjects() const { return mDrawObjects.get(); }

    // Takes the slide out of the message document: the slide goes on working on a copy of its
    // element that belongs to no message, and the element is removed from SLIDES.
    void detach();

private:
    XmlDocument mDocument;
    pugi::xml_node mSlidesElement;
    pugi::xml_node mSlideElement;
    pugi::xml_node mImageElement;
    pugi::xml_node mSoundElement;
    pugi::xml_node mTextElement;
    std::unique_ptr<clsDrawObjects> mDrawObjects;
    QImage mImage;
};
