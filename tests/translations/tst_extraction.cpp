// SPDX-License-Identifier: MIT
// The German translation source holds every text of the program that is translated, and no other.

#include "catalogue.h"
#include "childprocess.h"

#include <QFileInfo>
#include <QRegularExpression>
#include <QTemporaryDir>
#include <QtTest>

#include <algorithm>

namespace {

QByteArray contentOf(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

/// What no language changes, in order of its places' numbers and marks: "%1", line ends, tabs, "(*.bin)".
QStringList fixedParts(const QString &text)
{
    static const QRegularExpression fixed("%\\d|\\n|\\t|\\(\\*\\.\\w+\\)|EEPROM|^\\s+|[\\s.:!?-]+$");
    QStringList parts;
    QRegularExpressionMatchIterator found = fixed.globalMatch(text);
    while (found.hasNext())
        parts << found.next().captured();
    return parts;
}

int mnemonics(const QString &text)
{
    static const QRegularExpression mark("&\\w", QRegularExpression::UseUnicodePropertiesOption);
    return QString(text).remove("&&").count(mark);
}

} // namespace

class TestExtraction : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();

    void everyTextOfTheProgramIsExtractedAndTranslated();
    void aNewTextAndAVanishedOneAreNoticed();
    void theShippedFileIsTheCompiledSource();
    void translationsKeepWhatIsNoLanguage_data();
    void translationsKeepWhatIsNoLanguage();

private:
    /// Lets lupdate, given these arguments, bring a copy of the translation source up to date.
    /// @return a line for each message that is not as it was
    QStringList changes(const QStringList &arguments);

    const QStringList wholeProgram = QString(EXTRACTION).split(' ');

    QTemporaryDir folder;
};

void TestExtraction::initTestCase()
{
    QVERIFY2(QFileInfo(LUPDATE).isExecutable(),
             "lupdate is missing: install qttools5-dev-tools and configure the build anew");
    QVERIFY(folder.isValid());
}

QStringList TestExtraction::changes(const QStringList &arguments)
{
    const QString copy = folder.filePath("speckmend_de.ts");
    QFile::remove(copy);
    if (!QFile::copy(GERMAN_SOURCE, copy))
        return {"the translation source cannot be copied"};
    ChildProcess lupdate;
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.remove("LD_PRELOAD"); // what a sanitizer needs is not for other programs
    lupdate.setProcessEnvironment(environment);
    lupdate.setWorkingDirectory(qEnvironmentVariable("SPECKMEND_SOURCE_DIR"));
    lupdate.setProcessChannelMode(QProcess::MergedChannels);
    lupdate.start(LUPDATE, arguments + QStringList{"-ts", copy});
    if (!lupdate.waitForFinished() || lupdate.exitStatus() != QProcess::NormalExit || lupdate.exitCode() != 0)
        return {"lupdate failed: " + lupdate.errorString() + ' ' + lupdate.readAll()};
    QStringList changed;
    for (const catalogue::Message &message : catalogue::read(copy)) {
        if (!message.state.isEmpty())
            changed << message.state + ": " + message.context + ": " + message.source;
    }
    const QString output = lupdate.readAll();
    if (output.contains("Qualifying with unknown", Qt::CaseInsensitive) || output.contains("lacks Q_OBJECT"))
        changed << output; // a text whose class lupdate cannot tell gets the wrong context
    return changed;
}

void TestExtraction::everyTextOfTheProgramIsExtractedAndTranslated()
{
    QVERIFY(!catalogue::read(GERMAN_SOURCE).isEmpty());
    const QString changed = changes(wholeProgram).join('\n');
    QVERIFY2(changed.isEmpty(), qPrintable("refresh the translations, see CONTRIBUTING.md:\n" + changed));
}

void TestExtraction::aNewTextAndAVanishedOneAreNoticed()
{
    QFile source(folder.filePath("addition.cpp"));
    QVERIFY(source.open(QIODevice::WriteOnly));
    source.write(R"(QString text = QCoreApplication::translate("MainWindow", "An addition");)");
    source.close();
    QCOMPARE(changes(wholeProgram + QStringList{source.fileName()}),
             QStringList{"unfinished: MainWindow: An addition"});

    const QStringList vanished = changes({"-locations", "none", source.fileName()}).filter("vanished: ");
    QCOMPARE(vanished.size(), catalogue::read(GERMAN_SOURCE).size());
}

void TestExtraction::theShippedFileIsTheCompiledSource()
{
    const QByteArray compiled = contentOf(GERMAN_COMPILED);
    QVERIFY2(!compiled.isEmpty(), "lrelease made nothing: install qttools5-dev-tools and build anew");
    QVERIFY2(contentOf(GERMAN_SHIPPED) == compiled, "refresh the translations, see CONTRIBUTING.md");
}

void TestExtraction::translationsKeepWhatIsNoLanguage_data()
{
    QTest::addColumn<QString>("source");
    QTest::addColumn<QString>("translation");
    for (const catalogue::Message &message : catalogue::read(GERMAN_SOURCE))
        QTest::addRow("%s: %s", qPrintable(message.context), qPrintable(message.source.left(40)))
            << message.source << message.translation;
}

void TestExtraction::translationsKeepWhatIsNoLanguage()
{
    QFETCH(QString, source);
    QFETCH(QString, translation);
    QVERIFY(!translation.isEmpty());
    QCOMPARE(fixedParts(translation), fixedParts(source));
    QCOMPARE(mnemonics(translation), mnemonics(source));
}

QTEST_GUILESS_MAIN(TestExtraction)
#include "tst_extraction.moc"
