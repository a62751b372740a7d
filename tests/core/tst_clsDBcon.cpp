#include "core/RaisedError.h"
#include "core/clsDBcon.h"

#include <QFile>
#include <QTemporaryDir>
#include <QTest>

#include <functional>

namespace {

/// What the operation raised, as "number source"; empty for nothing.
QString Raised(const std::function<void()> &operation)
{
    try {
        operation();
    } catch (const RaisedError &error) {
        return QString("%1 %2").arg(QString::number(error.Number()), error.Source());
    }
    return {};
}

QString Value(clsDBcon &database, const QString &sql)
{
    const auto row = database.SelectEx(sql);
    return row->Next() ? row->Text(0) : QString();
}

} // namespace

class tst_clsDBcon : public QObject
{
    Q_OBJECT

private slots:
    void init()
    {
        folder = std::make_unique<QTemporaryDir>();
        database = std::make_unique<clsDBcon>();
        QCOMPARE(database->OpenDB(Path()), 0L);
        database->Execute("Create Table T(ID TEXT Unique, Other)");
        database->Execute("Insert Into T Values('a',1)");
    }

    void unopenablePathLeavesItClosed()
    {
        for (const QString &name :
             {QString("/missing/test.mfd"), QString("/"), QString("/x") + QChar::Null + "y"}) {
            clsDBcon other;
            QVERIFY(other.OpenDB(folder->path() + name) > 0);
            QCOMPARE(other.DataBasePath(), folder->path() + name);
            QVERIFY(!other.IsOpen());
            QVERIFY(other.OpenDB("") > 0);
        }
    }

    void closedConnectionRaises()
    {
        clsDBcon &db = *database;
        db.CloseDB();
        QCOMPARE(Raised([&] { db.SelectEx("Select 1"); }), "-1 SelectEx");
        QCOMPARE(Raised([&] { db.Execute("Select 1"); }), "-1 Excuete");
        QCOMPARE(Raised([&] { db.Begin(); }), "-1 Begin");
        QVERIFY(!db.InsertEx("Insert Into T Values('b',?)", "x"));
        QVERIFY(!db.UpdateEx("Update T Set Other=?", "x"));
    }

    void failureNamesItsOperation()
    {
        clsDBcon &db = *database;
        const QString sqlError = "-1073741823 ";
        QCOMPARE(Raised([&] { db.SelectEx("Select x From T"); }), sqlError + "Function SelectEx");
        QCOMPARE(Raised([&] { db.InsertEx("Insert Into X Values(?)", "x"); }),
                 sqlError + "Function InsertEx");
        QCOMPARE(Raised([&] { db.Commit(); }), sqlError + "Sub Commit");
        QCOMPARE(Raised([&] { db.Execute(" ; "); }), "-1073741622 Function Execuet");
        const auto statement = db.SelectEx("Select ID From T Where Other=?");
        QCOMPARE(Raised([&] { statement->ColumnValue(1); }), "-1073741615 ColumnValue");
        QCOMPARE(Raised([&] { statement->BindParameter(2, "x", 5); }), "-1073741612 BindParameter");
        QCOMPARE(clsDBcon::SqliteGetErrMsg(-1073741823), "SQL error or missing database");
    }

    void brokenConstraintIsRemembered()
    {
        clsDBcon &db = *database;
        QCOMPARE(Raised([&] { db.Execute("Insert Into T Values('a',2)"); }), "-1073741805 Function Execuet");
        QCOMPARE(Value(db, "Select count(*) From T"), "1");
        QVERIFY(db.ColumnNotUnique());
        db.Execute("Insert Into T Values('b',2)");
        QVERIFY(!db.ColumnNotUnique());
        QVERIFY_THROWS_EXCEPTION(RaisedError, db.UpdateEx("Update T Set ID='a', Other=?", "x"));
        QVERIFY(db.ColumnNotUnique());
        db.InsertEx("Insert Into T Values('c',?)", "x");
        QVERIFY(!db.ColumnNotUnique());
    }

    void textBehindTheStatementIsRefused()
    {
        for (const QString &tail :
             {QString("; Drop Table T"), QString("; -- x"), QChar::Null + QString(" Where ID='b'")})
            QVERIFY_THROWS_EXCEPTION(RaisedError, database->Execute("Delete From T" + tail));
        QCOMPARE(Value(*database, "Select count(*) From T"), "1");
        database->Execute("Delete From T ; ;\r\n");
        QCOMPARE(Value(*database, "Select count(*) From T"), "0");
    }

    void valuesKeepTheirTypes()
    {
        const auto row = database->SelectEx("Select 7 As Whole, 2.5, 'it''s ü', '' As Empty, Null As Absent, "
                                            "x'00ff', '12 pages', 'x', -1, 'True'");
        QVERIFY(row->Next());
        const QList<QVariant> values = {7LL,         2.5,        QString::fromUtf8("it's ü"),
                                        QString(""), QVariant(), QByteArray("\0\xff", 2)};
        for (int index = 0; index < values.size(); ++index)
            QCOMPARE(row->ColumnValue(index), values[index]);
        QCOMPARE(row->ColumnValue("WHOLE"), values[0]);
        QVERIFY(row->Text("Absent").isEmpty());
        const QList<long> numbers = {0, 0, 0, 12, 0, -1, 0}; // from "Empty" on
        for (int index = 0; index < numbers.size(); ++index)
            QCOMPARE(row->Number(3 + index), numbers[index]);
    }

    void blobsAreStoredAsTheyAre()
    {
        const QByteArray bytes("\0'\xff", 3);
        QVERIFY(database->InsertEx("Insert Into T Values('b',?)", bytes));
        QVERIFY(database->UpdateEx("Update T Set Other=? Where ID='a'", QByteArray()));
        for (const auto &[id, expected] : {std::pair("a", QByteArray("")), std::pair("b", bytes)}) {
            const auto row = database->SelectEx(QString("Select Other From T Where ID='%1'").arg(id));
            QVERIFY(row->Next());
            QCOMPARE(row->ColumnValue(0), QVariant(expected));
        }
    }

    void openStatementOutlivesClosingButNoTransactionDoes()
    {
        database->Execute("Insert Into T Values('b',2)");
        const auto rows = database->SelectEx("Select ID From T Order By ID");
        QVERIFY(rows->Next());
        database->Begin();
        database->Execute("Update T Set Other=3");
        database->CloseDB();
        clsDBcon other;
        QCOMPARE(other.OpenDB(Path()), 0L);
        other.Execute("Begin Immediate"); // needs the lock that the transaction held
        QCOMPARE(Value(other, "Select Other From T"), "1");
        QVERIFY(rows->Next());
        QCOMPARE(rows->Text("ID"), "b");
    }

    void copyHoldsRowsOfTheSideFile()
    {
        QCOMPARE(Value(*database, "PRAGMA busy_timeout"), "5000"); // waits for other processes
        QCOMPARE(Value(*database, "PRAGMA journal_mode=WAL"), "wal");
        database->Execute("Insert Into T Values('b',2)");
        const QString path = folder->path() + "/copy.mfd";
        database->CopyTo(path);
        clsDBcon copy;
        QCOMPARE(copy.OpenDB(path), 0L);
        QCOMPARE(Value(copy, "Select count(*) From T"), "2");
        QVERIFY_THROWS_EXCEPTION(RaisedError, database->CopyTo(folder->path() + "/missing/copy.mfd"));
    }

private:
    QString Path() const { return folder->path() + "/test.mfd"; }

    std::unique_ptr<QTemporaryDir> folder;
    std::unique_ptr<clsDBcon> database;
};

QTEST_GUILESS_MAIN(tst_clsDBcon)
#include "tst_clsDBcon.moc"
