// SPDX-License-Identifier: MIT
// Tests reading and writing hot pixel entries as text, on bytes in memory.
#include "badpixellistfile.h"

#include <QBuffer>
#include <QTextStream>
#include <QtTest>

#include <random>

namespace {

// "x y class" of each entry.
QStringList texts(const std::vector<Badpixel> &entries)
{
    QStringList list;
    for (const Badpixel &entry : entries) {
        list << QString("%1 %2 %3").arg(entry.x).arg(entry.y).arg(entry.pixelclass);
    }
    return list;
}

QStringList read(QByteArray bytes)
{
    QBuffer buffer(&bytes);
    buffer.open(QIODevice::ReadOnly | QIODevice::Text);
    QTextStream text(&buffer);
    return texts(readEntries(text));
}

QByteArray write(const std::vector<Badpixel> &entries)
{
    QByteArray bytes;
    QTextStream text(&bytes, QIODevice::WriteOnly);
    writeEntries(text, entries);
    text.flush();
    return bytes;
}

// What a stream of its own makes of a line.
QString numbersIn(QString line)
{
    QTextStream text(&line);
    int x = -1;
    int y = -1;
    int pixelclass = -1;
    text >> x >> y >> pixelclass;
    return QString("%1 %2 %3").arg(x & 0xFFFF).arg(y & 0xFFFF).arg(pixelclass & 0xFF);
}

// Something like a line of a list, with whatever a person or a program may put there.
QByteArray randomLine(std::mt19937 &random)
{
    static const QByteArrayList pieces{"0",
                                       "1",
                                       "7",
                                       "12",
                                       "0x",
                                       "0X1f",
                                       "010",
                                       "0b",
                                       "0b11",
                                       "09",
                                       " ",
                                       "  ",
                                       "\t",
                                       "-",
                                       "+",
                                       "--",
                                       ".",
                                       "e",
                                       ",",
                                       "a",
                                       ";",
                                       "#",
                                       "65535",
                                       "6553",
                                       "4294967297",
                                       "-65536",
                                       "\xC3",
                                       "\xC3\xA4",
                                       "\"",
                                       "1e3",
                                       "\v",
                                       "0x10",
                                       "nan",
                                       "inf",
                                       "18446744073709551615",
                                       "-9223372036854775807",
                                       QByteArray("\0", 1)};
    QByteArray line;
    for (auto left = random() % 9; left > 0; --left) {
        line += pieces.at(static_cast<int>(random() % static_cast<unsigned>(pieces.size())));
        if (random() % 2 == 0) {
            line += ' ';
        }
    }
    return line;
}

// Promises more for ever, and gives nothing after its text.
class EndlessPromise final : public QIODevice
{
public:
    explicit EndlessPromise(const QByteArray &bytes)
        : content(bytes)
    {
    }
    bool atEnd() const override { return false; }

protected:
    qint64 readData(char *data, qint64 size) override
    {
        const int given = static_cast<int>(qMin<qint64>(size, content.size()));
        std::copy_n(content.constData(), given, data);
        content.remove(0, given);
        return given;
    }
    qint64 writeData(const char *, qint64) override { return -1; }

private:
    QByteArray content;
};

} // namespace

class TestBadpixelListFile : public QObject
{
    Q_OBJECT

private slots:
    void aLineIsReadAsAStreamReadsIt_data();
    void aLineIsReadAsAStreamReadsIt();
    void everyLineIsAnEntry_data();
    void everyLineIsAnEntry();
    void veryLongLinesAreLines();
    void anyLinesAreReadAsStreamsReadThem();
    void aDeviceThatNeverEndsIsLeft();

    void entriesAreWrittenOneALine();
    void everyEntryIsWrittenAsTheUsers();
    void noEntriesWriteNothing();
    void whatIsWrittenReadsBack();
};

void TestBadpixelListFile::aLineIsReadAsAStreamReadsIt_data()
{
    QTest::addColumn<QByteArray>("line");
    QTest::addColumn<QString>("entry");
    const auto row = [](const char *line, const char *entry) {
        QTest::newRow(line) << QByteArray(line) << QString(entry);
    };
    row("12 345 1", "12 345 1");
    row("7 9 0", "7 9 0");
    row("7 9 2", "7 9 2");
    row("0x10 010 0b11", "16 8 3");
    row("0X1F 0B1 1", "31 1 1");
    row("09 1 1", "9 1 1");
    row("00 1 1", "0 1 1");
    row("0x 2 3", "0 2 3");
    row("0xg 2 3", "0 0 0");
    row("0b2 1 1", "0 0 0");
    row(" \t 5\t6\t1  ", "5 6 1");
    row("+5 6 1", "5 6 1");
    row("-1 -2 -3", "65535 65534 253");
    row("--1 2 3", "0 65535 2");
    row("- 1 2", "0 1 2");
    row("65536 65537 257", "0 1 1");
    row("4294967297 2147483648 1", "1 0 1");
    row("1 2", "1 2 0");
    row("5", "5 0 0");
    row("1 2 1 99", "1 2 1");
    row("1,2,3", "1 0 0");
    row("1.5 2 3", "1 0 0");
    row("1e3 2 3", "1 0 0");
    row("a 2 3", "0 0 0");
    row("1 b 3", "1 0 0");
    row("# a remark", "0 0 0");
    QTest::newRow("NUL") << QByteArray("1 2\0 1", 6) << QString("1 2 0");
}

void TestBadpixelListFile::aLineIsReadAsAStreamReadsIt()
{
    QFETCH(QByteArray, line);
    QFETCH(QString, entry);
    QCOMPARE(read(line + '\n'), QStringList{entry});
    QCOMPARE(numbersIn(QString::fromLatin1(line)), entry);
}

void TestBadpixelListFile::everyLineIsAnEntry_data()
{
    const QString empty = "0 0 0";
    QTest::addColumn<QByteArray>("bytes");
    QTest::addColumn<QStringList>("entries");
    QTest::newRow("no bytes") << QByteArray() << QStringList();
    QTest::newRow("an empty line") << QByteArray("\n") << QStringList{empty};
    QTest::newRow("no last line end") << QByteArray("1 2 1\n3 4 1") << QStringList{"1 2 1", "3 4 1"};
    QTest::newRow("an empty line between")
        << QByteArray("1 2 1\n\n3 4 1\n") << QStringList{"1 2 1", empty, "3 4 1"};
    QTest::newRow("blank last line") << QByteArray("1 2 1\n ") << QStringList{"1 2 1", empty};
    QTest::newRow("the same line twice") << QByteArray("1 2 1\n1 2 1\n") << QStringList{"1 2 1", "1 2 1"};
    QTest::newRow("carriage returns") << QByteArray("1 2 1\r\n3 4 1\r\n") << QStringList{"1 2 1", "3 4 1"};
    // Text mode takes carriage returns away wherever they are.
    QTest::newRow("carriage return inside") << QByteArray("1 2\r3 1\n") << QStringList{"1 23 1"};
    QTest::newRow("carriage return alone") << QByteArray("\r") << QStringList{empty};
    QTest::newRow("byte-order mark") << QByteArray("\xEF\xBB\xBF"
                                                   "1 2 1\n")
                                     << QStringList{"1 2 1"};
    QTest::newRow("byte-order mark alone") << QByteArray("\xEF\xBB\xBF") << QStringList{empty};
    QTest::newRow("UTF-16") << QByteArray("\xFF\xFE"
                                          "1\0 \0"
                                          "2\0 \0"
                                          "1\0\n\0",
                                          14)
                            << QStringList{"1 2 1"};
    QTest::newRow("NUL alone") << QByteArray("\0", 1) << QStringList{empty};
    QTest::newRow("NULs between lines")
        << QByteArray("1 2 1\n\0\0\n3 4 1\n", 15) << QStringList{"1 2 1", empty, "3 4 1"};
    QTest::newRow("no text at all") << QByteArray("\xFF\xD8\xFF\xE0\x00\x10JFIF", 10) << QStringList{empty};
}

void TestBadpixelListFile::everyLineIsAnEntry()
{
    QFETCH(QByteArray, bytes);
    QFETCH(QStringList, entries);
    QCOMPARE(read(bytes), entries);
}

void TestBadpixelListFile::veryLongLinesAreLines()
{
    const QByteArray blanks(100000, ' ');
    const QByteArray letters(300000, 'x');
    QCOMPARE(read(blanks + "7 8 1\n1 2 1" + letters + "\n" + letters),
             (QStringList{"7 8 1", "1 2 1", "0 0 0"}));
}

void TestBadpixelListFile::anyLinesAreReadAsStreamsReadThem()
{
    std::mt19937 random(17);
    for (int file = 0; file < 500; ++file) {
        QByteArray bytes;
        QStringList expected;
        for (auto lines = random() % 60; lines > 0; --lines) {
            const QByteArray line = randomLine(random);
            bytes += line + '\n';
            expected << numbersIn(QTextStream(line).readAll());
        }
        QCOMPARE(read(bytes), expected);
    }
}

void TestBadpixelListFile::aDeviceThatNeverEndsIsLeft()
{
    EndlessPromise device("1 2 1\n3 4 1\n");
    device.open(QIODevice::ReadOnly);
    QTextStream text(&device);
    QCOMPARE(texts(readEntries(text)), (QStringList{"1 2 1", "3 4 1"}));
}

void TestBadpixelListFile::entriesAreWrittenOneALine()
{
    QCOMPARE(write({{12, 345, User}, {0, 0, User}, {65535, 65535, User}}),
             QByteArray("12 345 1\n0 0 1\n65535 65535 1\n"));
}

void TestBadpixelListFile::everyEntryIsWrittenAsTheUsers()
{
    QCOMPARE(write({{1, 2, Ignore}}), QByteArray("1 2 1\n"));
}

void TestBadpixelListFile::noEntriesWriteNothing()
{
    QCOMPARE(write({}), QByteArray());
}

void TestBadpixelListFile::whatIsWrittenReadsBack()
{
    std::mt19937 random(4);
    std::vector<Badpixel> entries;
    for (int i = 0; i < 5000; ++i) {
        entries.push_back({static_cast<std::uint16_t>(random()), static_cast<std::uint16_t>(random()), User});
    }
    QCOMPARE(read(write(entries)), texts(entries));
}

QTEST_GUILESS_MAIN(TestBadpixelListFile)
#include "tst_badpixellistfile.moc"
