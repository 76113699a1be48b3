// SPDX-License-Identifier: MIT
// Every call of the camera library fails once, and from every call on all fail, on a way through the program.

#include "programway.h"
#include "statedtexts.h"

#include <QtTest>

#include <algorithm>
#include <cstdio>

namespace {

constexpr std::int32_t FaultStatus = 23;
const char *const FaultText = "the library's own words";

constexpr int FirstStride = FIRST_STRIDE;
constexpr int OtherStride = OTHER_STRIDE;

/// Every how-manieth call is tried; SPECKMEND_STRIDE=1 makes it all in each loop.
int stride(int usual)
{
    bool isNumber = false;
    const int wanted = qEnvironmentVariableIntValue("SPECKMEND_STRIDE", &isNumber);
    return isNumber && wanted > 0 ? wanted : usual;
}

QString nameOf(const kelvosim::Call &call)
{
    return QString::fromStdString(kelvosim::name(call));
}

} // namespace

class TestCallFails : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void init();
    void theWayItselfIsAlwaysTheSame();
    void everyCallFailsOnce_data() { textRows(); }
    void everyCallFailsOnce();
    void fromEveryCallOnAllFail_data() { textRows(); }
    void fromEveryCallOnAllFail();
    void everyCallOfTheEventThreadsFailsOnce_data() { textRows(); }
    void everyCallOfTheEventThreadsFailsOnce();
    void everyClosingFailsOnce();
    void everyQuestionForATextFailsOnce();

private:
    static void textRows();
    QStringList callsHere() const;
    QString expectedText(const kelvosim::Call &call, int step, const QString &ownWords) const;
    const kelvosim::Call *failedCall(const std::vector<kelvosim::Call> &calls) const;
    void playFailing(const QString &name);
    void checkTexts(const QString &ownWords);
    void checkTold(const QString &ownWords);
    void lookAtFindings(const QString &name);
    void report(const char *what) const;

    ProgramWay way;
    QStringList cleanCalls; // of this thread
    int countedCalls = 0;   // those that failNthCallHere() counts
    QStringList cleanTexts;
    int runs = 0;
    int failures = 0; // findings
    qint64 slowest = 0;
};

void TestCallFails::textRows()
{
    QTest::addColumn<QString>("text");
    QTest::newRow("with a text") << QString(FaultText);
    QTest::newRow("without a text") << QString();
}

/// The calls of this thread by name, those for texts and those that close included.
QStringList TestCallFails::callsHere() const
{
    QStringList names;
    for (const std::string &name : kelvosim::calledHere())
        names << QString::fromStdString(name);
    return names;
}

void TestCallFails::initTestCase()
{
    QElapsedTimer timer;
    timer.start();
    way.setName("without a fault");
    way.play();
    cleanCalls = callsHere();
    countedCalls = cleanCalls.size() - cleanCalls.count("vx_ExitCamera");
    cleanTexts = way.shown();
    QVERIFY2(way.findings().isEmpty(), qPrintable(way.findings().join("; ")));
    std::printf("a way of %d steps makes %d calls on the GUI thread, %d in all, in %lld ms\n", way.length(),
                cleanCalls.size(), static_cast<int>(kelvosim::log().size()), timer.elapsed());
}

void TestCallFails::init()
{
    way.beforeStep = {};
    way.diesWithFirstFailure = false;
    runs = 0;
    failures = 0;
    slowest = 0;
}

/// Else "the n-th call" would not name the same call twice.
void TestCallFails::theWayItselfIsAlwaysTheSame()
{
    for (int round = 0; round < 3; ++round) {
        way.play();
        QVERIFY2(way.findings().isEmpty(), qPrintable(way.findings().join("; ")));
        const QStringList calls = callsHere();
        for (int i = 0; i < std::max(calls.size(), cleanCalls.size()); ++i)
            QVERIFY2(calls.value(i) == cleanCalls.value(i),
                     qPrintable(QString("call %1 is %2 instead of %3")
                                    .arg(i + 1)
                                    .arg(calls.value(i), cleanCalls.value(i))));
        QCOMPARE(way.shown(), cleanTexts);
    }
    for (const char *function : {"vx_AddToSequence",
                                 "vx_AllocImageMem",
                                 "vx_AOI 1",
                                 "vx_AOI 16",
                                 "vx_CaptureVideo",
                                 "vx_ClearSequence",
                                 "vx_Event 1",
                                 "vx_Event 3",
                                 "vx_Event 5",
                                 "vx_ExitCamera",
                                 "vx_FreeImageMem",
                                 "vx_GetActSeqBuf",
                                 "vx_GetCameraInfo",
                                 "vx_GetCameraList",
                                 "vx_GetDuration",
                                 "vx_GetExposureRange",
                                 "vx_GetFrameTimeRange",
                                 "vx_GetFramesPerSecond",
                                 "vx_GetNumberOfCameras",
                                 "vx_GetPixelClockRange",
                                 "vx_GetSensorInfo",
                                 "vx_HotPixel 0",
                                 "vx_HotPixel 2",
                                 "vx_HotPixel 32769",
                                 "vx_HotPixel 33024",
                                 "vx_HotPixel 33025",
                                 "vx_HotPixel 33026",
                                 "vx_HotPixel 33027",
                                 "vx_HotPixel 33031",
                                 "vx_HotPixel 33032",
                                 "vx_HotPixel 33034",
                                 "vx_HotPixel 33035",
                                 "vx_HotPixel 33036",
                                 "vx_HotPixel 33037",
                                 "vx_HotPixel 33038",
                                 "vx_HotPixel 33041",
                                 "vx_HotPixel 33042",
                                 "vx_InitCamera",
                                 "vx_LockSeqBuf",
                                 "vx_SetColorMode 11",
                                 "vx_SetColorMode 32768",
                                 "vx_SetExposureTime 32768",
                                 "vx_SetExposureTime 32769",
                                 "vx_SetFrameRate",
                                 "vx_SetHardwareGain 32768",
                                 "vx_SetPixelClock 32768",
                                 "vx_SetPixelClock 32769",
                                 "vx_StopLiveVideo",
                                 "vx_UnlockSeqBuf"})
        QVERIFY2(cleanCalls.contains(function), function);
}

void TestCallFails::playFailing(const QString &name)
{
    QElapsedTimer timer;
    timer.start();
    way.setName(name);
    way.play();
    slowest = std::max(slowest, timer.elapsed());
    ++runs;
}

void TestCallFails::checkTexts(const QString &ownWords)
{
    for (const QString &text : way.shown()) {
        if (!isStatedText(text) && text != ownWords)
            way.find("shows '" + text + "'");
    }
}

/// The call that the fault made fail; null when the way ended before.
const kelvosim::Call *TestCallFails::failedCall(const std::vector<kelvosim::Call> &calls) const
{
    const auto call = std::find_if(calls.begin(), calls.end(), [](const kelvosim::Call &c) {
        return c.returned && c.result == FaultStatus;
    });
    return call == calls.end() ? nullptr : &*call;
}

/// What must be shown when this call of the GUI thread fails once in this step; empty where nothing is.
QString TestCallFails::expectedText(const kelvosim::Call &call, int step, const QString &ownWords) const
{
    static const QMap<QString, QString> fixedTexts = {
        {"vx_GetNumberOfCameras", "Can't get number of cameras."},
        {"vx_GetCameraList", "Can't get camera list."},
        {"vx_InitCamera", "Could not initialize camera."},
        {"vx_SetColorMode 32768", "Color Mode not supported."},
        {"vx_AllocImageMem", "Can't allocate image memory."},
        {"vx_AddToSequence", "Can't add buffer to sequence."},
        {"vx_HotPixel 33036", "Error writing hotpixel list"},
        {"vx_HotPixel 33038", "Error writing hotpixel list"},
        {"vx_HotPixel 33042", "load from file failed with 23\n"},
    };
    static const QStringList ownWordsShown = {
        "vx_GetSensorInfo",         "vx_SetColorMode 11",    "vx_AOI 16",       "vx_AOI 1",
        "vx_SetExposureTime 32769", "vx_GetPixelClockRange", "vx_GetActSeqBuf",
    };
    const QString name = nameOf(call);
    const QString stepName = way.stepName(step);
    const bool opening = stepName.startsWith("open");
    if (fixedTexts.contains(name))
        return fixedTexts[name];
    if (ownWordsShown.contains(name))
        return ownWords;
    if (opening &&
        (name == "vx_GetFramesPerSecond" || (name == "vx_CaptureVideo" && call.numbers.at(0) == 0)))
        return ownWords;
    if (name == "vx_HotPixel 33025" || name == "vx_HotPixel 33026" || name == "vx_HotPixel 33027")
        return (stepName == "save" ? "write to" : "load from") + QString(" file failed with 23\n");
    if (name == "vx_GetDuration")
        return "Upload of new firmware required. (approx. 25 seconds)";
    if (name == "vx_HotPixel 32769")
        return opening ? CannotSaveText : CannotStoreText;
    return QString();
}

/// One call failed; whether it was told of where it must be.
void TestCallFails::checkTold(const QString &ownWords)
{
    const std::vector<kelvosim::Call> calls = kelvosim::log();
    const kelvosim::Call *call = failedCall(calls);
    if (!call)
        return way.find("no call failed");
    const int index = static_cast<int>(call - calls.data());
    const QVector<int> &first = way.firstCallOfSteps();
    const int step =
        static_cast<int>(std::upper_bound(first.begin(), first.end(), index) - first.begin()) - 1;
    const QString expected = expectedText(*call, step, ownWords);
    if (!expected.isEmpty() && !way.shownIn(step).contains(expected))
        way.find(nameOf(*call) + " fails untold");
}

void TestCallFails::report(const char *what) const
{
    const char *tag = QTest::currentDataTag();
    std::printf("%s%s%s: %d runs, slowest %lld ms, %d findings\n", what, tag ? ", " : "", tag ? tag : "",
                runs, slowest, failures);
    std::fflush(stdout);
}

/// Prints what the way found.
void TestCallFails::lookAtFindings(const QString &name)
{
    if (way.findings().isEmpty())
        return;
    ++failures;
    std::printf("FINDING %s: %s\n", qPrintable(name), qPrintable(way.findings().join("; ")));
}

void TestCallFails::everyCallFailsOnce()
{
    QFETCH(QString, text);
    const QString ownWords = text.isEmpty() ? QString("Unknown error.") : text;
    int n = 1;
    for (bool reached = true; reached; n += stride(text.isEmpty() ? OtherStride : FirstStride)) {
        const QString name = QString("call %1 fails").arg(n);
        way.beforeStep = [&](int step) {
            if (step == 0)
                kelvosim::failNthCallHere(static_cast<std::uint64_t>(n), false, FaultStatus,
                                          text.toStdString());
            else if (step == way.length())
                reached = kelvosim::failedCalls() > 0;
        };
        playFailing(name);
        checkTexts(ownWords);
        if (reached)
            checkTold(ownWords);
        const std::vector<kelvosim::Call> calls = kelvosim::log();
        const kelvosim::Call *call = failedCall(calls);
        lookAtFindings(name + " (" + (call ? nameOf(*call) : QString("none")) + ')');
    }
    report("every call fails once");
    QVERIFY(n > countedCalls);
    QCOMPARE(failures, 0);
}

/// Waits that are under way do not end with the library, so that it takes an event to wake the threads; a few
/// runs end without one, and their threads by force.
void TestCallFails::fromEveryCallOnAllFail()
{
    QFETCH(QString, text);
    const QString ownWords = text.isEmpty() ? QString("Unknown error.") : text;
    way.diesWithFirstFailure = true;
    bool reached = true;
    int n = 1;
    for (; reached; n += stride(OtherStride)) {
        const QString name = QString("from call %1 on").arg(n);
        way.beforeStep = [&](int step) {
            if (step == 0)
                kelvosim::failNthCallHere(static_cast<std::uint64_t>(n), true, FaultStatus,
                                          text.toStdString());
            else if (step == way.length())
                reached = kelvosim::failedCalls() > 0;
        };
        playFailing(name);
        checkTexts(ownWords);
        lookAtFindings(name);
    }
    report("from every call on all fail");
    QVERIFY(n > countedCalls);
    QCOMPARE(failures, 0);
}

/// Which of the two threads makes the k-th wait is up to them.
void TestCallFails::everyCallOfTheEventThreadsFailsOnce()
{
    QFETCH(QString, text);
    const QString ownWords = text.isEmpty() ? QString("Unknown error.") : text;
    for (const int command : {7, 2}) {
        bool reached = true;
        for (int k = 1; reached; k += stride(OtherStride)) {
            const QString name = QString("vx_Event %1, time %2").arg(command).arg(k);
            way.beforeStep = [&](int step) {
                if (step == 0)
                    kelvosim::failCall("vx_Event", k, FaultStatus, text.toStdString(), command);
                else if (step == way.length())
                    reached = kelvosim::failedCalls() > 0;
            };
            playFailing(name);
            checkTexts(ownWords);
            lookAtFindings(name);
        }
    }
    report("every call of the event threads fails once");
    QCOMPARE(failures, 0);
}

/// The camera stays in use then, as far as the library is concerned.
void TestCallFails::everyClosingFailsOnce()
{
    bool reached = true;
    for (int k = 1; reached; ++k) {
        const QString name = QString("vx_ExitCamera, time %1").arg(k);
        way.beforeStep = [&](int step) {
            if (step == 0)
                kelvosim::failCall("vx_ExitCamera", k, FaultStatus, FaultText);
            else if (step == way.length())
                reached = kelvosim::failedCalls() > 0;
        };
        playFailing(name);
        checkTexts(FaultText);
        lookAtFindings(name);
    }
    report("every closing fails once");
    QVERIFY(runs > 3);
    QCOMPARE(failures, 0);
}

/// A call fails, and so does the question why: there is then no text of any kind to be had.
void TestCallFails::everyQuestionForATextFailsOnce()
{
    bool reached = true;
    for (int n = 1; reached; n += stride(OtherStride)) {
        const QString name = QString("call %1 fails, and vx_GetError").arg(n);
        way.beforeStep = [&](int step) {
            if (step == 0) {
                kelvosim::failNthCallHere(static_cast<std::uint64_t>(n), false, FaultStatus, FaultText);
                kelvosim::failGetError(true);
            } else if (step == way.length()) {
                reached = kelvosim::failedCalls() > 0;
            }
        };
        playFailing(name);
        checkTexts("Unknown error.");
        if (reached)
            checkTold("Unknown error.");
        lookAtFindings(name);
    }
    report("every call fails once, and so does the question for its text");
    QCOMPARE(failures, 0);
}

QTEST_MAIN(TestCallFails)
#include "tst_callfails.moc"
