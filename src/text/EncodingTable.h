#pragma once

#include "text/PageDecoding.h"

namespace quarry {

/// One encoding that pages come in.
struct Encoding {
    EncodingNumber number;
    const char* converter; ///< The name by which the converter library knows it.
};

/// The row of a number, other writers' numbers for the same encoding included; null for an unknown one.
[[nodiscard]] const Encoding* findEncoding(EncodingNumber number);

} // namespace quarry
