#include "core/CSharedString.h"
#include "core/RaisedError.h"
#include "core/ports/SharedBlock.h"
#include "fakes/FakePorts.h"

#include <QTest>

#include <cerrno>
#include <cstring>

class tst_CSharedString final : public QObject
{
    Q_OBJECT

private slots:
    void blockHoldsLengthAndText();
    void existingBlockKeepsItsTextAndTheLastHolderTakesItAlong();
    void tornBlockIsReadSafely_data();
    void tornBlockIsReadSafely();
    void textBeyondTheBlockIsRefusedAndChangesNothing();
    void misuseAndFailureAreRaised();
};

namespace {

constexpr int blockSize = 65535;

template <typename Action>
long NumberRaisedBy(Action action)
{
    try {
        action();
    } catch (const RaisedError &error) {
        return error.Number();
    }
    return 0;
}

} // namespace

void tst_CSharedString::blockHoldsLengthAndText()
{
    FakeSharedBlocks blocks;
    CSharedString writer, reader, other;
    writer.Create(blocks, "name");
    reader.Create(blocks, "name");
    other.Create(blocks, "other");
    writer.SetItem("closewindow");
    writer.SetItem(QStringLiteral(u"\u00e4b"));
    QCOMPARE(reader.Item(), QStringLiteral(u"\u00e4b"));
    QCOMPARE(other.Item(), QString());
    int errorCode = 0;
    const auto block = blocks.Open("name", blockSize, errorCode);
    QCOMPARE(block->Size(), blockSize);
    QCOMPARE(QByteArray(block->Bytes(), 7), QByteArray("\3\0\0\0\xc3\xa4\x62", 7));
    QCOMPARE(block->Bytes()[7], '\0');
    writer.SetItem("");
    QCOMPARE(reader.Item(), QString());
    writer.SetItem(QStringLiteral("ab\0cd"));
    QCOMPARE(reader.Item(), QString("ab"));
}

void tst_CSharedString::existingBlockKeepsItsTextAndTheLastHolderTakesItAlong()
{
    FakeSharedBlocks blocks;
    {
        CSharedString second;
        {
            CSharedString first;
            first.Create(blocks, "name");
            first.SetItem("text");
            second.Create(blocks, "name");
        }
        QCOMPARE(second.Item(), QString("text"));
    }
    CSharedString third;
    third.Create(blocks, "name");
    QCOMPARE(third.Item(), QString());
}

void tst_CSharedString::tornBlockIsReadSafely_data()
{
    QTest::addColumn<QByteArray>("start");
    QTest::addColumn<char>("fill");
    QTest::addColumn<int>("length");
    QTest::newRow("negative length") << QByteArray("\xff\xff\xff\xff") << 'x' << 0;
    QTest::newRow("length beyond the block, no NUL")
        << QByteArray("\xff\xff\xff\x7f") << 'x' << blockSize - 4;
    QTest::newRow("length of the block") << QByteArray("\xff\xff\0\0", 4) << 'x' << blockSize - 4;
    QTest::newRow("no text behind a length") << QByteArray("\x10\0\0\0", 4) << '\0' << 0;
}

void tst_CSharedString::tornBlockIsReadSafely()
{
    QFETCH(QByteArray, start);
    QFETCH(char, fill);
    FakeSharedBlocks blocks;
    int errorCode = 0;
    const auto block = blocks.Open("name", blockSize, errorCode);
    std::memset(block->Bytes(), fill, blockSize);
    std::memcpy(block->Bytes(), start.constData(), 4);
    CSharedString string;
    string.Create(blocks, "name");
    QTEST(static_cast<int>(string.Item().size()), "length");
}

void tst_CSharedString::textBeyondTheBlockIsRefusedAndChangesNothing()
{
    FakeSharedBlocks blocks;
    CSharedString string;
    string.Create(blocks, "name");
    const QString longest(blockSize - 5, 'x');
    string.SetItem(longest);
    QCOMPARE(string.Item(), longest);
    QCOMPARE(NumberRaisedBy([&] { string.SetItem(longest + 'y'); }), 14L);
    QCOMPARE(NumberRaisedBy([&] { string.SetItem(QString(blockSize / 2, QChar(0xe4))); }), 14L);
    QCOMPARE(string.Item(), longest);
}

void tst_CSharedString::misuseAndFailureAreRaised()
{
    constexpr long systemErrors = 2147745792L;
    FakeSharedBlocks blocks;
    CSharedString string;
    QCOMPARE(NumberRaisedBy([&] { string.Item(); }), 13L);
    QCOMPARE(NumberRaisedBy([&] { string.SetItem("a"); }), 13L);
    QCOMPARE(NumberRaisedBy([&] { string.Create(blocks, ""); }), systemErrors + 160);
    blocks.lFailure = EACCES;
    QCOMPARE(NumberRaisedBy([&] { string.Create(blocks, "name"); }), systemErrors + EACCES);
    QCOMPARE(NumberRaisedBy([&] { string.Item(); }), 13L);
}

QTEST_GUILESS_MAIN(tst_CSharedString)
#include "tst_CSharedString.moc"
