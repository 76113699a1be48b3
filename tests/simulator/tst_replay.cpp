// SPDX-License-Identifier: MIT
// Frames from a folder of PGM and PNG files.

#include "programside.h"

#include <QImage>
#include <QTemporaryDir>

using namespace programside;

namespace {

bool write(const QString &path, const QByteArray &content)
{
    QFile file(path);
    return file.open(QIODevice::WriteOnly) && file.write(content) == content.size();
}

QByteArray pgm(int width, int height, char value)
{
    return "P5\n" + QByteArray::number(width) + ' ' + QByteArray::number(height) + "\n255\n" +
           QByteArray(width * height, value);
}

kelvosim::CameraSpec replaying(const QString &folder)
{
    kelvosim::CameraSpec spec = smallCamera(true);
    spec.replayFolder = folder.toStdString();
    return spec;
}

/// The first byte of each of the next frames.
std::vector<int> firstBytes(OpenedCamera &camera, int frames)
{
    std::vector<int> values;
    for (int i = 0; i < frames; ++i)
        values.push_back(camera.frame().front());
    return values;
}

QString sweepFolder()
{
    return qEnvironmentVariable("SPECKMEND_SOURCE_DIR") + "/../shared/frames/bayer8-sweep";
}

} // namespace

class TestReplay : public QObject
{
    Q_OBJECT

private slots:
    void init() { kelvosim::reset(); }

    void framesPlayInNameOrderAndRepeat();
    void theCameraTakesTheSizeOfTheFrames();
    void otherSizesAreSkipped();
    void pngFilesPlayToo();
    void commentsInPgmHeadersAreAllowed();
    void damagedFilesAreSkipped();
    void anUnusableFolderFallsBackToTheSensorModel();
    void a32BitCameraShowsGrey();
    void aFolderThatVanishesFailsFrames();
    void replaysHaveNoPlantedHotPixels();
    void realDarkFramesPlay();
};

void TestReplay::framesPlayInNameOrderAndRepeat()
{
    const QTemporaryDir folder;
    QVERIFY(write(folder.filePath("b.pgm"), pgm(9, 5, 2)));
    QVERIFY(write(folder.filePath("a.PGM"), pgm(9, 5, 1)));
    QVERIFY(write(folder.filePath("c.pgm"), pgm(9, 5, 3)));
    QVERIFY(write(folder.filePath("aa.txt"), "no frame"));
    kelvosim::addCamera(replaying(folder.path()));
    OpenedCamera camera;
    QCOMPARE(firstBytes(camera, 7), (std::vector<int>{1, 2, 3, 1, 2, 3, 1}));
}

void TestReplay::theCameraTakesTheSizeOfTheFrames()
{
    const QTemporaryDir folder;
    QByteArray frame = pgm(9, 5, 7);
    frame[frame.size() - 1] = 99;
    QVERIFY(write(folder.filePath("a.pgm"), frame));
    kelvosim::addCamera(replaying(folder.path()));
    OpenedCamera camera;
    QCOMPARE(camera.width, 9);
    QCOMPARE(camera.height, 5);
    const std::vector<std::uint8_t> pixels = camera.frame();
    QCOMPARE(pixels.size(), std::size_t(12 * 5));
    QCOMPARE(camera.at(pixels, 8, 4), std::uint8_t(99));
    QCOMPARE(camera.at(pixels, 0, 4), std::uint8_t(7));
}

void TestReplay::otherSizesAreSkipped()
{
    const QTemporaryDir folder;
    QVERIFY(write(folder.filePath("a.pgm"), pgm(9, 5, 1)));
    QVERIFY(write(folder.filePath("b.pgm"), pgm(5, 9, 2)));
    QVERIFY(write(folder.filePath("c.pgm"), pgm(9, 5, 3)));
    kelvosim::addCamera(replaying(folder.path()));
    OpenedCamera camera;
    QCOMPARE(firstBytes(camera, 4), (std::vector<int>{1, 3, 1, 3}));
}

void TestReplay::pngFilesPlayToo()
{
    const QTemporaryDir folder;
    QImage grey(9, 5, QImage::Format_Grayscale8);
    grey.fill(77);
    QVERIFY(grey.save(folder.filePath("a.png")));
    QImage white(9, 5, QImage::Format_RGB32);
    white.fill(Qt::white);
    QVERIFY(white.save(folder.filePath("b.png")));
    QImage deep(9, 5, QImage::Format_RGBA64);
    deep.fill(Qt::red);
    QVERIFY(deep.save(folder.filePath("c.png")));
    kelvosim::addCamera(replaying(folder.path()));
    OpenedCamera camera;
    QCOMPARE(firstBytes(camera, 3), (std::vector<int>{77, 255, 77}));
}

void TestReplay::commentsInPgmHeadersAreAllowed()
{
    const QTemporaryDir folder;
    QVERIFY(write(folder.filePath("a.pgm"),
                  QByteArray("P5 # made by hand\n#\n2\t# wide\n 2 #high\n200\n") + QByteArray(4, 6)));
    kelvosim::addCamera(replaying(folder.path()));
    OpenedCamera camera;
    QCOMPARE(camera.width, 2);
    QCOMPARE(firstBytes(camera, 1), std::vector<int>{6});
}

void TestReplay::damagedFilesAreSkipped()
{
    const QTemporaryDir folder;
    const QByteArray sound = pgm(9, 5, 4);
    const QList<QByteArray> damaged{sound.left(sound.size() - 1),
                                    "P5\n9 5\n65535\n" + QByteArray(90, 1),
                                    "P2\n9 5\n255\n1 2 3",
                                    "P5\n9 -5\n255\n",
                                    "P5\n99999 99999\n255\n",
                                    "P5\n9 5\n0\n",
                                    "P5\n99999999999999999999 5\n255\n",
                                    "P5",
                                    "",
                                    QByteArray("P5\n9 5\n255", 10)};
    int number = 0;
    for (const QByteArray &content : damaged)
        QVERIFY(write(folder.filePath(QString("%1.pgm").arg(number++)), content));
    QVERIFY(write(folder.filePath("no.png"), sound));
    QVERIFY(QDir(folder.path()).mkdir("x.pgm"));
    QVERIFY(write(folder.filePath("z.pgm"), sound));
    kelvosim::addCamera(replaying(folder.path()));
    OpenedCamera camera;
    QCOMPARE(camera.width, 9);
    QCOMPARE(firstBytes(camera, 2), (std::vector<int>{4, 4}));
}

void TestReplay::anUnusableFolderFallsBackToTheSensorModel()
{
    const QTemporaryDir folder;
    for (const QString &path : {folder.path(), folder.filePath("none")}) {
        kelvosim::reset();
        kelvosim::addCamera(replaying(path));
        OpenedCamera camera;
        QCOMPARE(camera.width, 64);
        QCOMPARE(camera.frame().size(), std::size_t(64 * 48));
        QCOMPARE(kelvosim::plantedHotPixels(Serial).size(), std::size_t(12));
    }
}

void TestReplay::a32BitCameraShowsGrey()
{
    const QTemporaryDir folder;
    QVERIFY(write(folder.filePath("a.pgm"), pgm(9, 5, 50)));
    kelvosim::CameraSpec spec = replaying(folder.path());
    spec.kind = kelvosim::SensorKind::Colour32;
    kelvosim::addCamera(spec);
    OpenedCamera camera;
    const std::vector<std::uint8_t> pixels = camera.frame();
    QCOMPARE((std::vector<std::uint8_t>{pixels.begin(), pixels.begin() + 4}),
             (std::vector<std::uint8_t>{50, 50, 50, 0}));
}

void TestReplay::aFolderThatVanishesFailsFrames()
{
    QTemporaryDir folder;
    QVERIFY(write(folder.filePath("a.pgm"), pgm(9, 5, 50)));
    kelvosim::addCamera(replaying(folder.path()));
    OpenedCamera camera;
    camera.capture();
    QCOMPARE(waitFor(camera.handle, {2}, Patience), 2u);
    QVERIFY(folder.remove());
    QCOMPARE(waitFor(camera.handle, {8}, Patience), 8u);
}

void TestReplay::replaysHaveNoPlantedHotPixels()
{
    const QTemporaryDir folder;
    QVERIFY(write(folder.filePath("a.pgm"), pgm(9, 5, 50)));
    kelvosim::addCamera(replaying(folder.path()));
    QVERIFY(kelvosim::plantedHotPixels(Serial).empty());
    const OpenedCamera camera;
    QVERIFY(kelvosim::plantedHotPixels(Serial).empty());
    QVERIFY(kelvosim::factoryList(Serial).empty());
}

void TestReplay::realDarkFramesPlay()
{
    if (!QDir(sweepFolder()).exists())
        QSKIP("The real dark frames are not here.");
    kelvosim::CameraSpec spec = replaying(sweepFolder());
    spec.kind = kelvosim::SensorKind::RawBayer;
    kelvosim::addCamera(spec);
    OpenedCamera camera;
    QCOMPARE(camera.width, 408);
    QCOMPARE(camera.height, 344);
    const std::vector<std::uint8_t> first = camera.frame();
    QVERIFY(camera.at(first, 109, 200) > 100);
    for (int i = 0; i < 13; ++i)
        camera.frame();
    QCOMPARE(camera.frame(), first);
}

QTEST_GUILESS_MAIN(TestReplay)
#include "tst_replay.moc"
