#include "core/Globals.h"
#include "server/LoginTest.h"
#include "server/forms/frmUserLogin.h"
#include "server/wire/clsClient.h"

#include <QCheckBox>
#include <QComboBox>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QTest>

class tst_frmUserLogin : public QObject, private LoginTest
{
    Q_OBJECT

private slots:
    void init()
    {
        SetUp();
        EnterAnna();
        Set("UserList", "TotalCount", "2");
        Set("UserList", "2", "bert");
        Set("bert", "RememberPwd", "1");
        Set("bert", "UserPwd", QString(32, 'B'));
        owner->onClose = [this] { form->CloseWindow(); };
    }

    void cleanup()
    {
        form.reset();
        TearDown();
    }

    void loginByKeyboard()
    {
        Open();
        QCOMPARE(form->focusWidget(), Account());
        TypeAll();
        QCOMPARE(Edit("txtPwd")->echoMode(), QLineEdit::Password);
        fakes->pump.Then([&] {
            QCOMPARE(Button("btnLogin")->text(), "&Abort");
            QCOMPARE(Tip(), "Connecting to faxhost:9001  ...");
            QVERIFY(!Edit("txtPwd")->isEnabled() && !Button("btnExit")->isEnabled());
        });
        QTest::keyClick(form->focusWidget(), Qt::Key_Return);
        Server().AcceptConnection();
        QVERIFY(!Button("btnLogin")->isEnabled());
        Accept();
        QVERIFY(form->CheckUserLogin());
        QVERIFY(!form->isVisible());
        QCOMPARE(form->result(), int(QDialog::Accepted));
        QVERIFY(owner->aCalls.contains("show") && owner->client->IsConnected());
        QCOMPARE(Global().strUserName, "carl");
    }

    void escapeAndButtonAbortFirst()
    {
        Open();
        TypeAll();
        fakes->pump.Then([&] { QTest::mouseClick(Button("btnLogin"), Qt::LeftButton); });
        QTest::mouseClick(Button("btnLogin"), Qt::LeftButton);
        QCOMPARE(Button("btnLogin")->text(), "&Login");
        QCOMPARE(Tip(), "Ready ...");
        QVERIFY(Edit("txtPwd")->isEnabled());
        fakes->pump.Then([&] { QTest::keyClick(form.get(), Qt::Key_Escape); });
        QTest::mouseClick(Button("btnLogin"), Qt::LeftButton);
        QVERIFY(form->isVisible());
        fakes->pump.Then([&] { form->close(); }); // ends the login too
        QTest::mouseClick(Button("btnLogin"), Qt::LeftButton);
        QVERIFY(!form->isVisible() && !form->CheckUserLogin());
        QVERIFY(!fakes->sockets.Last());
        Open();
        QTest::keyClick(form.get(), Qt::Key_Escape);
        QVERIFY(!form->isVisible());
    }

    void chosenAccountBringsItsDigestUntilTyped()
    {
        Open();
        QCOMPARE(Account()->count(), 2);
        QTest::keyClick(Account(), Qt::Key_Down);
        QCOMPARE(Account()->currentText(), "bert");
        QCOMPARE(Edit("txtPwd")->text(), QString(32, 'B'));
        QVERIFY(Check("chkRememberPwd")->isChecked());
        QTest::keyClick(Check("chkAutoLogin"), Qt::Key_Space);
        QTest::keyClick(Check("chkRememberPwd"), Qt::Key_Space);
        QVERIFY(!Check("chkAutoLogin")->isChecked());
        QTest::mouseClick(Button("btnLogin"), Qt::LeftButton);
        Server().AcceptConnection();
        Greet();
        QVERIFY(Server().TakeWrite().endsWith("bert\r\n" + QByteArray(32, 'B')));
        Server().FeedShort("ERR\r\n1\r\n");
        QCOMPARE(form->focusWidget(), Account());
        QTest::keyClick(Edit("txtPwd"), Qt::Key_X);
        QTest::mouseClick(Button("btnLogin"), Qt::LeftButton);
        Server().AcceptConnection();
        Greet();
        QVERIFY(!Server().TakeWrite().contains("BBB")); // digested as typed text
    }

    void missingInputGetsTheFocus()
    {
        Open();
        QTest::mouseClick(Button("btnLogin"), Qt::LeftButton);
        QCOMPARE(Prompts().Texts(), QStringList{"Please specify the password."});
        QCOMPARE(form->focusWidget(), Edit("txtPwd"));
        Edit("txtServer")->clear();
        emit Edit("txtServer")->textEdited({});
        QTest::mouseClick(Button("btnLogin"), Qt::LeftButton);
        QCOMPARE(form->focusWidget(), Edit("txtServer"));
    }

    void loginFromTheMainWindowAsksForThePasswordOnly()
    {
        Open(true);
        for (QWidget *widget :
             QList<QWidget *>{Edit("txtServer"), Account(), Check("chkRememberPwd"), Check("chkAutoLogin")})
            QVERIFY2(!widget->isEnabled(), qPrintable(widget->objectName()));
        QVERIFY(!Button("btnBrowse")->isVisible());
        QCOMPARE(Account()->currentText(), "anna");
        QCOMPARE(form->focusWidget(), Edit("txtPwd"));
        QTest::mouseClick(Button("btnExit"), Qt::LeftButton);
        QCOMPARE(form->result(), int(QDialog::Rejected));
    }

    void automaticLoginStartsByItself()
    {
        EnterAnna("AutoLogin,Pwd", "1,'" + QString(32, 'A') + "'");
        Open();
        QTRY_VERIFY(fakes->sockets.Last());
        QVERIFY(Check("chkAutoLogin")->isChecked());
    }

private:
    void Open(bool fromMainWindow = false)
    {
        form = std::make_unique<frmUserLogin>(fakes->ports, *owner, fromMainWindow);
        form->show();
        QVERIFY(QTest::qWaitForWindowActive(form.get()));
        QCoreApplication::processEvents(); // the first activation
    }
    template <class Widget>
    Widget *Find(const char *name) const
    {
        Widget *widget = form->findChild<Widget *>(name);
        Q_ASSERT(widget);
        return widget;
    }
    QLineEdit *Edit(const char *name) const { return Find<QLineEdit>(name); }
    QPushButton *Button(const char *name) const { return Find<QPushButton>(name); }
    QCheckBox *Check(const char *name) const { return Find<QCheckBox>(name); }
    QComboBox *Account() const { return Find<QComboBox>("cmbAccount"); }
    QString Tip() const { return Find<QLabel>("labLoginTip")->text(); }
    void TypeAll()
    {
        Edit("txtServer")->setFocus();
        Edit("txtServer")->selectAll();
        QTest::keyClicks(Edit("txtServer"), "faxhost:9001");
        QTest::keyClick(form->focusWidget(), Qt::Key_Tab);
        QCOMPARE(form->focusWidget(), Account());
        Account()->lineEdit()->selectAll();
        QTest::keyClicks(Account(), "carl");
        QTest::keyClick(form->focusWidget(), Qt::Key_Tab);
        QCOMPARE(form->focusWidget(), Edit("txtPwd"));
        QTest::keyClicks(form->focusWidget(), "secret");
    }

    std::unique_ptr<frmUserLogin> form;
};

QTEST_MAIN(tst_frmUserLogin)
#include "tst_frmUserLogin.moc"
