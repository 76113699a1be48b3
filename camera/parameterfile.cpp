// SPDX-License-Identifier: MIT
// Reading the parameter file, after a look at whether it is harmless.

#include "parameterfile.h"

#include <QIODevice>
#include <QXmlStreamReader>

#include <cmath>

namespace {

constexpr int LargestFile = 64 * 1024; // bytes; thousands of attributes in one element take the reader long
constexpr int DeepestNesting = 100;    // elements; a parameter file has three

/// Whether the document tree can be built of this: the tree is freed by recursion, so that deep nesting would
/// overflow the stack, and entities can blow a small file up to any size.
bool isHarmless(const QByteArray &content)
{
    QXmlStreamReader reader(content);
    reader.setNamespaceProcessing(false); // neither does the tree
    int depth = 0;
    while (!reader.atEnd()) {
        reader.readNext();
        if (reader.isDTD() && !reader.entityDeclarations().isEmpty())
            return false;
        if (reader.isStartElement() && ++depth > DeepestNesting)
            return false;
        if (reader.isEndElement())
            --depth;
    }
    return !reader.hasError();
}

QString text(const QDomElement &element, const char *attribute)
{
    return element.attribute(QLatin1String(attribute), QStringLiteral("0"));
}

int wholeNumber(const QDomElement &element, const char *attribute)
{
    return text(element, attribute).toInt(); // 0 for what is no number
}

/// "nan", "inf" and what is too large for a number are no numbers here either.
double number(const QDomElement &element, const char *attribute)
{
    const double value = text(element, attribute).toDouble();
    return std::isfinite(value) ? value : 0.0;
}

bool isFor(const QDomElement &sensor, std::uint16_t sensorId)
{
    bool isNumber = false;
    return text(sensor, "ID").toInt(&isNumber, 16) == sensorId && isNumber;
}

} // namespace

bool ParameterFile::load(QIODevice &device)
{
    const QByteArray content = device.read(LargestFile + 1);
    const bool isGood = content.size() <= LargestFile && isHarmless(content) && document.setContent(content);
    if (!isGood)
        document.clear(); // of what was read before the fault
    return isGood;
}

std::optional<SensorSettings> ParameterFile::settingsFor(std::uint16_t sensorId) const
{
    const QDomElement sensor = findSensor(sensorId);
    const QDomElement timing = sensor.firstChildElement("Timing");
    const QDomElement gain = sensor.firstChildElement("Gain");
    if (timing.isNull() || gain.isNull())
        return std::nullopt;
    SensorSettings settings;
    settings.exposure = number(timing, "exposure");
    settings.pixelclock = wholeNumber(timing, "pixelclock");
    settings.framerate = number(timing, "framerate");
    settings.masterGain = wholeNumber(gain, "master");
    settings.redGain = wholeNumber(gain, "red");
    settings.greenGain = wholeNumber(gain, "green");
    settings.blueGain = wholeNumber(gain, "blue");
    return settings;
}

QDomElement ParameterFile::findSensor(std::uint16_t sensorId) const
{
    const QDomElement root = document.documentElement();
    if (root.tagName() != "CameraSettings")
        return QDomElement();
    QDomElement sensor = root.firstChildElement("Sensor");
    while (!sensor.isNull() && !isFor(sensor, sensorId))
        sensor = sensor.nextSiblingElement("Sensor");
    return sensor;
}
