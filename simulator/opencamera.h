// SPDX-License-Identifier: MIT
// A camera between vx_InitCamera and vx_ExitCamera.
#pragma once

#include "bufferring.h"
#include "condition.h"
#include "eventset.h"
#include "hotpixelunit.h"
#include "timing.h"

#include <array>
#include <cstdint>
#include <deque>
#include <memory>
#include <mutex>
#include <thread>

namespace kelvosim {

enum EventCode : std::uint32_t {
    FrameComplete = 2,
    FrameFailed = 8,
    CameraReconnected = 9,
    CameraRemoved = 128,
    DeviceRemoved = 129,
    DeviceAdded = 130,
};

struct Size
{
    std::int32_t width = 0;
    std::int32_t height = 0;
};

struct Area
{
    std::int32_t x = 0;
    std::int32_t y = 0;
    std::int32_t width = 0;
    std::int32_t height = 0;
};

/// Image memory that a program left to vx_ExitCamera.
struct Leftovers
{
    int allocated = 0;
    int locked = 0;
};

/// Every function may be called from any thread; after close() the ones that a program calls throw Failure.
class OpenCamera
{
public:
    static constexpr std::int32_t QueryCurrent = 32768;
    static constexpr std::int32_t QueryDefault = 32769;
    static constexpr std::int32_t GainUnchanged = -1;
    static constexpr std::int32_t HighestGain = 100;

    OpenCamera(const CameraSpec &cameraSpec, std::shared_ptr<HotPixelMemory> memory, const ListLies &lies);
    ~OpenCamera();
    OpenCamera(const OpenCamera &) = delete;
    OpenCamera &operator=(const OpenCamera &) = delete;

    /// Stops the capture, ends all waits and frees what image memory is left.
    /// @return what was left; nothing when the camera was closed before
    Leftovers close();

    const CameraSpec &spec() const { return camera; }
    std::shared_ptr<EventSet> events() const { return eventSet; }
    HotPixelUnit &hotPixels() { return hotPixelUnit; }

    // The state of the bench.
    void setAttached(bool attached);
    void setLensCap(bool on);
    void overrideFrameRate(double framesPerSecond);
    void failFrames(std::uint64_t count);
    bool pushFrame(const std::vector<std::uint8_t> &pixels);
    std::uint64_t completedFrames() const;
    int allocatedBuffers() const;
    int lockedBuffers() const;

    // Image area and memory.
    std::int32_t colorMode(std::int32_t mode);
    Size maximumSize() const;
    void setArea(const Area &wanted);
    BufferPointer allocate(int width, int height, int bitsPerPixel);
    void release(const char *memory, std::int32_t id);
    void addToSequence(const char *memory, std::int32_t id);
    void clearSequence();

    /// Outputs may be null.
    void actualBuffer(std::int32_t *number, char **current, char **last) const;
    void lockBuffer(std::int32_t number, const char *memory);
    void unlockBuffer(std::int32_t number, const char *memory);

    // Capture.
    void startCapture();
    void stopCapture(bool wait);

    /// Takes one frame; with `wait` returns when it is the last one, else signals its completion.
    void freeze(bool wait);

    /// Frames per second that arrive. The rate that was set until a while of capture has told otherwise; 0
    /// when none has come for that while, and without a camera.
    double measuredFrameRate() const;

    // Settings, in the units of Timing.
    Timing timing() const;
    std::int32_t pixelClock(std::int32_t value);
    double setFrameRate(double wanted);
    double exposure(double wanted);
    std::int32_t hardwareGain(std::int32_t master, const std::array<std::int32_t, 3> &colours);

private:
    using Lock = std::unique_lock<std::mutex>;

    /// Single frames asked for by freeze().
    struct Shots
    {
        std::uint64_t wanted = 0;
        std::uint64_t done = 0;
        bool announced = false;
        bool good = false;
    };

    Lock lockOpen() const;
    std::unique_ptr<FrameSource> makeSource();
    void startThread();
    void run();
    bool isActive() const;
    std::chrono::nanoseconds framePeriod() const;
    void takeFrame(Lock &lock);
    void takeShot(Lock &lock);
    bool takeIntoNext(Lock &lock, bool announced);
    bool failNextFrame();
    bool fill(Lock &lock, const BufferPointer &buffer);
    bool makeFrame(const FrameView &target, const Area &part, const Exposure &settings, bool correcting);
    void finish(const BufferPointer &buffer, bool announced);
    Exposure settings() const;

    CameraSpec camera; ///< as it was when the camera was opened; with a replay its size is that of the frames
    const std::shared_ptr<EventSet> eventSet;
    HotPixelUnit hotPixelUnit;
    std::unique_ptr<FrameSource> source;  ///< used by the capture thread alone, as the next one
    std::vector<std::uint8_t> wholeFrame; ///< for image areas that are a part of the sensor
    std::thread thread;

    mutable std::mutex mutex; ///< guards all below
    Condition changed;
    BufferRing ring;
    Timing times;
    Area area;
    Shots shots;
    std::array<std::int32_t, 3> colourGains{{0, 0, 0}};
    std::int32_t masterGain = 0;
    std::uint64_t failuresToCome = 0;
    std::uint64_t frames = 0;
    std::deque<Condition::Clock::time_point> completions; ///< of the last frames
    Condition::Clock::time_point activeSince;             ///< when the capture began, or its camera came back
    double forcedFrameRate = 0.0;
    bool isAttached = true;
    bool lensCap = false;
    bool capturing = false;
    bool filling = false;
    bool closing = false;
};

} // namespace kelvosim
