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

class tst_SharedBlocks : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase() { qputenv("XDG_RUNTIME_DIR", runtime.path().toUtf8()); }
    void blockOutlivesItsKilledMaker()
    {
        PeerProcess maker({"block", "killed", QString::number(size), "from there"});
        QCOMPARE(maker.NextLine(), "new ");
        QCOMPARE(maker.NextLine(), "written");
        auto block = Open("killed");
        QVERIFY(block->Existed());
        QVERIFY(maker.Kill());
        QCOMPARE(block->Bytes(), "from there");
        std::strcpy(block->Bytes(), "from here");
        PeerProcess third({"block", "killed", QString::number(size)});
        QCOMPARE(third.NextLine(), "existed from here");
        block.reset();
        QVERIFY(Open("killed")->Existed());
        QVERIFY(third.Kill()); // the last holder takes all with it
        const auto next = Open("killed");
        QVERIFY(!next->Existed());
        QCOMPARE(QByteArray(next->Bytes(), size), QByteArray(size, '\0'));
    }

    void oneOfManyMakesTheBlock()
    {
        constexpr int rounds = 200;
        std::atomic<int> made{0}, failed{0};
        std::barrier meeting(4);
        InThreads([&] {
            for (int round = 0; round < rounds; ++round) {
                meeting.arrive_and_wait();
                const auto block = Open("crowd");
                made += block && !block->Existed() ? 1 : 0;
                failed += block ? 0 : 1;
                meeting.arrive_and_wait();
            }
        });
        QCOMPARE(failed.load(), 0);
        QCOMPARE(made.load(), rounds);
    }

    void heldBlockIsNeverLostToChurn()
    {
        const auto held = Open("churn");
        std::strcpy(held->Bytes(), "held");
        std::atomic<int> wrong{0};
        InThreads([&] {
            for (int visit = 0; visit < 300; ++visit) {
                const auto block = Open("churn");
                wrong += block && block->Existed() && std::strcmp(block->Bytes(), "held") == 0 ? 0 : 1;
            }
        });
        QCOMPARE(wrong.load(), 0);
    }

    void smallerOrUnreachableBlocksAreErrors()
    {
        int errorCode = 0;
        const auto small = blocks.Open("small", 16, errorCode);
        QVERIFY(small);
        QVERIFY(!blocks.Open("small", size, errorCode)); // reading behind its end would kill the program
        QCOMPARE(errorCode, EINVAL);
        QVERIFY(!blocks.Open("no/such/folder", size, errorCode));
        QCOMPARE(errorCode, ENOENT);
    }

    void folderOpenToOthersIsNotTrusted()
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

private:
    std::unique_ptr<SharedBlock> Open(const QString &name)
    {
        int errorCode = -1;
        auto block = blocks.Open(name, size, errorCode);
        return errorCode == 0 ? std::move(block) : nullptr;
    }
    /// Runs `act` in four threads at once.
    template <typename Action>
    static void InThreads(Action act)
    {
        const std::jthread one(act), two(act), three(act), four(act);
    }

    static constexpr int size = 65535;
    QTemporaryDir runtime;
    SystemSharedBlocks blocks;
};

QTEST_GUILESS_MAIN(tst_SharedBlocks)
#include "tst_SharedBlocks.moc"
