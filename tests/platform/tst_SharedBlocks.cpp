#include "PeerProcess.h"
#include "platform/SystemSharedBlocks.h"

#include <QFileInfo>
#include <QTemporaryDir>
#include <QTest>

#include <atomic>
#include <barrier>
#include <cerrno>
#include <cstring>
#include <memory>
#include <thread>
#include <vector>

namespace {
constexpr int size = 65535;
}

class tst_SharedBlocks : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void firstHolderFindsZeros();
    void textCrossesToAnotherProcess();
    void blockOutlivesItsKilledMaker();
    void blockEndsWithItsLastHolder();
    void killedLastHolderLeavesNothing();
    void oneOfManyProcessesMakesTheBlock();
    void oneOfManyThreadsMakesTheBlock();
    void heldBlockIsNeverLostToChurn();
    void smallerOrUnreachableBlocksAreErrors();
    void folderOpenToOthersIsNotTrusted();

private:
    std::unique_ptr<SharedBlock> Open(const QString &name);

    QTemporaryDir runtime;
    SystemSharedBlocks blocks;
};

void tst_SharedBlocks::initTestCase()
{
    qputenv("XDG_RUNTIME_DIR", runtime.path().toUtf8());
}

std::unique_ptr<SharedBlock> tst_SharedBlocks::Open(const QString &name)
{
    int errorCode = -1;
    auto block = blocks.Open(name, size, errorCode);
    return errorCode == 0 ? std::move(block) : nullptr;
}

void tst_SharedBlocks::firstHolderFindsZeros()
{
    const auto block = Open("zeros");
    QVERIFY(block);
    QVERIFY(!block->Existed());
    QCOMPARE(block->Size(), size);
    QCOMPARE(QByteArray(block->Bytes(), size), QByteArray(size, '\0'));
}

void tst_SharedBlocks::textCrossesToAnotherProcess()
{
    const auto block = Open("crossing");
    std::strcpy(block->Bytes(), "from here");
    PeerProcess peer({"block", "crossing", QString::number(size), "from there"});
    QCOMPARE(peer.NextLine(), "existed from here");
    QCOMPARE(peer.NextLine(), "written");
    QCOMPARE(block->Bytes(), "from there");
}

void tst_SharedBlocks::blockOutlivesItsKilledMaker()
{
    PeerProcess maker({"block", "killed", QString::number(size), "still here"});
    QCOMPARE(maker.NextLine(), "new ");
    QCOMPARE(maker.NextLine(), "written");
    const auto block = Open("killed");
    QVERIFY(block->Existed());
    QVERIFY(maker.Kill());
    QCOMPARE(block->Bytes(), "still here");
    PeerProcess third({"block", "killed", QString::number(size)});
    QCOMPARE(third.NextLine(), "existed still here");
}

void tst_SharedBlocks::blockEndsWithItsLastHolder()
{
    auto first = Open("ending");
    std::strcpy(first->Bytes(), "gone soon");
    auto second = Open("ending");
    first.reset();
    QVERIFY(Open("ending")->Existed());
    second.reset();
    QVERIFY(!QFileInfo::exists(runtime.filePath("velmar.ending")));
    const auto next = Open("ending");
    QVERIFY(!next->Existed());
    QCOMPARE(next->Bytes(), "");
}

void tst_SharedBlocks::killedLastHolderLeavesNothing()
{
    PeerProcess peer({"block", "lastKilled", QString::number(size), "stale"});
    peer.NextLine();
    QCOMPARE(peer.NextLine(), "written");
    QVERIFY(peer.Kill());
    const auto block = Open("lastKilled");
    QVERIFY(!block->Existed());
    QCOMPARE(block->Bytes(), "");
}

void tst_SharedBlocks::oneOfManyProcessesMakesTheBlock()
{
    std::vector<std::unique_ptr<PeerProcess>> peers;
    for (int count = 0; count < 4; ++count)
        peers.push_back(std::make_unique<PeerProcess>(QStringList{"block", "racing", QString::number(size)}));
    QStringList lines;
    for (const auto &peer : peers)
        lines.append(peer->NextLine());
    QCOMPARE(lines.count("new "), 1);
    QCOMPARE(lines.count("existed "), 3);
    for (const auto &peer : peers)
        QVERIFY(peer->Leave());
}

void tst_SharedBlocks::oneOfManyThreadsMakesTheBlock()
{
    constexpr int threads = 4;
    constexpr int rounds = 200;
    std::atomic<int> made{0};
    std::atomic<int> failed{0};
    std::barrier meeting(threads);
    std::vector<std::thread> crowd;
    for (int count = 0; count < threads; ++count) {
        crowd.emplace_back([&] {
            for (int round = 0; round < rounds; ++round) {
                meeting.arrive_and_wait();
                const auto block = Open("crowd");
                made += block && !block->Existed() ? 1 : 0;
                failed += block ? 0 : 1;
                meeting.arrive_and_wait();
            }
        });
    }
    for (std::thread &thread : crowd)
        thread.join();
    QCOMPARE(failed.load(), 0);
    QCOMPARE(made.load(), rounds);
}

void tst_SharedBlocks::heldBlockIsNeverLostToChurn()
{
    const auto held = Open("churn");
    std::strcpy(held->Bytes(), "held");
    std::atomic<int> wrong{0};
    std::vector<std::thread> visitors;
    for (int count = 0; count < 3; ++count) {
        visitors.emplace_back([&] {
            for (int visit = 0; visit < 300; ++visit) {
                const auto block = Open("churn");
                wrong += block && block->Existed() && std::strcmp(block->Bytes(), "held") == 0 ? 0 : 1;
            }
        });
    }
    for (std::thread &thread : visitors)
        thread.join();
    QCOMPARE(wrong.load(), 0);
}

void tst_SharedBlocks::smallerOrUnreachableBlocksAreErrors()
{
    int errorCode = 0;
    const auto small = blocks.Open("small", 16, errorCode);
    QVERIFY(small);
    QVERIFY(!blocks.Open("small", size, errorCode)); // reading behind its end would kill the program
    QCOMPARE(errorCode, EINVAL);
    QVERIFY(!blocks.Open("no/such/folder", size, errorCode));
    QCOMPARE(errorCode, ENOENT);
}

void tst_SharedBlocks::folderOpenToOthersIsNotTrusted()
{
    QTemporaryDir shared;
    QFile::setPermissions(shared.path(), QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner |
                                             QFile::ReadOther | QFile::WriteOther | QFile::ExeOther);
    qputenv("XDG_RUNTIME_DIR", shared.path().toUtf8());
    const auto block = Open("private");
    qputenv("XDG_RUNTIME_DIR", runtime.path().toUtf8());
    QVERIFY(block);
    QVERIFY(!QFileInfo::exists(shared.filePath("velmar.private")));
}

QTEST_GUILESS_MAIN(tst_SharedBlocks)
#include "tst_SharedBlocks.moc"
