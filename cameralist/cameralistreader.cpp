// SPDX-License-Identifier: MIT
// Asks the camera library which cameras are attached.
#include "cameralistreader.h"

#include "kelvocodes.h"

#include <QByteArray>

#include <algorithm>
#include <cstring>
#include <stdexcept>
#include <vector>

namespace {

struct CameraRecord
{
    std::uint32_t cameraId = 0;
    std::uint32_t deviceId = 0;
    std::uint32_t extraWord = 0;
    std::uint32_t inUse = 0;
    char serialNumber[16] = {};
    char model[80] = {};
};
static_assert(sizeof(CameraRecord) == 112, "the library fills 112 bytes a camera");

using CountWord = std::uint32_t;

// Device numbers stay below the flag that marks them, so a library that reports more cameras is wrong; its
// list is read all the same, with room for as many as can be.
constexpr std::size_t mostCameras = kelvo::DeviceNumberFlag;

// A text that fills its field may lack the NUL.
template<std::size_t Size>
QString textFrom(const char (&field)[Size])
{
    return QString::fromLatin1(field, static_cast<int>(qstrnlen(field, Size)));
}

CameraEntry entryFrom(const char *position)
{
    CameraRecord record;
    std::memcpy(&record, position, sizeof record);
    CameraEntry entry;
    entry.cameraId = record.cameraId;
    entry.deviceId = record.deviceId;
    entry.extraWord = record.extraWord;
    entry.inUse = record.inUse;
    entry.serialNumber = textFrom(record.serialNumber);
    entry.model = textFrom(record.model);
    return entry;
}

} // namespace

std::size_t numberOfAttachedCameras()
{
    std::int32_t count = 0;
    if (vx_GetNumberOfCameras(&count) != kelvo::Success) {
        throw std::runtime_error("Can't get number of cameras.");
    }
    return count < 1 ? 0 : std::min(static_cast<std::size_t>(count), mostCameras);
}

std::deque<CameraEntry> readAttachedCameras(std::size_t number)
{
    std::vector<char> list(sizeof(CountWord) + number * sizeof(CameraRecord));
    auto count = static_cast<CountWord>(number);
    std::memcpy(list.data(), &count, sizeof count);
    if (vx_GetCameraList(list.data()) != kelvo::Success) {
        throw std::runtime_error("Can't get camera list.");
    }
    std::memcpy(&count, list.data(), sizeof count);

    std::deque<CameraEntry> cameras;
    // The count read back may lie: no record lies outside the list.
    const std::size_t valid = std::min<std::size_t>(count, number);
    for (std::size_t i = 0; i < valid; ++i) {
        cameras.push_back(entryFrom(list.data() + sizeof(CountWord) + i * sizeof(CameraRecord)));
    }
    return cameras;
}
