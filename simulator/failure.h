// SPDX-License-Identifier: MIT
// What a call of the library fails with: a status for the caller and a text for vx_GetError.
#pragma once

#include <cstdint>
#include <stdexcept>
#include <string>

namespace kelvosim {

enum Status : std::int32_t {
    Success = 0,
    InvalidHandle = 1,
    NoSuchCamera = 2,
    CameraInUse = 3,
    CameraDetached = 4,
    InvalidParameter = 10,
    NullPointer = 11,
    WrongSize = 12,
    UnknownCommand = 13,
    OutOfMemory = 20,
    UnknownBuffer = 30,
    BufferLocked = 31,
    BufferNotLocked = 32,
    NoFrame = 33,
    CaptureRuns = 34,
    CannotOpenFile = 50,
    DamagedFile = 51,
    CannotWriteFile = 52,
    TimedOut = 60,
    UnknownEvent = 61,
    NoList = 70,
    ListTooLong = 71,
    NotSupported = 72,
    NoError = 80,
    FirmwareUploadRequired = 184,
};

class Failure : public std::runtime_error
{
public:
    Failure(Status failure, const std::string &text)
        : std::runtime_error(text)
        , number(failure)
    {
    }
    Status status() const { return number; }

private:
    Status number;
};

/// Refuses a null pointer where the library must write or read.
template<class Pointer>
Pointer *needed(Pointer *pointer)
{
    if (!pointer)
        throw Failure(NullPointer, "A pointer that is needed is null.");
    return pointer;
}

inline void requireSize(std::uint32_t size, std::size_t wanted)
{
    if (size != wanted)
        throw Failure(WrongSize, "The size of the data does not fit the command.");
}

} // namespace kelvosim
