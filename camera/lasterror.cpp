// SPDX-License-Identifier: MIT
// Asks the camera library for the text of a failure.

#include "lasterror.h"

std::string lastErrorText(kelvo::Handle handle, kelvo::Status status)
{
    std::int32_t code = status; // the library overwrites it
    char *text = nullptr;
    if (vx_GetError(handle, &code, &text) != kelvo::Success || !text)
        return "Unknown error.";
    return text;
}
