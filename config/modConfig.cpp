#include "config/modConfig.h"

#include "config/clsPropertiesXML.h"
#include "config/clsXMLocalizer.h"

namespace {
SharedConfig* gCurrent = nullptr;
} // namespace

clsPropertiesXML* gProperties() {
    return gCurrent ? gCurrent->properties() : nullptr;
}

clsXMLocalizer* gLocalizer() {
    return gCurrent ? gCurrent->localizer() : nullptr;
}

QString preference(const QString& section, const QString& key, const QString& defaultValue) {
    clsPropertiesXML* properties = gProperties();
    return properties ? properties->GetProp(section, key, defaultValue) : defaultValue;
}

SharedConfig::SharedConfig() : mPrevious(gCurrent) {
    gCurrent = this;
}

SharedConfig::~SharedConfig() {
    // The localiser reads the store: it goes first.
    releaseLocalizer();
    releaseProperties();
    gCurrent = mPrevious;
}

SharedConfig* SharedConfig::current() {
    return gCurrent;
}

clsPropertiesXML& SharedConfig::setProperties(std::unique_ptr<clsPropertiesXML> properties) {
    mProperties = std::move(properties);
    return *mProperties;
}

clsXMLocalizer& SharedConfig::setLocalizer(std::unique_ptr<clsXMLocalizer> localizer) {
    mLocalizer = std::move(localizer);
    return *mLocalizer;
}

void SharedConfig::releaseProperties() {
    mProperties.reset();
}

void SharedConfig::releaseLocalizer() {
    mLocalizer.reset();
}
