// SPDX-License-Identifier: MIT
// What a camera on the bench reports and carries.

#include "device.h"

#include "sensormodel.h"

#include <algorithm>
#include <cstring>

namespace kelvosim {

namespace {

constexpr std::size_t FactoryShare = 10; // one in so many planted hot pixels

/// A text that fills the field leaves no room for its NUL, which is what a lie may want.
template<std::size_t length>
void put(char (&field)[length], const std::string &text)
{
    std::memcpy(field, text.data(), std::min(length, text.size()));
}

std::vector<Pixel> strongest(const std::vector<HotPixel> &planted)
{
    std::vector<Pixel> pixels;
    for (std::size_t i = 0; i < planted.size() / FactoryShare; ++i)
        pixels.push_back(planted[i].at);
    return pixels;
}

} // namespace

ListRecord listRecord(const Device &device)
{
    ListRecord record;
    record.cameraId = device.spec.cameraId;
    record.deviceId = device.spec.deviceId;
    record.extraWord = device.spec.extraWord;
    record.inUse = device.open || device.opening || device.spec.usedElsewhere ? 1 : 0;
    put(record.serial, device.serialText.empty() ? device.spec.serial : device.serialText);
    put(record.model, device.modelText.empty() ? device.spec.model.substr(0, 79) : device.modelText);
    return record;
}

void plant(Device &device, bool modelled)
{
    device.planted = modelled ? plantHotPixels(device.spec) : std::vector<HotPixel>();
    device.memory->setAbility(device.spec.storesLists, device.spec.capacity);
    if (!device.ownFactoryList)
        device.memory->setFactoryList(device.spec.storesLists ? strongest(device.planted)
                                                              : std::vector<Pixel>());
}

} // namespace kelvosim
