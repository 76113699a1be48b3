// SPDX-License-Identifier: MIT
// Tests the library's current user list and the binary files against a camera library that says anything:
// this program's own vx_HotPixel stands before that of the simulated one.
#include "currentuserlist.h"

#include "badpixellistmodelpeer.h"
#include "modeltext.h"

#include <QtTest>

#include <cstring>
#include <map>
#include <stdexcept>

namespace {

struct Sent
{
    std::uint32_t handle;
    std::uint32_t command;
    std::uint32_t size;
    ListBuffer list; // what came in with kelvo::HotpixelSetCurrentUserList
};

/// What the library says and what it was asked.
struct Script
{
    std::map<std::uint32_t, std::int32_t> status; // of a command; 0 for the others
    std::uint32_t count = 0;
    ListBuffer list{0}; // as much of it is given as the caller has room for
    std::vector<Sent> calls;

    std::vector<int> commands() const
    {
        std::vector<int> codes;
        for (const Sent &call : calls) {
            codes.push_back(static_cast<int>(call.command));
        }
        return codes;
    }
};

Script script;

void answer(std::uint32_t command, void *data, std::uint32_t size)
{
    if (command == kelvo::HotpixelGetCurrentUserListCount) {
        std::memcpy(data, &script.count, sizeof script.count);
    } else if (command == kelvo::HotpixelGetCurrentUserList) {
        std::memcpy(data, script.list.data(), std::min<std::size_t>(size, 2 * script.list.size()));
    }
}

ListBuffer wordsOf(const void *data, std::uint32_t size)
{
    ListBuffer words(size / sizeof(std::uint16_t));
    std::memcpy(words.data(), data, words.size() * sizeof(std::uint16_t));
    return words;
}

} // namespace

std::int32_t vx_HotPixel(std::uint32_t h, std::uint32_t command, void *data, std::uint32_t size)
{
    const bool takesList = command == kelvo::HotpixelSetCurrentUserList;
    script.calls.push_back({h, command, size, takesList ? wordsOf(data, size) : ListBuffer()});
    const auto status = script.status.find(command);
    if (status != script.status.end()) {
        return status->second;
    }
    answer(command, data, size);
    return kelvo::Success;
}

class TestCurrentUserList : public QObject
{
    Q_OBJECT

private slots:
    void init() { script = Script(); }

    void withoutACameraTheLibraryIsAskedWithoutAHandle();
    void theListIsReadWithItsCount();
    void anEmptyListIsReadToo();
    void noListIsAnEmptyOne();
    void aFailingCountIsTheResult();
    void aFailingReadIsTheResult();
    void theLongestListIsRead();
    void countsThatNoListHasAreNotReadFor_data();
    void countsThatNoListHasAreNotReadFor();
    void aWordBeyondTheBufferIsCut();
    void aWordShortOfTheBufferIsBelieved();

    void loadingAHostileListTakesWhatIsThere();
    void anImpossibleCountFailsALoad();
    void anImpossibleCountFailsASave();
    void aHostileBackupIsPutBackWithinItsBuffer();
    void negativeCodesAreTold();
};

void TestCurrentUserList::withoutACameraTheLibraryIsAskedWithoutAHandle()
{
    ListBuffer list;
    QCOMPARE(CurrentUserList(nullptr).read(list), kelvo::Success);
    QCOMPARE(script.calls.front().handle, kelvo::NoCamera);
}

void TestCurrentUserList::theListIsReadWithItsCount()
{
    script.count = 2;
    script.list = {2, 10, 11, 20, 21};
    ListBuffer list{9, 9, 9};
    QCOMPARE(CurrentUserList(nullptr).read(list), kelvo::Success);
    QCOMPARE(list, script.list);
    QCOMPARE(script.commands(), (std::vector<int>{33024, 33025, 33026}));
    QCOMPARE(script.calls[0].size, 0u);
    QCOMPARE(script.calls[1].size, 4u);
    QCOMPARE(script.calls[2].size, 4u * 2 + 2);
}

void TestCurrentUserList::anEmptyListIsReadToo()
{
    ListBuffer list;
    QCOMPARE(CurrentUserList(nullptr).read(list), kelvo::Success);
    QCOMPARE(list, ListBuffer{0});
    QCOMPARE(script.commands(), (std::vector<int>{33024, 33025, 33026}));
    QCOMPARE(script.calls[2].size, 2u);
}

void TestCurrentUserList::noListIsAnEmptyOne()
{
    script.status[kelvo::HotpixelQueryCurrentUserList] = -7;
    ListBuffer list{9, 9, 9};
    QCOMPARE(CurrentUserList(nullptr).read(list), kelvo::Success);
    QCOMPARE(list, ListBuffer{0});
    QCOMPARE(script.commands(), std::vector<int>{33024});
}

void TestCurrentUserList::aFailingCountIsTheResult()
{
    script.status[kelvo::HotpixelGetCurrentUserListCount] = 42;
    ListBuffer list;
    QCOMPARE(CurrentUserList(nullptr).read(list), 42);
    QCOMPARE(script.commands(), (std::vector<int>{33024, 33025}));
}

void TestCurrentUserList::aFailingReadIsTheResult()
{
    script.status[kelvo::HotpixelGetCurrentUserList] = 43;
    script.count = 3;
    ListBuffer list;
    QCOMPARE(CurrentUserList(nullptr).read(list), 43);
}

void TestCurrentUserList::theLongestListIsRead()
{
    script.count = 65535;
    script.list.assign(2 * 65535 + 1, 5);
    script.list[0] = 65535;
    ListBuffer list;
    QCOMPARE(CurrentUserList(nullptr).read(list), kelvo::Success);
    QCOMPARE(list, script.list);
}

void TestCurrentUserList::countsThatNoListHasAreNotReadFor_data()
{
    QTest::addColumn<std::uint32_t>("count");
    QTest::newRow("one too many") << 65536u;
    QTest::newRow("of which the buffer would wrap to nothing") << 0x80000000u;
    QTest::newRow("largest positive") << 0x7FFFFFFFu;
    QTest::newRow("-1") << 0xFFFFFFFFu;
}

void TestCurrentUserList::countsThatNoListHasAreNotReadFor()
{
    QFETCH(std::uint32_t, count);
    script.count = count;
    ListBuffer list;
    QVERIFY(CurrentUserList(nullptr).read(list) != kelvo::Success);
    QCOMPARE(script.commands(), (std::vector<int>{33024, 33025}));
    QCOMPARE(list, ListBuffer{0});
}

void TestCurrentUserList::aWordBeyondTheBufferIsCut()
{
    script.count = 1;
    script.list = {65535, 10, 11};
    ListBuffer list;
    QCOMPARE(CurrentUserList(nullptr).read(list), kelvo::Success);
    QCOMPARE(list, (ListBuffer{1, 10, 11}));
}

void TestCurrentUserList::aWordShortOfTheBufferIsBelieved()
{
    script.count = 3;
    script.list = {1, 10, 11, 20, 21, 30, 31};
    ListBuffer list;
    QCOMPARE(CurrentUserList(nullptr).read(list), kelvo::Success);
    QCOMPARE(list, (ListBuffer{1, 10, 11}));
}

void TestCurrentUserList::loadingAHostileListTakesWhatIsThere()
{
    script.count = 2;
    script.list = {40000, 10, 11, 20, 21};
    BadpixelListModel model;
    model.loadFromFile(nullptr, "list.bin");
    QCOMPARE(rowTexts(model), (QStringList{"10 11 user", "20 21 user"}));
}

void TestCurrentUserList::anImpossibleCountFailsALoad()
{
    script.count = 0xFFFFFFFFu;
    BadpixelListModel model;
    QVERIFY_EXCEPTION_THROWN(model.loadFromFile(nullptr, "list.bin"), std::runtime_error);
    QCOMPARE(script.commands(), (std::vector<int>{33024, 33025}));
}

void TestCurrentUserList::anImpossibleCountFailsASave()
{
    script.count = 65536;
    BadpixelListModel model;
    model.addBadpixel({1, 2});
    QVERIFY_EXCEPTION_THROWN(model.saveAsFile(nullptr, "list.bin"), std::runtime_error);
    QCOMPARE(script.commands(), (std::vector<int>{33024, 33025}));
    QCOMPARE(rowTexts(model), QStringList{"1 2 user"});
}

void TestCurrentUserList::aHostileBackupIsPutBackWithinItsBuffer()
{
    script.count = 1;
    script.list = {65535, 10, 11};
    BadpixelListModel model;
    model.saveAsFile(nullptr, "list.bin");
    QCOMPARE(script.calls.back().list, (ListBuffer{1, 10, 11}));
    QCOMPARE(script.calls.back().size, 6u);
}

void TestCurrentUserList::negativeCodesAreTold()
{
    script.status[kelvo::HotpixelSetCurrentUserList] = -2147483647 - 1;
    BadpixelListModel model;
    try {
        model.saveAsFile(nullptr, "list.bin");
        QFAIL("was saved");
    } catch (const std::runtime_error &failure) {
        QCOMPARE(failure.what(), "write to file failed with -2147483648\n");
    }
}

QTEST_GUILESS_MAIN(TestCurrentUserList)
#include "tst_currentuserlist.moc"
