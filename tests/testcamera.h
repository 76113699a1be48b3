// SPDX-License-Identifier: MIT
// What many tests need of the simulated bench: a small camera without frames of its own, and the call log.
#pragma once

#include "kelvosim.h"

#include <QCoreApplication>
#include <QString>
#include <QStringList>
#include <QTimer>

#include <cstring>
#include <string>
#include <vector>

namespace testcamera {

constexpr int Device = 7;
const std::string Serial = "KVTEST00001";

/// A 64 x 48 mono camera whose frames come from pushFrame() alone.
inline kelvosim::CameraSpec small()
{
    kelvosim::CameraSpec spec;
    spec.serial = Serial;
    spec.model = "KV-64M";
    spec.deviceId = Device;
    spec.width = 64;
    spec.height = 48;
    spec.hotPixels = 0;
    spec.freeRunning = false;
    return spec;
}

/// An empty bench with one camera.
inline void resetTo(const kelvosim::CameraSpec &spec)
{
    kelvosim::reset();
    kelvosim::addCamera(spec);
    kelvosim::clearLog();
}

/// The calls of this thread, in order, "vx_AOI 16"; vx_GetError is left out.
inline QStringList calls()
{
    QStringList names;
    for (const std::string &name : kelvosim::calledHere())
        names << QString::fromStdString(name);
    return names;
}

/// The calls of this thread without their commands: "vx_AOI".
inline QStringList plainCalls()
{
    QStringList names;
    for (const QString &name : calls())
        names << name.section(' ', 0, 0);
    return names;
}

/// The logged calls of all threads with this name, "vx_Event 1", or of this function with any command.
inline std::vector<kelvosim::Call> callsNamed(const std::string &name)
{
    std::vector<kelvosim::Call> found;
    for (const kelvosim::Call &call : kelvosim::log()) {
        if (call.function == name || kelvosim::name(call) == name)
            found.push_back(call);
    }
    return found;
}

/// The first numbers of these calls: "wait" of vx_CaptureVideo, the wanted rate of vx_SetFrameRate.
inline std::vector<double> firstNumbers(const std::vector<kelvosim::Call> &calls)
{
    std::vector<double> numbers;
    for (const kelvosim::Call &call : calls)
        numbers.push_back(call.numbers.at(0));
    return numbers;
}

/// The event codes that a call was given.
inline std::vector<std::uint32_t> eventCodes(const kelvosim::Call &call)
{
    std::vector<std::uint32_t> codes(call.data.size() / sizeof(std::uint32_t));
    std::memcpy(codes.data(), call.data.data(), codes.size() * sizeof(std::uint32_t));
    return codes;
}

/// Turns the event loop until what is in the queue, and the timers of no time that it starts, had their turn.
inline void turnEventLoop()
{
    for (int round = 0; round < 10; ++round) {
        bool over = false;
        QTimer::singleShot(0, [&] { over = true; });
        while (!over)
            QCoreApplication::processEvents();
    }
}

/// A frame of one grey value.
inline std::vector<std::uint8_t> flatFrame(const kelvosim::CameraSpec &spec, std::uint8_t grey)
{
    const int bytes = spec.kind == kelvosim::SensorKind::Colour32 ? 4 : 1;
    return std::vector<std::uint8_t>(static_cast<std::size_t>(spec.width) * spec.height * bytes, grey);
}

/// Nothing of the library is held any more.
inline bool nothingHeld()
{
    return kelvosim::openHandles() == 0 && kelvosim::allocatedBuffers() == 0 &&
           kelvosim::lockedBuffers() == 0;
}

} // namespace testcamera
