// SPDX-License-Identifier: MIT
// The control interface: every function hands over to the library's state.

#include "kelvosim.h"

#include "library.h"
#include "recordedcall.h"

namespace kelvosim {

namespace {

Library &library()
{
    return Library::instance();
}

} // namespace

void reset()
{
    RecordedCall::setVisitor({});
    library().reset();
}

void addCamera(const CameraSpec &spec)
{
    library().addCamera(spec);
}

void removeCamera(const std::string &serial)
{
    library().removeCamera(serial);
}

void plug(const std::string &serial)
{
    library().setAttached(serial, true);
}

void unplug(const std::string &serial)
{
    library().setAttached(serial, false);
}

void setLensCap(const std::string &serial, bool on)
{
    library().setLensCap(serial, on);
}

void setUsedElsewhere(const std::string &serial, bool used)
{
    library().setUsedElsewhere(serial, used);
}

void setListOrder(const std::vector<std::string> &serials)
{
    library().setListOrder(serials);
}

void lieAboutCameras(std::int32_t number, std::int32_t listCount)
{
    library().lieAboutCameras(number, listCount);
}

void lieAboutTexts(const std::string &serial, const std::string &serialText, const std::string &modelText)
{
    library().lieAboutTexts(serial, serialText, modelText);
}

void lieAboutListWord(std::int32_t word0)
{
    library().listLies.word = word0;
}

void lieAboutCounts(std::optional<std::int32_t> count)
{
    ListLies &lies = library().listLies;
    lies.count = count.value_or(0);
    lies.aboutCounts = count.has_value();
}

bool pushFrame(const std::string &serial, const std::vector<std::uint8_t> &pixels)
{
    const auto camera = library().openCamera(serial);
    return camera && camera->pushFrame(pixels);
}

void failFrames(const std::string &serial, int count)
{
    const auto camera = library().openCamera(serial);
    if (camera && count > 0)
        camera->failFrames(static_cast<std::uint64_t>(count));
}

void overrideFrameRate(const std::string &serial, double framesPerSecond)
{
    library().overrideFrameRate(serial, framesPerSecond);
}

std::uint64_t completedFrames(const std::string &serial)
{
    const auto camera = library().openCamera(serial);
    return camera ? camera->completedFrames() : 0;
}

double exposureTime(const std::string &serial)
{
    const auto camera = library().openCamera(serial);
    return camera ? camera->timing().exposure() : 0.0;
}

std::vector<HotPixel> plantedHotPixels(const std::string &serial)
{
    return library().plantedHotPixels(serial);
}

std::vector<Pixel> factoryList(const std::string &serial)
{
    return library().memory(serial)->factoryList();
}

void setFactoryList(const std::string &serial, const std::vector<Pixel> &list)
{
    library().setFactoryList(serial, list);
}

std::vector<Pixel> storedUserList(const std::string &serial)
{
    return library().memory(serial)->userList();
}

void setStoredUserList(const std::string &serial, const std::vector<Pixel> &list)
{
    library().memory(serial)->replaceUserList(list);
}

std::vector<Pixel> currentUserList(const std::string &serial)
{
    const auto camera = library().openCamera(serial);
    return camera ? camera->hotPixels().currentUserList() : std::vector<Pixel>();
}

bool correctionOn(const std::string &serial)
{
    const auto camera = library().openCamera(serial);
    return camera && camera->hotPixels().isCorrecting();
}

void setStorageFolder(const std::string &folder)
{
    library().setStorageFolder(folder);
}

void signalEvent(const std::string &serial, std::uint32_t code)
{
    if (const auto camera = library().openCamera(serial))
        camera->events()->raise(code);
}

void signalDeviceEvent(std::uint32_t code)
{
    library().deviceEvents()->raise(code);
}

void failCall(const std::string &function, int nth, std::int32_t status, const std::string &text,
              std::int64_t command)
{
    library().faults.failCall(function, command, nth, {status, text});
}

void failNthCall(std::uint64_t n, bool andAllAfter, std::int32_t status, const std::string &text)
{
    library().faults.failNthCall(n, andAllAfter, {status, text});
}

void failNthCallHere(std::uint64_t n, bool andAllAfter, std::int32_t status, const std::string &text)
{
    library().faults.failNthCallOf(CallLog::thisThread(), n, andAllAfter, {status, text});
}

std::uint64_t failedCalls()
{
    return library().faults.failedCount();
}

void failGetError(bool fails)
{
    library().errors.setSilent(fails);
}

void delayCall(const std::string &function, int milliseconds, std::int64_t command)
{
    library().faults.delayCall(function, command, milliseconds);
}

void blockCall(const std::string &function, std::int64_t command)
{
    library().faults.blockCall(function, command);
}

void releaseCalls()
{
    library().faults.releaseCalls();
}

int blockedCalls()
{
    return library().faults.blockedCount();
}

void clearFaults()
{
    library().faults.clear();
    library().errors.setSilent(false);
}

void duringCallsHere(const std::function<void()> &visit)
{
    RecordedCall::setVisitor(visit);
}

void overrideResult(const std::string &function, std::int32_t result, std::int64_t command)
{
    library().lies.overrideResult(function, command, result);
}

void overrideNumber(const std::string &function, int index, double value, std::int64_t command)
{
    library().lies.overrideNumber(function, command, index, value);
}

void overridePointer(const std::string &function, char *pointer)
{
    library().lies.overridePointer(function, AnyCommand, pointer);
}

void overrideData(const std::string &function, const std::vector<std::uint8_t> &bytes, std::int64_t command)
{
    library().lies.overrideData(function, command, bytes);
}

void tellTheTruth()
{
    library().lies.tellTheTruth();
}

std::vector<Call> log()
{
    return library().log.calls();
}

int callCount(const std::string &function, std::int64_t command)
{
    return library().log.count(function, command);
}

void clearLog()
{
    library().log.clear();
}

std::string name(const Call &call)
{
    return call.command == AnyCommand ? call.function : call.function + " " + std::to_string(call.command);
}

std::vector<std::string> calledHere()
{
    std::vector<std::string> names;
    for (const Call &call : library().log.calls()) {
        if (call.thread == CallLog::thisThread() && call.function != "vx_GetError")
            names.push_back(name(call));
    }
    return names;
}

void setLogging(bool on)
{
    library().log.switchTo(on);
}

int openHandles()
{
    return static_cast<int>(library().openCameras().size());
}

int allocatedBuffers()
{
    int count = library().leftovers().allocated;
    for (const auto &camera : library().openCameras())
        count += camera->allocatedBuffers();
    return count;
}

int lockedBuffers()
{
    int count = library().leftovers().locked;
    for (const auto &camera : library().openCameras())
        count += camera->lockedBuffers();
    return count;
}

int enabledEvents()
{
    int count = library().deviceEvents()->enabledCount();
    for (const auto &camera : library().openCameras())
        count += camera->events()->enabledCount();
    return count;
}

int waitingThreads()
{
    int count = library().deviceEvents()->waitingCount();
    for (const auto &camera : library().openCameras())
        count += camera->events()->waitingCount();
    return count;
}

} // namespace kelvosim
