// SPDX-License-Identifier: MIT
// The control interface of the simulated camera library, for tests, benchmarks and the tour.
//
// A program that links the simulated library may, beside the plain vx_ functions, build its own bench of
// cameras, push exact frames, make any call fail, wait or block, and read what was called. Every function
// here may be called from any thread.
#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#if defined(__GNUC__)
#define KELVOSIM_API __attribute__((visibility("default")))
#else
#define KELVOSIM_API
#endif

namespace kelvosim {

enum class SensorKind {
    Mono,     ///< reports colour mode 6, 8 bits a pixel
    RawBayer, ///< reports colour mode 11, 8 bits a pixel
    Colour32, ///< reports colour mode 0, 32 bits a pixel
};

/// A sensor element, in pixels of the full sensor image.
struct Pixel
{
    std::uint16_t x = 0;
    std::uint16_t y = 0;
};

inline bool operator==(const Pixel &a, const Pixel &b)
{
    return a.x == b.x && a.y == b.y;
}

/// A hot pixel that the sensor model planted: it reads `rate` grey values more per millisecond of exposure
/// at master gain 0.
struct HotPixel
{
    Pixel at;
    double rate = 0.0;
};

/// What a simulated camera is like. All of it can be left at its default.
struct CameraSpec
{
    std::string serial = "KV00000001"; ///< at most 11 characters; names the camera everywhere below
    std::string model = "KV-1280M";
    std::uint32_t cameraId = 0; ///< 0: the next free one, from 1
    std::uint32_t deviceId = 0; ///< 0: the next free one, from 1
    std::uint32_t extraWord = 0;
    std::uint16_t sensorId = 0x0101;
    SensorKind kind = SensorKind::Mono;
    std::int32_t width = 1280;
    std::int32_t height = 1024;
    std::uint64_t seed = 0; ///< 0: made from the serial number
    bool attached = true;
    bool lensCap = false;
    bool usedElsewhere = false;     ///< another program has it open
    int firmwareUpload = 0;         ///< milliseconds of firmware upload needed at the next open; 0: none
    bool storesLists = true;        ///< has hot pixel memory of its own
    std::uint32_t capacity = 1000;  ///< user entries that it can store
    int hotPixels = 150;            ///< hot pixels that the sensor model plants
    std::vector<Pixel> factoryList; ///< empty: the strongest of the planted hot pixels, one in ten
    std::string replayFolder;       ///< folder of 8-bit PGM or PNG frames; empty: the sensor model
    bool freeRunning = true;        ///< false: frames come from pushFrame() alone
};

/// Puts the library into the state that tests start from: no cameras, no bench file, hot pixel memory kept
/// in this process alone, no faults, an empty log. Handles that are still open are closed.
KELVOSIM_API void reset();

/// Adds a camera; attaching it signals the device event.
KELVOSIM_API void addCamera(const CameraSpec &spec);

/// Takes a camera out for good, unplugging it first.
KELVOSIM_API void removeCamera(const std::string &serial);

/// Attaches a camera: device event 130, and 9 on a handle that still has it open.
KELVOSIM_API void plug(const std::string &serial);

/// Detaches a camera: 128 on a handle that has it open, and device event 129.
KELVOSIM_API void unplug(const std::string &serial);

KELVOSIM_API void setLensCap(const std::string &serial, bool on);
KELVOSIM_API void setUsedElsewhere(const std::string &serial, bool used);

/// Sets the order in which vx_GetCameraList reports the cameras; cameras not named follow in their order.
KELVOSIM_API void setListOrder(const std::vector<std::string> &serials);

/// Makes vx_GetNumberOfCameras and the list's count word report these numbers; -1 tells the truth again.
/// The library never writes more records than the buffer's own count word announced on entry.
KELVOSIM_API void lieAboutCameras(std::int32_t number, std::int32_t listCount);

/// Overwrites the texts of the camera's list record, which may then lack their NUL: up to 16 bytes of serial
/// number, up to 80 bytes of model name. Empty texts tell the truth again.
KELVOSIM_API void lieAboutTexts(const std::string &serial, const std::string &serialText,
                                const std::string &modelText);

/// Makes the next reads of a list (commands 33026, 33032, 33035) carry this word 0; -1: the truth.
KELVOSIM_API void lieAboutListWord(std::int32_t word0);

/// Makes the counts of the factory and of the stored user list (commands 33031 and 33034) report this number,
/// which may be negative; std::nullopt tells the truth again. The lists themselves stay as they are.
KELVOSIM_API void lieAboutCounts(std::optional<std::int32_t> count);

// --- frames

/// Completes one frame with exactly these bytes (width * height * bytes per pixel, rows without padding; a
/// shorter vector leaves the rest 0) in the next unlocked buffer of the sequence and signals event 2.
/// @return false when the camera is not capturing or every buffer is locked
KELVOSIM_API bool pushFrame(const std::string &serial, const std::vector<std::uint8_t> &pixels);

/// Lets `count` captures of an open camera fail: event 8 each, one a frame time, and none before the event of
/// the failure before was taken by a wait, so that each can be counted. A count below 1 does nothing.
KELVOSIM_API void failFrames(const std::string &serial, int count);

/// Lets a free-running camera deliver at this rate whatever its settings say; 0: as set.
KELVOSIM_API void overrideFrameRate(const std::string &serial, double framesPerSecond);

/// Number of frames completed since the camera was opened.
KELVOSIM_API std::uint64_t completedFrames(const std::string &serial);

/// The exposure that is set on the open camera, in milliseconds; 0 while it is not open.
KELVOSIM_API double exposureTime(const std::string &serial);

/// The hot pixels that the sensor model planted, strongest first.
KELVOSIM_API std::vector<HotPixel> plantedHotPixels(const std::string &serial);

// --- hot pixel memory

KELVOSIM_API std::vector<Pixel> factoryList(const std::string &serial);
KELVOSIM_API void setFactoryList(const std::string &serial, const std::vector<Pixel> &list);
KELVOSIM_API std::vector<Pixel> storedUserList(const std::string &serial);
KELVOSIM_API void setStoredUserList(const std::string &serial, const std::vector<Pixel> &list);
KELVOSIM_API std::vector<Pixel> currentUserList(const std::string &serial);
KELVOSIM_API bool correctionOn(const std::string &serial);

/// Keeps stored user lists in this folder, a file per serial number; empty: in this process alone.
KELVOSIM_API void setStorageFolder(const std::string &folder);

// --- events

/// Signals an event on the camera's open handle.
KELVOSIM_API void signalEvent(const std::string &serial, std::uint32_t code);

/// Signals an event on handle 0.
KELVOSIM_API void signalDeviceEvent(std::uint32_t code);

// --- faults

constexpr std::int64_t AnyCommand = -1;
constexpr int EveryCall = 0;

/// Makes the `nth` call from now on (1: the next one; EveryCall: all) of a function ("vx_AOI"), or of one
/// command of it, fail with this status before it does anything. `text` is what vx_GetError then tells for
/// the handle; with an empty text vx_GetError itself fails.
/// The command of vx_AOI, vx_HotPixel and vx_Event is their command; that of vx_SetColorMode and
/// vx_SetPixelClock their value, of vx_SetHardwareGain the master value, of vx_SetExposureTime the wanted
/// value as an integer. Query forms fail by returning the status instead of the setting.
KELVOSIM_API void failCall(const std::string &function, int nth, std::int32_t status, const std::string &text,
                           std::int64_t command = AnyCommand);

/// Makes the n-th vx_ call of any function from now on fail, and all after it when `andAllAfter`.
/// vx_GetError and vx_ExitCamera are neither counted nor failed.
KELVOSIM_API void failNthCall(std::uint64_t n, bool andAllAfter, std::int32_t status,
                              const std::string &text);

/// The same, but the calls of the calling thread alone are counted, so that n names the same call in every
/// run of a program whose other threads call when they like. With `andAllAfter` every thread's calls fail
/// from then on, beginning with the next ones: waits under way end as they would.
KELVOSIM_API void failNthCallHere(std::uint64_t n, bool andAllAfter, std::int32_t status,
                                  const std::string &text);

/// Number of calls that faults made fail since the last clearFaults().
KELVOSIM_API std::uint64_t failedCalls();

/// Makes vx_GetError itself fail (true) or tell again (false).
KELVOSIM_API void failGetError(bool fails);

/// Makes calls of a function take this long.
KELVOSIM_API void delayCall(const std::string &function, int milliseconds, std::int64_t command = AnyCommand);

/// Makes calls of a function block until releaseCalls(). A blocked thread may be cancelled.
KELVOSIM_API void blockCall(const std::string &function, std::int64_t command = AnyCommand);
KELVOSIM_API void releaseCalls();

/// Number of calls that are blocked just now.
KELVOSIM_API int blockedCalls();

/// Takes every fault, delay and block back.
KELVOSIM_API void clearFaults();

/// Runs `visit`, which must not throw, inside of every call that the calling thread makes from now on: when
/// the call has begun, and again before it returns. So a cable can be pulled there. Calls that `visit` makes
/// itself are not visited. An empty one ends that.
KELVOSIM_API void duringCallsHere(const std::function<void()> &visit);

// --- lies

// What a call answers although it is nonsense; of vx_GetError too. Lies are told on success and on failure,
// and a result of 0 turns a failure into a success, so that a call that does nothing can claim to have done
// its work. The last lie about an output counts.

/// Makes calls of a function, or of one command of it, return this.
KELVOSIM_API void overrideResult(const std::string &function, std::int32_t result,
                                 std::int64_t command = AnyCommand);

/// Makes them write this number to their output `index`, from 0 in the order of the arguments, cut to what an
/// integer can hold. Outputs are those that the arguments point at one by one, width and height of vx_AOI 16,
/// the word of the hot pixel commands that tell one, and the event that a wait ended with.
KELVOSIM_API void overrideNumber(const std::string &function, int index, double value,
                                 std::int64_t command = AnyCommand);

/// Makes vx_AllocImageMem, vx_GetActSeqBuf (the last buffer) or vx_GetError (the text) write this pointer.
KELVOSIM_API void overridePointer(const std::string &function, char *pointer);

/// Makes them begin the record or list that they fill with these bytes, as many as it has room for: those of
/// vx_GetSensorInfo and vx_GetCameraInfo, and the lists of vx_HotPixel.
KELVOSIM_API void overrideData(const std::string &function, const std::vector<std::uint8_t> &bytes,
                               std::int64_t command = AnyCommand);

/// Takes these lies back; those about the camera list and about counts have ways of their own.
KELVOSIM_API void tellTheTruth();

// --- the log

/// One call of the library. Calls are logged when they begin; the result follows when they return.
struct Call
{
    std::string function;     ///< "vx_Event"
    std::uint32_t handle = 0; ///< the handle argument as passed (vx_InitCamera: the variable on entry)
    std::int64_t command = AnyCommand; ///< as for failCall(); AnyCommand where a function has none
    std::string arguments;             ///< the remaining arguments, readable
    /// The numeric input arguments after handle and command, in order; of vx_SetExposureTime the exact value.
    std::vector<double> numbers;
    std::vector<std::uint8_t> data; ///< bytes passed in through a data pointer (lists, codes, records)
    std::int32_t result = 0;
    bool returned = false;
    std::uint64_t thread = 0; ///< same number, same thread
};

/// All calls since the last clearLog(), in the order in which they began.
KELVOSIM_API std::vector<Call> log();
KELVOSIM_API void clearLog();

/// Number of calls of a function, or of one command of it, that have begun since the last clearLog().
KELVOSIM_API int callCount(const std::string &function, std::int64_t command = AnyCommand);

/// "vx_AOI 16", "vx_LockSeqBuf": function and, where it has one, command (in decimal).
KELVOSIM_API std::string name(const Call &call);

/// The names of all logged calls made by the calling thread, in order; vx_GetError is left out.
KELVOSIM_API std::vector<std::string> calledHere();

/// Switches logging off and on again, for long runs.
KELVOSIM_API void setLogging(bool on);

// --- what is held

KELVOSIM_API int openHandles();

/// Image memory that is allocated or locked, and that was so when its camera was closed: vx_ExitCamera frees
/// it, but it counts as forgotten until reset().
KELVOSIM_API int allocatedBuffers();
KELVOSIM_API int lockedBuffers();

KELVOSIM_API int enabledEvents();
KELVOSIM_API int waitingThreads();

} // namespace kelvosim
