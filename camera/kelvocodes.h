// SPDX-License-Identifier: MIT
// The numbers and records of the camera library, each standing once, so that the code reads in words.
#pragma once

#include "kelvo_api.h"

#include <cstdint>

namespace kelvo {

using Handle = std::uint32_t;
using Status = std::int32_t;

constexpr Handle NoCamera = 0;
constexpr Status Success = 0;

// Flags in the handle variable before vx_InitCamera, and its one special result.
constexpr std::uint32_t DeviceNumberFlag = 0x8000;
constexpr std::uint32_t FirmwareUploadFlag = 0x10000;
constexpr Status FirmwareUploadRequired = 184;
constexpr std::uint32_t DurationOfFirmwareUpload = 1;
constexpr Status IniFileNotFound = 50;

// Asking for a setting instead of making it.
constexpr std::int32_t QueryCurrent = 0x8000;
constexpr std::int32_t QueryDefault = 0x8001;
constexpr std::int32_t GainUnchanged = -1;

enum EventCode : std::uint32_t {
    EventFrame = 2,
    EventFrameFailed = 8,
    EventCameraReconnected = 9,
    EventCameraRemoved = 128,
    EventDeviceRemoved = 129,
    EventDeviceAdded = 130,
};

enum EventCommand : std::uint32_t {
    EventRegister = 1,
    EventDisable = 2,
    EventEnable = 3,
    EventSignal = 5,
    EventWait = 7,
};

enum ColorMode : std::int32_t {
    ColorModeRgb32 = 0,
    ColorModeMono8 = 6,
    ColorModeRawBayer8 = 11,
};

enum AoiCommand : std::uint32_t {
    AoiSet = 1,
    AoiGetMaximumSize = 16,
};

enum HotpixelCommand : std::uint32_t {
    HotpixelDisableCorrection = 0,
    HotpixelEnableSoftwareCorrection = 2,
    HotpixelGetSupportedModes = 0x8001,
    HotpixelQueryCurrentUserList = 0x8100,
    HotpixelGetCurrentUserListCount = 0x8101,
    HotpixelGetCurrentUserList = 0x8102,
    HotpixelSetCurrentUserList = 0x8103,
    HotpixelGetFactoryListCount = 0x8107,
    HotpixelGetFactoryList = 0x8108,
    HotpixelGetUserListCount = 0x810A,
    HotpixelGetUserList = 0x810B,
    HotpixelWriteUserList = 0x810C,
    HotpixelGetMaxUserListCount = 0x810D,
    HotpixelDeleteUserList = 0x810E,
    HotpixelSaveUserListToFile = 0x8111,
    HotpixelLoadUserListFromFile = 0x8112,
};

/// Bit of HotpixelGetSupportedModes: the camera corrects, and stores a user list, itself.
constexpr std::uint32_t HotpixelModeCamera = 2;

constexpr std::int32_t WaitUntilDone = 1;
constexpr std::int32_t ReturnAtOnce = 0;
constexpr std::int32_t BufferByPointer = -1;
constexpr std::uint32_t WaitForever = 0xFFFFFFFF;

struct SensorInfoRecord
{
    std::uint16_t sensorId = 0;
    std::uint8_t rest[78] = {};
};
static_assert(sizeof(SensorInfoRecord) == 80, "the library fills 80 bytes");

struct CameraInfoRecord
{
    char serialNumber[12] = {};
    std::uint8_t rest[52] = {};
};
static_assert(sizeof(CameraInfoRecord) == 64, "the library fills 64 bytes");

struct ImageSize
{
    std::int32_t width = 0;
    std::int32_t height = 0;
};
static_assert(sizeof(ImageSize) == 8, "the library fills 8 bytes");

struct ImageArea
{
    std::int32_t x = 0;
    std::int32_t y = 0;
    std::int32_t width = 0;
    std::int32_t height = 0;
};
static_assert(sizeof(ImageArea) == 16, "the library reads 16 bytes");

struct EventInitRecord
{
    std::uint32_t code = 0;
    std::uint32_t flags[2] = {0, 0};
};
static_assert(sizeof(EventInitRecord) == 12, "the library reads 12 bytes");

struct EventWaitRecord
{
    std::uint32_t *codes = nullptr;
    std::uint32_t count = 0;
    std::uint32_t waitForAll = 0;
    std::uint32_t timeout = WaitForever;
    std::uint32_t signalled = 0;
    std::uint32_t further = 0;
};
// The pointer makes the size depend on the machine: 24 bytes on 32 bits, 32 bytes with padding on 64.
static_assert(sizeof(EventWaitRecord) == (sizeof(void *) == 4 ? 24 : 32), "the library's record layout");

} // namespace kelvo
