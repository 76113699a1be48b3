// SPDX-License-Identifier: MIT
// Reading the parameter file: which entry counts, what is no number, and files that are not to be trusted.

#include "parameterfile.h"

#include <QBuffer>
#include <QElapsedTimer>
#include <QtTest>

namespace {

const QByteArray Timing = R"(<Timing exposure="12.5" pixelclock="24" framerate="4.5"/>)";
const QByteArray Gain = R"(<Gain master="40" red="1" green="2" blue="3"/>)";

QByteArray sensor(const QByteArray &id, const QByteArray &children = Timing + Gain)
{
    return "<Sensor ID=\"" + id + "\">" + children + "</Sensor>";
}

QByteArray inRoot(const QByteArray &content)
{
    return "<CameraSettings>" + content + "</CameraSettings>";
}

bool load(ParameterFile &file, QByteArray content)
{
    QBuffer buffer(&content);
    buffer.open(QIODevice::ReadOnly);
    return file.load(buffer);
}

bool isWellFormed(const QByteArray &content)
{
    ParameterFile file;
    return load(file, content);
}

std::optional<SensorSettings> settings(const QByteArray &content, std::uint16_t sensorId = 0x1F)
{
    ParameterFile file;
    load(file, content);
    return file.settingsFor(sensorId);
}

QByteArray nested(int depth)
{
    return QByteArray("<a>").repeated(depth) + QByteArray("</a>").repeated(depth);
}

} // namespace

class TestParameterFile : public QObject
{
    Q_OBJECT

private slots:
    void aCompleteEntryIsReadWhole();
    void theIdIsHexadecimal_data();
    void theIdIsHexadecimal();
    void aMissingIdIsThatOfSensorZero();
    void theFirstEntryOfASensorCounts();
    void anIncompleteFirstEntryHidesACompleteSecond();
    void theFirstTimingAndGainCount();
    void anEntryWithoutTimingOrGainIsNone();
    void otherNodesAreSkipped();
    void entriesBelowOtherElementsAreNoEntries();
    void namesAreTakenAsTheyStand();
    void anotherRootHoldsNoEntry();
    void missingAttributesAreZero();
    void whatIsNoNumberIsZero_data();
    void whatIsNoNumberIsZero();

    void whatIsNotWellFormedIsRefused_data();
    void whatIsNotWellFormedIsRefused();
    void wellFormedFilesAreTaken_data();
    void wellFormedFilesAreTaken();
    void aRefusedFileLeavesNoEntryOfItsOwnOrOfTheOneBefore();
    void entityBombsEndQuickly_data();
    void entityBombsEndQuickly();
    void deepNestingEndsQuickly();
    void nestingBeyondReasonIsRefused();
    void aFileThatNeverEndsIsRefused();
    void theExampleSettlesTheSimulatedSensors();
};

void TestParameterFile::aCompleteEntryIsReadWhole()
{
    const auto read = settings(inRoot(sensor("1F")));
    QVERIFY(read);
    QCOMPARE(read->exposure, 12.5);
    QCOMPARE(read->pixelclock, 24);
    QCOMPARE(read->framerate, 4.5);
    QCOMPARE(read->masterGain, 40);
    QCOMPARE(read->redGain, 1);
    QCOMPARE(read->greenGain, 2);
    QCOMPARE(read->blueGain, 3);
}

void TestParameterFile::theIdIsHexadecimal_data()
{
    QTest::addColumn<QByteArray>("id");
    QTest::addColumn<int>("sensorId");
    QTest::addColumn<bool>("matches");
    QTest::newRow("1F is 31") << QByteArray("1F") << 31 << true;
    QTest::newRow("lower case") << QByteArray("1f") << 31 << true;
    QTest::newRow("leading zeros") << QByteArray("001F") << 31 << true;
    QTest::newRow("prefix") << QByteArray("0x1F") << 31 << true;
    QTest::newRow("31 is 49") << QByteArray("31") << 49 << true;
    QTest::newRow("31 is not 31") << QByteArray("31") << 31 << false;
    QTest::newRow("largest") << QByteArray("FFFF") << 0xFFFF << true;
    QTest::newRow("more than 16 bits") << QByteArray("1001F") << 31 << false;
    QTest::newRow("more than 32 bits") << QByteArray("10000001F") << 31 << false;
    QTest::newRow("negative") << QByteArray("-1") << 0xFFFF << false;
    QTest::newRow("no number, sensor 0") << QByteArray("sensor") << 0 << false;
    QTest::newRow("too large, sensor 0") << QByteArray("100000000") << 0 << false;
    QTest::newRow("empty, sensor 0") << QByteArray("") << 0 << false;
    QTest::newRow("0 is sensor 0") << QByteArray("0") << 0 << true;
}

void TestParameterFile::theIdIsHexadecimal()
{
    QFETCH(QByteArray, id);
    QFETCH(int, sensorId);
    QFETCH(bool, matches);
    QCOMPARE(settings(inRoot(sensor(id)), std::uint16_t(sensorId)).has_value(), matches);
}

void TestParameterFile::aMissingIdIsThatOfSensorZero()
{
    const QByteArray content = inRoot("<Sensor>" + Timing + Gain + "</Sensor>");
    QVERIFY(settings(content, 0));
    QVERIFY(!settings(content, 31));
}

void TestParameterFile::theFirstEntryOfASensorCounts()
{
    const QByteArray second = R"(<Timing pixelclock="9"/><Gain/>)";
    const auto read = settings(inRoot(sensor("2") + sensor("1F") + sensor("1F", second)));
    QVERIFY(read);
    QCOMPARE(read->pixelclock, 24);
}

void TestParameterFile::anIncompleteFirstEntryHidesACompleteSecond()
{
    QVERIFY(!settings(inRoot(sensor("1F", Timing) + sensor("1F"))));
}

void TestParameterFile::theFirstTimingAndGainCount()
{
    const QByteArray more = R"(<Gain master="7"/><Timing framerate="7"/>)";
    const auto read = settings(inRoot(sensor("1F", "<Other/>" + Gain + Timing + more)));
    QVERIFY(read);
    QCOMPARE(read->masterGain, 40);
    QCOMPARE(read->framerate, 4.5);
}

void TestParameterFile::anEntryWithoutTimingOrGainIsNone()
{
    QVERIFY(!settings(inRoot(sensor("1F", Timing))));
    QVERIFY(!settings(inRoot(sensor("1F", Gain))));
    QVERIFY(!settings(inRoot(sensor("1F", ""))));
    QVERIFY(!settings(inRoot(sensor("1F", "<Group>" + Timing + Gain + "</Group>"))));
}

void TestParameterFile::otherNodesAreSkipped()
{
    const QByteArray others = "text<!-- note --><Camera ID=\"1F\"/><![CDATA[<Sensor ID=\"1F\"/>]]><?note?>";
    const auto read =
        settings("<?xml version=\"1.0\"?><!-- note -->" + inRoot(others + sensor("1F") + others));
    QVERIFY(read);
    QCOMPARE(read->pixelclock, 24);
}

void TestParameterFile::entriesBelowOtherElementsAreNoEntries()
{
    QVERIFY(!settings(inRoot("<Group>" + sensor("1F") + "</Group>")));
    QVERIFY(!settings(inRoot(sensor("2", Timing + Gain + sensor("1F")))));
}

void TestParameterFile::namesAreTakenAsTheyStand()
{
    QVERIFY(!settings(inRoot(sensor("1F").replace("Sensor", "sensor"))));
    QVERIFY(!settings(inRoot(sensor("1F").replace("Sensor", "k:Sensor"))));
    QVERIFY(!settings(inRoot(sensor("1F").replace("Timing", "timing"))));
    const auto read = settings(inRoot(sensor("1F").replace("pixelclock", "pixelClock")));
    QVERIFY(read);
    QCOMPARE(read->pixelclock, 0);
}

void TestParameterFile::anotherRootHoldsNoEntry()
{
    const QByteArray content = "<Settings>" + sensor("1F") + "</Settings>";
    QVERIFY(isWellFormed(content));
    QVERIFY(!settings(content));
    QVERIFY(!settings("<Settings>" + inRoot(sensor("1F")) + "</Settings>"));
}

void TestParameterFile::missingAttributesAreZero()
{
    const auto read = settings(inRoot(sensor("1F", "<Timing/><Gain/>")));
    QVERIFY(read);
    QCOMPARE(read->exposure, 0.0);
    QCOMPARE(read->pixelclock, 0);
    QCOMPARE(read->framerate, 0.0);
    QCOMPARE(read->masterGain, 0);
    QCOMPARE(read->redGain, 0);
    QCOMPARE(read->greenGain, 0);
    QCOMPARE(read->blueGain, 0);
}

void TestParameterFile::whatIsNoNumberIsZero_data()
{
    QTest::addColumn<QByteArray>("text");
    QTest::addColumn<int>("whole");
    QTest::addColumn<double>("broken");
    QTest::newRow("whole") << QByteArray("24") << 24 << 24.0;
    QTest::newRow("negative") << QByteArray("-24") << -24 << -24.0;
    QTest::newRow("broken") << QByteArray("2.5") << 0 << 2.5;
    QTest::newRow("exponent") << QByteArray("25e-1") << 0 << 2.5;
    QTest::newRow("comma") << QByteArray("2,5") << 0 << 0.0;
    QTest::newRow("hexadecimal") << QByteArray("0x10") << 0 << 0.0;
    QTest::newRow("unit") << QByteArray("24 ms") << 0 << 0.0;
    QTest::newRow("word") << QByteArray("fast") << 0 << 0.0;
    QTest::newRow("empty") << QByteArray("") << 0 << 0.0;
    QTest::newRow("nan") << QByteArray("nan") << 0 << 0.0;
    QTest::newRow("inf") << QByteArray("inf") << 0 << 0.0;
    QTest::newRow("-inf") << QByteArray("-inf") << 0 << 0.0;
    QTest::newRow("too large for whole") << QByteArray("2147483648") << 0 << 2147483648.0;
    QTest::newRow("too small for whole") << QByteArray("-2147483649") << 0 << -2147483649.0;
    QTest::newRow("too large") << QByteArray("1e999") << 0 << 0.0;
    QTest::newRow("too small") << QByteArray("-1e999") << 0 << 0.0;
    QTest::newRow("many digits") << QByteArray(400, '9') << 0 << 0.0;
}

void TestParameterFile::whatIsNoNumberIsZero()
{
    QFETCH(QByteArray, text);
    QFETCH(int, whole);
    QFETCH(double, broken);
    const QByteArray children = R"(<Timing exposure="?" pixelclock="?" framerate="?"/>)"
                                R"(<Gain master="?" red="?" green="?" blue="?"/>)";
    const auto read = settings(inRoot(sensor("1F", QByteArray(children).replace("?", text))));
    QVERIFY(read);
    QCOMPARE(read->exposure, broken);
    QCOMPARE(read->framerate, broken);
    for (const int value :
         {read->pixelclock, read->masterGain, read->redGain, read->greenGain, read->blueGain})
        QCOMPARE(value, whole);
}

void TestParameterFile::whatIsNotWellFormedIsRefused_data()
{
    QTest::addColumn<QByteArray>("content");
    const QByteArray good = inRoot(sensor("1F"));
    QTest::newRow("empty") << QByteArray();
    QTest::newRow("blank") << QByteArray(" \n");
    QTest::newRow("no XML") << QByteArray("exposure=12");
    QTest::newRow("zeros") << QByteArray(100, '\0');
    QTest::newRow("broken off") << good.left(good.size() - 3);
    QTest::newRow("not closed") << QByteArray("<CameraSettings>" + sensor("1F"));
    QTest::newRow("crossed") << inRoot("<Sensor ID=\"1F\"><Timing></Sensor></Timing>");
    QTest::newRow("two roots") << good + good;
    QTest::newRow("text behind") << good + "text";
    QTest::newRow("no quotes") << inRoot("<Sensor ID=1F/>");
    QTest::newRow("attribute twice") << inRoot("<Sensor ID=\"1F\" ID=\"1F\"/>");
    QTest::newRow("lone ampersand") << inRoot("&") + sensor("1F");
    QTest::newRow("unknown entity") << inRoot("&unknown;" + sensor("1F"));
    QTest::newRow("no UTF-8") << inRoot("\xFF\xFE\xFD" + sensor("1F"));
    QTest::newRow("entities of its own") << "<!DOCTYPE a [<!ENTITY x \"1F\">]>" + inRoot(sensor("&x;"));
}

void TestParameterFile::whatIsNotWellFormedIsRefused()
{
    QFETCH(QByteArray, content);
    ParameterFile file;
    QVERIFY(!load(file, content));
    QVERIFY(!file.settingsFor(0x1F));
}

void TestParameterFile::wellFormedFilesAreTaken_data()
{
    QTest::addColumn<QByteArray>("content");
    const QByteArray good = inRoot(sensor("1F"));
    const QString text = QString::fromLatin1(good);
    QTest::newRow("declaration") << "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n" + good;
    QTest::newRow("Latin-1") << "<?xml version=\"1.0\" encoding=\"ISO-8859-1\"?><!-- \xE9 -->" + good;
    QTest::newRow("UTF-8 with mark") << "\xEF\xBB\xBF" + good;
    QTest::newRow("UTF-16 with mark")
        << "\xFF\xFE" + QByteArray(reinterpret_cast<const char *>(text.utf16()), text.size() * 2);
    QTest::newRow("document type") << "<!DOCTYPE CameraSettings>" + good;
    QTest::newRow("document type elsewhere") << "<!DOCTYPE CameraSettings SYSTEM \"none.dtd\">" + good;
    QTest::newRow("entities of XML") << inRoot("&lt;&amp;&#65;" + sensor("&#x31;F"));
    QTest::newRow("undeclared prefix") << inRoot("<k:note k:by=\"x\"/>" + sensor("1F"));
    QTest::newRow("line ends") << QByteArray(good).replace("><", ">\r\n<");
}

void TestParameterFile::wellFormedFilesAreTaken()
{
    QFETCH(QByteArray, content);
    ParameterFile file;
    QVERIFY(load(file, content));
    const auto read = file.settingsFor(0x1F);
    QVERIFY(read);
    QCOMPARE(read->pixelclock, 24);
}

void TestParameterFile::aRefusedFileLeavesNoEntryOfItsOwnOrOfTheOneBefore()
{
    ParameterFile file;
    QVERIFY(load(file, inRoot(sensor("1F"))));
    QVERIFY(file.settingsFor(0x1F));
    QVERIFY(!load(file, inRoot(sensor("1F")) + "<"));
    QVERIFY(!file.settingsFor(0x1F));
    QVERIFY(load(file, inRoot(sensor("1F"))));
    QVERIFY(file.settingsFor(0x1F));
}

void TestParameterFile::entityBombsEndQuickly_data()
{
    QTest::addColumn<QByteArray>("content");
    QByteArray laughs = "<!ENTITY e0 \"ha\">";
    QByteArray parameters = "<!ENTITY % e0 \"<!-- ha -->\">";
    for (int i = 1; i < 40; ++i) {
        const QByteArray before = QByteArray::number(i - 1);
        const QByteArray name = QByteArray::number(i);
        laughs += "<!ENTITY e" + name + " \"" + QByteArray("&e" + before + ";").repeated(10) + "\">";
        parameters +=
            "<!ENTITY % e" + name + " \"" + QByteArray("&#37;e" + before + ";").repeated(10) + "\">";
    }
    const QByteArray entry = sensor("1F", "<Timing exposure=\"&e39;\"/>" + Gain);
    QTest::newRow("laughs") << "<!DOCTYPE a [" + laughs + "]>" + inRoot("&e39;" + sensor("1F"));
    QTest::newRow("laughs in an attribute") << "<!DOCTYPE a [" + laughs + "]>" + inRoot(entry);
    QTest::newRow("of parameters") << "<!DOCTYPE a [" + parameters + "%e39;]>" + inRoot(sensor("1F"));
    QTest::newRow("of itself") << "<!DOCTYPE a [<!ENTITY a \"&a;\">]>" + inRoot("&a;" + sensor("1F"));
    QTest::newRow("long, many times") << "<!DOCTYPE a [<!ENTITY a \"" + QByteArray(100000, 'x') + "\">]>" +
                                             inRoot(QByteArray("&a;").repeated(100000));
    QTest::newRow("file") << QByteArray("<!DOCTYPE a [<!ENTITY a SYSTEM \"/dev/zero\">]>") + inRoot("&a;");
}

void TestParameterFile::entityBombsEndQuickly()
{
    QFETCH(QByteArray, content);
    QElapsedTimer timer;
    timer.start();
    QVERIFY(!isWellFormed(content));
    QVERIFY2(timer.elapsed() < 2000, qPrintable(QString("%1 ms").arg(timer.elapsed())));
}

void TestParameterFile::deepNestingEndsQuickly()
{
    QElapsedTimer timer;
    timer.start();
    QVERIFY(!isWellFormed(inRoot(nested(100000) + sensor("1F"))));
    QVERIFY(!isWellFormed(QByteArray("<a>").repeated(1000000)));
    QVERIFY2(timer.elapsed() < 2000, qPrintable(QString("%1 ms").arg(timer.elapsed())));
}

void TestParameterFile::nestingBeyondReasonIsRefused()
{
    QVERIFY(isWellFormed(inRoot(nested(99))));
    QVERIFY(settings(inRoot(nested(99) + nested(99) + sensor("1F"))));
    QVERIFY(!isWellFormed(inRoot(nested(100))));
}

void TestParameterFile::aFileThatNeverEndsIsRefused()
{
    const QByteArray filling = "<!--" + QByteArray(64 * 1024 - 300, ' ') + "-->";
    QVERIFY(settings(inRoot(filling + sensor("1F"))));
    QVERIFY(!isWellFormed(inRoot(filling + QByteArray(400, ' ') + sensor("1F"))));
    QFile endless("/dev/zero");
    QVERIFY(endless.open(QIODevice::ReadOnly));
    ParameterFile file;
    QVERIFY(!file.load(endless));
}

void TestParameterFile::theExampleSettlesTheSimulatedSensors()
{
    QFile example(qEnvironmentVariable("SPECKMEND_SOURCE_DIR") + "/docs/cameraparameter.xml");
    QVERIFY(example.open(QIODevice::ReadOnly));
    ParameterFile file;
    QVERIFY(file.load(example));
    for (const std::uint16_t sensorId : {0x0101, 0x0205, 0x0042}) {
        const auto read = file.settingsFor(sensorId);
        QVERIFY(read);
        QVERIFY(read->pixelclock >= 5 && read->pixelclock <= 80);
        QVERIFY(read->framerate > 0.0);
        QVERIFY(read->exposure > 0.0 && read->exposure <= 1000.0 / read->framerate);
        for (const int gain : {read->masterGain, read->redGain, read->greenGain, read->blueGain})
            QVERIFY(gain >= 0 && gain <= 100);
    }
}

QTEST_GUILESS_MAIN(TestParameterFile)
#include "tst_parameterfile.moc"
