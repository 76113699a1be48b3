// SPDX-License-Identifier: MIT
// The text of bench files: reading, complaints with line numbers, and edits that keep everything else.

#include "benchfile.h"

#include <QtTest>

using benchfile::Camera;
using kelvosim::SensorKind;

namespace {

const std::string Example = "# two cameras\n"
                            "\n"
                            "[camera KV1]      # the first\n"
                            "model = One two   # words\n"
                            "kind = bayer\n"
                            "size = 640x480\n"
                            "lens cap=on\n"
                            "replay =          # none\n"
                            "\n"
                            "[camera KV2]\n"
                            "attached = no\n"
                            "seed = 0xFFFFFFFFFFFFFFFF\n";

QString complaint(const std::string &text, int *line = nullptr)
{
    try {
        benchfile::parse(text);
        return QString();
    } catch (const benchfile::Error &error) {
        if (line)
            *line = error.line();
        return error.what();
    }
}

std::string fileText(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll().toStdString() : std::string();
}

} // namespace

class TestBenchFile : public QObject
{
    Q_OBJECT

private slots:
    void allKeysAreRead();
    void commentsBlanksAndLineEndsDoNotMatter();
    void missingKeysKeepTheirDefaults();
    void theDeliveredFileHasThreeCameras();
    void mistakesAreToldWithTheirLine_data();
    void mistakesAreToldWithTheirLine();
    void aValueIsReplacedInPlace();
    void anEmptyValueIsFilled();
    void aMissingKeyIsAddedToItsSection();
    void editsKeepForeignLineEnds();
    void theLastLineMayLackItsEnd();
    void anUnknownCameraCannotBeEdited();
    void everyEditIsReadBack();
    void damagedTextsAreReadOrRefused();
};

void TestBenchFile::allKeysAreRead()
{
    const std::vector<Camera> cameras =
        benchfile::parse("[camera KV00000009]\nmodel = M\nkind = colour\nsize = 100 x 200\nattached = "
                         "no\nlens cap = on\nin use = yes\n"
                         "firmware upload = 5 s\nreplay = ../some folder\nseed = 99\nstorage = no\ncapacity "
                         "= 12\nhot pixels = 13\n"
                         "sensor = 0x21D\nfailed frames = 3\nlist resets = 4\n");
    QCOMPARE(cameras.size(), std::size_t(1));
    const kelvosim::CameraSpec &spec = cameras.front().spec;
    QCOMPARE(spec.serial, std::string("KV00000009"));
    QCOMPARE(spec.model, std::string("M"));
    QVERIFY(spec.kind == SensorKind::Colour32);
    QCOMPARE(spec.width, 100);
    QCOMPARE(spec.height, 200);
    QVERIFY(!spec.attached && spec.lensCap && spec.usedElsewhere && !spec.storesLists);
    QCOMPARE(spec.firmwareUpload, 5000);
    QCOMPARE(spec.replayFolder, std::string("../some folder"));
    QCOMPARE(spec.seed, std::uint64_t(99));
    QCOMPARE(spec.capacity, 12u);
    QCOMPARE(spec.hotPixels, 13);
    QCOMPARE(spec.sensorId, std::uint16_t(0x21D));
    QCOMPARE(cameras.front().failedFrames, 3u);
    QCOMPARE(cameras.front().listResets, 4u);
}

void TestBenchFile::commentsBlanksAndLineEndsDoNotMatter()
{
    const std::vector<Camera> cameras = benchfile::parse(Example);
    QCOMPARE(cameras.size(), std::size_t(2));
    QCOMPARE(cameras[0].spec.model, std::string("One two"));
    QVERIFY(cameras[0].spec.kind == SensorKind::RawBayer);
    QVERIFY(cameras[0].spec.lensCap);
    QVERIFY(cameras[0].spec.replayFolder.empty());
    QCOMPARE(cameras[1].spec.seed, UINT64_MAX);
    const std::vector<Camera> windows =
        benchfile::parse(QString::fromStdString(Example).replace("\n", "\r\n").toStdString());
    QCOMPARE(windows.size(), std::size_t(2));
    QCOMPARE(windows[0].spec.model, std::string("One two"));
    QVERIFY(benchfile::parse("").empty());
}

void TestBenchFile::missingKeysKeepTheirDefaults()
{
    const kelvosim::CameraSpec preset;
    const kelvosim::CameraSpec spec = benchfile::parse("[camera A]").front().spec;
    QCOMPARE(spec.width, preset.width);
    QCOMPARE(spec.attached, preset.attached);
    QCOMPARE(spec.capacity, preset.capacity);
    QCOMPARE(benchfile::parse("[camera A]\nfirmware upload = 800 ms").front().spec.firmwareUpload, 800);
    QCOMPARE(benchfile::parse("[camera A]\nfirmware upload = no").front().spec.firmwareUpload, 0);
}

void TestBenchFile::theDeliveredFileHasThreeCameras()
{
    const std::string text =
        fileText(qEnvironmentVariable("SPECKMEND_SOURCE_DIR") + "/simulator/default.bench");
    const std::vector<Camera> cameras = benchfile::parse(text);
    QCOMPARE(cameras.size(), std::size_t(3));
    QVERIFY(cameras[0].spec.kind == SensorKind::Mono);
    QCOMPARE(cameras[0].spec.width, 1280);
    QVERIFY(cameras[1].spec.kind == SensorKind::RawBayer);
    QCOMPARE(cameras[1].spec.height, 1944);
    QVERIFY(!cameras[2].spec.storesLists);
}

void TestBenchFile::mistakesAreToldWithTheirLine_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<int>("line");
    const QString start = "# bench\n[camera A]\n";
    QTest::newRow("unknown key") << start + "colour = red" << 3;
    QTest::newRow("key twice") << start + "seed = 1\n\nseed = 2" << 5;
    QTest::newRow("no value") << start + "attached" << 3;
    QTest::newRow("no key") << start + "= yes" << 3;
    QTest::newRow("before a camera") << QString("\nseed = 1") << 2;
    QTest::newRow("camera twice") << start + "[camera A]" << 3;
    QTest::newRow("camera without serial number") << QString("[camera]") << 1;
    QTest::newRow("camera with a blank") << QString("[camera A B]") << 1;
    QTest::newRow("serial number too long") << QString("[camera KV0123456789]") << 1;
    QTest::newRow("another section") << start + "[lens A]" << 3;
    QTest::newRow("open section") << QString("[camera A") << 1;
    QTest::newRow("maybe") << start + "attached = maybe" << 3;
    QTest::newRow("empty yes or no") << start + "attached =" << 3;
    QTest::newRow("kind") << start + "kind = red" << 3;
    QTest::newRow("size") << start + "size = 12" << 3;
    QTest::newRow("small size") << start + "size = 15 x 100" << 3;
    QTest::newRow("large size") << start + "size = 100 x 16385" << 3;
    QTest::newRow("negative") << start + "seed = -1" << 3;
    QTest::newRow("huge") << start + "seed = 18446744073709551616" << 3;
    QTest::newRow("digit beyond the limit") << start + "sensor = 0x10000" << 3;
    QTest::newRow("no number") << start + "capacity = some" << 3;
    QTest::newRow("upload unit") << start + "firmware upload = 5 h" << 3;
    QTest::newRow("upload without unit") << start + "firmware upload = 5" << 3;
    QTest::newRow("too many hot pixels") << start + "hot pixels = 1501" << 3;
    QTest::newRow("long model") << start + "model = " + QString(80, 'm') << 3;
}

void TestBenchFile::mistakesAreToldWithTheirLine()
{
    QFETCH(QString, text);
    QFETCH(int, line);
    int told = 0;
    const QString what = complaint(text.toStdString(), &told);
    QCOMPARE(told, line);
    QVERIFY2(what.startsWith(QString("line %1: ").arg(line)), qPrintable(what));
}

void TestBenchFile::aValueIsReplacedInPlace()
{
    const std::string edited = benchfile::setValue(Example, "KV1", "model", "Three");
    QCOMPARE(QString::fromStdString(edited),
             QString::fromStdString(Example).replace("One two   # words", "Three   # words"));
    QCOMPARE(QString::fromStdString(benchfile::setValue(Example, "KV1", "lens cap", "off")),
             QString::fromStdString(Example).replace("lens cap=on", "lens cap=off"));
}

void TestBenchFile::anEmptyValueIsFilled()
{
    const std::string edited = benchfile::setValue(Example, "KV1", "replay", "frames");
    QCOMPARE(benchfile::parse(edited)[0].spec.replayFolder, std::string("frames"));
    QVERIFY(edited.find("# none") != std::string::npos);
    QCOMPARE(benchfile::setValue("[camera A]\nreplay=", "A", "replay", "x"),
             std::string("[camera A]\nreplay= x"));
}

void TestBenchFile::aMissingKeyIsAddedToItsSection()
{
    const std::string edited = benchfile::setValue(Example, "KV1", "in use", "yes");
    QCOMPARE(QString::fromStdString(edited),
             QString::fromStdString(Example).replace("# none\n", "# none\nin use = yes\n"));
}

void TestBenchFile::editsKeepForeignLineEnds()
{
    const std::string text = "[camera A]\r\nseed = 1\r\n\r\n[camera B]\r\n";
    QCOMPARE(benchfile::setValue(text, "A", "seed", "22"),
             std::string("[camera A]\r\nseed = 22\r\n\r\n[camera B]\r\n"));
    QCOMPARE(benchfile::setValue(text, "B", "seed", "3"),
             std::string("[camera A]\r\nseed = 1\r\n\r\n[camera B]\r\nseed = 3\r\n"));
}

void TestBenchFile::theLastLineMayLackItsEnd()
{
    QCOMPARE(benchfile::setValue("[camera A]", "A", "seed", "3"), std::string("[camera A]\nseed = 3\n"));
    QCOMPARE(benchfile::setValue("[camera A]\nseed = 1", "A", "seed", "3"),
             std::string("[camera A]\nseed = 3"));
}

void TestBenchFile::anUnknownCameraCannotBeEdited()
{
    QVERIFY_EXCEPTION_THROWN(benchfile::setValue(Example, "KV3", "seed", "1"), std::invalid_argument);
    QVERIFY_EXCEPTION_THROWN(benchfile::setValue("", "", "seed", "1"), std::invalid_argument);
}

void TestBenchFile::everyEditIsReadBack()
{
    std::string text = Example;
    for (int round = 0; round < 20; ++round) {
        text = benchfile::setValue(text, "KV2", "failed frames", std::to_string(round * 10));
        text = benchfile::setValue(text, "KV1", "attached", round % 2 ? "yes" : "no");
        const std::vector<Camera> cameras = benchfile::parse(text);
        QCOMPARE(cameras[1].failedFrames, static_cast<std::uint32_t>(round * 10));
        QCOMPARE(cameras[0].spec.attached, round % 2 == 1);
    }
    QVERIFY(text.size() < Example.size() + 60);
}

void TestBenchFile::damagedTextsAreReadOrRefused()
{
    quint32 random = 99;
    const auto next = [&random](std::size_t limit) {
        random = random * 1664525 + 1013904223;
        return (random >> 8) % limit;
    };
    const std::string characters("[]=#x0 \r\n\0\xff\t-\"a", 15);
    int read = 0;
    for (int round = 0; round < 5000; ++round) {
        std::string text = Example;
        for (std::size_t changes = 1 + next(4); changes > 0; --changes)
            text[next(text.size())] = characters[next(characters.size())];
        text.resize(next(text.size() + 1));
        const bool sound = complaint(text).isEmpty();
        read += sound;
        try {
            const std::string edited = benchfile::setValue(text, "KV1", "seed", "5");
            QVERIFY(!sound || benchfile::parse(edited).front().spec.seed == 5);
        } catch (const std::invalid_argument &) {
            QVERIFY(!sound || benchfile::parse(text).empty() ||
                    benchfile::parse(text).front().spec.serial != "KV1");
        }
    }
    QVERIFY(read > 100 && read < 4900);
}

QTEST_GUILESS_MAIN(TestBenchFile)
#include "tst_benchfile.moc"
