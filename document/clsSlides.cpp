#include "document/clsSlides.h"

#include "platform/Failure.h"

#include <cstring>

namespace {
constexpr const char* kSource = "clsSlides";
constexpr std::int32_t kInsertedDuration = 3000;
const QString kSlideName = QStringLiteral("Slide");
} // namespace

void clsSlides::Initialize(XmlDocument document, pugi::xml_node messageElement) {
    if (!messageElement)
        raiseObjectNotSet(QString::fromUtf8(kSource));
    mSlides.clear();
    mDocument = std::move(document);
    mMessageElement = messageElement;
    mSlidesElement = mMessageElement.append_child("SLIDES");
}

void clsSlides::LoadXmlNodes(XmlDocument document, pugi::xml_node messageElement,
                             pugi::xml_node slidesElement) {
    mSlides.clear();
    mDocument = std::move(document);
    mMessageElement = messageElement;
    mSlidesElement = slidesElement;
    for (pugi::xml_node element : mSlidesElement.children("SLIDE")) {
        try {
            auto slide = std::make_shared<clsSlide>();
            slide->LoadXmlNodes(mDocument, mSlidesElement, element);
            mSlides.push_back(std::move(slide));
        } catch (const Failure&) {
            // A slide that cannot be read is left out; the others load.
        }
    }
}

std::shared_ptr<clsSlide> clsSlides::Item(int index) const {
    if (index < 1 || index > Count())
        return nullptr;
    return mSlides[static_cast<size_t>(index - 1)];
}

void clsSlides::renumberFrom(int index) {
    for (int position = index; position <= Count(); ++position)
        mSlides[static_cast<size_t>(position - 1)]->setIndex(position);
}

void clsSlides::Remove(int index) {
    if (Count() <= 0)
        return;
    if (index < 1 || index > Count())
        raiseFailure(FailureNumber::SubscriptOutOfRange, QString::fromUtf8(kSource));
    std::shared_ptr<clsSlide> slide = mSlides[static_cast<size_t>(index - 1)];
    slide->detach();
    mSlides.erase(mSlides.begin() + (index - 1));
    renumberFrom(index);
}

std::shared_ptr<clsSlide> clsSlides::Add() {
    try {
        auto slide = std::make_shared<clsSlide>();
        slide->Initialize(mDocument, mSlidesElement, kSlideName, Count() + 1, clsSlide::Append,
                          mDefaultDuration);
        mSlides.push_back(slide);
        return slide;
    } catch (const Failure&) {
        return nullptr;
    }
}

std::shared_ptr<clsSlide> clsSlides::AddBefore(int index) {
    if (index < 1 || index > Count())
        return nullptr;
    try {
        auto slide = std::make_shared<clsSlide>();
        slide->Initialize(mDocument, mSlidesElement, kSlideName, index, clsSlide::BeforeIndex,
                          kInsertedDuration);
        mSlides.insert(mSlides.begin() + (index - 1), slide);
        renumberFrom(index);
        return slide;
    } catch (const Failure&) {
        return nullptr;
    }
}

std::shared_ptr<clsSlide> clsSlides::AddAfter(int index) {
    if (index < 1 || index > Count())
        return nullptr;
    try {
        auto slide = std::make_shared<clsSlide>();
        slide->Initialize(mDocument, mSlidesElement, kSlideName, index + 1, clsSlide::AtIndex,
                          kInsertedDuration);
        mSlides.insert(mSlides.begin() + index, slide);
        renumberFrom(index);
        return slide;
    } catch (const Failure&) {
        return nullptr;
    }
}
