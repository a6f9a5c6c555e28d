#pragma once

#include "archive/ArchiveReader.h"
#include "archive/OpaqueCheck.h"
#include "archive/OpaqueObject.h"

#include <memory>

namespace quarry {

/// Takes values of an archive along unread. A value that could not be copied later makes the reading fail now.
class OpaqueValues final {
public:
    explicit OpaqueValues(ArchiveReader& reader) : _reader(reader), _check(*reader.archive()) {}

    [[nodiscard]] std::shared_ptr<const OpaqueObject> take(std::uint32_t slot)
    {
        if (!_check.isSound(slot))
            _reader.fail(QStringLiteral("the archive is damaged: an object of an unknown kind cannot be read"));
        return std::make_shared<const OpaqueObject>(_reader.archive(), slot);
    }

private:
    ArchiveReader& _reader;
    OpaqueCheck _check;
};

} // namespace quarry
