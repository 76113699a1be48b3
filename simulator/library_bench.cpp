// SPDX-License-Identifier: MIT
// The bench of cameras: adding, plugging, changing, and following the bench file.

#include "library.h"

#include "failure.h"

#include <algorithm>
#include <cstdio>
#include <stdexcept>
#include <utility>

namespace kelvosim {

namespace {

constexpr std::size_t LongestSerial = 11;
constexpr std::int32_t LargestSide = 16384;

void check(const CameraSpec &spec)
{
    if (spec.serial.size() > LongestSerial)
        throw std::invalid_argument("A serial number has at most 11 characters.");
    if (spec.width < 1 || spec.height < 1 || spec.width > LargestSide || spec.height > LargestSide)
        throw std::invalid_argument("The size of the sensor is not possible.");
}

/// On the bench watcher's thread, which has nobody to tell a failure to.
void emptyStoredList(const Device &device)
{
    try {
        device.memory->replaceUserList({});
    } catch (const Failure &failure) {
        std::fprintf(stderr, "Stored list of camera %s: %s\n", device.spec.serial.c_str(), failure.what());
    }
}

} // namespace

void Library::addCamera(const CameraSpec &spec)
{
    check(spec);
    const Lock lock(mutex);
    if (find(spec.serial))
        throw std::invalid_argument("There is a camera " + spec.serial + " already.");
    insert(spec);
}

void Library::removeCamera(const std::string &serial)
{
    const Lock lock(mutex);
    const DevicePointer device = named(serial);
    attach(*device, false);
    devices.erase(std::find(devices.begin(), devices.end(), device));
}

void Library::setAttached(const std::string &serial, bool attached)
{
    const Lock lock(mutex);
    attach(*named(serial), attached);
}

void Library::setLensCap(const std::string &serial, bool on)
{
    const Lock lock(mutex);
    const DevicePointer device = named(serial);
    device->spec.lensCap = on;
    if (device->open)
        device->open->setLensCap(on);
}

void Library::setUsedElsewhere(const std::string &serial, bool used)
{
    const Lock lock(mutex);
    named(serial)->spec.usedElsewhere = used;
}

void Library::setListOrder(const std::vector<std::string> &serials)
{
    const Lock lock(mutex);
    listOrder = serials;
}

void Library::lieAboutCameras(std::int32_t number, std::int32_t listCount)
{
    const Lock lock(mutex);
    forcedNumber = number;
    forcedListCount = listCount;
}

void Library::lieAboutTexts(const std::string &serial, const std::string &serialText,
                            const std::string &modelText)
{
    const Lock lock(mutex);
    const DevicePointer device = named(serial);
    device->serialText = serialText;
    device->modelText = modelText;
}

void Library::overrideFrameRate(const std::string &serial, double framesPerSecond)
{
    const Lock lock(mutex);
    const DevicePointer device = named(serial);
    device->frameRate = framesPerSecond;
    if (device->open)
        device->open->overrideFrameRate(framesPerSecond);
}

std::vector<HotPixel> Library::plantedHotPixels(const std::string &serial) const
{
    const Lock lock(mutex);
    return named(serial)->planted;
}

void Library::setFactoryList(const std::string &serial, const std::vector<Pixel> &list)
{
    const Lock lock(mutex);
    const DevicePointer device = named(serial);
    device->ownFactoryList = true;
    device->memory->setFactoryList(list);
}

void Library::setStorageFolder(const std::string &folder)
{
    const Lock lock(mutex);
    store.setFolder(folder);
    for (const DevicePointer &device : devices)
        device->memory->refresh();
}

std::shared_ptr<OpenCamera> Library::openCamera(const std::string &serial) const
{
    const Lock lock(mutex);
    return named(serial)->open;
}

std::shared_ptr<HotPixelMemory> Library::memory(const std::string &serial) const
{
    const Lock lock(mutex);
    return named(serial)->memory;
}

std::vector<std::shared_ptr<OpenCamera>> Library::openCameras() const
{
    const Lock lock(mutex);
    std::vector<std::shared_ptr<OpenCamera>> cameras;
    for (const auto &entry : handles)
        cameras.push_back(entry.second->open);
    return cameras;
}

Leftovers Library::leftovers() const
{
    const Lock lock(mutex);
    return leaked;
}

bool Library::isBenchFromFile() const
{
    const Lock lock(mutex);
    return benchFromFile;
}

bool Library::apply(const std::vector<benchfile::Camera> &cameras)
{
    const Lock lock(mutex);
    if (!benchFromFile)
        return false;
    for (const DevicePointer &device : devices) {
        const bool stays = std::any_of(cameras.begin(), cameras.end(), [&](const benchfile::Camera &camera) {
            return camera.spec.serial == device->spec.serial;
        });
        if (!stays)
            attach(*device, false);
    }
    listOrder.clear();
    for (const benchfile::Camera &camera : cameras) {
        applyCamera(camera);
        listOrder.push_back(camera.spec.serial);
    }
    return true;
}

Library::DevicePointer Library::find(const std::string &serial) const
{
    const auto device = std::find_if(devices.begin(), devices.end(),
                                     [&](const DevicePointer &d) { return d->spec.serial == serial; });
    return device == devices.end() ? nullptr : *device;
}

Library::DevicePointer Library::named(const std::string &serial) const
{
    if (DevicePointer device = find(serial))
        return device;
    throw std::invalid_argument("There is no camera " + serial + ".");
}

std::uint32_t Library::freeId(std::uint32_t CameraSpec::*id) const
{
    const auto isTaken = [&](std::uint32_t value) {
        return std::any_of(devices.begin(), devices.end(),
                           [&](const DevicePointer &device) { return device->spec.*id == value; });
    };
    std::uint32_t value = 1;
    while (isTaken(value))
        ++value;
    return value;
}

void Library::insert(CameraSpec spec)
{
    if (spec.cameraId == 0)
        spec.cameraId = freeId(&CameraSpec::cameraId);
    if (spec.deviceId == 0)
        spec.deviceId = freeId(&CameraSpec::deviceId);
    const bool attached = std::exchange(spec.attached, false);
    auto device = std::make_shared<Device>();
    device->memory = std::make_shared<HotPixelMemory>(spec.serial, store);
    device->ownFactoryList = !spec.factoryList.empty();
    device->memory->setFactoryList(spec.factoryList);
    device->spec = std::move(spec);
    plant(*device, device->spec.replayFolder.empty());
    devices.push_back(device);
    attach(*device, attached);
}

void Library::attach(Device &device, bool attached)
{
    if (std::exchange(device.spec.attached, attached) == attached)
        return;
    if (device.open)
        device.open->setAttached(attached);
    systemEvents->raise(attached ? DeviceAdded : DeviceRemoved);
    changed.notifyAll();
}

void Library::applyCamera(const benchfile::Camera &wanted)
{
    const DevicePointer known = find(wanted.spec.serial);
    if (!known) {
        insert(wanted.spec);
        Device &device = *devices.back();
        device.benchFirmware = wanted.spec.firmwareUpload;
        device.failedFrames = wanted.failedFrames;
        device.listResets = wanted.listResets;
        return;
    }
    updateFromBench(*known, wanted);
}

/// Size, kind, seed and replay are read when the camera is opened the next time.
void Library::updateFromBench(Device &device, const benchfile::Camera &wanted)
{
    CameraSpec spec = wanted.spec;
    spec.cameraId = device.spec.cameraId;
    spec.deviceId = device.spec.deviceId;
    spec.attached = device.spec.attached;
    const bool newFirmware = std::exchange(device.benchFirmware, spec.firmwareUpload) != spec.firmwareUpload;
    spec.firmwareUpload = newFirmware ? spec.firmwareUpload : device.spec.firmwareUpload;
    device.spec = spec;
    if (!device.open)
        plant(device, spec.replayFolder.empty());
    if (device.open)
        device.open->setLensCap(spec.lensCap);
    if (device.open && wanted.failedFrames > device.failedFrames)
        device.open->failFrames(wanted.failedFrames - device.failedFrames);
    if (wanted.listResets > device.listResets)
        emptyStoredList(device);
    device.failedFrames = wanted.failedFrames;
    device.listResets = wanted.listResets;
    attach(device, wanted.spec.attached);
}

void Library::emptyBench()
{
    std::map<std::uint32_t, DevicePointer> closing;
    {
        const Lock lock(mutex);
        started = true;
        benchFromFile = false;
        for (const DevicePointer &device : devices)
            device->spec.attached = false;
        changed.notifyAll();
        devices.clear();
        closing.swap(handles);
        listOrder.clear();
        forcedNumber = -1;
        forcedListCount = -1;
        leaked = Leftovers();
        store.clear();
    }
    for (const auto &entry : closing)
        entry.second->open->close();
}

} // namespace kelvosim
