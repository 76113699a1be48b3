// SPDX-License-Identifier: MIT
// Tests that every picture that the program asks for is there, in the sizes that it needs.
#include <QDir>
#include <QIcon>
#include <QImageReader>
#include <QtTest>

namespace {

const char *const Names[] = {
    "openplay",
    "camclose",
    "writeList",
    "openList",
    "highlight",
    "writeBadpixel",
    "badpixelCorrection",
    "addBadpixel",
    "deleteBadpixel",
    "detectBadpixel",
    "zoom",
    "help",
    "information",
    "exportList",
    "importList",
    "exit",
    "cameraList",
    "badpixelList",
    "window_view",
    "cameraproperties",
};

QList<QSize> sizesIn(const QString &path)
{
    QList<QSize> sizes;
    QImageReader reader(path);
    for (int i = 0; i < reader.imageCount(); ++i) {
        if (reader.jumpToImage(i))
            sizes << reader.read().size();
    }
    return sizes;
}

/// Whether something of the picture is seen on a background of this colour.
bool isSeenOn(const QColor &background, QImage picture)
{
    picture = picture.convertToFormat(QImage::Format_ARGB32);
    int seen = 0;
    for (int y = 0; y < picture.height(); ++y) {
        for (int x = 0; x < picture.width(); ++x) {
            const QColor pixel = picture.pixelColor(x, y);
            if (pixel.alpha() > 200 && qAbs(qGray(pixel.rgb()) - qGray(background.rgb())) > 80)
                ++seen;
        }
    }
    return seen > picture.width() * picture.height() / 10;
}

bool isSeenOnAnyDesktop(const QImage &picture)
{
    return isSeenOn(Qt::white, picture) && isSeenOn(QColor(40, 40, 40), picture);
}

bool hasDrawing(const QString &name)
{
    return QFileInfo::exists(QDir(qgetenv("SPECKMEND_SOURCE_DIR")).filePath("res/" + name + ".svg"));
}

/// Number of pixels of about this colour.
int pixelsLike(const QColor &colour, const QImage &picture)
{
    int found = 0;
    for (int y = 0; y < picture.height(); ++y) {
        for (int x = 0; x < picture.width(); ++x) {
            const QColor pixel = picture.pixelColor(x, y);
            if (pixel.alpha() > 200 && qAbs(pixel.red() - colour.red()) < 8 &&
                qAbs(pixel.green() - colour.green()) < 8 && qAbs(pixel.blue() - colour.blue()) < 8)
                ++found;
        }
    }
    return found;
}

} // namespace

class TestIcons : public QObject
{
    Q_OBJECT

private slots:
    void everyIconIsThere_data();
    void everyIconIsThere();
    void theLogoIsThere();
    void theLogoShowsOneHotPixelOnASeeThroughGround();
    void theWindowIconHoldsThreeSizes();
};

void TestIcons::everyIconIsThere_data()
{
    QTest::addColumn<QString>("name");
    for (const char *name : Names)
        QTest::newRow(name) << QString(name);
}

void TestIcons::everyIconIsThere()
{
    QFETCH(QString, name);
    const QImage plain(":/res/" + name + ".png");
    const QImage large(":/res/" + name + "@2x.png");
    QCOMPARE(plain.size(), QSize(32, 32));
    QCOMPARE(large.size(), QSize(64, 64));
    QVERIFY(isSeenOnAnyDesktop(plain));
    QVERIFY(isSeenOnAnyDesktop(large));
    QVERIFY(hasDrawing(name));
}

void TestIcons::theLogoIsThere()
{
    const QImage plain(":/res/about_logo_kelvo.png");
    const QImage large(":/res/about_logo_kelvo@2x.png");
    QCOMPARE(plain.size(), QSize(128, 128));
    QCOMPARE(large.size(), QSize(256, 256));
    QVERIFY(isSeenOnAnyDesktop(plain));
    QVERIFY(isSeenOnAnyDesktop(large));
    QVERIFY(hasDrawing("about_logo_kelvo"));
}

void TestIcons::theLogoShowsOneHotPixelOnASeeThroughGround()
{
    const QColor hot(0xf5, 0x82, 0x1f);
    const QImage plain(":/res/about_logo_kelvo.png");
    QCOMPARE(plain.pixelColor(0, 0).alpha(), 0);
    QCOMPARE(plain.pixelColor(127, 127).alpha(), 0);
    const int element = pixelsLike(hot, plain.copy(70, 46, 12, 12));
    QVERIFY2(element >= 80, qPrintable(QString::number(element)));
    QCOMPARE(pixelsLike(hot, plain), element);
}

void TestIcons::theWindowIconHoldsThreeSizes()
{
    const QString path = ":/res/main.ico";
    QCOMPARE(sizesIn(path), (QList<QSize>{QSize(16, 16), QSize(32, 32), QSize(48, 48)}));
    const QPixmap pixmap = QIcon(path).pixmap(32, 32);
    QCOMPARE(pixmap.size(), QSize(32, 32));
    QVERIFY(isSeenOnAnyDesktop(pixmap.toImage()));
}

QTEST_MAIN(TestIcons)
#include "tst_icons.moc"
