#include "core/CSharedString.h"
#include "core/RaisedError.h"
#include "core/ports/SharedBlock.h"
#include "fakes/FakePorts.h"

#include <QTest>

#include <cerrno>
#include <cstring>

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

class tst_CSharedString final : public QObject
{
    Q_OBJECT

private slots:
    void blockHoldsLengthAndText()
    {
        FakeSharedBlocks blocks;
        CSharedString writer, reader;
        writer.Create(blocks, "name");
        reader.Create(blocks, "name");
        writer.SetItem("closewindow");
        writer.SetItem(QStringLiteral(u"\u00e4b"));
        QCOMPARE(reader.Item(), QStringLiteral(u"\u00e4b"));
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

    void tornBlockIsReadSafely_data()
    {
        QTest::addColumn<QByteArray>("start");
        QTest::addColumn<char>("fill");
        QTest::addColumn<int>("length");
        QTest::newRow("negative length") << QByteArray("\xff\xff\xff\xff") << 'x' << 0;
        QTest::newRow("length beyond the block, no NUL")
            << QByteArray("\xff\xff\xff\x7f") << 'x' << blockSize - 4;
        QTest::newRow("no text behind a length") << QByteArray("\x10\0\0\0", 4) << '\0' << 0;
    }

    void tornBlockIsReadSafely()
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

    void textBeyondTheBlockIsRefusedAndChangesNothing()
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

    void misuseAndFailureAreRaised()
    {
        constexpr long systemErrors = 2147745792L;
        FakeSharedBlocks blocks;
        CSharedString string;
        QCOMPARE(NumberRaisedBy([&] { string.Item(); }), 13L);
        QCOMPARE(NumberRaisedBy([&] { string.Create(blocks, ""); }), systemErrors + 160);
        blocks.lFailure = EACCES;
        QCOMPARE(NumberRaisedBy([&] { string.Create(blocks, "name"); }), systemErrors + EACCES);
    }
};

QTEST_GUILESS_MAIN(tst_CSharedString)
#include "tst_CSharedString.moc"
