#include "core/RaisedError.h"
#include "core/clsDBcon.h"
#include "fixtures/Profile.h"

#include <QFile>
#include <QTemporaryDir>
#include <QTest>

#include <functional>
#include <optional>

namespace {

/// An operation on a connection, by the name under which a table of cases lists it.
using Operation = std::function<void(clsDBcon &)>;

std::optional<RaisedError> CatchError(const std::function<void()> &operation)
{
    try {
        operation();
    } catch (const RaisedError &error) {
        return error;
    }
    return std::nullopt;
}

QString Value(clsDBcon &database, const QString &sql)
{
    const auto row = database.SelectEx(sql);
    return row->Next() ? row->Text(0) : QString();
}

} // namespace

Q_DECLARE_METATYPE(Operation)

class tst_clsDBcon : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void openWhileOpenKeepsTheFirstPath();
    void unopenablePathLeavesItClosed_data();
    void unopenablePathLeavesItClosed();
    void closedConnectionRaises_data();
    void closedConnectionRaises();
    void closedConnectionRefusesBlobs();
    void failureNamesItsOperation_data();
    void failureNamesItsOperation();
    void brokenConstraintIsRemembered();
    void textBehindTheStatementIsRefused_data();
    void textBehindTheStatementIsRefused();
    void valuesKeepTheirTypes();
    void numbersComeFromTheFrontOfTheText();
    void finishedQueryStaysFinished();
    void misusedStatementRaises_data();
    void misusedStatementRaises();
    void blobsAreStoredAsTheyAre();
    void openStatementOutlivesWritesAndClosing();
    void closingDropsTheOpenTransaction();
    void waitsForOtherProcesses();
    void copyHoldsRowsOfTheSideFile();
    void fileOfAnotherKindIsNoDatabase();
    void errorTexts_data();
    void errorTexts();

private:
    QString Path() const { return folder->path() + "/test.mfd"; }

    std::unique_ptr<QTemporaryDir> folder;
    std::unique_ptr<clsDBcon> database;
};

void tst_clsDBcon::init()
{
    folder = std::make_unique<QTemporaryDir>();
    database = std::make_unique<clsDBcon>();
    QCOMPARE(database->OpenDB(Path()), 0L);
    database->Execute("Create Table T(ID TEXT Unique, Other)");
    database->Execute("Insert Into T Values('a',1)");
}

void tst_clsDBcon::openWhileOpenKeepsTheFirstPath()
{
    QCOMPARE(database->OpenDB(folder->path() + "/other.mfd"), -1L);
    QCOMPARE(database->DataBasePath(), Path());
    QVERIFY(!QFile::exists(folder->path() + "/other.mfd"));
    database->CloseDB();
    QCOMPARE(database->OpenDB(folder->path() + "/other.mfd"), 0L);
}

void tst_clsDBcon::unopenablePathLeavesItClosed_data()
{
    QTest::addColumn<QString>("name");
    QTest::newRow("missing folder") << "/missing/test.mfd";
    QTest::newRow("folder") << "/";
    QTest::newRow("NUL inside") << QString("/x") + QChar::Null + "y";
}

void tst_clsDBcon::unopenablePathLeavesItClosed()
{
    QFETCH(QString, name);
    clsDBcon other;
    const QString path = folder->path() + name;
    QVERIFY(other.OpenDB(path) > 0);
    QCOMPARE(other.DataBasePath(), path);
    QVERIFY(!other.IsOpen());
    QCOMPARE(CatchError([&] { other.SelectEx("Select 1"); }).value().Number(), -1L);
    QVERIFY(other.OpenDB("") > 0);
}

void tst_clsDBcon::closedConnectionRaises_data()
{
    QTest::addColumn<Operation>("operation");
    QTest::newRow("SelectEx") << Operation([](clsDBcon &db) { db.SelectEx("Select 1"); });
    QTest::newRow("Excuete") << Operation([](clsDBcon &db) { db.Execute("Select 1"); });
    QTest::newRow("Begin") << Operation([](clsDBcon &db) { db.Begin(); });
    QTest::newRow("RollBack") << Operation([](clsDBcon &db) { db.RollBack(); });
    QTest::newRow("Commit") << Operation([](clsDBcon &db) { db.Commit(); });
}

void tst_clsDBcon::closedConnectionRaises()
{
    QFETCH(Operation, operation);
    QVERIFY(CatchError([&] { database->Execute("Insert Into T Values('a',2)"); }));
    database->CloseDB();
    const auto error = CatchError([&] { operation(*database); });
    QVERIFY(error);
    QCOMPARE(error->Number(), -1L);
    QCOMPARE(error->Source(), QTest::currentDataTag());
    QCOMPARE(error->Description(), "The database hasn't been opened.");
    QVERIFY(database->ColumnNotUnique());
}

void tst_clsDBcon::closedConnectionRefusesBlobs()
{
    QVERIFY(CatchError([&] { database->Execute("Insert Into T Values('a',2)"); }));
    database->CloseDB();
    QVERIFY(!database->InsertEx("Insert Into T Values('b',?)", "x"));
    QVERIFY(!database->UpdateEx("Update T Set Other=?", "x"));
    QVERIFY(!database->ColumnNotUnique());
}

void tst_clsDBcon::failureNamesItsOperation_data()
{
    QTest::addColumn<Operation>("operation");
    QTest::addColumn<QString>("source");
    const auto row = [](const char *tag, const QString &source, Operation operation) {
        QTest::newRow(tag) << operation << source;
    };
    row("SelectEx", "Function SelectEx", [](clsDBcon &db) { db.SelectEx("Select x From T"); });
    row("Execute", "Function Execuet", [](clsDBcon &db) { db.Execute("Select x From T"); });
    row("InsertEx", "Function InsertEx", [](clsDBcon &db) { db.InsertEx("Insert Into X Values(?)", "x"); });
    row("UpdateEx", "Function InsertEx", [](clsDBcon &db) { db.UpdateEx("Update X Set Y=?", "x"); });
    row("Commit", "Sub Commit", [](clsDBcon &db) { db.Commit(); });
    row("RollBack", "Sub RollBack", [](clsDBcon &db) { db.RollBack(); });
    row("Begin", "Sub Begin", [](clsDBcon &db) {
        db.Begin();
        db.Begin();
    });
}

void tst_clsDBcon::failureNamesItsOperation()
{
    QFETCH(Operation, operation);
    QFETCH(QString, source);
    const auto error = CatchError([&] { operation(*database); });
    QVERIFY(error);
    QCOMPARE(error->Number(), -1073741823L);
    QCOMPARE(error->Source(), source);
    QVERIFY(!error->Description().isEmpty());
    QVERIFY(!database->ColumnNotUnique());
}

void tst_clsDBcon::brokenConstraintIsRemembered()
{
    const auto error = CatchError([&] { database->Execute("Insert Into T Values('a',2)"); });
    QVERIFY(error);
    QCOMPARE(error->Number(), -1073741805L);
    QVERIFY(error->Description().contains("T.ID"));
    QCOMPARE(Value(*database, "Select count(*) From T"), "1");
    QVERIFY(database->ColumnNotUnique());
    database->Execute("Insert Into T Values('b',2)");
    QVERIFY(!database->ColumnNotUnique());
    QVERIFY(CatchError([&] { database->UpdateEx("Update T Set ID='a', Other=?", "x"); }));
    QVERIFY(database->ColumnNotUnique());
}

void tst_clsDBcon::textBehindTheStatementIsRefused_data()
{
    QTest::addColumn<QString>("tail");
    QTest::addColumn<bool>("refused");
    QTest::newRow("second statement") << "; Drop Table T" << true;
    QTest::newRow("comment") << "; -- x" << true;
    QTest::newRow("NUL") << QString(QChar::Null) + " Where ID='b'" << true;
    QTest::newRow("blanks and semicolons") << " ; ;\r\n" << false;
}

void tst_clsDBcon::textBehindTheStatementIsRefused()
{
    QFETCH(QString, tail);
    QFETCH(bool, refused);
    const auto error = CatchError([&] { database->Execute("Delete From T" + tail); });
    QCOMPARE(error.has_value(), refused);
    QCOMPARE(Value(*database, "Select count(*) From T"), refused ? "1" : "0");
}

void tst_clsDBcon::valuesKeepTheirTypes()
{
    const auto row = database->SelectEx(
        "Select 7 As Whole, 2.5 As Part, 'it''s ü' As Words, '' As Empty, Null As Absent, x'00ff' As Bytes");
    QVERIFY(row->Next());
    QCOMPARE(row->ColumnValue("WHOLE"), QVariant(7LL));
    QCOMPARE(row->ColumnValue(1), QVariant(2.5));
    QCOMPARE(row->ColumnValue("words"), QVariant(QString::fromUtf8("it's ü")));
    QCOMPARE(row->ColumnValue("Empty"), QVariant(QString("")));
    QVERIFY(!row->ColumnValue("Absent").isValid());
    QVERIFY(row->Text("Absent").isEmpty());
    QCOMPARE(row->ColumnValue("Bytes"), QVariant(QByteArray("\0\xff", 2)));
}

void tst_clsDBcon::numbersComeFromTheFrontOfTheText()
{
    const auto row = database->SelectEx("Select '12 pages', 'x', Null, '', -1, 'True'");
    QVERIFY(row->Next());
    const QList<long> expected = {12, 0, 0, 0, -1, 0};
    for (int index = 0; index < expected.size(); ++index)
        QCOMPARE(row->Number(index), expected[index]);
}

void tst_clsDBcon::finishedQueryStaysFinished()
{
    const auto rows = database->SelectEx("Select ID From T");
    bool done = true;
    rows->Step(1, done);
    QVERIFY(!done);
    for (int again = 0; again < 2; ++again) {
        rows->Step(1, done);
        QVERIFY(done);
    }
    QVERIFY(!rows->ColumnValue("ID").isValid());
    QVERIFY(!database->SelectEx("Select ID From T Where ID='z'")->Next());
}

void tst_clsDBcon::misusedStatementRaises_data()
{
    using Use = std::function<void(clsStatement &)>;
    QTest::addColumn<Operation>("operation");
    QTest::addColumn<long>("number");
    const auto row = [](const char *tag, long number, Use use) {
        QTest::newRow(tag) << Operation([use](clsDBcon &db) {
            use(*db.SelectEx("Select ID From T Where Other=?"));
        }) << number;
    };
    row("step mode", -1073741607, [](clsStatement &statement) {
        bool done = false;
        statement.Step(2, done);
    });
    row("column name", -1073741614, [](clsStatement &statement) { statement.ColumnValue("Nobody"); });
    row("column index", -1073741615, [](clsStatement &statement) { statement.ColumnValue(1); });
    row("negative index", -1073741615, [](clsStatement &statement) { statement.ColumnValue(-1); });
    row("parameter index", -1073741612, [](clsStatement &statement) { statement.BindParameter(2, "x", 5); });
    row("parameter type", -1073741620, [](clsStatement &statement) { statement.BindParameter(1, "x", 1); });
    row("closed", -1073741621, [](clsStatement &statement) {
        statement.Close();
        statement.Next();
    });
    QTest::newRow("no statement") << Operation([](clsDBcon &db) { db.Execute(" ; "); }) << -1073741622L;
}

void tst_clsDBcon::misusedStatementRaises()
{
    QFETCH(Operation, operation);
    QFETCH(long, number);
    const auto error = CatchError([&] { operation(*database); });
    QVERIFY(error);
    QCOMPARE(error->Number(), number);
    QVERIFY(error->Description().startsWith(clsDBcon::SqliteGetErrMsg(number)));
}

void tst_clsDBcon::blobsAreStoredAsTheyAre()
{
    const QByteArray bytes("\0'\xff", 3);
    QVERIFY(database->InsertEx("Insert Into T Values('b',?)", bytes));
    QVERIFY(database->UpdateEx("Update T Set Other=? Where ID='a'", QByteArray()));
    const auto rows = database->SelectEx("Select Other From T Order By ID");
    QVERIFY(rows->Next());
    QCOMPARE(rows->ColumnValue(0), QVariant(QByteArray("")));
    QVERIFY(rows->Next());
    QCOMPARE(rows->ColumnValue(0), QVariant(bytes));
}

void tst_clsDBcon::openStatementOutlivesWritesAndClosing()
{
    database->Execute("Insert Into T Values('b',2)");
    const auto rows = database->SelectEx("Select ID From T Order By ID");
    QVERIFY(rows->Next());
    database->Execute("Update T Set Other=3");
    database->CloseDB();
    QCOMPARE(rows->Text("ID"), "a");
    QVERIFY(rows->Next());
    QCOMPARE(rows->Text("ID"), "b");
}

void tst_clsDBcon::closingDropsTheOpenTransaction()
{
    const auto rows = database->SelectEx("Select ID From T");
    QVERIFY(rows->Next());
    database->Begin();
    database->Execute("Delete From T");
    database->CloseDB();
    clsDBcon other;
    QCOMPARE(other.OpenDB(Path()), 0L);
    other.Execute("Begin Immediate"); // needs the lock that the transaction held
    QCOMPARE(Value(other, "Select count(*) From T"), "1");
}

void tst_clsDBcon::waitsForOtherProcesses()
{
    QCOMPARE(Value(*database, "PRAGMA busy_timeout"), "5000");
}

void tst_clsDBcon::copyHoldsRowsOfTheSideFile()
{
    QCOMPARE(Value(*database, "PRAGMA journal_mode=WAL"), "wal");
    database->Execute("Insert Into T Values('b',2)");
    const QString path = folder->path() + "/copy.mfd";
    database->CopyTo(path);
    clsDBcon copy;
    QCOMPARE(copy.OpenDB(path), 0L);
    QCOMPARE(Value(copy, "Select count(*) From T"), "2");
    QVERIFY(CatchError([&] { database->CopyTo(folder->path() + "/missing/copy.mfd"); }));
}

void tst_clsDBcon::fileOfAnotherKindIsNoDatabase()
{
    const QString path = folder->path() + "/other.mfd";
    QVERIFY(WriteTestFile(path, QByteArray(5000, 'x')));
    clsDBcon other;
    QCOMPARE(other.OpenDB(path), 0L);
    QCOMPARE(CatchError([&] { other.Execute("Create Table T(ID)"); }).value().Number(), -1073741798L);
    other.CloseDB();
    QCOMPARE(ReadTestFile(path), QByteArray(5000, 'x'));
}

void tst_clsDBcon::errorTexts_data()
{
    QTest::addColumn<long>("number");
    QTest::addColumn<QString>("text");
    QTest::newRow("first") << -1073741823L << "SQL error or missing database";
    QTest::newRow("not plain ASCII") << -1073741817L
                                     << QString::fromUtf8("A malloc() failed – out of memory");
    QTest::newRow("last code of SQLite") << -1073741798L << "File opened that is not a database file";
    QTest::newRow("first of the wrapper") << -1073741624L << "Statement already prepared.";
    QTest::newRow("last of the wrapper") << -1073741607L << "Bad step parameter.";
    QTest::newRow("row") << 1073741924L << "Another row ready.Not an error";
    QTest::newRow("zero") << 0L << "UnSign Error";
    QTest::newRow("not open") << -1L << "UnSign Error";
}

void tst_clsDBcon::errorTexts()
{
    QFETCH(long, number);
    QFETCH(QString, text);
    QCOMPARE(clsDBcon::SqliteGetErrMsg(number), text);
}

QTEST_GUILESS_MAIN(tst_clsDBcon)
#include "tst_clsDBcon.moc"
