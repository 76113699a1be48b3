// SPDX-License-Identifier: MIT
// The functions that a program calls: each records itself, checks its pointers and hands over.

#include "kelvo_api.h"

#include "listfile.h"
#include "parameterfile.h"
#include "recordedcall.h"

#include <algorithm>
#include <cmath>
#include <cstring>

using namespace kelvosim;

namespace {

constexpr std::uint32_t FirmwareUploadDuration = 1;

// Commands of vx_AOI.
constexpr std::uint32_t SetArea = 1;
constexpr std::uint32_t GetMaximumSize = 16;

// Commands of vx_Event.
constexpr std::uint32_t RegisterEvent = 1;
constexpr std::uint32_t DisableEvents = 2;
constexpr std::uint32_t EnableEvents = 3;
constexpr std::uint32_t SignalEvent = 5;
constexpr std::uint32_t WaitForEvent = 7;

// Commands of vx_HotPixel.
constexpr std::uint32_t GetSupportedModes = 0x8001;
constexpr std::uint32_t GetCurrentUserListCount = 0x8101;
constexpr std::uint32_t GetCurrentUserList = 0x8102;
constexpr std::uint32_t SetCurrentUserList = 0x8103;
constexpr std::uint32_t GetFactoryListCount = 0x8107;
constexpr std::uint32_t GetFactoryList = 0x8108;
constexpr std::uint32_t GetUserListCount = 0x810A;
constexpr std::uint32_t GetUserList = 0x810B;
constexpr std::uint32_t WriteUserList = 0x810C;
constexpr std::uint32_t GetMaxUserListCount = 0x810D;
constexpr std::uint32_t SaveUserListToFile = 0x8111;
constexpr std::uint32_t LoadUserListFromFile = 0x8112;

/// The wait record as a program lays it out on this machine.
struct WaitRecord
{
    std::uint32_t *codes;
    std::uint32_t count;
    std::uint32_t waitForAll;
    std::uint32_t timeout;
    std::uint32_t signalled;
    std::uint32_t further;
};
static_assert(sizeof(WaitRecord) == (sizeof(void *) == 4 ? 24 : 32), "layout of the wait record");

struct RegisterRecord
{
    std::uint32_t code;
    std::uint32_t flags[2];
};
static_assert(sizeof(RegisterRecord) == 12, "layout of the register record");

struct SensorInfo
{
    std::uint16_t sensorId = 0;
    std::uint16_t kind = 0;
    std::int32_t width = 0;
    std::int32_t height = 0;
    char name[32] = {};
    std::uint8_t reserved[36] = {};
};
static_assert(sizeof(SensorInfo) == 80, "layout of the sensor information");

struct CameraInfo
{
    char serial[12] = {};
    char maker[20] = "Kelvo";
    char version[10] = "V1.0";
    char reserved[22] = {};
};
static_assert(sizeof(CameraInfo) == 64, "layout of the camera information");

Library &library()
{
    return Library::instance();
}

std::shared_ptr<OpenCamera> camera(std::uint32_t h)
{
    return library().camera(h);
}

template<class Record>
Record read(const void *data, std::uint32_t size)
{
    requireSize(size, sizeof(Record));
    Record record;
    std::memcpy(&record, needed(data), sizeof record);
    return record;
}

template<class Record>
void write(const Record &record, void *data)
{
    std::memcpy(needed(data), &record, sizeof record);
}

template<std::size_t length>
void put(char (&field)[length], const std::string &text)
{
    std::memcpy(field, text.data(), std::min(length - 1, text.size()));
}

bool tellsWord(std::uint32_t command)
{
    return command == GetSupportedModes || command == GetCurrentUserListCount ||
           command == GetFactoryListCount || command == GetUserListCount || command == GetMaxUserListCount;
}

bool fillsList(std::uint32_t command)
{
    return command == GetCurrentUserList || command == GetFactoryList || command == GetUserList;
}

/// What faults and the log call the command of vx_SetExposureTime.
std::int64_t wholeNumber(double value)
{
    return std::isfinite(value) && std::abs(value) < 1e15 ? static_cast<std::int64_t>(value) : 0;
}

std::string pathText(const char *path)
{
    return path ? path : "null";
}

void loadParameters(OpenCamera &open, const char *path)
{
    const Parameters parameters = readParameterFile(needed(path));
    if (parameters.pixelClock)
        open.pixelClock(*parameters.pixelClock);
    if (parameters.frameRate)
        open.setFrameRate(*parameters.frameRate);
    if (parameters.exposure)
        open.exposure(*parameters.exposure);
    open.hardwareGain(parameters.masterGain, parameters.colourGains);
}

SensorInfo sensorInfo(const CameraSpec &spec)
{
    SensorInfo info;
    info.sensorId = spec.sensorId;
    info.kind = static_cast<std::uint16_t>(spec.kind);
    info.width = spec.width;
    info.height = spec.height;
    put(info.name, spec.model);
    return info;
}

void areaCommand(OpenCamera &open, std::uint32_t command, void *data, std::uint32_t size)
{
    switch (command) {
    case SetArea:
        return open.setArea(read<Area>(data, size));
    case GetMaximumSize:
        requireSize(size, sizeof(Size));
        return write(open.maximumSize(), data);
    default:
        throw Failure(UnknownCommand, "The image area command is unknown.");
    }
}

std::vector<std::uint32_t> eventCodes(const void *data, std::size_t size)
{
    if (size == 0 || size % sizeof(std::uint32_t) != 0)
        throw Failure(WrongSize, "The size of the data does not fit the command.");
    std::vector<std::uint32_t> codes(size / sizeof(std::uint32_t));
    std::memcpy(codes.data(), needed(data), size);
    return codes;
}

void waitForEvent(EventSet &events, void *data, std::uint32_t size)
{
    WaitRecord record = read<WaitRecord>(data, size);
    EventSet::Wait wanted;
    wanted.codes = eventCodes(record.codes, record.count * sizeof(std::uint32_t));
    wanted.forAll = record.waitForAll != 0;
    wanted.milliseconds = record.timeout;
    record.signalled = events.wait(wanted);
    write(record, data);
}

void eventCommand(EventSet &events, std::uint32_t command, void *data, std::uint32_t size)
{
    switch (command) {
    case RegisterEvent:
        return events.add(read<RegisterRecord>(data, size).code);
    case EnableEvents:
        return events.enable(eventCodes(data, size));
    case DisableEvents:
        return events.disable(eventCodes(data, size));
    case SignalEvent:
        return events.signal(read<std::uint32_t>(data, size));
    case WaitForEvent:
        return waitForEvent(events, data, size);
    default:
        throw Failure(UnknownCommand, "The event command is unknown.");
    }
}

} // namespace

extern "C" {

int32_t vx_GetNumberOfCameras(int32_t *count)
{
    return RecordedCall("vx_GetNumberOfCameras").outputs(count).run([=] {
        *needed(count) = library().cameraCount();
    });
}

int32_t vx_GetCameraList(void *list)
{
    return RecordedCall("vx_GetCameraList").run([=] {
        library().writeCameraList(static_cast<std::uint8_t *>(needed(list)));
    });
}

int32_t vx_InitCamera(uint32_t *handle, void *)
{
    return RecordedCall("vx_InitCamera", handle ? *handle : 0).outputs(handle).run([=] {
        *needed(handle) = library().open(*needed(handle));
    });
}

int32_t vx_ExitCamera(uint32_t h)
{
    return RecordedCall("vx_ExitCamera", h).run([=] { library().close(h); });
}

int32_t vx_GetDuration(uint32_t h, uint32_t mode, int32_t *milliseconds)
{
    return RecordedCall("vx_GetDuration", h).number(mode).outputs(milliseconds).run([=] {
        if (mode != FirmwareUploadDuration)
            throw Failure(InvalidParameter, "The duration mode is unknown.");
        *needed(milliseconds) = library().uploadTime(h);
    });
}

int32_t vx_GetSensorInfo(uint32_t h, void *record)
{
    return RecordedCall("vx_GetSensorInfo", h).recordOutput(record, sizeof(SensorInfo)).run([=] {
        write(sensorInfo(camera(h)->spec()), record);
    });
}

int32_t vx_GetCameraInfo(uint32_t h, void *record)
{
    return RecordedCall("vx_GetCameraInfo", h).recordOutput(record, sizeof(CameraInfo)).run([=] {
        CameraInfo info;
        put(info.serial, camera(h)->spec().serial);
        write(info, record);
    });
}

int32_t vx_GetError(uint32_t h, int32_t *code, char **text)
{
    RecordedCall call("vx_GetError", h);
    call.outputs(code).pointerOutput(text);
    return call.run([=]() -> std::int32_t {
        const char *told = nullptr;
        if (!code || !text || !library().errors.tell(h, code, &told))
            return NoError;
        *text = const_cast<char *>(told);
        return Success;
    });
}

int32_t vx_LoadParameters(uint32_t h, const char *path)
{
    return RecordedCall("vx_LoadParameters", h).text(pathText(path)).run([=] {
        loadParameters(*camera(h), path);
    });
}

int32_t vx_SetColorMode(uint32_t h, int32_t mode)
{
    return RecordedCall("vx_SetColorMode", h, mode).run([=] { return camera(h)->colorMode(mode); });
}

int32_t vx_AOI(uint32_t h, uint32_t command, void *data, uint32_t size)
{
    RecordedCall call("vx_AOI", h, command);
    call.number(size).data(data, command == SetArea ? size : 0);
    if (command == GetMaximumSize && size == sizeof(Size) && data) {
        auto *const maximum = static_cast<Size *>(data);
        call.outputs(&maximum->width, &maximum->height);
    }
    return call.run([=] { areaCommand(*camera(h), command, data, size); });
}

int32_t vx_HotPixel(uint32_t h, uint32_t command, void *data, uint32_t size)
{
    const bool takesList = command == SetCurrentUserList || command == WriteUserList;
    const bool takesPath = command == SaveUserListToFile || command == LoadUserListFromFile;
    RecordedCall call("vx_HotPixel", h, command);
    call.number(size).data(data, takesList ? size : 0);
    if (tellsWord(command) && size == sizeof(std::uint32_t))
        call.outputs(static_cast<std::uint32_t *>(data));
    if (fillsList(command))
        call.recordOutput(data, size);
    if (takesPath && data && size == 0 && call.isLogged())
        call.text(narrowPath(static_cast<const wchar_t *>(data)));
    return call.run([=] { camera(h)->hotPixels().command(command, data, size); });
}

int32_t vx_Event(uint32_t h, uint32_t command, void *data, uint32_t size)
{
    RecordedCall call("vx_Event", h, command);
    call.number(size).data(data, size);
    if (command == WaitForEvent && size == sizeof(WaitRecord) && data)
        call.outputs(&static_cast<WaitRecord *>(data)->signalled);
    return call.run([=] { eventCommand(*library().events(h), command, data, size); });
}

int32_t vx_AllocImageMem(uint32_t h, int32_t width, int32_t height, int32_t bitsPerPixel, char **memory,
                         int32_t *memoryId)
{
    RecordedCall call("vx_AllocImageMem", h);
    call.pointerOutput(memory).outputs(memoryId);
    return call.number(width).number(height).number(bitsPerPixel).run([=] {
        needed(memory);
        needed(memoryId);
        const BufferPointer buffer = camera(h)->allocate(width, height, bitsPerPixel);
        *memory = buffer->address();
        *memoryId = buffer->id;
    });
}

int32_t vx_FreeImageMem(uint32_t h, char *memory, int32_t memoryId)
{
    return RecordedCall("vx_FreeImageMem", h).number(memoryId).run([=] {
        camera(h)->release(memory, memoryId);
    });
}

int32_t vx_AddToSequence(uint32_t h, char *memory, int32_t memoryId)
{
    return RecordedCall("vx_AddToSequence", h).number(memoryId).run([=] {
        camera(h)->addToSequence(memory, memoryId);
    });
}

int32_t vx_ClearSequence(uint32_t h)
{
    return RecordedCall("vx_ClearSequence", h).run([=] { camera(h)->clearSequence(); });
}

int32_t vx_GetActSeqBuf(uint32_t h, int32_t *number, char **current, char **last)
{
    return RecordedCall("vx_GetActSeqBuf", h).outputs(number).pointerOutput(last).run([=] {
        camera(h)->actualBuffer(number, current, needed(last));
    });
}

int32_t vx_LockSeqBuf(uint32_t h, int32_t number, char *memory)
{
    return RecordedCall("vx_LockSeqBuf", h).number(number).run([=] {
        camera(h)->lockBuffer(number, memory);
    });
}

int32_t vx_UnlockSeqBuf(uint32_t h, int32_t number, char *memory)
{
    return RecordedCall("vx_UnlockSeqBuf", h).number(number).run([=] {
        camera(h)->unlockBuffer(number, memory);
    });
}

int32_t vx_CaptureVideo(uint32_t h, int32_t wait)
{
    return RecordedCall("vx_CaptureVideo", h).number(wait).run([=] { camera(h)->startCapture(); });
}

int32_t vx_StopLiveVideo(uint32_t h, int32_t wait)
{
    return RecordedCall("vx_StopLiveVideo", h).number(wait).run([=] { camera(h)->stopCapture(wait != 0); });
}

int32_t vx_FreezeVideo(uint32_t h, int32_t wait)
{
    return RecordedCall("vx_FreezeVideo", h).number(wait).run([=] { camera(h)->freeze(wait != 0); });
}

int32_t vx_GetFramesPerSecond(uint32_t h, double *framesPerSecond)
{
    return RecordedCall("vx_GetFramesPerSecond", h).outputs(framesPerSecond).run([=] {
        *needed(framesPerSecond) = camera(h)->measuredFrameRate();
    });
}

int32_t vx_GetPixelClockRange(uint32_t h, int32_t *min, int32_t *max)
{
    return RecordedCall("vx_GetPixelClockRange", h).outputs(min, max).run([=] {
        camera(h);
        *needed(min) = Timing::SlowestPixelClock;
        *needed(max) = Timing::FastestPixelClock;
    });
}

int32_t vx_SetPixelClock(uint32_t h, int32_t value)
{
    return RecordedCall("vx_SetPixelClock", h, value).run([=] { return camera(h)->pixelClock(value); });
}

int32_t vx_GetFrameTimeRange(uint32_t h, double *min, double *max, double *increment)
{
    return RecordedCall("vx_GetFrameTimeRange", h).outputs(min, max, increment).run([=] {
        const Timing timing = camera(h)->timing();
        *needed(min) = timing.minFrameTime();
        *needed(max) = timing.maxFrameTime();
        *needed(increment) = timing.frameTimeStep();
    });
}

int32_t vx_SetFrameRate(uint32_t h, double wanted, double *actual)
{
    return RecordedCall("vx_SetFrameRate", h).number(wanted).outputs(actual).run([=] {
        *needed(actual) = camera(h)->setFrameRate(wanted);
    });
}

int32_t vx_GetExposureRange(uint32_t h, double *min, double *max, double *increment)
{
    return RecordedCall("vx_GetExposureRange", h).outputs(min, max, increment).run([=] {
        const Timing timing = camera(h)->timing();
        *needed(min) = timing.minExposure();
        *needed(max) = timing.maxExposure();
        *needed(increment) = timing.exposureStep();
    });
}

int32_t vx_SetExposureTime(uint32_t h, double wanted, double *actual)
{
    return RecordedCall("vx_SetExposureTime", h, wholeNumber(wanted)).number(wanted).outputs(actual).run([=] {
        *needed(actual) = camera(h)->exposure(wanted);
    });
}

int32_t vx_SetHardwareGain(uint32_t h, int32_t master, int32_t red, int32_t green, int32_t blue)
{
    RecordedCall call("vx_SetHardwareGain", h, master);
    return call.number(red).number(green).number(blue).run([=] {
        return camera(h)->hardwareGain(master, {red, green, blue});
    });
}

} // extern "C"
