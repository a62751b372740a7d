#include "platform/SystemInstance.h"
#include "platform/SystemSharedBlocks.h"

#include <QFileInfo>
#include <QLocalSocket>
#include <QProcess>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>

#include <atomic>
#include <barrier>
#include <cerrno>
#include <cstring>
#include <iostream>
#include <string>
#include <thread>

#include <unistd.h>

namespace {
constexpr int size = 65535;

/// What this program does as the second process: says what it found, and stays until its input ends.
int ActAsPeer(const QStringList &arguments)
{
    const QString task = arguments.value(2), name = arguments.value(3);
    if (task == "raise") {
        SystemInstance().RaiseWindow(name.toLongLong());
        return 0;
    }
    int errorCode = 0;
    SystemSharedBlocks blocks;
    const auto block = blocks.Open(name, size, errorCode);
    std::cout << (block->Existed() ? "existed " : "new ") << block->Bytes() << std::endl;
    std::strcpy(block->Bytes(), "from there");
    std::cout << "written" << std::endl;
    for (std::string line; std::getline(std::cin, line);)
        continue;
    return 0;
}

/// The second process.
class Peer final : public QProcess
{
public:
    explicit Peer(const QStringList &task)
    {
        setProcessChannelMode(ForwardedErrorChannel);
        start(QCoreApplication::applicationFilePath(), QStringList{"peer"} + task);
    }
    ~Peer() override { Kill(); }
    QString NextLine()
    {
        while (!canReadLine() && waitForReadyRead(20000))
            continue;
        return QString::fromUtf8(readLine()).chopped(1);
    }
    /// kill -9.
    void Kill()
    {
        kill();
        waitForFinished();
    }
};
} // namespace

/// What the copies of the program share: the channel to the window, and blocks of memory.
class tst_SeveralCopies : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase() { qputenv("XDG_RUNTIME_DIR", runtime.path().toUtf8()); }

    void anotherCopyRaisesThisWindowAndStrangersDoNot()
    {
        SystemInstance instance;
        QSignalSpy raised(&instance, &Instance::RaiseRequested);
        const qlonglong window = instance.PublishWindow();
        for (const qlonglong unknown : {0LL, -1LL, 1LL, 99'999'999LL})
            instance.RaiseWindow(unknown);
        for (const char *request : {"", "rai", "lower\n", "raise raise raise\n"}) {
            QLocalSocket channel;
            channel.setSocketOptions(QLocalSocket::AbstractNamespaceOption);
            channel.connectToServer(QString("velmar.%1.%2").arg(geteuid()).arg(getpid()));
            QCOMPARE(channel.state(), QLocalSocket::ConnectedState);
            channel.write(request);
            channel.flush();
        }
        Peer second({"raise", QString::number(window)});
        QVERIFY(second.waitForFinished() && second.exitCode() == 0); // it does not wait for our loop
        QTRY_COMPARE(raised.size(), 1);
        QCoreApplication::processEvents();
        QCOMPARE(raised.size(), 1);
    }

    void blockOutlivesItsKilledMaker()
    {
        Peer maker({"block", "killed"});
        QCOMPARE(maker.NextLine(), "new ");
        QCOMPARE(maker.NextLine(), "written");
        auto block = Open("killed");
        QVERIFY(block->Existed() && block->IsHeldElsewhere());
        maker.Kill();
        QVERIFY(!block->IsHeldElsewhere());
        QCOMPARE(block->Bytes(), "from there");
        std::strcpy(block->Bytes(), "from here");
        Peer third({"block", "killed"});
        QCOMPARE(third.NextLine(), "existed from here");
        block.reset();
        QVERIFY(Open("killed")->Existed());
        third.Kill(); // the last holder takes all with it
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
        QFile::setPermissions(shared.path(), QFile::Permissions(0x7077));
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

    QTemporaryDir runtime;
    SystemSharedBlocks blocks;
};

int main(int argc, char **argv)
{
    QCoreApplication application(argc, argv);
    if (QCoreApplication::arguments().value(1) == "peer")
        return ActAsPeer(QCoreApplication::arguments());
    tst_SeveralCopies test;
    return QTest::qExec(&test, argc, argv);
}
#include "tst_SeveralCopies.moc"
