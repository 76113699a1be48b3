// SPDX-License-Identifier: MIT
// Reads whatever the fuzzer comes up with as a parameter file.

#include "fuzztarget.h"
#include "parameterfile.h"

#include <QBuffer>

#include <cmath>
#include <tuple>

namespace {

using Settings = std::optional<SensorSettings>;

constexpr std::uint16_t Sensor = 0x1F;

bool load(ParameterFile &file, QByteArray content)
{
    QBuffer buffer(&content);
    buffer.open(QIODevice::ReadOnly);
    return file.load(buffer);
}

QByteArray number(double value)
{
    return QByteArray::number(value, 'g', 17);
}

QByteArray written(const SensorSettings &settings)
{
    return "<CameraSettings><Sensor ID=\"1f\"><Timing exposure=\"" + number(settings.exposure) +
           "\" pixelclock=\"" + QByteArray::number(settings.pixelclock) + "\" framerate=\"" +
           number(settings.framerate) + "\"/><Gain master=\"" + QByteArray::number(settings.masterGain) +
           "\" red=\"" + QByteArray::number(settings.redGain) + "\" green=\"" +
           QByteArray::number(settings.greenGain) + "\" blue=\"" + QByteArray::number(settings.blueGain) +
           "\"/></Sensor></CameraSettings>";
}

bool isSame(const SensorSettings &a, const SensorSettings &b)
{
    const auto values = [](const SensorSettings &s) {
        return std::tie(s.pixelclock, s.framerate, s.exposure, s.masterGain, s.redGain, s.greenGain,
                        s.blueGain);
    };
    return values(a) == values(b);
}

void requireSound(const SensorSettings &settings)
{
    require(std::isfinite(settings.exposure), "an exposure is a number");
    require(std::isfinite(settings.framerate), "a frame rate is a number");
    ParameterFile file;
    require(load(file, written(settings)), "settings can be written as a file");
    const Settings again = file.settingsFor(Sensor);
    require(again && isSame(*again, settings), "settings that are written are read again");
}

} // namespace

QByteArray outcomeOf(const QByteArray &input)
{
    ParameterFile file;
    require(load(file, written(SensorSettings())), "a sound file is read");
    const bool isRead = load(file, input);
    const Settings settings = file.settingsFor(Sensor);
    require(isRead || !settings, "a refused file leaves no settings, not even those of the file before");
    if (settings)
        requireSound(*settings);
    return !isRead ? "refused" : settings ? "applied" : "none";
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    outcomeOf(bytesOf(data, size));
    return 0;
}
