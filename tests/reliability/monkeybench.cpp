// SPDX-License-Identifier: MIT
// Changes the bench at random.

#include "monkeybench.h"

#include "monkeydiary.h"

#include <algorithm>

namespace {

const std::vector<std::string> Serials{"KVMONO", "KVBAYER", "KVCOLOUR", "KVPLAIN", "KVFREE"};

const std::vector<std::string> Functions{
    "vx_GetNumberOfCameras", "vx_GetCameraList",     "vx_InitCamera",         "vx_GetDuration",
    "vx_GetSensorInfo",      "vx_GetCameraInfo",     "vx_SetColorMode",       "vx_AOI",
    "vx_HotPixel",           "vx_HotPixel",          "vx_HotPixel",           "vx_AllocImageMem",
    "vx_AddToSequence",      "vx_GetActSeqBuf",      "vx_LockSeqBuf",         "vx_CaptureVideo",
    "vx_StopLiveVideo",      "vx_FreezeVideo",       "vx_GetFramesPerSecond", "vx_GetPixelClockRange",
    "vx_SetPixelClock",      "vx_GetFrameTimeRange", "vx_SetFrameRate",       "vx_GetExposureRange",
    "vx_SetExposureTime",    "vx_SetHardwareGain"};

const std::vector<std::string> Releases{"vx_ExitCamera", "vx_FreeImageMem", "vx_UnlockSeqBuf",
                                        "vx_ClearSequence"};

/// Statuses that the program gives a meaning are among them.
int anyStatus(MonkeyRandom &random)
{
    return random.pick({1, -1, 50, 61, 129, 184, 0x7FFFFFFF});
}

std::string anyText(MonkeyRandom &random)
{
    return random.pick<const char *>({"", "The cable is loose.", "%1 %s %n", "<b>bold</b>\n\n\ttext"});
}

kelvosim::CameraSpec specOf(const std::string &serial)
{
    kelvosim::CameraSpec spec;
    spec.serial = serial;
    spec.model = "M-" + serial;
    spec.width = 96;
    spec.height = 80;
    spec.hotPixels = 8;
    spec.capacity = 60;
    spec.factoryList = {{10, 10}, {20, 30}, {95, 79}, {2000, 3000}};
    spec.freeRunning = serial == "KVFREE";
    spec.storesLists = serial != "KVPLAIN";
    if (serial == "KVBAYER") {
        spec.kind = kelvosim::SensorKind::RawBayer;
        spec.width = 64;
        spec.height = 48;
        spec.sensorId = 0x0205;
    } else if (serial == "KVCOLOUR") {
        spec.kind = kelvosim::SensorKind::Colour32;
        spec.width = 33;
        spec.height = 17;
    }
    return spec;
}

std::size_t frameBytes(const std::string &serial)
{
    const kelvosim::CameraSpec spec = specOf(serial);
    const int bytes = spec.kind == kelvosim::SensorKind::Colour32 ? 4 : 1;
    return static_cast<std::size_t>(spec.width) * static_cast<std::size_t>(spec.height) *
           static_cast<std::size_t>(bytes);
}

std::vector<kelvosim::Pixel> anyList(MonkeyRandom &random, int longest)
{
    std::vector<kelvosim::Pixel> list(static_cast<std::size_t>(random.below(longest)));
    for (kelvosim::Pixel &pixel : list) {
        pixel.x = static_cast<std::uint16_t>(random.below(random.oneIn(10) ? 65536 : 100));
        pixel.y = static_cast<std::uint16_t>(random.below(random.oneIn(10) ? 65536 : 90));
    }
    return list;
}

void sprinkle(std::vector<std::uint8_t> &frame, MonkeyRandom &random, int most)
{
    if (frame.empty())
        return;
    for (int i = random.below(most); i > 0; --i)
        frame[random.number() % frame.size()] = static_cast<std::uint8_t>(random.from(20, 255));
}

QString named(const std::string &serial)
{
    return QString::fromStdString(serial);
}

} // namespace

void MonkeyBench::reset(bool releases, MonkeyRandom &random)
{
    kelvosim::reset();
    kelvosim::setLogging(false);
    present.clear();
    storedLists.clear();
    releasesMayFail = releases;
    releaseWasFailed = false;
    for (const std::string &serial : Serials)
        addCamera(serial, random);
}

MonkeyKind MonkeyBench::kind(const char *name, int weight, Change change)
{
    return {name, weight, MonkeyKind::Anywhere,
            [this, change](MonkeyRandom &random) { (this->*change)(random); }};
}

MonkeyKinds MonkeyBench::kinds()
{
    return {kind("plug", 12, &MonkeyBench::plug),
            kind("unplug", 6, &MonkeyBench::unplug),
            kind("add or remove camera", 3, &MonkeyBench::addOrRemove),
            kind("used elsewhere", 3, &MonkeyBench::useElsewhere),
            kind("lens cap", 2, &MonkeyBench::coverLens),
            kind("list order", 2, &MonkeyBench::order),
            kind("store list", 2, &MonkeyBench::storeList),
            kind("factory list", 2, &MonkeyBench::changeFactoryList),
            kind("dark frame", 25, &MonkeyBench::pushDarkFrame),
            kind("any frame", 6, &MonkeyBench::pushAnyFrame),
            kind("fail frames", 4, &MonkeyBench::failFrames),
            kind("frame rate", 1, &MonkeyBench::changeFrameRate),
            kind("camera event", 5, &MonkeyBench::signalCameraEvent),
            kind("device event", 5, &MonkeyBench::signalDeviceEvent),
            kind("lie about cameras", 2, &MonkeyBench::lieAboutCameras),
            kind("lie about texts", 1, &MonkeyBench::lieAboutTexts),
            kind("lie about lists", 3, &MonkeyBench::lieAboutLists),
            kind("tell the truth", 8, &MonkeyBench::tellTheTruth),
            kind("fail call", 8, &MonkeyBench::failCall),
            kind("fail any call", 3, &MonkeyBench::failAnyCall),
            kind("silence errors", 1, &MonkeyBench::silenceErrors),
            kind("slow down", 1, &MonkeyBench::slowDown),
            kind("clear faults", 16, &MonkeyBench::clearFaults)};
}

void MonkeyBench::behave()
{
    kelvosim::clearFaults();
    kelvosim::lieAboutCameras(-1, -1);
    kelvosim::lieAboutListWord(-1);
    kelvosim::lieAboutCounts(std::nullopt);
    for (const std::string &serial : present)
        kelvosim::lieAboutTexts(serial, "", "");
}

void MonkeyBench::acceptStoredLists()
{
    for (const std::string &serial : present)
        storedLists[serial] = kelvosim::storedUserList(serial);
}

void MonkeyBench::addCamera(const std::string &serial, MonkeyRandom &random)
{
    kelvosim::CameraSpec spec = specOf(serial);
    spec.firmwareUpload = random.oneIn(5) ? 2 : 0;
    spec.sensorId = random.oneIn(12) ? 0x4D : spec.sensorId; // a sensor that is refused
    spec.attached = !random.oneIn(4);
    kelvosim::addCamera(spec);
    present.push_back(serial);
    storedLists[serial] = kelvosim::storedUserList(serial);
}

std::string MonkeyBench::anyPresent(MonkeyRandom &random) const
{
    return random.pick(present);
}

void MonkeyBench::plug(MonkeyRandom &random)
{
    const std::string serial = anyPresent(random);
    monkeydiary::note(named(serial));
    kelvosim::plug(serial);
}

void MonkeyBench::unplug(MonkeyRandom &random)
{
    const std::string serial = anyPresent(random);
    monkeydiary::note(named(serial));
    kelvosim::unplug(serial);
}

/// A camera does not come back while its old self may still be open: they would share one stored list.
void MonkeyBench::addOrRemove(MonkeyRandom &random)
{
    const std::string serial = random.pick(Serials);
    const auto found = std::find(present.begin(), present.end(), serial);
    const bool isThere = found != present.end();
    monkeydiary::note((isThere ? "remove " : "add ") + named(serial));
    if (!isThere && kelvosim::openHandles() == 0) {
        addCamera(serial, random);
    } else if (isThere && present.size() > 1) {
        kelvosim::removeCamera(serial);
        present.erase(found);
        storedLists.remove(serial);
    }
}

void MonkeyBench::useElsewhere(MonkeyRandom &random)
{
    kelvosim::setUsedElsewhere(anyPresent(random), random.oneIn(3));
}

void MonkeyBench::coverLens(MonkeyRandom &random)
{
    kelvosim::setLensCap(anyPresent(random), random.oneIn(2));
}

void MonkeyBench::order(MonkeyRandom &random)
{
    kelvosim::setListOrder({random.pick(Serials), random.pick(Serials)});
}

void MonkeyBench::storeList(MonkeyRandom &random)
{
    const std::string serial = anyPresent(random);
    kelvosim::setStoredUserList(serial, anyList(random, 50));
    storedLists[serial] = kelvosim::storedUserList(serial);
}

void MonkeyBench::changeFactoryList(MonkeyRandom &random)
{
    kelvosim::setFactoryList(anyPresent(random), anyList(random, random.oneIn(20) ? 1100 : 30));
}

/// Goes to the camera that is open, if any: at most one takes it.
void MonkeyBench::push(std::vector<std::uint8_t> pixels)
{
    for (const std::string &serial : present) {
        if (kelvosim::pushFrame(serial, pixels))
            monkeydiary::count("frames pushed");
    }
}

void MonkeyBench::pushDarkFrame(MonkeyRandom &random)
{
    for (const std::string &serial : present) {
        std::vector<std::uint8_t> frame(frameBytes(serial), static_cast<std::uint8_t>(random.below(4)));
        sprinkle(frame, random, 12);
        if (kelvosim::pushFrame(serial, frame))
            monkeydiary::count("frames pushed");
    }
}

void MonkeyBench::pushAnyFrame(MonkeyRandom &random)
{
    std::vector<std::uint8_t> frame(static_cast<std::size_t>(random.below(12000)),
                                    static_cast<std::uint8_t>(random.below(256)));
    if (random.oneIn(20))
        sprinkle(frame, random, 12000);
    push(frame);
}

void MonkeyBench::failFrames(MonkeyRandom &random)
{
    kelvosim::failFrames(anyPresent(random), random.from(1, 5));
}

void MonkeyBench::changeFrameRate(MonkeyRandom &random)
{
    kelvosim::overrideFrameRate(anyPresent(random), random.pick({0.0, 1.0, 60.0}));
}

void MonkeyBench::signalCameraEvent(MonkeyRandom &random)
{
    const auto code = static_cast<std::uint32_t>(random.pick({0, 1, 2, 2, 8, 9, 128, 129, 130, 200, -1}));
    monkeydiary::note(QString::number(code));
    for (const std::string &serial : present)
        kelvosim::signalEvent(serial, code);
}

void MonkeyBench::signalDeviceEvent(MonkeyRandom &random)
{
    const auto code = static_cast<std::uint32_t>(random.pick({0, 2, 9, 128, 129, 130, 200}));
    monkeydiary::note(QString::number(code));
    kelvosim::signalDeviceEvent(code);
}

void MonkeyBench::lieAboutCameras(MonkeyRandom &random)
{
    const int number = random.oneIn(400) ? 40000 : random.pick({-1000000, 0, 1, 2, 7, 60, -1});
    const int listed = random.oneIn(100) ? 0x7FFFFFFF : random.pick({0, 1, 3, 60, 1000000, -1});
    monkeydiary::note(QString("%1 %2").arg(number).arg(listed));
    kelvosim::lieAboutCameras(number, listed);
}

void MonkeyBench::lieAboutTexts(MonkeyRandom &random)
{
    const std::string serial = random.oneIn(2) ? std::string(16, 'S') : random.pick(Serials);
    kelvosim::lieAboutTexts(anyPresent(random), serial, std::string(80, '%'));
}

void MonkeyBench::lieAboutLists(MonkeyRandom &random)
{
    if (random.oneIn(2))
        kelvosim::lieAboutListWord(random.pick({0, 1, 5, 1000, 65535}));
    else
        kelvosim::lieAboutCounts(random.pick({-1, 0, 3, 999, 1000, 1001, 65536, 0x7FFFFFFF}));
}

void MonkeyBench::tellTheTruth(MonkeyRandom &)
{
    kelvosim::lieAboutCameras(-1, -1);
    kelvosim::lieAboutListWord(-1);
    kelvosim::lieAboutCounts(std::nullopt);
    for (const std::string &serial : present)
        kelvosim::lieAboutTexts(serial, "", "");
}

/// The calls that wait for events are failed rarely: a wait that cannot be woken costs half a second.
void MonkeyBench::failCall(MonkeyRandom &random)
{
    std::string function = random.oneIn(200) ? "vx_Event" : random.pick(Functions);
    if (releasesMayFail && random.oneIn(8)) {
        function = random.pick(Releases);
        releaseWasFailed = true;
    }
    const int nth = random.oneIn(4) ? kelvosim::EveryCall : random.from(1, 4);
    monkeydiary::note(QString("%1 %2").arg(named(function)).arg(nth));
    monkeydiary::count("faults set");
    kelvosim::failCall(function, nth, anyStatus(random), anyText(random));
}

/// May hit a call that gives something back.
void MonkeyBench::failAnyCall(MonkeyRandom &random)
{
    if (!releasesMayFail)
        return;
    releaseWasFailed = true;
    monkeydiary::count("faults set");
    const int nth = random.from(1, 40);
    monkeydiary::note(QString::number(nth));
    kelvosim::failNthCall(static_cast<std::uint64_t>(nth), false, anyStatus(random), anyText(random));
}

void MonkeyBench::silenceErrors(MonkeyRandom &random)
{
    kelvosim::failGetError(random.oneIn(2));
}

void MonkeyBench::slowDown(MonkeyRandom &random)
{
    kelvosim::delayCall(random.pick(Functions), 1);
}

void MonkeyBench::clearFaults(MonkeyRandom &)
{
    kelvosim::clearFaults();
}
