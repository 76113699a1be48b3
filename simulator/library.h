// SPDX-License-Identifier: MIT
// The one state of the simulated library: the bench of cameras, the open handles, events, log and faults.
#pragma once

#include "benchfile.h"
#include "calllog.h"
#include "device.h"
#include "errortexts.h"
#include "faults.h"
#include "lies.h"
#include "listlies.h"
#include "liststore.h"

#include <map>
#include <memory>
#include <mutex>

namespace kelvosim {

/// Lives until the process ends and is never destroyed: threads may still wait in it then.
/// Every function may be called from any thread. Locks are taken in this order: library, open camera, events
/// and memories, error texts. Nothing else is ever locked together.
class Library
{
public:
    static constexpr std::uint32_t DeviceNumberFlag = 0x8000;
    static constexpr std::uint32_t FirmwareUploadFlag = 0x10000;

    static Library &instance();

    /// Before every call of a program: the first one sets up the bench, unless a test does it.
    void start();

    /// Empties everything and leaves the bench to the caller from now on.
    void reset();

    CallLog log;
    Faults faults;
    ErrorTexts errors;
    Lies lies;
    ListLies listLies;

    // For programs.

    std::int32_t cameraCount() const;

    /// The attached cameras, at most as many as the buffer says, and their number.
    void writeCameraList(std::uint8_t *list) const;

    /// @param variable number of the camera with its flags
    /// @return the handle
    /// @throws Failure; a firmware upload that was allowed blocks
    std::uint32_t open(std::uint32_t variable);
    void close(std::uint32_t handle);

    /// Milliseconds of firmware upload that an open handle or a device number needs.
    std::int32_t uploadTime(std::uint32_t number) const;

    /// @throws Failure when the handle is not open
    std::shared_ptr<OpenCamera> camera(std::uint32_t handle) const;

    /// The events of an open handle, or of handle 0.
    std::shared_ptr<EventSet> events(std::uint32_t handle) const;

    // For the bench. Functions that name a camera throw std::invalid_argument when there is none.

    void addCamera(const CameraSpec &spec);
    void removeCamera(const std::string &serial);
    void setAttached(const std::string &serial, bool attached);
    void setLensCap(const std::string &serial, bool on);
    void setUsedElsewhere(const std::string &serial, bool used);
    void setListOrder(const std::vector<std::string> &serials);
    void lieAboutCameras(std::int32_t number, std::int32_t listCount);
    void lieAboutTexts(const std::string &serial, const std::string &serialText,
                       const std::string &modelText);
    void overrideFrameRate(const std::string &serial, double framesPerSecond);
    std::vector<HotPixel> plantedHotPixels(const std::string &serial) const;
    void setFactoryList(const std::string &serial, const std::vector<Pixel> &list);
    void setStorageFolder(const std::string &folder);

    /// What programs have left to vx_ExitCamera since the last reset().
    Leftovers leftovers() const;

    /// The camera on its handle; null when it is not open.
    std::shared_ptr<OpenCamera> openCamera(const std::string &serial) const;
    std::shared_ptr<HotPixelMemory> memory(const std::string &serial) const;
    std::vector<std::shared_ptr<OpenCamera>> openCameras() const;
    std::shared_ptr<EventSet> deviceEvents() const { return systemEvents; }

    /// Brings the bench to the state that a bench file asks for.
    /// @return false when the bench is no longer the file's
    bool apply(const std::vector<benchfile::Camera> &cameras);
    bool isBenchFromFile() const;

private:
    using Lock = std::unique_lock<std::mutex>;
    using DevicePointer = std::shared_ptr<Device>;

    Library();

    DevicePointer find(const std::string &serial) const;
    DevicePointer named(const std::string &serial) const;
    DevicePointer numbered(std::uint32_t variable) const;
    std::vector<DevicePointer> attachedDevices() const;
    std::uint32_t freeId(std::uint32_t CameraSpec::*id) const;
    void insert(CameraSpec spec);
    void attach(Device &device, bool attached);
    void uploadFirmware(Lock &lock, Device &device, std::uint32_t variable);
    std::uint32_t openDevice(const DevicePointer &device);
    void applyCamera(const benchfile::Camera &wanted);
    void updateFromBench(Device &device, const benchfile::Camera &wanted);
    void emptyBench();

    const std::shared_ptr<EventSet> systemEvents;
    ListStore store;

    mutable std::mutex mutex; ///< guards all below
    Condition changed;
    std::vector<DevicePointer> devices;
    std::map<std::uint32_t, DevicePointer> handles;
    std::vector<std::string> listOrder;
    std::int32_t forcedNumber = -1;
    std::int32_t forcedListCount = -1;
    Leftovers leaked;
    std::uint32_t lastHandle;
    bool started = false;
    bool benchFromFile = false;
};

} // namespace kelvosim
