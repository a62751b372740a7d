#include "core/CSharedString.h"
#include "core/Globals.h"
#include "core/OutsideFile.h"
#include "core/Schema.h"
#include "core/SettingsFile.h"
#include "core/clsDBcon.h"
#include "fixtures/TrialServer.h"
#include "platform/SystemInstance.h"
#include "platform/SystemSharedBlocks.h"
#include "server/UserProfile.h"
#include "server/wire/Frames.h"

#include <QDir>
#include <QElapsedTimer>
#include <QSignalSpy>
#include <QTcpServer>
#include <QTcpSocket>
#include <QTest>

#include <csignal>

/// Passes everything on between a client and the server, and keeps what the client said.
class Relay final : public QTcpServer
{
public:
    explicit Relay(quint16 serverPort)
    {
        listen(QHostAddress::LocalHost);
        connect(this, &QTcpServer::newConnection, this, [this, serverPort] {
            QTcpSocket *client = nextPendingConnection();
            auto *server = new QTcpSocket(client);
            server->connectToHost(QHostAddress::LocalHost, serverPort);
            Pass(client, server, true);
            Pass(server, client, false);
        });
    }

    QByteArray abSaid;
    QElapsedTimer sinceLast; ///< started with the first byte

private:
    void Pass(QTcpSocket *from, QTcpSocket *to, bool isClient)
    {
        connect(from, &QTcpSocket::readyRead, this, [this, from, to, isClient] {
            const QByteArray bytes = from->readAll();
            to->write(bytes);
            sinceLast.start();
            if (isClient)
                abSaid += bytes;
        });
        connect(from, &QTcpSocket::disconnected, to, &QTcpSocket::disconnectFromHost);
    }
};

/// A copy of the program as users start it.
class Copy final : public QProcess
{
public:
    explicit Copy(const QStringList &arguments = {})
    {
        setProcessChannelMode(ForwardedErrorChannel);
        start(Program("VelmarClient"), arguments);
    }
    ~Copy() override
    {
        kill();
        waitForFinished();
    }
    static QString Program(const QString &name)
    {
        return QDir(qEnvironmentVariable("VELMAR_BIN_DIR")).filePath(name);
    }
    void Signal(int signal) { ::kill(static_cast<pid_t>(processId()), signal); }
    /// Runs events meanwhile.
    bool EndsWell()
    {
        return QTest::qWaitFor([this] { return state() == NotRunning; }, 20000) &&
               exitStatus() == NormalExit && exitCode() == 0;
    }
};

/// The real program, started twice, killed and closed, with an account that logs in by itself.
class tst_TwoCopies : public QObject
{
    Q_OBJECT

private slots:
    void init()
    {
        dir = std::make_unique<QTemporaryDir>();
        for (const char *variable : {"XDG_RUNTIME_DIR", "XDG_CONFIG_HOME", "VELMAR_DATA_HOME"})
            qputenv(variable, dir->path().toUtf8());
        server = std::make_unique<TrialServer>();
        QVERIFY(server->AddUser("anna", "anna") && server->Start());
        relay = std::make_unique<Relay>(server->Port());
        const QString address = QString("127.0.0.1:%1").arg(relay->serverPort());
        QCOMPARE(QProcess::execute(Copy::Program("VelmarDemo"), {"prepare", "--server", address, "--account",
                                                                 "anna", "--password", "anna"}),
                 0);
        // Without a fetch at the start, whose window would stay open.
        QVERIFY(OpenClientDatabase(UserProfile::DatabaseFile(dir->filePath("Velmar/anna/"))));
        Global().objDB->Execute("Update Option Set Connected=0");
        Global().objDB.reset();
        handle = std::make_unique<CSharedString>();
        handle->Create(blocks, OutsideFile::processHandleName);
        outsideFile = std::make_unique<CSharedString>();
        outsideFile->Create(blocks, OutsideFile::outsideFileName);
    }

    void secondCopyRaisesTheFirstAndHandsItsFileOver()
    {
        Copy first;
        QVERIFY(IsUp(first) && IsSilent());
        first.Signal(SIGSTOP); // it cannot take the file yet, nor is it asked
        SystemInstance instance;
        QSignalSpy raised(&instance, &Instance::RaiseRequested);
        handle->SetItem(QString::number(instance.PublishWindow()));
        const QString fax = server->MakeFax("a fax.tif");
        Copy second({fax});
        QVERIFY(second.EndsWell());
        QCOMPARE(outsideFile->Item(), fax);
        QTRY_COMPARE(raised.size(), 1);
        first.Signal(SIGCONT);
        QTRY_COMPARE_WITH_TIMEOUT(outsideFile->Item(), QString(), 30000);
        QCOMPARE(first.state(), QProcess::Running);
    }

    void killedCopyKeepsNobodyFromStarting()
    {
        Copy first;
        QVERIFY(IsUp(first));
        first.kill();
        QVERIFY(first.waitForFinished());
        Copy next;
        QVERIFY(IsUp(next));
    }

    void closeSignalStoresTheLayoutAndLogsOff()
    {
        const QString settings = dir->filePath("Velmar/FaxSetup.ini");
        QCOMPARE(ReadIniValue("anna", "picPreview_Height", settings), QString());
        Copy copy;
        QVERIFY(IsUp(copy) && IsSilent());
        relay->abSaid.clear();
        copy.Signal(SIGTERM);
        QTRY_COMPARE(relay->abSaid, Frames::FormA(Frames::cmdLogOut));
        QVERIFY(copy.EndsWell());
        QVERIFY(ReadIniValue("anna", "picPreview_Height", settings).toInt() > 0);
    }

private:
    /// True when the copy shows its main window.
    bool IsUp(const Copy &copy)
    {
        return QTest::qWaitFor([&] { return handle->Item() == QString::number(copy.processId()); }, 30000);
    }

    /// The first synchronisation is over when the wire has fallen silent.
    bool IsSilent()
    {
        return QTest::qWaitFor(
            [this] { return relay->sinceLast.isValid() && relay->sinceLast.elapsed() > 1000; }, 30000);
    }

    std::unique_ptr<QTemporaryDir> dir;
    std::unique_ptr<TrialServer> server;
    std::unique_ptr<Relay> relay;
    SystemSharedBlocks blocks;
    std::unique_ptr<CSharedString> handle;
    std::unique_ptr<CSharedString> outsideFile;
};

QTEST_GUILESS_MAIN(tst_TwoCopies)
#include "tst_TwoCopies.moc"
