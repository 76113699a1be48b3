// SPDX-License-Identifier: MIT
// Tests of the drop-down list that edits a hot pixel's class, on the real hot pixel list and in a real table.
#include "pixelclassdelegate.h"

#include "badpixellistmodel.h"
#include "hotpixels/badpixellistmodelpeer.h"

#include <QComboBox>
#include <QLineEdit>
#include <QTableView>
#include <QTranslator>
#include <QtTest>

#include <memory>

namespace {

const int ClassColumn = 2;

enum Choice { ChooseFactory, ChooseUser, ChooseIgnore };

/// Knows one row with a text to show and another to edit, and keeps what it is told to store.
class TwoTextsModel : public QAbstractListModel
{
public:
    int rowCount(const QModelIndex & = QModelIndex()) const override { return 1; }

    QVariant data(const QModelIndex &, int role) const override
    {
        return role == Qt::EditRole ? toEdit : role == Qt::DisplayRole ? QString("user") : QVariant();
    }

    bool setData(const QModelIndex &index, const QVariant &value, int role) override
    {
        stored << qMakePair(QPersistentModelIndex(index), value);
        roles << role;
        return false;
    }

    QVariant toEdit = QString("factory");
    QList<QPair<QPersistentModelIndex, QVariant>> stored;
    QList<int> roles;
};

/// Puts the delegate's names into other words; a name without one stays as it is.
class Words : public QTranslator
{
public:
    bool isEmpty() const override { return false; }

    QString translate(const char *context, const char *text, const char *, int) const override
    {
        return qstrcmp(context, "PixelclassDelegate") == 0 ? words.value(text) : QString();
    }

    QHash<QString, QString> words{{"factory", "Werk"}, {"user", "Benutzer"}, {"ignore", "auslassen"}};
};

/// Wears a translation for as long as it lives.
struct Translated
{
    explicit Translated(Words &words)
        : translator(words)
    {
        QCoreApplication::installTranslator(&translator);
    }
    ~Translated() { QCoreApplication::removeTranslator(&translator); }

    Words &translator;
};

QStringList namesIn(const QComboBox *names)
{
    QStringList texts;
    for (int i = 0; i < names->count(); ++i)
        texts << names->itemText(i);
    return texts;
}

} // namespace

class TestPixelclassDelegate : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();

    void belongsToItsParent();
    void offersTheThreeNamesAndNothingElse();
    void theEditorBelongsToTheParentAsked();
    void opensOnTheTextOfTheEntry_data();
    void opensOnTheTextOfTheEntry();
    void opensOnNothingWhereTheTextIsNoName_data();
    void opensOnNothingWhereTheTextIsNoName();
    void opensOnNothingWhereThereIsNoEntry();
    void opensOnTheTextToEdit();
    void passesTheChosenTextOnToEdit_data();
    void passesTheChosenTextOnToEdit();
    void nothingChosenPassesAnEmptyText();
    void choosingFactoryStoresFactory();
    void choosingUserStoresUser();
    void choosingIgnoreLeavesTheEntryUnchanged_data();
    void choosingIgnoreLeavesTheEntryUnchanged();
    void theEditorTakesTheCellsPlace();
    void otherEditorsAreLeftAlone();
    void noEditorIsLeftAlone();
    void translatedNamesAreShown();
    void translatedNamesMatchNoEntry();
    void translatedNamesAreRefused_data();
    void translatedNamesAreRefused();
    void anUntranslatedNameTakesEffectAmongTranslatedOnes();
    void aPersonChoosesInTheTable();
    void aPersonChoosesIgnoreInTheTableInVain();

private:
    std::unique_ptr<QComboBox> openEditor(const QModelIndex &index) const;
    void choose(int choice, const QModelIndex &index);
    QModelIndex addEntry(std::uint8_t pixelclass);

    QWidget parent;
    std::unique_ptr<BadpixelListModel> model;
    PixelclassDelegate delegate{nullptr};
};

void TestPixelclassDelegate::init()
{
    model = std::make_unique<BadpixelListModel>();
}

void TestPixelclassDelegate::cleanup()
{
    model.reset();
}

QModelIndex TestPixelclassDelegate::addEntry(std::uint8_t pixelclass)
{
    BadpixelListModelPeer::append(*model, {Badpixel{10, 20, pixelclass}});
    return model->index(model->rowCount() - 1, ClassColumn);
}

std::unique_ptr<QComboBox> TestPixelclassDelegate::openEditor(const QModelIndex &index) const
{
    QWidget *editor = delegate.createEditor(const_cast<QWidget *>(&parent), QStyleOptionViewItem(), index);
    delegate.setEditorData(editor, index);
    return std::unique_ptr<QComboBox>(qobject_cast<QComboBox *>(editor));
}

void TestPixelclassDelegate::choose(int choice, const QModelIndex &index)
{
    const auto editor = openEditor(index);
    editor->setCurrentIndex(choice);
    delegate.setModelData(editor.get(), model.get(), index);
}

void TestPixelclassDelegate::belongsToItsParent()
{
    QObject owner;
    QCOMPARE((new PixelclassDelegate(&owner))->parent(), &owner);
}

void TestPixelclassDelegate::offersTheThreeNamesAndNothingElse()
{
    const auto editor = openEditor(addEntry(User));
    QVERIFY(editor);
    QCOMPARE(namesIn(editor.get()), (QStringList{"factory", "user", "ignore"}));
    for (int i = 0; i < editor->count(); ++i) {
        QVERIFY(editor->itemIcon(i).isNull());
        QVERIFY(!editor->itemData(i).isValid());
    }
    QVERIFY(!editor->isEditable());
}

void TestPixelclassDelegate::theEditorBelongsToTheParentAsked()
{
    QCOMPARE(openEditor(addEntry(User))->parentWidget(), &parent);
}

void TestPixelclassDelegate::opensOnTheTextOfTheEntry_data()
{
    QTest::addColumn<int>("pixelclass");
    QTest::addColumn<int>("opened");
    QTest::newRow("reads ignore") << int(Factory) << int(ChooseIgnore);
    QTest::newRow("reads user") << int(User) << int(ChooseUser);
    QTest::newRow("reads factory") << int(Ignore) << int(ChooseFactory);
    QTest::newRow("unknown, reads factory") << 255 << int(ChooseFactory);
}

void TestPixelclassDelegate::opensOnTheTextOfTheEntry()
{
    QFETCH(int, pixelclass);
    QFETCH(int, opened);
    const QModelIndex index = addEntry(static_cast<std::uint8_t>(pixelclass));
    const auto editor = openEditor(index);
    QCOMPARE(editor->currentIndex(), opened);
    QCOMPARE(editor->currentText(), index.data().toString());
}

void TestPixelclassDelegate::opensOnNothingWhereTheTextIsNoName_data()
{
    QTest::addColumn<QVariant>("text");
    QTest::newRow("another case") << QVariant("Factory");
    QTest::newRow("the beginning") << QVariant("fact");
    QTest::newRow("more than the name") << QVariant("user ");
    QTest::newRow("a pattern") << QVariant("u*");
    QTest::newRow("an empty text") << QVariant("");
    QTest::newRow("no text") << QVariant();
    QTest::newRow("a number") << QVariant(1);
}

void TestPixelclassDelegate::opensOnNothingWhereTheTextIsNoName()
{
    QFETCH(QVariant, text);
    TwoTextsModel texts;
    texts.toEdit = text;
    const auto editor = openEditor(texts.index(0));
    QCOMPARE(editor->currentIndex(), -1);
    QCOMPARE(editor->currentText(), QString());
}

void TestPixelclassDelegate::opensOnNothingWhereThereIsNoEntry()
{
    QCOMPARE(openEditor(QModelIndex())->currentIndex(), -1);
}

void TestPixelclassDelegate::opensOnTheTextToEdit()
{
    TwoTextsModel texts;
    QCOMPARE(openEditor(texts.index(0))->currentIndex(), int(ChooseFactory));
}

void TestPixelclassDelegate::passesTheChosenTextOnToEdit_data()
{
    QTest::addColumn<int>("choice");
    QTest::addColumn<QString>("text");
    QTest::newRow("factory") << int(ChooseFactory) << "factory";
    QTest::newRow("user") << int(ChooseUser) << "user";
    QTest::newRow("ignore") << int(ChooseIgnore) << "ignore";
}

void TestPixelclassDelegate::passesTheChosenTextOnToEdit()
{
    QFETCH(int, choice);
    QFETCH(QString, text);
    TwoTextsModel texts;
    const auto editor = openEditor(texts.index(0));
    editor->setCurrentIndex(choice);
    delegate.setModelData(editor.get(), &texts, texts.index(0));
    QCOMPARE(texts.stored.size(), 1);
    QCOMPARE(QModelIndex(texts.stored.first().first), texts.index(0));
    QCOMPARE(texts.stored.first().second, QVariant(text));
    QCOMPARE(texts.roles, QList<int>{Qt::EditRole});
    QCOMPARE(editor->currentIndex(), choice); // the model said no, which nobody looks at
}

void TestPixelclassDelegate::nothingChosenPassesAnEmptyText()
{
    const QModelIndex index = addEntry(User);
    choose(-1, index);
    QCOMPARE(int(model->badpixel(0).pixelclass), int(User));
    TwoTextsModel texts;
    texts.toEdit = "nonsense";
    const auto editor = openEditor(texts.index(0));
    delegate.setModelData(editor.get(), &texts, texts.index(0));
    QCOMPARE(texts.stored.size(), 1);
    QCOMPARE(texts.stored.first().second, QVariant(QString()));
}

void TestPixelclassDelegate::choosingFactoryStoresFactory()
{
    const QModelIndex index = addEntry(User);
    const QSignalSpy changes(model.get(), &QAbstractItemModel::dataChanged);
    choose(ChooseFactory, index);
    QCOMPARE(int(model->badpixel(0).pixelclass), int(Factory));
    QCOMPARE(changes.size(), 1);
    QCOMPARE(openEditor(index)->currentIndex(), int(ChooseIgnore)); // as which the list shows it
}

void TestPixelclassDelegate::choosingUserStoresUser()
{
    const QModelIndex index = addEntry(Ignore);
    choose(ChooseUser, index);
    QCOMPARE(int(model->badpixel(0).pixelclass), int(User));
}

void TestPixelclassDelegate::choosingIgnoreLeavesTheEntryUnchanged_data()
{
    QTest::addColumn<int>("pixelclass");
    for (const int pixelclass : {0, 1, 2, 255})
        QTest::newRow(qPrintable(QString::number(pixelclass))) << pixelclass;
}

void TestPixelclassDelegate::choosingIgnoreLeavesTheEntryUnchanged()
{
    QFETCH(int, pixelclass);
    const QModelIndex index = addEntry(static_cast<std::uint8_t>(pixelclass));
    const QSignalSpy changes(model.get(), &QAbstractItemModel::dataChanged);
    choose(ChooseIgnore, index);
    QCOMPARE(int(model->badpixel(0).pixelclass), pixelclass);
    QCOMPARE(changes.size(), 0);
}

void TestPixelclassDelegate::theEditorTakesTheCellsPlace()
{
    const QModelIndex index = addEntry(User);
    const auto editor = openEditor(index);
    QStyleOptionViewItem option;
    option.rect = QRect(7, 11, 90, 23);
    delegate.updateEditorGeometry(editor.get(), option, index);
    QCOMPARE(editor->geometry(), QRect(7, 11, 90, 23));
}

void TestPixelclassDelegate::otherEditorsAreLeftAlone()
{
    TwoTextsModel texts;
    QLineEdit other("typed");
    delegate.setEditorData(&other, texts.index(0));
    delegate.setModelData(&other, &texts, texts.index(0));
    QCOMPARE(other.text(), QString("typed"));
    QVERIFY(texts.stored.isEmpty());
}

void TestPixelclassDelegate::noEditorIsLeftAlone()
{
    TwoTextsModel texts;
    delegate.setEditorData(nullptr, texts.index(0));
    delegate.setModelData(nullptr, &texts, texts.index(0));
    QVERIFY(texts.stored.isEmpty());
}

void TestPixelclassDelegate::translatedNamesAreShown()
{
    Words words;
    const Translated translated(words);
    QCOMPARE(namesIn(openEditor(addEntry(User)).get()), (QStringList{"Werk", "Benutzer", "auslassen"}));
}

void TestPixelclassDelegate::translatedNamesMatchNoEntry()
{
    Words words;
    const Translated translated(words);
    for (const auto pixelclass : {Factory, User, Ignore})
        QCOMPARE(openEditor(addEntry(pixelclass))->currentIndex(), -1);
}

void TestPixelclassDelegate::translatedNamesAreRefused_data()
{
    QTest::addColumn<int>("choice");
    QTest::newRow("factory") << int(ChooseFactory);
    QTest::newRow("user") << int(ChooseUser);
    QTest::newRow("ignore") << int(ChooseIgnore);
}

void TestPixelclassDelegate::translatedNamesAreRefused()
{
    QFETCH(int, choice);
    Words words;
    const Translated translated(words);
    const QModelIndex index = addEntry(Ignore); // which none of the names would keep
    const QSignalSpy changes(model.get(), &QAbstractItemModel::dataChanged);
    choose(choice, index);
    QCOMPARE(int(model->badpixel(0).pixelclass), int(Ignore));
    QCOMPARE(changes.size(), 0);
}

void TestPixelclassDelegate::anUntranslatedNameTakesEffectAmongTranslatedOnes()
{
    Words words;
    words.words.remove("user");
    const Translated translated(words);
    const QModelIndex index = addEntry(Factory);
    choose(ChooseUser, index);
    QCOMPARE(int(model->badpixel(0).pixelclass), int(User));
    QCOMPARE(openEditor(index)->currentIndex(), int(ChooseUser));
}

namespace {

/// The hot pixel list as a table, with the editor of its first class cell held open.
struct Table
{
    Table(BadpixelListModel *model, PixelclassDelegate *delegate)
    {
        view.setModel(model);
        view.setItemDelegateForColumn(ClassColumn, delegate);
        view.resize(500, 200);
        view.show();
        view.activateWindow();
        cell = model->index(0, ClassColumn);
        view.openPersistentEditor(cell); // the list calls no cell editable, so a click does not open any
        editor = view.viewport()->findChild<QComboBox *>();
    }

    QTableView view;
    QPersistentModelIndex cell;
    QComboBox *editor = nullptr;
};

} // namespace

void TestPixelclassDelegate::aPersonChoosesInTheTable()
{
    addEntry(User);
    Table table(model.get(), &delegate);
    QVERIFY(QTest::qWaitForWindowActive(&table.view));
    QVERIFY(table.editor);
    QCOMPARE(table.editor->currentText(), QString("user"));
    QCOMPARE(table.editor->geometry(), table.view.visualRect(table.cell));
    table.editor->setFocus();
    QTest::keyClick(table.editor, Qt::Key_Up);
    QCOMPARE(table.editor->currentText(), QString("factory"));
    QTest::keyClick(table.editor, Qt::Key_Return);
    QTRY_COMPARE(int(model->badpixel(0).pixelclass), int(Factory));
    QTRY_COMPARE(table.editor->currentText(), QString("ignore")); // it follows the list
}

void TestPixelclassDelegate::aPersonChoosesIgnoreInTheTableInVain()
{
    addEntry(User);
    Table table(model.get(), &delegate);
    QVERIFY(QTest::qWaitForWindowActive(&table.view));
    const QSignalSpy commits(&delegate, &QAbstractItemDelegate::commitData);
    table.editor->setFocus();
    QTest::keyClick(table.editor, Qt::Key_Down);
    QCOMPARE(table.editor->currentText(), QString("ignore"));
    QTest::keyClick(table.editor, Qt::Key_Return);
    QTRY_VERIFY(!commits.isEmpty());
    QCOMPARE(int(model->badpixel(0).pixelclass), int(User));
    QCOMPARE(table.cell.data().toString(), QString("user"));
}

QTEST_MAIN(TestPixelclassDelegate)
#include "tst_pixelclassdelegate.moc"
