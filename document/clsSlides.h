#pragma once

#include "document/clsSlide.h"
#include "document/modDocument.h"

#include <cstdint>
#include <memory>
#include <vector>

// The ordered slides of a message: the SLIDES element, whose child order is the collection's.
// 1-based.
class clsSlides {
public:
    using Slides = std::vector<std::shared_ptr<clsSlide>>;

    void Initialize(XmlDocument document, pugi::xml_node messageElement);
    void LoadXmlNodes(XmlDocument document, pugi::xml_node messageElement,
                      pugi::xml_node slidesElement);

    std::int32_t DefaultDuration() const { return mDefaultDuration; }
    void setDefaultDuration(std::int32_t value) { mDefaultDuration = value; }

    // Empties the collection only: the SLIDE elements stay in the document.
    void Clear() { mSlides.clear(); }
    // The slide at `index`, or null out of range.
    std::shared_ptr<clsSlide> Item(int index) const;
    int Count() const { return static_cast<int>(mSlides.size()); }
    // Removes the slide and its element and numbers the following slides again.
    void Remove(int index);
    Slides::const_iterator begin() const { return mSlides.begin(); }
    Slides::const_iterator end() const { return mSlides.end(); }

    // A new slide at the end, lasting DefaultDuration.
    std::shared_ptr<clsSlide> Add();
    // A new slide before or after the slide at `index` (1..Count), lasting 3000 ms; null for an
    // index out of range.
    std::shared_ptr<clsSlide> AddBefore(int index);
    std::shared_ptr<clsSlide> AddAfter(int index);

    pugi::xml_node slidesElement() const { return mSlidesElement; }

private:
    void renumberFrom(int index);

    Slides mSlides;
    XmlDocument mDocument;
    pugi::xml_node mMessageElement;
    pugi::xml_node mSlidesElement;
    std::int32_t mDefaultDuration = 3000;
};
