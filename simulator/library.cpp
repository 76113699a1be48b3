// SPDX-License-Identifier: MIT
// Handles and cameras as programs see them.

#include "library.h"

#include "benchwatcher.h"
#include "failure.h"

#include <algorithm>
#include <cstring>
#include <utility>

namespace kelvosim {

namespace {

// Beyond all device numbers with their flags, so that a number is never taken for a handle.
constexpr std::uint32_t FirstHandle = 0x4B000001;
constexpr std::uint32_t NumberMask = 0x7FFF;

/// A device counts as in use while it is being opened. Used and left under the library's lock.
class Opening
{
public:
    explicit Opening(Device &opened)
        : device(opened)
    {
        device.opening = true;
    }
    ~Opening() { device.opening = false; }
    Opening(const Opening &) = delete;
    Opening &operator=(const Opening &) = delete;

private:
    Device &device;
};

} // namespace

Library &Library::instance()
{
    static auto *const library = new Library;
    return *library;
}

Library::Library()
    : systemEvents(std::make_shared<EventSet>())
    , lastHandle(FirstHandle - 1)
{
}

void Library::start()
{
    const Lock lock(mutex);
    if (std::exchange(started, true))
        return;
    store.setFolder(ListStore::folderOfEnvironment());
    benchFromFile = true;
    for (const benchfile::Camera &camera : BenchWatcher::firstState())
        applyCamera(camera);
    BenchWatcher::begin();
}

void Library::reset()
{
    faults.clear();
    lies.tellTheTruth();
    emptyBench();
    systemEvents->reset();
    errors.clear();
    listLies.tellTheTruth();
    log.clear();
    log.switchTo(true);
}

std::int32_t Library::cameraCount() const
{
    const Lock lock(mutex);
    return forcedNumber != -1 ? forcedNumber : static_cast<std::int32_t>(attachedDevices().size());
}

void Library::writeCameraList(std::uint8_t *list) const
{
    const Lock lock(mutex);
    std::uint32_t capacity = 0;
    std::memcpy(&capacity, list, sizeof capacity);
    std::uint32_t count = 0;
    for (const DevicePointer &device : attachedDevices()) {
        if (count == capacity)
            break;
        const ListRecord record = listRecord(*device);
        std::memcpy(list + sizeof count + count * sizeof record, &record, sizeof record);
        ++count;
    }
    if (forcedListCount >= 0)
        count = static_cast<std::uint32_t>(forcedListCount);
    std::memcpy(list, &count, sizeof count);
}

std::uint32_t Library::open(std::uint32_t variable)
{
    Lock lock(mutex);
    const DevicePointer device = numbered(variable);
    if (!device)
        throw Failure(NoSuchCamera, "There is no such camera.");
    if (device->open || device->opening || device->spec.usedElsewhere)
        throw Failure(CameraInUse, "The camera is in use.");
    const Opening opening(*device);
    uploadFirmware(lock, *device, variable);
    return openDevice(device);
}

void Library::close(std::uint32_t handle)
{
    const std::shared_ptr<OpenCamera> closed = camera(handle);
    const Leftovers left = closed->close();
    const Lock lock(mutex);
    leaked.allocated += left.allocated;
    leaked.locked += left.locked;
    const auto entry = handles.find(handle);
    if (entry == handles.end())
        return;
    entry->second->open.reset();
    handles.erase(entry);
    errors.close(handle);
}

std::int32_t Library::uploadTime(std::uint32_t number) const
{
    const Lock lock(mutex);
    const auto entry = handles.find(number);
    const DevicePointer device = entry == handles.end() ? numbered(number) : entry->second;
    if (!device)
        throw Failure(NoSuchCamera, "There is no such camera.");
    return device->spec.firmwareUpload;
}

std::shared_ptr<OpenCamera> Library::camera(std::uint32_t handle) const
{
    const Lock lock(mutex);
    const auto entry = handles.find(handle);
    if (entry == handles.end() || !entry->second->open)
        throw Failure(InvalidHandle, "The camera handle is not valid.");
    return entry->second->open;
}

std::shared_ptr<EventSet> Library::events(std::uint32_t handle) const
{
    return handle == 0 ? systemEvents : camera(handle)->events();
}

/// Without the flag the number is that of a camera id; 0 means the first camera that is free.
Library::DevicePointer Library::numbered(std::uint32_t variable) const
{
    const std::uint32_t number = variable & NumberMask;
    for (const DevicePointer &device : attachedDevices()) {
        const CameraSpec &spec = device->spec;
        const bool isFree = !device->open && !device->opening && !spec.usedElsewhere;
        if (variable & DeviceNumberFlag ? spec.deviceId == number
            : number == 0               ? isFree
                                        : spec.cameraId == number)
            return device;
    }
    return nullptr;
}

std::vector<Library::DevicePointer> Library::attachedDevices() const
{
    std::vector<DevicePointer> attached;
    std::copy_if(devices.begin(), devices.end(), std::back_inserter(attached),
                 [](const DevicePointer &device) { return device->spec.attached; });
    const auto place = [this](const DevicePointer &device) {
        return std::find(listOrder.begin(), listOrder.end(), device->spec.serial) - listOrder.begin();
    };
    std::stable_sort(attached.begin(), attached.end(),
                     [&](const DevicePointer &a, const DevicePointer &b) { return place(a) < place(b); });
    return attached;
}

void Library::uploadFirmware(Lock &lock, Device &device, std::uint32_t variable)
{
    if (device.spec.firmwareUpload == 0)
        return;
    if (!(variable & FirmwareUploadFlag))
        throw Failure(FirmwareUploadRequired, "The camera needs new firmware.");
    const auto end = Condition::Clock::now() + std::chrono::milliseconds(device.spec.firmwareUpload);
    while (device.spec.attached && Condition::Clock::now() < end)
        changed.waitUntil(lock, end);
    if (!device.spec.attached)
        throw Failure(CameraDetached, "The camera went away.");
    device.spec.firmwareUpload = 0;
}

std::uint32_t Library::openDevice(const DevicePointer &device)
{
    device->memory->refresh();
    auto camera = std::make_shared<OpenCamera>(device->spec, device->memory, listLies);
    plant(*device, camera->spec().replayFolder.empty());
    camera->overrideFrameRate(device->frameRate);
    device->open = camera;
    handles[++lastHandle] = device;
    errors.open(lastHandle);
    return lastHandle;
}

} // namespace kelvosim
