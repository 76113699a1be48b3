// SPDX-License-Identifier: MIT
// Opening, closing, image memory and settings of an open camera.

#include "opencamera.h"

#include "failure.h"
#include "framefolder.h"
#include "sensormodel.h"

#include <cmath>
#include <cstdio>
#include <utility>

namespace kelvosim {

namespace {

constexpr std::int32_t RawMode = 11;

std::int32_t reportedMode(SensorKind kind)
{
    switch (kind) {
    case SensorKind::Mono:
        return 6;
    case SensorKind::Colour32:
        return 0;
    case SensorKind::RawBayer:
        break;
    }
    return RawMode;
}

bool isGain(std::int32_t gain)
{
    return gain == OpenCamera::GainUnchanged || (gain >= 0 && gain <= OpenCamera::HighestGain);
}

void requirePositive(double value)
{
    if (!std::isfinite(value) || value <= 0.0)
        throw Failure(InvalidParameter, "The value is not possible.");
}

} // namespace

OpenCamera::OpenCamera(const CameraSpec &cameraSpec, std::shared_ptr<HotPixelMemory> memory,
                       const ListLies &lies)
    : camera(cameraSpec)
    , eventSet(std::make_shared<EventSet>())
    , hotPixelUnit(std::move(memory), lies)
    , source(makeSource())
    , times(camera.width, camera.height)
    , area{0, 0, camera.width, camera.height}
    , isAttached(camera.attached)
    , lensCap(camera.lensCap)
{
}

OpenCamera::~OpenCamera()
{
    close();
}

Leftovers OpenCamera::close()
{
    {
        const std::lock_guard<std::mutex> lock(mutex);
        if (std::exchange(closing, true))
            return {};
        capturing = false;
        changed.notifyAll();
    }
    eventSet->close();
    if (thread.joinable())
        thread.join();
    const std::lock_guard<std::mutex> lock(mutex);
    const Leftovers left{ring.allocatedCount(), ring.lockedCount()};
    ring.clear();
    return left;
}

OpenCamera::Lock OpenCamera::lockOpen() const
{
    Lock lock(mutex);
    if (closing)
        throw Failure(InvalidHandle, "The camera is closed.");
    return lock;
}

/// Falls back to the sensor model when the replay folder has no usable frame.
std::unique_ptr<FrameSource> OpenCamera::makeSource()
{
    if (!camera.replayFolder.empty()) {
        auto folder = std::make_unique<FrameFolder>(camera.replayFolder);
        if (folder->isUsable()) {
            camera.width = folder->width();
            camera.height = folder->height();
            return folder;
        }
        std::fprintf(stderr, "Camera %s: no usable frame in %s\n", camera.serial.c_str(),
                     camera.replayFolder.c_str());
        camera.replayFolder.clear();
    }
    return std::make_unique<SensorModel>(camera, Timing(camera.width, camera.height).exposure());
}

std::int32_t OpenCamera::colorMode(std::int32_t mode)
{
    const Lock lock = lockOpen();
    if (mode == QueryCurrent)
        return reportedMode(camera.kind);
    if (mode != RawMode && mode != reportedMode(camera.kind))
        throw Failure(InvalidParameter, "The colour mode is not supported.");
    return Success;
}

Size OpenCamera::maximumSize() const
{
    const Lock lock = lockOpen();
    return {camera.width, camera.height};
}

void OpenCamera::setArea(const Area &wanted)
{
    const Lock lock = lockOpen();
    const bool fits = wanted.x >= 0 && wanted.y >= 0 && wanted.width > 0 && wanted.height > 0 &&
                      wanted.width <= camera.width && wanted.height <= camera.height &&
                      wanted.x <= camera.width - wanted.width && wanted.y <= camera.height - wanted.height;
    if (!fits)
        throw Failure(InvalidParameter, "The image area lies outside the sensor.");
    if (capturing)
        throw Failure(CaptureRuns, "The image area can't be changed while the camera captures.");
    area = wanted;
    times.setSize(area.width, area.height);
}

BufferPointer OpenCamera::allocate(int width, int height, int bitsPerPixel)
{
    const Lock lock = lockOpen();
    return ring.allocate(width, height, bitsPerPixel);
}

void OpenCamera::release(const char *memory, std::int32_t id)
{
    Lock lock = lockOpen();
    const BufferPointer buffer = ring.find(memory, id);
    while (buffer->filling)
        changed.wait(lock);
    ring.release(buffer);
}

void OpenCamera::addToSequence(const char *memory, std::int32_t id)
{
    const Lock lock = lockOpen();
    const BufferPointer buffer = ring.find(memory, id);
    if (buffer->bitsPerPixel != bytesPerPixel(camera.kind) * 8)
        throw Failure(InvalidParameter, "The image memory does not fit the colour mode.");
    ring.addToSequence(buffer);
}

void OpenCamera::clearSequence()
{
    const Lock lock = lockOpen();
    ring.clearSequence();
}

void OpenCamera::actualBuffer(std::int32_t *number, char **current, char **last) const
{
    const Lock lock = lockOpen();
    const BufferPointer lastBuffer = ring.last();
    if (!lastBuffer)
        throw Failure(NoFrame, "No frame is complete yet.");
    const BufferPointer present = ring.current();
    if (number)
        *number = ring.numberOf(present);
    if (current)
        *current = present ? present->address() : nullptr;
    if (last)
        *last = lastBuffer->address();
}

void OpenCamera::lockBuffer(std::int32_t number, const char *memory)
{
    const Lock lock = lockOpen();
    const BufferPointer buffer = ring.named(number, memory);
    if (buffer->locked)
        throw Failure(BufferLocked, "The image memory is locked already.");
    if (buffer->filling)
        throw Failure(BufferLocked, "The camera is writing into the image memory.");
    buffer->locked = true;
}

void OpenCamera::unlockBuffer(std::int32_t number, const char *memory)
{
    const Lock lock = lockOpen();
    const BufferPointer buffer = ring.named(number, memory);
    if (!buffer->locked)
        throw Failure(BufferNotLocked, "The image memory is not locked.");
    buffer->locked = false;
}

Timing OpenCamera::timing() const
{
    const Lock lock = lockOpen();
    return times;
}

std::int32_t OpenCamera::pixelClock(std::int32_t value)
{
    const Lock lock = lockOpen();
    if (value == QueryCurrent)
        return times.pixelClock();
    if (value == QueryDefault)
        return Timing::DefaultPixelClock;
    if (value < Timing::SlowestPixelClock || value > Timing::FastestPixelClock)
        throw Failure(InvalidParameter, "The pixel clock is out of range.");
    times.setPixelClock(value);
    changed.notifyAll();
    return Success;
}

double OpenCamera::setFrameRate(double wanted)
{
    const Lock lock = lockOpen();
    requirePositive(wanted);
    times.setFrameRate(wanted);
    changed.notifyAll();
    return times.frameRate();
}

double OpenCamera::exposure(double wanted)
{
    const Lock lock = lockOpen();
    if (wanted == QueryDefault)
        return times.defaultExposure();
    if (wanted != QueryCurrent) {
        if (!std::isfinite(wanted))
            throw Failure(InvalidParameter, "The exposure time is not possible.");
        times.setExposure(wanted);
    }
    return times.exposure();
}

std::int32_t OpenCamera::hardwareGain(std::int32_t master, const std::array<std::int32_t, 3> &colours)
{
    const Lock lock = lockOpen();
    if (master == QueryCurrent)
        return masterGain;
    if (!isGain(master) || !isGain(colours[0]) || !isGain(colours[1]) || !isGain(colours[2]))
        throw Failure(InvalidParameter, "The gain is out of range.");
    masterGain = master == GainUnchanged ? masterGain : master;
    for (std::size_t i = 0; i < colours.size(); ++i)
        colourGains[i] = colours[i] == GainUnchanged ? colourGains[i] : colours[i];
    return Success;
}

} // namespace kelvosim
