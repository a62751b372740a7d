#include "core/clsDBcon.h"
#include "fixtures/Profile.h"
#include "platform/DatabaseWatch.h"
#include "platform/DesktopFileDialogs.h"
#include "platform/DesktopFontDialogs.h"
#include "platform/MessagePrompts.h"
#include "platform/QtEventPump.h"

#include <QApplication>
#include <QFileDialog>
#include <QFontDialog>
#include <QInputDialog>
#include <QLineEdit>
#include <QMessageBox>
#include <QPushButton>
#include <QTest>
#include <QTimer>

class tst_MessagePrompts : public QObject
{
    Q_OBJECT

private slots:
    void flagsGiveButtonsAndAnswers()
    {
        const std::tuple<long, Qt::Key, long> rows[] = {
            {mbCritical, Qt::Key_Escape, mbAnswerOK},
            {mbOKCancel, Qt::Key_Return, mbAnswerOK},
            {mbOKCancel, Qt::Key_Escape, mbAnswerCancel},
            {mbYesNo + mbQuestion, Qt::Key_Return, mbAnswerYes},
            {mbYesNo + mbDefaultButton2, Qt::Key_Return, mbAnswerNo},
            {mbYesNo, Qt::Key_Escape, mbAnswerNo}};
        for (const auto &[flags, pressed, answer] : rows) {
            Qt::TextFormat format = Qt::AutoText;
            WhenShown<QMessageBox>([&format, key = pressed](QMessageBox *box) {
                format = box->textFormat();
                QTest::keyClick(box, key);
            });
            QCOMPARE(prompts.Show("A text", flags, {}), answer);
            QCOMPARE(format, Qt::PlainText); // text from a server is never markup
        }
    }

    void boxOverADisabledWindowStaysAlive()
    {
        QWidget owner;
        owner.show();
        QVERIFY(QTest::qWaitForWindowActive(&owner));
        bool alive = false;
        WhenShown<QMessageBox>([&](QMessageBox *box) {
            owner.setEnabled(false); // a run begins while the box stands
            alive = box->isEnabled() && box->button(QMessageBox::Ok)->isEnabled();
            box->accept();
        });
        prompts.Show("A text", mbOKOnly, {});
        QVERIFY(alive);
    }

    void typedTextComesBackAndACancelledOneIsEmpty()
    {
        QWidget owner;
        const QRect screen = owner.screen()->availableGeometry();
        owner.setGeometry(screen.right() - 100, screen.bottom() - 50, 90, 40);
        owner.show();
        QVERIFY(QTest::qWaitForWindowActive(&owner));
        for (const Qt::Key key : {Qt::Key_Return, Qt::Key_Escape}) {
            bool fits = false;
            WhenShown<QInputDialog>([&](QInputDialog *box) {
                fits = screen.contains(box->geometry()) && box->width() >= 340;
                QTest::keyClicks(box->focusWidget(), "My own");
                QTest::keyClick(box, key);
            });
            QCOMPARE(prompts.AskText("A name: ", "New"), key == Qt::Key_Return ? "My own" : "");
            QVERIFY(fits);
        }
    }

    void fileDialogsOfferTheFilterAndCompleteTheName()
    {
        QCoreApplication::setAttribute(Qt::AA_DontUseNativeDialogs);
        const QTemporaryDir folder;
        QVERIFY(WriteTestFile(folder.filePath("Old.GNI"), "a") &&
                WriteTestFile(folder.filePath("b.txt"), "b"));
        DesktopFileDialogs dialogs;
        const FileDialogSetup setup{
            "Config file(*.gni)|*.gni;*.Info|All files|*.*", folder.path(), "gni", {}};
        QStringList filters;
        const auto type = [&](const QString &names) {
            WhenShown<QFileDialog>([&filters, names](QFileDialog *dialog) {
                filters = dialog->nameFilters();
                dialog->findChild<QLineEdit *>()->setText(names);
                static_cast<QDialog *>(dialog)->accept();
                if (dialog->isVisible()) // the names were refused
                    dialog->reject();
            });
        };
        type("Old");
        QCOMPARE(dialogs.ChooseTarget(setup), folder.filePath("Old.gni"));
        QCOMPARE(filters, (QStringList{"Config file(*.gni) (*.gni *.GNI *.gni? *.GNI? *.info *.INFO)",
                                       "All files (*)"}));
        type("Old.GNI"); // replacing it is not asked here
        QCOMPARE(dialogs.ChooseTarget(setup), folder.filePath("Old.GNI"));
        type("\"Old.GNI\" \"b.txt\"");
        QCOMPARE(dialogs.ChooseFiles(setup),
                 (QStringList{folder.filePath("Old.GNI"), folder.filePath("b.txt")}));
        WhenShown<QMessageBox>([](QMessageBox *box) { box->accept(); }); // "File not found."
        type("missing.gni");
        QCOMPARE(dialogs.ChooseFile(setup), "");
    }

    void fontDialogKeepsWhatIsNotChosen()
    {
        DesktopFontDialogs dialogs;
        const FontChoice current{"No Such Font", 8.25, true, false, false, true};
        WhenShown<QFontDialog>([](QFontDialog *dialog) { dialog->accept(); });
        QCOMPARE(dialogs.ChooseFont(current).value(), current);
        WhenShown<QFontDialog>([](QFontDialog *dialog) {
            QFont font("Liberation Serif", 14);
            font.setItalic(true);
            dialog->setCurrentFont(font);
            dialog->accept();
        });
        QCOMPARE(dialogs.ChooseFont(current).value(),
                 (FontChoice{"Liberation Serif", 14, false, true, false, false}));
        WhenShown<QFontDialog>([](QFontDialog *dialog) { dialog->reject(); });
        QVERIFY(!dialogs.ChooseFont(current));
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
        WhenShown<QMessageBox>([&](QMessageBox *) { pump.Quit(); });
        QCOMPARE(pump.Run(), 0);
        QCOMPARE(answer, long(mbAnswerNo));
    }

private:
    /// Runs `act` on the box as soon as it stands.
    template <typename Dialog, typename Action>
    void WhenShown(Action act)
    {
        QTimer::singleShot(0, this, [this, act] {
            auto *box = qobject_cast<Dialog *>(QApplication::activeModalWidget());
            box ? act(box) : WhenShown<Dialog>(act);
        });
    }

    MessagePrompts prompts;
};

QTEST_MAIN(tst_MessagePrompts)
#include "tst_MessagePrompts.moc"
