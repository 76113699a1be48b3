// SPDX-License-Identifier: MIT
// A program's side of the camera library in few words, for the tests of the simulation.
#pragma once

#include "kelvo_api.h"
#include "kelvosim.h"

#include <QtTest>

#include <cstring>
#include <stdexcept>
#include <string>
#include <vector>

namespace programside {

constexpr char Serial[] = "KV00000007";
constexpr std::uint32_t DeviceId = 7;
constexpr std::uint32_t DeviceFlag = 0x8000;
constexpr std::uint32_t UploadFlag = 0x10000;

/// The wait record as a program declares it.
struct WaitRecord
{
    std::uint32_t *codes = nullptr;
    std::uint32_t count = 0;
    std::uint32_t waitForAll = 0;
    std::uint32_t timeout = 0xFFFFFFFF;
    std::uint32_t signalled = 0;
    std::uint32_t further = 0;
};

/// A small camera, whose frames come from the test alone unless it says otherwise.
inline kelvosim::CameraSpec smallCamera(bool freeRunning = false)
{
    kelvosim::CameraSpec spec;
    spec.serial = Serial;
    spec.deviceId = DeviceId;
    spec.width = 64;
    spec.height = 48;
    spec.hotPixels = 12;
    spec.freeRunning = freeRunning;
    return spec;
}

inline std::string errorText(std::uint32_t handle)
{
    std::int32_t code = 0;
    char *text = nullptr;
    return vx_GetError(handle, &code, &text) == 0 ? text : "";
}

inline void require(std::int32_t status, const char *what)
{
    if (status != 0)
        throw std::runtime_error(std::string(what) + " failed with " + std::to_string(status));
}

inline std::int32_t registerEvent(std::uint32_t handle, std::uint32_t code)
{
    std::uint32_t record[3] = {code, 0, 0};
    return vx_Event(handle, 1, record, sizeof record);
}

inline std::int32_t enableEvents(std::uint32_t handle, std::vector<std::uint32_t> codes)
{
    for (const std::uint32_t code : codes)
        registerEvent(handle, code);
    return vx_Event(handle, 3, codes.data(), static_cast<std::uint32_t>(codes.size() * 4));
}

inline std::int32_t signalEvent(std::uint32_t handle, std::uint32_t code)
{
    return vx_Event(handle, 5, &code, sizeof code);
}

/// The event that a wait returned, or 0 when it failed.
inline std::uint32_t waitFor(std::uint32_t handle, std::vector<std::uint32_t> codes,
                             std::uint32_t milliseconds, bool all = false)
{
    WaitRecord record;
    record.codes = codes.data();
    record.count = static_cast<std::uint32_t>(codes.size());
    record.waitForAll = all;
    record.timeout = milliseconds;
    return vx_Event(handle, 7, &record, sizeof record) == 0 ? record.signalled : 0;
}

/// Long enough for any machine; a wait that is met returns at once.
constexpr std::uint32_t Patience = 20000;

/// An open camera with image memory; everything is given back at the end.
class OpenedCamera
{
public:
    explicit OpenedCamera(std::uint32_t deviceId = DeviceId)
        : handle(deviceId | DeviceFlag)
    {
        require(vx_InitCamera(&handle, nullptr), "vx_InitCamera");
        std::int32_t size[2] = {};
        require(vx_AOI(handle, 16, size, 8), "vx_AOI 16");
        width = size[0];
        height = size[1];
        bits = vx_SetColorMode(handle, 32768) == 0 ? 32 : 8;
    }
    ~OpenedCamera() { vx_ExitCamera(handle); }
    OpenedCamera(const OpenedCamera &) = delete;
    OpenedCamera &operator=(const OpenedCamera &) = delete;

    void addBuffers(int count = 3)
    {
        for (int i = 0; i < count; ++i) {
            char *memory = nullptr;
            std::int32_t id = 0;
            require(vx_AllocImageMem(handle, width, height, bits, &memory, &id), "vx_AllocImageMem");
            require(vx_AddToSequence(handle, memory, id), "vx_AddToSequence");
            buffers.push_back(memory);
            ids.push_back(id);
        }
    }

    void freeBuffers()
    {
        for (std::size_t i = 0; i < buffers.size(); ++i)
            require(vx_FreeImageMem(handle, buffers[i], ids[i]), "vx_FreeImageMem");
        buffers.clear();
        ids.clear();
    }

    void capture()
    {
        if (buffers.empty())
            addBuffers();
        require(enableEvents(handle, {2, 8, 9, 128}), "vx_Event 3");
        require(vx_CaptureVideo(handle, 0), "vx_CaptureVideo");
    }

    char *last() const
    {
        char *memory = nullptr;
        return vx_GetActSeqBuf(handle, nullptr, nullptr, &memory) == 0 ? memory : nullptr;
    }

    std::size_t lineLength() const
    {
        return (static_cast<std::size_t>(width) * static_cast<std::size_t>(bits) + 31) / 32 * 4;
    }

    /// A single frame, taken at once and copied out of the buffer.
    std::vector<std::uint8_t> frame()
    {
        if (buffers.empty())
            addBuffers();
        require(vx_FreezeVideo(handle, 1), "vx_FreezeVideo");
        const char *const memory = last();
        return {memory, memory + lineLength() * static_cast<std::size_t>(height)};
    }

    std::uint8_t at(const std::vector<std::uint8_t> &pixels, int x, int y) const
    {
        return pixels[lineLength() * static_cast<std::size_t>(y) + static_cast<std::size_t>(x * bits / 8)];
    }

    double setExposure(double milliseconds)
    {
        double actual = 0.0;
        require(vx_SetExposureTime(handle, milliseconds, &actual), "vx_SetExposureTime");
        return actual;
    }

    std::uint32_t handle;
    std::int32_t width = 0;
    std::int32_t height = 0;
    std::int32_t bits = 8;
    std::vector<char *> buffers;
    std::vector<std::int32_t> ids;
};

/// The exchange format of lists: the count, then pairs x, y.
inline std::vector<std::uint16_t> listBuffer(const std::vector<kelvosim::Pixel> &list)
{
    std::vector<std::uint16_t> words{static_cast<std::uint16_t>(list.size())};
    for (const kelvosim::Pixel &pixel : list) {
        words.push_back(pixel.x);
        words.push_back(pixel.y);
    }
    return words;
}

inline std::int32_t sendList(std::uint32_t handle, std::uint32_t command,
                             const std::vector<kelvosim::Pixel> &list)
{
    std::vector<std::uint16_t> words = listBuffer(list);
    return vx_HotPixel(handle, command, words.data(), static_cast<std::uint32_t>(words.size() * 2));
}

inline std::uint32_t countOf(std::uint32_t handle, std::uint32_t command)
{
    std::uint32_t count = 0xDEAD;
    require(vx_HotPixel(handle, command, &count, sizeof count), "a count of vx_HotPixel");
    return count;
}

inline std::vector<kelvosim::Pixel> receiveList(std::uint32_t handle, std::uint32_t countCommand,
                                                std::uint32_t listCommand)
{
    const std::uint32_t count = countOf(handle, countCommand);
    std::vector<std::uint16_t> words(2 * count + 1);
    require(vx_HotPixel(handle, listCommand, words.data(), 4 * count + 2), "a list of vx_HotPixel");
    std::vector<kelvosim::Pixel> list;
    for (std::size_t i = 0; i < words[0]; ++i)
        list.push_back({words[2 * i + 1], words[2 * i + 2]});
    return list;
}

} // namespace programside
