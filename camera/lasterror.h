// SPDX-License-Identifier: MIT
// The one rule by which a failing call of the camera library becomes a message.
#pragma once

#include "kelvocodes.h"

#include <stdexcept>
#include <string>

/// The library's own text for the failure `status` on this handle, "Unknown error." when it gives none.
std::string lastErrorText(kelvo::Handle handle, kelvo::Status status);

/// @throws std::runtime_error with lastErrorText() when `status` is a failure
inline void throwOnFailure(kelvo::Handle handle, kelvo::Status status)
{
    if (status != kelvo::Success)
        throw std::runtime_error(lastErrorText(handle, status));
}
