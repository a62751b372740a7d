#include "core/clsDBcon.h"
#include "fixtures/TestTable.h"
#include "platform/DatabaseWatch.h"
#include "platform/MessagePrompts.h"
#include "platform/QtEventPump.h"

#include <QApplication>
#include <QMessageBox>
#include <QPushButton>
#include <QTimer>

class tst_MessagePrompts : public QObject
{
    Q_OBJECT

private slots:
    void flagsGiveButtonsAndAnswers_data()
    {
        const TestTable<long, int, long> row{"flags", "key", "answer"};
        row("escape of ok", mbCritical, Qt::Key_Escape, mbAnswerOK);
        row("ok of two", mbOKCancel, Qt::Key_Return, mbAnswerOK);
        row("cancel", mbOKCancel, Qt::Key_Escape, mbAnswerCancel);
        row("yes", mbYesNo + mbQuestion, Qt::Key_Return, mbAnswerYes);
        row("no by default", mbYesNo + mbDefaultButton2, Qt::Key_Return, mbAnswerNo);
        row("escape of yes and no", mbYesNo, Qt::Key_Escape, mbAnswerNo);
    }

    void flagsGiveButtonsAndAnswers()
    {
        QFETCH(long, flags);
        QFETCH(int, key);
        Qt::TextFormat format = Qt::AutoText;
        WhenShown([&](QMessageBox *box) {
            format = box->textFormat();
            QTest::keyClick(box, Qt::Key(key));
        });
        QTEST(prompts.Show("A text", flags, {}), "answer");
        QCOMPARE(format, Qt::PlainText); // text from a server is never markup
    }

    void boxOverADisabledWindowStaysAlive()
    {
        QWidget owner;
        owner.show();
        QVERIFY(QTest::qWaitForWindowActive(&owner));
        bool alive = false;
        WhenShown([&](QMessageBox *box) {
            owner.setEnabled(false); // a run begins while the box stands
            alive = box->isEnabled() && box->button(QMessageBox::Ok)->isEnabled();
            box->accept();
        });
        prompts.Show("A text", mbOKOnly, {});
        QVERIFY(alive);
    }

    void longStatementShowsABusyPointer()
    {
        const DatabaseWatch watch(0);
        clsDBcon database;
        QCOMPARE(database.OpenDB(":memory:"), 0);
        database
            .SelectEx("WITH RECURSIVE n(i) AS (VALUES(1) UNION ALL SELECT i+1 FROM n WHERE i<500000) "
                      "SELECT count(*) FROM n")
            ->Execute();
        QVERIFY(QGuiApplication::overrideCursor());
        QCoreApplication::processEvents();
        QVERIFY(!QGuiApplication::overrideCursor());
    }

    void quittingClosesTheBoxWithTheHarmlessAnswer() // ends the program: keep it last
    {
        QtEventPump pump;
        long answer = 0;
        QTimer::singleShot(0, &pump, [&] { answer = prompts.Show("Delete all?", mbYesNo, {}); });
        WhenShown([&](QMessageBox *) { pump.Quit(); });
        QCOMPARE(pump.Run(), 0);
        QCOMPARE(answer, long(mbAnswerNo));
    }

private:
    /// Runs `act` on the box as soon as it stands.
    template <typename Action>
    void WhenShown(Action act)
    {
        QTimer::singleShot(0, this, [this, act] {
            auto *box = qobject_cast<QMessageBox *>(QApplication::activeModalWidget());
            box ? act(box) : WhenShown(act);
        });
    }

    MessagePrompts prompts;
};

QTEST_MAIN(tst_MessagePrompts)
#include "tst_MessagePrompts.moc"
