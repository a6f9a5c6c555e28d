#pragma once

#include "archive/PropertyListFile.h"
#include "platform/HomeFolder.h"

#include <QString>
#include <QStringList>

#include <functional>
#include <optional>

namespace quarry {

/// Changes "SearchServices.plist": where the services are reached. Entries that are not known here stay. Thread-safe;
/// no change may be made by somebody who holds the writer lock.
class SearchServicesFile final {
public:
    /// `files` must outlive the object.
    SearchServicesFile(const HomeFolder& home, FileStore& files);

    /// What the file says about a service that is reached at that address: scheme, host and port, and nothing after
    /// them. None when it is no such address.
    [[nodiscard]] static std::optional<PlistValue::Dictionary> entryForAddress(const QString& address);

    // Each returns one line for a person on failure, an empty text otherwise; nothing is written when what would come
    // out makes no sense.
    /// `isSenseless` (may be null) is set when that is what is wrong.
    [[nodiscard]] QString change(const std::function<void(PlistValue::Dictionary&)>& apply,
                                 bool* isSenseless = nullptr) const;
    /// Reaches all of them at that address; whether each is asked at all stays as it is.
    [[nodiscard]] QString reachAllAt(const QString& address) const;
    /// Back to the public addresses, and all of them asked.
    [[nodiscard]] QString reset() const;

private:
    PropertyListFile _file;
};

/// Puts another address into what the file says about one service.
void setServiceAddress(PlistValue::Dictionary& service, const PlistValue::Dictionary& address);

} // namespace quarry
