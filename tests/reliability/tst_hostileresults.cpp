// SPDX-License-Identifier: MIT
// The library claims success and answers nonsense, lie by lie at each place of a way through the program.

#include "programway.h"
#include "statedtexts.h"

#include <QtTest>

#include <sys/resource.h>

#include <cstdio>
#include <limits>

namespace {

const std::string Mono = "KVMONO";
constexpr double NotANumber = std::numeric_limits<double>::quiet_NaN();
constexpr double Infinite = std::numeric_limits<double>::infinity();
constexpr double Tiny = std::numeric_limits<double>::denorm_min();
constexpr double Huge = std::numeric_limits<double>::max();
constexpr double LargestInt = std::numeric_limits<std::int32_t>::max();
constexpr double SmallestInt = std::numeric_limits<std::int32_t>::min();
constexpr double LargestWord = std::numeric_limits<std::uint32_t>::max();
const char *const WaitText = "no wait"; // of waits that are told to fail
constexpr int BufferCount = 3;
constexpr double MostImageMemory = 1024.0 * 1024 * 1024; // bytes of a sequence
constexpr long MostMoreMemory = 512 * 1024;              // KiB that a lie may cost

char foreignMemory[64]; // of nobody's sequence

struct Lie
{
    QString name;
    QStringList calls; // told in the steps that make any of these: "vx_AOI 16", "vx_AOI", or "*" for all
    std::function<void()> tell;
};

/// The library's own words that a lie may bring about, as when it is asked for an area of no size.
bool isLibrarysText(const QString &text)
{
    static const QStringList texts = {
        "The camera handle is not valid.",
        "The image area lies outside the sensor.",
        "The pixel clock is out of range.",
        "The image memory is unknown.",
        "No error.",
        "No frame is complete yet.",
    };
    return texts.contains(text);
}

/// What else the program says of frames that do not fit together.
bool isDetectorsText(const QString &text)
{
    static const QStringList texts = {
        "Matrix has no size",
        "Image format for hot pixel detection not supported.",
        "Aqcuired images are not the same size.",
    };
    return texts.contains(text);
}

int stride()
{
    bool isNumber = false;
    const int wanted = qEnvironmentVariableIntValue("SPECKMEND_STRIDE", &isNumber);
    return isNumber && wanted > 0 ? wanted : OTHER_STRIDE;
}

long peakMemory()
{
    rusage usage{};
    getrusage(RUSAGE_SELF, &usage);
    return usage.ru_maxrss;
}

} // namespace

class TestHostileResults : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void eachLieAtEachPlace();

private:
    void addLies();
    void addListLies();
    void addDeviceLies();
    void addSizeLies();
    void addBufferLies();
    void addSettingLies();
    void addHotpixelLies();
    void addTextLies();
    void addEventLies();
    static void tellOfForeignFrames();
    void checkSizesAskedFor();
    void lie(const QString &name, const QStringList &calls, const std::function<void()> &tell);
    void lieAboutNumbers(const std::string &function, int outputs,
                         std::int64_t command = kelvosim::AnyCommand);
    bool isMadeIn(int step, const QString &call) const;
    QVector<int> placesOf(const Lie &told) const;
    void play(const Lie &told, int from, int until);

    ProgramWay way;
    QVector<QStringList> callsOfSteps;
    QVector<Lie> lies;
    int runs = 0;
    int failures = 0;
    qint64 slowest = 0;
};

void TestHostileResults::initTestCase()
{
    way.setName("without a lie");
    way.play();
    QVERIFY2(way.findings().isEmpty(), qPrintable(way.findings().join("; ")));
    const std::vector<kelvosim::Call> calls = kelvosim::log();
    const QVector<int> &first = way.firstCallOfSteps();
    for (int step = 0; step < way.length(); ++step) {
        const int end = step + 1 < first.size() ? first.at(step + 1) : static_cast<int>(calls.size());
        QStringList names;
        for (int call = first.at(step); call < end; ++call)
            names << QString::fromStdString(kelvosim::name(calls[static_cast<std::size_t>(call)]));
        callsOfSteps << names;
    }
    way.libraryLies = true;
    way.clicksAfterEachStep = true;
    addLies();
}

void TestHostileResults::lie(const QString &name, const QStringList &calls, const std::function<void()> &tell)
{
    lies << Lie{name, calls, tell};
}

void TestHostileResults::addLies()
{
    addListLies();
    addDeviceLies();
    addSizeLies();
    addBufferLies();
    addSettingLies();
    addHotpixelLies();
    addTextLies();
    addEventLies();
}

void TestHostileResults::addListLies()
{
    const QStringList asking = {"vx_GetNumberOfCameras", "vx_GetCameraList"};
    const std::pair<std::int32_t, std::int32_t> counts[] = {
        {INT_MIN, -1}, {-2, -1}, {0, -1},      {1, -1},    {100, -1},          {INT_MAX, -1},
        {2, 0},        {2, 3},   {2, INT_MAX}, {300, 300}, {INT_MAX, INT_MAX},
    };
    for (const auto &[number, listed] : counts) {
        lie(QString("%1 cameras, %2 in the list").arg(number).arg(listed), asking,
            [n = number, l = listed] { kelvosim::lieAboutCameras(n, l); });
    }
    lie("texts of cameras without an end", asking,
        [] { kelvosim::lieAboutTexts(Mono, std::string(16, 'S'), std::string(80, 'M')); });
    lie("texts of cameras in no alphabet", asking,
        [] { kelvosim::lieAboutTexts(Mono, std::string(16, '\xff'), std::string(80, '\x80')); });
}

void TestHostileResults::addDeviceLies()
{
    for (const double handle : {0.0, 1.0, LargestWord}) {
        lie(QString("handle %1").arg(handle), {"vx_InitCamera"},
            [=] { kelvosim::overrideNumber("vx_InitCamera", 0, handle); });
    }
    lie("handle 0 and every call a success", {"vx_InitCamera"}, [] {
        kelvosim::overrideNumber("vx_InitCamera", 0, 0);
        for (const char *call : {"vx_GetSensorInfo", "vx_SetColorMode", "vx_AOI", "vx_AllocImageMem",
                                 "vx_AddToSequence", "vx_CaptureVideo", "vx_HotPixel"})
            kelvosim::overrideResult(call, 0);
    });
    for (const double milliseconds : {SmallestInt, -1.0, LargestInt}) {
        lie(QString("upload of %1 ms").arg(milliseconds), {"vx_GetDuration"},
            [=] { kelvosim::overrideNumber("vx_GetDuration", 0, milliseconds); });
    }
    lie("an upload without end", {"vx_InitCamera"}, [] { kelvosim::overrideResult("vx_InitCamera", 184); });
    const std::vector<std::uint8_t> ones(100, 0xff);
    lie("sensor information of ones", {"vx_GetSensorInfo"},
        [=] { kelvosim::overrideData("vx_GetSensorInfo", ones); });
    lie("a serial number without an end", {"vx_GetCameraInfo"},
        [=] { kelvosim::overrideData("vx_GetCameraInfo", ones); });
    lie("another camera's serial number", {"vx_GetCameraInfo"}, [] {
        kelvosim::overrideData("vx_GetCameraInfo", {'K', 'V', 'C', 'O', 'L', 'O', 'U', 'R', 0});
    });
    for (const int mode : {INT_MIN, -1, 0, 6, 11, INT_MAX}) {
        lie(QString("colour mode %1").arg(mode), {"vx_SetColorMode"},
            [=] { kelvosim::overrideResult("vx_SetColorMode", mode, 32768); });
    }
}

void TestHostileResults::addSizeLies()
{
    const std::pair<double, double> sizes[] = {
        {0, 0},
        {0, 40},
        {48, 0},
        {-1, -1},
        {-48, 40},
        {SmallestInt, SmallestInt},
        {1, 1},
        {1, 40},
        {48, 1},
        {2, 2},
        {47, 39},
        {100, 100},
        {LargestInt, LargestInt},
        {LargestInt, 1},
        {1, LargestInt},
        {65536, 65536},
        {100000, 100000},
        {30000, 30000},
        {20000, 20000},
    };
    for (const auto &[width, height] : sizes) {
        const auto tellSize = [w = width, h = height] {
            kelvosim::overrideNumber("vx_AOI", 0, w, 16);
            kelvosim::overrideNumber("vx_AOI", 1, h, 16);
        };
        const QString name = QString("a sensor of %1 x %2").arg(width).arg(height);
        lie(name, {"vx_AOI"}, tellSize);
        lie(name + ", and the area is set", {"vx_AOI"}, [=] {
            tellSize();
            kelvosim::overrideResult("vx_AOI", 0, 1);
        });
        if (width > 0 && height > 0 && width * height * BufferCount <= MostImageMemory)
            continue; // how much memory is behind a pointer cannot be asked
        lie(name + ", and there is memory for it", {"vx_AOI"}, [=] {
            tellSize();
            kelvosim::overrideResult("vx_AOI", 0, 1);
            kelvosim::overrideResult("vx_AllocImageMem", 0);
            kelvosim::overridePointer("vx_AllocImageMem", foreignMemory);
            kelvosim::overrideResult("vx_AddToSequence", 0);
            kelvosim::overrideResult("vx_CaptureVideo", 0);
            tellOfForeignFrames();
        });
    }
}

/// Frame after frame, all in the foreign memory.
void TestHostileResults::tellOfForeignFrames()
{
    kelvosim::overridePointer("vx_GetActSeqBuf", foreignMemory);
    kelvosim::overrideResult("vx_GetActSeqBuf", 0);
    kelvosim::overrideResult("vx_LockSeqBuf", 0);
    kelvosim::failCall("vx_Event", kelvosim::EveryCall, 5, WaitText, 7);
    kelvosim::overrideResult("vx_Event", 0, 7);
    kelvosim::overrideNumber("vx_Event", 0, 2, 7);
}

void TestHostileResults::addBufferLies()
{
    for (char *pointer : {static_cast<char *>(nullptr), foreignMemory + 1}) {
        const QString name = pointer ? "foreign" : "null";
        lie("memory at a " + name + " pointer", {"vx_AllocImageMem"},
            [=] { kelvosim::overridePointer("vx_AllocImageMem", pointer); });
        lie("memory at a " + name + " pointer, joined", {"vx_AllocImageMem"}, [=] {
            kelvosim::overridePointer("vx_AllocImageMem", pointer);
            kelvosim::overrideResult("vx_AddToSequence", 0);
            kelvosim::overrideResult("vx_CaptureVideo", 0);
        });
        lie("last frame at a " + name + " pointer", {"vx_GetActSeqBuf"},
            [=] { kelvosim::overridePointer("vx_GetActSeqBuf", pointer); });
        lie("last frame at a " + name + " pointer, locked", {"vx_GetActSeqBuf"}, [=] {
            kelvosim::overridePointer("vx_GetActSeqBuf", pointer);
            kelvosim::overrideResult("vx_GetActSeqBuf", 0);
            kelvosim::overrideResult("vx_LockSeqBuf", 0);
        });
    }
    lie("memory that was not allocated", {"vx_AllocImageMem"}, [] {
        kelvosim::failCall("vx_AllocImageMem", kelvosim::EveryCall, 1, "");
        kelvosim::overrideResult("vx_AllocImageMem", 0);
        kelvosim::overrideResult("vx_AddToSequence", 0);
    });
    lie("locks that are none", {"vx_LockSeqBuf"}, [] {
        kelvosim::failCall("vx_LockSeqBuf", kelvosim::EveryCall, 1, "");
        kelvosim::overrideResult("vx_LockSeqBuf", 0);
    });
}

/// Every output of a call, by itself and all together.
void TestHostileResults::lieAboutNumbers(const std::string &function, int outputs, std::int64_t command)
{
    const QString call = QString::fromStdString(function);
    for (const double value : {NotANumber, Infinite, -Infinite, 0.0, -1.0, Tiny, Huge, -Huge}) {
        for (int index = 0; index < outputs; ++index) {
            lie(QString("%1: output %2 is %3").arg(call).arg(index).arg(value), {call},
                [=] { kelvosim::overrideNumber(function, index, value, command); });
        }
        if (outputs == 1)
            continue;
        lie(QString("%1: all outputs are %2").arg(call).arg(value), {call}, [=] {
            for (int index = 0; index < outputs; ++index)
                kelvosim::overrideNumber(function, index, value, command);
        });
    }
}

void TestHostileResults::addSettingLies()
{
    lieAboutNumbers("vx_GetFramesPerSecond", 1);
    lieAboutNumbers("vx_GetFrameTimeRange", 3);
    lieAboutNumbers("vx_SetFrameRate", 1);
    lieAboutNumbers("vx_GetExposureRange", 3);
    lieAboutNumbers("vx_SetExposureTime", 1);
    const std::pair<double, double> clocks[] = {
        {LargestInt, SmallestInt},  {SmallestInt, LargestInt}, {0, 0}, {-5, -1},
        {SmallestInt, SmallestInt}, {LargestInt, LargestInt},
    };
    for (const auto &[min, max] : clocks) {
        lie(QString("pixel clocks from %1 to %2").arg(min).arg(max), {"vx_GetPixelClockRange"},
            [lowest = min, highest = max] {
                kelvosim::overrideNumber("vx_GetPixelClockRange", 0, lowest);
                kelvosim::overrideNumber("vx_GetPixelClockRange", 1, highest);
            });
    }
    for (const int value : {INT_MIN, -1, 0, INT_MAX}) {
        lie(QString("pixel clock %1").arg(value), {"vx_SetPixelClock"}, [=] {
            kelvosim::overrideResult("vx_SetPixelClock", value, 32768);
            kelvosim::overrideResult("vx_SetPixelClock", value, 32769);
        });
        lie(QString("gain %1").arg(value), {"vx_SetHardwareGain"},
            [=] { kelvosim::overrideResult("vx_SetHardwareGain", value, 32768); });
    }
}

void TestHostileResults::addHotpixelLies()
{
    const double counts[] = {0, 1, 1000, 1001, 32768, 65535, 65536, LargestInt, LargestInt + 1, LargestWord};
    for (const std::int64_t command : {33025, 33031, 33034, 33037, 32769}) {
        for (const double count : counts) {
            const QString call = QString("vx_HotPixel %1").arg(command);
            const QString name = QString("%1 tells %2").arg(call).arg(count);
            const auto tellCount = [=] { kelvosim::overrideNumber("vx_HotPixel", 0, count, command); };
            lie(name, {call}, tellCount);
            if (command == 33037 || command == 32769)
                continue;
            lie(name + ", and the list is read", {call}, [=] {
                tellCount();
                kelvosim::overrideResult("vx_HotPixel", 0, command + 1);
                kelvosim::overrideData("vx_HotPixel", {0xff, 0xff, 1, 0, 2, 0}, command + 1);
            });
        }
    }
    for (const int word : {0, 1, 3, 1000, 32768, 65535}) {
        for (const std::int64_t command : {33026, 33032, 33035}) {
            const auto low = static_cast<std::uint8_t>(word & 0xff);
            const auto high = static_cast<std::uint8_t>(word >> 8);
            lie(QString("the list of vx_HotPixel %1 claims %2 entries").arg(command).arg(word),
                {QString("vx_HotPixel %1").arg(command)}, [=] {
                    kelvosim::overrideData("vx_HotPixel", {low, high}, command);
                });
        }
    }
    lie("a current list that is not there", {"vx_HotPixel 33024"},
        [] { kelvosim::overrideResult("vx_HotPixel", 0, 33024); });
}

void TestHostileResults::addTextLies()
{
    static std::string longText(1024 * 1024, 'x');
    static std::string noAlphabet(300, '\xff');
    static std::string lines = "one\ntwo\rthree\tfour\x01%1 %2 %s<b>&amp;";
    const std::pair<QString, char *> texts[] = {
        {"null", nullptr},
        {"empty", &longText[longText.size()]},
        {"of a megabyte", &longText[0]},
        {"in no alphabet", &noAlphabet[0]},
        {"of lines and marks", &lines[0]},
    };
    for (const auto &[name, text] : texts) {
        for (const char *failing : {"vx_GetSensorInfo", "vx_GetActSeqBuf", "vx_GetPixelClockRange"}) {
            lie(QString("%1 fails, its text is %2").arg(failing, name), {failing}, [=, pointer = text] {
                kelvosim::failCall(failing, kelvosim::EveryCall, 23, "words");
                kelvosim::overridePointer("vx_GetError", pointer);
                kelvosim::overrideResult("vx_GetError", 0);
            });
        }
    }
}

void TestHostileResults::addEventLies()
{
    for (const double code : {0.0, 2.0, 8.0, 9.0, 128.0, 129.0, 130.0, 10198.0, 10199.0, LargestWord}) {
        lie(QString("waits end with event %1").arg(code), {"*"},
            [=] { kelvosim::overrideNumber("vx_Event", 0, code, 7); });
    }
    lie("events that nobody asked for", {"*"}, [] {
        for (const std::uint32_t code : {2u, 8u, 9u, 128u, 129u, 130u, 10198u, 10199u, 0u, 4294967295u}) {
            kelvosim::signalDeviceEvent(code);
            kelvosim::signalEvent(Mono, code);
            kelvosim::signalEvent("KVCOLOUR", code);
        }
    });
    for (const double code : {2.0, 8.0, 9.0, 128.0, 130.0, 77.0}) {
        lie(QString("waits end at once with event %1").arg(code), {"*"}, [=] {
            kelvosim::failCall("vx_Event", kelvosim::EveryCall, 5, WaitText, 7);
            kelvosim::overrideResult("vx_Event", 0, 7);
            kelvosim::overrideNumber("vx_Event", 0, code, 7);
        });
    }
}

bool TestHostileResults::isMadeIn(int step, const QString &call) const
{
    return call == "*" ||
           std::any_of(callsOfSteps.at(step).begin(), callsOfSteps.at(step).end(),
                       [&](const QString &made) { return made == call || made.section(' ', 0, 0) == call; });
}

QVector<int> TestHostileResults::placesOf(const Lie &told) const
{
    QVector<int> places;
    for (int step = 0; step < way.length(); ++step) {
        if (std::any_of(told.calls.begin(), told.calls.end(),
                        [&](const QString &call) { return isMadeIn(step, call); }))
            places << step;
    }
    return places;
}

/// Memory that cannot be, or that would be gigabytes, is not even asked for.
void TestHostileResults::checkSizesAskedFor()
{
    for (const kelvosim::Call &call : kelvosim::log()) {
        if (call.function != "vx_AllocImageMem")
            continue;
        const double width = call.numbers.at(0);
        const double height = call.numbers.at(1);
        const double bytes = width * height * call.numbers.at(2) / 8;
        if (width < 1 || height < 1 || bytes * BufferCount > MostImageMemory)
            way.find(QString("asks for memory for %1 x %2").arg(width).arg(height));
    }
}

/// Plays the way while the lie is told from one step until before another.
void TestHostileResults::play(const Lie &told, int from, int until)
{
    const QString name =
        told.name + " from '" + way.stepName(from) + "' on, " + QString::number(until - from) + " steps";
    way.setName(name);
    way.beforeStep = [&](int step) {
        if (step == from)
            told.tell();
        if (step == until) {
            kelvosim::tellTheTruth();
            kelvosim::clearFaults();
            kelvosim::lieAboutCameras(-1, -1);
            kelvosim::lieAboutTexts(Mono, "", "");
        }
    };
    QElapsedTimer timer;
    timer.start();
    const long memoryBefore = peakMemory();
    way.play();
    slowest = std::max(slowest, timer.elapsed());
    if (++runs % 250 == 0) {
        std::printf("%d runs\n", runs);
        std::fflush(stdout);
    }
    if (peakMemory() - memoryBefore > MostMoreMemory)
        way.find(QString("took %1 KiB").arg(peakMemory() - memoryBefore));
    checkSizesAskedFor();
    for (const QString &text : way.shown()) {
        const bool isTold = told.name.contains("its text is") || text == WaitText;
        if (!isStatedText(text) && !isLibrarysText(text) && !isDetectorsText(text) && !isTold)
            way.find("shows '" + text.left(100) + "'");
    }
    if (way.findings().isEmpty())
        return;
    ++failures;
    std::printf("FINDING %s: %s\n", qPrintable(name), qPrintable(way.findings().join("; ")));
    std::fflush(stdout);
}

void TestHostileResults::eachLieAtEachPlace()
{
    int number = 0;
    const QString only = qEnvironmentVariable("SPECKMEND_LIE");
    for (const Lie &told : lies) {
        if (!told.name.contains(only))
            continue;
        const QVector<int> places = placesOf(told);
        QVERIFY2(!places.isEmpty(), qPrintable(told.name));
        if (number++ % stride() == 0)
            play(told, places.first(), way.length());
        for (const int step : places) {
            if (number++ % stride() == 0)
                play(told, step, step + 1);
        }
    }
    std::printf("%d lies at %d places: %d runs, slowest %lld ms, %d findings\n", lies.size(), number, runs,
                slowest, failures);
    QCOMPARE(failures, 0);
}

QTEST_MAIN(TestHostileResults)
#include "tst_hostileresults.moc"
