#pragma once

#include "archive/PropertyListFile.h"
#include "platform/HomeFolder.h"
#include "updater/UpdaterParts.h"

namespace quarry {

/// The user default in the product's preferences file, which other programs share.
class PreferencesDefaults final : public UpdaterDefaults {
public:
    /// `files` outlives the object.
    PreferencesDefaults(const HomeFolder& home, FileStore& files);

    [[nodiscard]] bool warnAgainUserForMoreRecentOS() const override;
    /// Waits for the writer lock, which is held for moments. A failure is logged.
    void setWarnAgainUserForMoreRecentOS(bool warnAgain) override;

private:
    HomeFolder _home;
    PropertyListFile _file;
};

} // namespace quarry
