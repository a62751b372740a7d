#include "fixtures/LoginTest.h"
#include "server/forms/frmUserLogin.h"

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

    void escapeAbortsFirstAndThenCloses()
    {
        Open();
        TypeAll();
        fakes->pump.Then([&] { QTest::keyClick(form.get(), Qt::Key_Escape); });
        QTest::mouseClick(Button("btnLogin"), Qt::LeftButton);
        QCOMPARE(Button("btnLogin")->text(), "&Login");
        QCOMPARE(Tip(), "Ready ...");
        QVERIFY(form->isVisible() && Edit("txtPwd")->isEnabled());
        fakes->pump.Then([&] { form->close(); }); // ends the login too
        QTest::mouseClick(Button("btnLogin"), Qt::LeftButton);
        QVERIFY(!form->isVisible() && !form->CheckUserLogin() && !fakes->sockets.Last());
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
        QTest::keyClick(Edit("txtPwd"), Qt::Key_X);
        QTest::mouseClick(Button("btnLogin"), Qt::LeftButton);
        Server().AcceptConnection();
        Greet();
        QVERIFY(!Server().TakeWrite().contains("BBB")); // digested as typed text
        Server().FeedShort("ERR\r\n1\r\n");
        QCOMPARE(form->focusWidget(), Account());
    }

    void missingInputIsAskedForAndGetsTheFocus()
    {
        Open();
        const auto asksFor = [this](const QString &text, QWidget *widget) {
            QTest::mouseClick(Button("btnLogin"), Qt::LeftButton);
            return Prompts().Texts().last() == text && form->focusWidget() == widget;
        };
        QVERIFY(asksFor("Please specify the password.", Edit("txtPwd")));
        Account()->lineEdit()->selectAll();
        QTest::keyClicks(Account(), "..");
        QVERIFY(asksFor("This username cannot be used.", Account()));
        QTest::keyClick(Account(), Qt::Key_Backspace);
        QTest::keyClick(Account(), Qt::Key_Backspace);
        QVERIFY(asksFor("Please specify a username.", Account()));
        Edit("txtServer")->selectAll();
        QTest::keyClick(Edit("txtServer"), Qt::Key_Delete);
        QVERIFY(asksFor("Please specify a Velmar server. For example 192.168.1.5 or faxhost:8750",
                        Edit("txtServer")));
        QVERIFY(IsReady() && !fakes->sockets.Last());
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
