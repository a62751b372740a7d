#include "platform/MessagePrompts.h"
#include "platform/QtEventPump.h"

#include <QApplication>
#include <QMessageBox>
#include <QPushButton>
#include <QTest>
#include <QTimer>

class tst_MessagePrompts : public QObject
{
    Q_OBJECT

private slots:
    void flagsGiveButtonsAndAnswers_data();
    void flagsGiveButtonsAndAnswers();
    void boxOverADisabledWindowStaysAlive();
    void quittingClosesTheBoxWithTheHarmlessAnswer(); // ends the program: keep it last

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

void tst_MessagePrompts::flagsGiveButtonsAndAnswers_data()
{
    QTest::addColumn<long>("flags");
    QTest::addColumn<int>("key");
    QTest::addColumn<int>("icon");
    QTest::addColumn<long>("answer");
    const auto row = [](const char *name, long flags, Qt::Key key, QMessageBox::Icon icon, long answer) {
        QTest::newRow(name) << flags << int(key) << int(icon) << answer;
    };
    row("ok", mbOKOnly, Qt::Key_Return, QMessageBox::NoIcon, mbAnswerOK);
    row("escape of ok", mbCritical, Qt::Key_Escape, QMessageBox::Critical, mbAnswerOK);
    row("ok of two", mbOKCancel + mbInformation, Qt::Key_Return, QMessageBox::Information, mbAnswerOK);
    row("cancel", mbOKCancel + mbExclamation, Qt::Key_Escape, QMessageBox::Warning, mbAnswerCancel);
    row("yes", mbYesNo + mbQuestion, Qt::Key_Return, QMessageBox::Question, mbAnswerYes);
    row("no by default", mbYesNo + mbQuestion + mbDefaultButton2, Qt::Key_Return, QMessageBox::Question,
        mbAnswerNo);
    row("escape of yes and no", mbYesNo, Qt::Key_Escape, QMessageBox::NoIcon, mbAnswerNo);
}

void tst_MessagePrompts::flagsGiveButtonsAndAnswers()
{
    QFETCH(long, flags);
    QFETCH(int, key);
    QFETCH(int, icon);
    int shownIcon = -1;
    QString title;
    Qt::TextFormat format = Qt::AutoText;
    WhenShown([&](QMessageBox *box) {
        shownIcon = box->icon();
        title = box->windowTitle();
        format = box->textFormat();
        QTest::keyClick(box, Qt::Key(key));
    });
    QTEST(prompts.Show("A text", flags, {}), "answer");
    QCOMPARE(shownIcon, icon);
    QCOMPARE(title, "Velmar Client");
    QCOMPARE(format, Qt::PlainText); // text from a server is never markup
}

void tst_MessagePrompts::boxOverADisabledWindowStaysAlive()
{
    QWidget owner;
    owner.setGeometry(100, 100, 600, 400);
    owner.show();
    owner.activateWindow();
    QVERIFY(QTest::qWaitForWindowActive(&owner));
    bool alive = false;
    QPoint distance;
    WhenShown([&](QMessageBox *box) {
        owner.setEnabled(false); // a run begins while the box stands
        alive = box->isEnabled() && box->button(QMessageBox::Ok)->isEnabled();
        distance = box->frameGeometry().center() - owner.frameGeometry().center();
        box->accept();
    });
    prompts.Show("A text", mbOKOnly, {});
    QVERIFY(alive);
    QVERIFY2(distance.manhattanLength() < 60, qPrintable(QString::number(distance.manhattanLength())));
}

void tst_MessagePrompts::quittingClosesTheBoxWithTheHarmlessAnswer()
{
    QtEventPump pump;
    long answer = 0;
    QTimer::singleShot(0, &pump, [&] { answer = prompts.Show("Delete all?", mbYesNo, {}); });
    WhenShown([&](QMessageBox *) { pump.Quit(); });
    QCOMPARE(pump.Run(), 0);
    QCOMPARE(answer, long(mbAnswerNo));
}

QTEST_MAIN(tst_MessagePrompts)
#include "tst_MessagePrompts.moc"
