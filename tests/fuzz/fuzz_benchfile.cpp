// SPDX-License-Identifier: MIT
// Reads and edits whatever the fuzzer comes up with as a bench file of the simulated cameras.

#include "benchfile.h"
#include "fuzztarget.h"

#include <algorithm>
#include <map>
#include <optional>

namespace {

using benchfile::Camera;
using Cameras = std::vector<Camera>;
using Values = std::map<std::string, std::string>; // by key, in one fixed spelling

const char *yesOrNo(bool yes)
{
    return yes ? "yes" : "no";
}

const char *kindOf(const kelvosim::CameraSpec &spec)
{
    switch (spec.kind) {
    case kelvosim::SensorKind::Mono:
        return "mono";
    case kelvosim::SensorKind::RawBayer:
        return "bayer";
    case kelvosim::SensorKind::Colour32:
        return "colour";
    }
    return "";
}

Values valuesOf(const Camera &camera)
{
    const kelvosim::CameraSpec &spec = camera.spec;
    return {{"model", spec.model},
            {"kind", kindOf(spec)},
            {"size", std::to_string(spec.width) + " x " + std::to_string(spec.height)},
            {"attached", yesOrNo(spec.attached)},
            {"lens cap", yesOrNo(spec.lensCap)},
            {"in use", yesOrNo(spec.usedElsewhere)},
            {"firmware upload", spec.firmwareUpload ? std::to_string(spec.firmwareUpload) + " ms" : "no"},
            {"replay", spec.replayFolder},
            {"seed", std::to_string(spec.seed)},
            {"storage", yesOrNo(spec.storesLists)},
            {"capacity", std::to_string(spec.capacity)},
            {"hot pixels", std::to_string(spec.hotPixels)},
            {"sensor", std::to_string(spec.sensorId)},
            {"failed frames", std::to_string(camera.failedFrames)},
            {"list resets", std::to_string(camera.listResets)}};
}

/// A value for every key, none of them the one that a camera has by itself.
const Values &otherValues()
{
    static const Values values{{"model", "Other"},
                               {"kind", "colour"},
                               {"size", "31 x 17"},
                               {"attached", "no"},
                               {"lens cap", "yes"},
                               {"in use", "yes"},
                               {"firmware upload", "800 ms"},
                               {"replay", "some folder"},
                               {"seed", "18446744073709551615"},
                               {"storage", "no"},
                               {"capacity", "16000"},
                               {"hot pixels", "1500"},
                               {"sensor", "65535"},
                               {"failed frames", "4294967295"},
                               {"list resets", "7"}};
    return values;
}

std::string sectionOf(const Camera &camera)
{
    std::string text = "[camera " + camera.spec.serial + "]\n";
    for (const auto &value : valuesOf(camera))
        text = benchfile::setValue(text, camera.spec.serial, value.first, value.second);
    return text;
}

bool areSame(const Cameras &some, const Cameras &others)
{
    return std::equal(some.begin(), some.end(), others.begin(), others.end(),
                      [](const Camera &a, const Camera &b) {
                          return a.spec.serial == b.spec.serial && valuesOf(a) == valuesOf(b);
                      });
}

bool isWithin(std::int64_t value, std::int64_t least, std::int64_t most)
{
    return value >= least && value <= most;
}

void requirePossible(const Camera &camera)
{
    const kelvosim::CameraSpec &spec = camera.spec;
    require(isWithin(static_cast<std::int64_t>(spec.serial.size()), 1, 11),
            "a serial number fits its record");
    require(spec.model.size() <= 79, "a model name fits its record");
    require(isWithin(spec.width, 16, 16384) && isWithin(spec.height, 16, 16384), "a size can be had");
    require(isWithin(spec.firmwareUpload, 0, 600000), "an upload ends");
    require(isWithin(spec.capacity, 0, 16000), "a list of that capacity can be counted");
    require(isWithin(spec.hotPixels, 0, 1500), "so many hot pixels can be planted");
}

std::optional<Cameras> parsed(const std::string &text)
{
    const auto lines = 1 + std::count(text.begin(), text.end(), '\n');
    try {
        return benchfile::parse(text);
    } catch (const benchfile::Error &error) {
        require(isWithin(error.line(), 1, lines), "a complaint names a line of the file");
        const std::string start = "line " + std::to_string(error.line()) + ": ";
        require(std::string(error.what()).compare(0, start.size(), start) == 0,
                "a complaint begins with its line");
        return std::nullopt;
    }
}

std::optional<std::string> edited(const std::string &text, const std::string &serial,
                                  const Values::value_type &change)
{
    try {
        return benchfile::setValue(text, serial, change.first, change.second);
    } catch (const std::invalid_argument &) {
        return std::nullopt;
    }
}

/// What lies between the parts that both texts begin and end with, in the old text.
std::string replacedPart(const std::string &old, const std::string &fresh)
{
    const std::size_t shorter = std::min(old.size(), fresh.size());
    std::size_t front = 0;
    while (front < shorter && old[front] == fresh[front])
        ++front;
    std::size_t back = 0;
    while (back < shorter - front && old[old.size() - 1 - back] == fresh[fresh.size() - 1 - back])
        ++back;
    return old.substr(front, old.size() - back - front);
}

void requireCarefulEdit(const std::string &text, const std::string &serial, const Values::value_type &change)
{
    const std::optional<std::string> once = edited(text, serial, change);
    if (!once)
        return;
    require(replacedPart(text, *once).find_first_of("\n#") == std::string::npos,
            "an edit keeps lines and comments");
    require(edited(*once, serial, change) == once, "the same edit once more changes nothing");
}

void requireEdit(const std::string &text, Cameras cameras, std::size_t which,
                 const Values::value_type &change)
{
    const std::string serial = cameras[which].spec.serial;
    const std::optional<std::string> text2 = edited(text, serial, change);
    require(text2.has_value(), "a camera that was read can be edited");
    const std::optional<Cameras> found = parsed(*text2);
    require(found && found->size() == cameras.size(), "an edited file has the same cameras");
    Values wanted = valuesOf(cameras[which]);
    wanted[change.first] = change.second;
    require(valuesOf((*found)[which]) == wanted, "an edit changes the value, and it alone");
    cameras[which] = (*found)[which];
    require(areSame(*found, cameras), "an edit leaves the other cameras alone");
}

void requireSound(const std::string &text, const Cameras &cameras)
{
    std::string written;
    for (const Camera &camera : cameras) {
        requirePossible(camera);
        written += sectionOf(camera);
    }
    const std::optional<Cameras> again = parsed(written);
    require(again && areSame(*again, cameras), "cameras that are written are read again");
    if (cameras.empty())
        return;
    for (const auto &change : otherValues())
        requireEdit(text, cameras, text.size() % cameras.size(), change);
}

} // namespace

QByteArray outcomeOf(const QByteArray &input)
{
    const std::string text = input.toStdString();
    const std::optional<Cameras> cameras = parsed(text);
    if (cameras)
        requireSound(text, *cameras);
    for (const auto &change : otherValues())
        requireCarefulEdit(text, "KV1", change); // as far as the file goes, refused or not
    return !cameras ? "refused" : cameras->empty() ? "none" : "cameras";
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    outcomeOf(bytesOf(data, size));
    return 0;
}
