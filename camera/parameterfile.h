// SPDX-License-Identifier: MIT
// The file with the settings that a person wants a kind of sensor to start with.
#pragma once

#include <QDomDocument>

#include <cstdint>
#include <optional>

class QIODevice;

/// What the file says for one kind of sensor, in the camera library's units. An attribute that is missing or
/// no number is 0; nothing is cut to what a camera can do.
struct SensorSettings
{
    int pixelclock = 0;
    double framerate = 0.0; // frames per second
    double exposure = 0.0;
    int masterGain = 0;
    int redGain = 0;
    int greenGain = 0;
    int blueGain = 0;
};

/// An XML file: elements "Sensor" with an ID in hexadecimal, each with the elements "Timing" and "Gain",
/// under the root "CameraSettings". Everything else in it is skipped.
class ParameterFile final
{
public:
    /// Reads the whole device, which is open for reading.
    /// @return false when it holds no well-formed XML; there are no settings then. Nesting deeper than any
    /// parameter file needs, entities of its own and more than 64 KiB count as that, so that no file takes
    /// the program down.
    bool load(QIODevice &device);

    /// The settings of the first entry for this sensor; none when there is no such entry, or when it lacks
    /// "Timing" or "Gain", even if a later one were complete.
    std::optional<SensorSettings> settingsFor(std::uint16_t sensorId) const;

private:
    QDomElement findSensor(std::uint16_t sensorId) const;

    QDomDocument document{"CameraSettings"};
};
