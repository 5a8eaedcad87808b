#pragma once

#include <QString>
#include <memory>

class clsPropertiesXML;
class clsXMLocalizer;

// The process-wide preferences store and localiser, or nullptr while none is in place. Every
// window reads them through these accessors; a SharedConfig owns them.
clsPropertiesXML* gProperties();
clsXMLocalizer* gLocalizer();

// A value of the shared store, or `defaultValue` when there is no store or no such key.
QString preference(const QString& section, const QString& key, const QString& defaultValue);

// Owns the shared preferences store and localiser and puts them in place for as long as it
// lives; the ones it replaced come back when it ends. Main keeps one for the program's life,
// and a test keeps one for its own run.
class SharedConfig {
public:
    SharedConfig();
    ~SharedConfig();
    SharedConfig(const SharedConfig&) = delete;
    SharedConfig& operator=(const SharedConfig&) = delete;

    // The SharedConfig in place, or nullptr.
    static SharedConfig* current();

    clsPropertiesXML& setProperties(std::unique_ptr<clsPropertiesXML> properties);
    clsXMLocalizer& setLocalizer(std::unique_ptr<clsXMLocalizer> localizer);
    // Drops the store (which saves it when it has unsaved changes) or the localiser.
    void releaseProperties();
    void releaseLocalizer();

    clsPropertiesXML* properties() const { return mProperties.get(); }
    clsXMLocalizer* localizer() const { return mLocalizer.get(); }

private:
    std::unique_ptr<clsPropertiesXML> mProperties;
    std::unique_ptr<clsXMLocalizer> mLocalizer;
    SharedConfig* mPrevious;
};
