// SPDX-License-Identifier: MIT
// The capture thread of an open camera: frames, failures and their events.

#include "correction.h"
#include "failure.h"
#include "opencamera.h"

#include <algorithm>
#include <cstring>
#include <utility>

namespace kelvosim {

namespace {

constexpr std::size_t MeasuredFrames = 32;
constexpr std::chrono::seconds StaleAfter(2);

double gainFactor(std::int32_t gain)
{
    return 1.0 + 3.0 * gain / 100.0;
}

void copyPart(const FrameView &from, const Area &part, const FrameView &to)
{
    const int rows = std::min(part.height, to.height);
    const auto length = std::min(
        static_cast<std::size_t>(part.width) * static_cast<std::size_t>(from.bytesPerPixel), to.rowLength());
    for (int y = 0; y < rows; ++y)
        std::memcpy(to.line(y), from.at(part.x, part.y + y), length);
}

} // namespace

void OpenCamera::setAttached(bool attached)
{
    {
        const std::lock_guard<std::mutex> lock(mutex);
        if (isAttached == attached)
            return;
        isAttached = attached;
        completions.clear();
        activeSince = Condition::Clock::now();
        changed.notifyAll();
    }
    eventSet->raise(attached ? CameraReconnected : CameraRemoved);
}

void OpenCamera::setLensCap(bool on)
{
    const std::lock_guard<std::mutex> lock(mutex);
    lensCap = on;
}

void OpenCamera::overrideFrameRate(double framesPerSecond)
{
    const std::lock_guard<std::mutex> lock(mutex);
    forcedFrameRate = framesPerSecond;
    changed.notifyAll();
}

void OpenCamera::failFrames(std::uint64_t count)
{
    const std::lock_guard<std::mutex> lock(mutex);
    failuresToCome += count;
    changed.notifyAll();
}

bool OpenCamera::pushFrame(const std::vector<std::uint8_t> &pixels)
{
    const std::lock_guard<std::mutex> lock(mutex);
    const BufferPointer buffer = ring.nextFree();
    if (!capturing || !isAttached || !buffer)
        return false;
    const FrameView view = buffer->view();
    const auto line = static_cast<std::size_t>(area.width) * static_cast<std::size_t>(view.bytesPerPixel);
    const std::size_t shown = std::min(line, view.lineLength);
    std::memset(view.data, 0, view.lineLength * static_cast<std::size_t>(view.height));
    for (std::size_t y = 0; y < static_cast<std::size_t>(view.height) && y * line < pixels.size(); ++y)
        std::memcpy(view.line(static_cast<int>(y)), pixels.data() + y * line,
                    std::min(shown, pixels.size() - y * line));
    finish(buffer, true);
    return true;
}

std::uint64_t OpenCamera::completedFrames() const
{
    const std::lock_guard<std::mutex> lock(mutex);
    return frames;
}

int OpenCamera::allocatedBuffers() const
{
    const std::lock_guard<std::mutex> lock(mutex);
    return ring.allocatedCount();
}

int OpenCamera::lockedBuffers() const
{
    const std::lock_guard<std::mutex> lock(mutex);
    return ring.lockedCount();
}

void OpenCamera::startCapture()
{
    const Lock lock = lockOpen();
    if (ring.isSequenceEmpty())
        throw Failure(UnknownBuffer, "The sequence has no image memory.");
    startThread();
    if (!std::exchange(capturing, true))
        activeSince = Condition::Clock::now();
    changed.notifyAll();
}

void OpenCamera::stopCapture(bool wait)
{
    Lock lock = lockOpen();
    capturing = false;
    completions.clear();
    changed.notifyAll();
    while (wait && filling)
        changed.wait(lock);
}

void OpenCamera::freeze(bool wait)
{
    Lock lock = lockOpen();
    if (!isAttached)
        throw Failure(CameraDetached, "The camera is not attached.");
    if (ring.isSequenceEmpty())
        throw Failure(UnknownBuffer, "The sequence has no image memory.");
    startThread();
    shots.announced = !wait;
    const std::uint64_t mine = ++shots.wanted;
    changed.notifyAll();
    while (wait && shots.done < mine) {
        if (closing || !isAttached) {
            shots.done = shots.wanted; // nobody waits for these frames any more
            throw Failure(CameraDetached, "The camera went away.");
        }
        changed.wait(lock);
    }
    if (wait && !shots.good)
        throw Failure(NoFrame, "No frame could be taken.");
}

double OpenCamera::measuredFrameRate() const
{
    const Lock lock = lockOpen();
    if (!isAttached)
        return 0.0;
    const auto unseen = Condition::Clock::now() - (completions.empty() ? activeSince : completions.back());
    if (capturing && unseen > StaleAfter && unseen > 3 * framePeriod())
        return 0.0;
    if (completions.size() < 2)
        return times.frameRate();
    const std::chrono::duration<double> span = completions.back() - completions.front();
    return span.count() > 0.0 ? static_cast<double>(completions.size() - 1) / span.count()
                              : times.frameRate();
}

void OpenCamera::startThread()
{
    if (!thread.joinable())
        thread = std::thread(&OpenCamera::run, this);
}

/// A frame is due one frame time after the one before it, or after the capture became active.
void OpenCamera::run()
{
    Lock lock(mutex);
    auto slot = Condition::Clock::now();
    while (!closing) {
        const auto now = Condition::Clock::now();
        const auto due = slot + framePeriod();
        if (!isActive()) {
            changed.wait(lock);
            slot = Condition::Clock::now();
        } else if (now < due) {
            changed.waitUntil(lock, due);
        } else {
            slot = now > due + framePeriod() ? now : due;
            takeFrame(lock);
        }
    }
}

bool OpenCamera::isActive() const
{
    const bool live = capturing && (camera.freeRunning || failuresToCome > 0);
    return isAttached && (live || shots.done < shots.wanted);
}

std::chrono::nanoseconds OpenCamera::framePeriod() const
{
    const double seconds = forcedFrameRate > 0.0 ? 1.0 / forcedFrameRate : times.frameTime();
    return std::chrono::duration_cast<std::chrono::nanoseconds>(std::chrono::duration<double>(seconds));
}

void OpenCamera::takeFrame(Lock &lock)
{
    if (shots.done < shots.wanted)
        takeShot(lock);
    else if (!failNextFrame() && camera.freeRunning)
        takeIntoNext(lock, true);
    changed.notifyAll();
}

/// The one who asked may have given up meanwhile; then a later one's frame is still to be taken.
void OpenCamera::takeShot(Lock &lock)
{
    const std::uint64_t mine = shots.done + 1;
    const bool good = takeIntoNext(lock, shots.announced);
    if (shots.done < mine) {
        shots.done = mine;
        shots.good = good;
    }
}

/// @param announced whether events tell of the frame or its failure
bool OpenCamera::takeIntoNext(Lock &lock, bool announced)
{
    const BufferPointer buffer = ring.nextFree();
    const bool good = buffer && fill(lock, buffer);
    if (good)
        finish(buffer, announced);
    else if (announced)
        eventSet->raise(FrameFailed);
    return good;
}

/// Waits until the failure before was taken notice of, so that each of them can be counted.
bool OpenCamera::failNextFrame()
{
    if (failuresToCome == 0 || eventSet->isPending(FrameFailed))
        return false;
    --failuresToCome;
    eventSet->raise(FrameFailed);
    return true;
}

/// Gives the lock back while the frame is made.
bool OpenCamera::fill(Lock &lock, const BufferPointer &buffer)
{
    const Exposure exposure = settings();
    const Area part = area;
    const bool correcting = hotPixelUnit.isCorrecting();
    buffer->filling = filling = true;
    lock.unlock();
    bool good = false;
    try {
        good = makeFrame(buffer->view(), part, exposure, correcting);
    } catch (const std::exception &) {
        good = false; // a frame that cannot be made is a failed frame
    }
    lock.lock();
    buffer->filling = filling = false;
    return good;
}

/// Straight into the buffer where it has the sensor's size.
bool OpenCamera::makeFrame(const FrameView &target, const Area &part, const Exposure &exposure,
                           bool correcting)
{
    const bool whole = target.width == camera.width && target.height == camera.height &&
                       part.width == camera.width && part.height == camera.height;
    FrameView frame = target;
    if (!whole) {
        frame.width = camera.width;
        frame.height = camera.height;
        frame.lineLength = frame.rowLength();
        wholeFrame.resize(frame.lineLength * static_cast<std::size_t>(frame.height));
        frame.data = wholeFrame.data();
    }
    if (!source->fill(frame, exposure))
        return false;
    if (correcting)
        correct(frame, *hotPixelUnit.listed(), camera.kind == SensorKind::RawBayer ? 2 : 1);
    if (!whole)
        copyPart(frame, part, target);
    return true;
}

void OpenCamera::finish(const BufferPointer &buffer, bool announced)
{
    ring.complete(buffer);
    ++frames;
    completions.push_back(Condition::Clock::now());
    if (completions.size() > MeasuredFrames)
        completions.pop_front();
    if (announced)
        eventSet->raise(FrameComplete);
}

Exposure OpenCamera::settings() const
{
    Exposure exposure;
    exposure.milliseconds = times.exposure();
    exposure.gain = gainFactor(masterGain);
    for (std::size_t i = 0; i < colourGains.size(); ++i)
        exposure.colourGains[i] = gainFactor(colourGains[i]);
    exposure.dark = lensCap;
    return exposure;
}

} // namespace kelvosim
