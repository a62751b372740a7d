#include "core/Globals.h"
#include "core/SettingsFile.h"
#include "fakes/FakePorts.h"
#include "fixtures/Profile.h"
#include "server/forms/frmUserLogin.h"
#include "server/wire/clsClient.h"

#include <QCheckBox>
#include <QComboBox>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QTest>

namespace {

/// Closes the window as the program does.
class FakeOwner final : public LoginOwner
{
public:
    bool IsMainWindowLoaded() const override { return false; }
    void MarkOnline(bool, bool) override {}
    void TakeClient(std::shared_ptr<clsClient> newClient) override { client = std::move(newClient); }
    void ShowMainWindow() override { bShown = true; }
    void CloseLogin() override { form->CloseWindow(); }

    frmUserLogin *form = nullptr;
    std::shared_ptr<clsClient> client;
    bool bShown = false;
};

} // namespace

class tst_frmUserLogin : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();

    void loginByKeyboard();
    void buttonAbortsDuringTheWait();
    void escapeAbortsFirstAndThenCloses();
    void closingTheWindowDuringTheWaitEndsTheLogin();
    void chosenAccountBringsItsDigestUntilTyped();
    void checkBoxesFollowEachOther();
    void missingInputGetsTheFocus();
    void loginFromTheMainWindowAsksForThePasswordOnly();
    void automaticLoginStartsByItself();

private:
    void Open(bool fromMainWindow = false);
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
    void TypeAll();
    static void Set(const QString &section, const QString &key, const QString &value)
    {
        QVERIFY(WriteIniValue(section, key, value, Global().strIniFile));
    }

    std::unique_ptr<Profile> profile;
    std::unique_ptr<FakePorts> fakes;
    FakeOwner owner;
    std::unique_ptr<frmUserLogin> form;
};

void tst_frmUserLogin::init()
{
    profile = std::make_unique<Profile>(Profile::NoOptionRow);
    fakes = std::make_unique<FakePorts>();
    fakes->folders.strRoot = profile->Root();
    Global().objDB->CloseDB();
    Set("General", "ServerIP", "faxhost");
    Set("General", "LastUser", "anna");
    Set("UserList", "TotalCount", "2");
    Set("UserList", "1", "anna");
    Set("UserList", "2", "bert");
    Set("bert", "RememberPwd", "1");
    Set("bert", "UserPwd", QString(32, 'B'));
}

void tst_frmUserLogin::cleanup()
{
    form.reset();
    owner = {};
    fakes.reset();
    profile.reset();
}

void tst_frmUserLogin::Open(bool fromMainWindow)
{
    form = std::make_unique<frmUserLogin>(fakes->ports, owner, fromMainWindow);
    owner.form = form.get();
    form->show();
    QVERIFY(QTest::qWaitForWindowActive(form.get()));
    QCoreApplication::processEvents(); // the first activation
}

void tst_frmUserLogin::TypeAll()
{
    Edit("txtServer")->setFocus();
    Edit("txtServer")->selectAll();
    QTest::keyClicks(Edit("txtServer"), "faxhost:9000");
    QTest::keyClick(form->focusWidget(), Qt::Key_Tab);
    QCOMPARE(form->focusWidget(), Account());
    Account()->lineEdit()->selectAll();
    QTest::keyClicks(Account(), "carl");
    QTest::keyClick(form->focusWidget(), Qt::Key_Tab);
    QCOMPARE(form->focusWidget(), Edit("txtPwd"));
    QTest::keyClicks(form->focusWidget(), "secret");
}

void tst_frmUserLogin::loginByKeyboard()
{
    Open();
    QCOMPARE(form->focusWidget(), Account());
    TypeAll();
    QCOMPARE(Edit("txtPwd")->echoMode(), QLineEdit::Password);
    fakes->pump.Then([&] {
        QCOMPARE(Button("btnLogin")->text(), "&Abort");
        QCOMPARE(Tip(), "Connecting to faxhost:9000  ...");
        QVERIFY(!Edit("txtPwd")->isEnabled() && !Button("btnExit")->isEnabled());
    });
    QTest::keyClick(form->focusWidget(), Qt::Key_Return);
    FakeSocket *server = fakes->sockets.Last();
    QVERIFY(server);
    server->AcceptConnection();
    QVERIFY(!Button("btnLogin")->isEnabled());
    server->FeedShort("Welcome\r\n1.6 beta\r\n");
    server->FeedShort("OK\r\n");
    QVERIFY(form->CheckUserLogin());
    QVERIFY(!form->isVisible());
    QCOMPARE(form->result(), int(QDialog::Accepted));
    QVERIFY(owner.bShown && owner.client->IsConnected());
    QCOMPARE(Global().strUserName, "carl");
}

void tst_frmUserLogin::buttonAbortsDuringTheWait()
{
    Open();
    TypeAll();
    fakes->pump.Then([&] { QTest::mouseClick(Button("btnLogin"), Qt::LeftButton); });
    QTest::mouseClick(Button("btnLogin"), Qt::LeftButton);
    QVERIFY(!fakes->sockets.Last());
    QCOMPARE(Button("btnLogin")->text(), "&Login");
    QCOMPARE(Tip(), "Ready ...");
    QVERIFY(Edit("txtPwd")->isEnabled());
}

void tst_frmUserLogin::escapeAbortsFirstAndThenCloses()
{
    Open();
    TypeAll();
    fakes->pump.Then([&] { QTest::keyClick(form.get(), Qt::Key_Escape); });
    QTest::mouseClick(Button("btnLogin"), Qt::LeftButton);
    QVERIFY(form->isVisible());
    QVERIFY(!fakes->sockets.Last());
    QTest::keyClick(form.get(), Qt::Key_Escape);
    QVERIFY(!form->isVisible());
    QVERIFY(!form->CheckUserLogin());
}

void tst_frmUserLogin::closingTheWindowDuringTheWaitEndsTheLogin()
{
    Open();
    TypeAll();
    fakes->pump.Then([&] { form->close(); });
    QTest::mouseClick(Button("btnLogin"), Qt::LeftButton);
    QVERIFY(!form->isVisible());
    QVERIFY(!fakes->sockets.Last());
}

void tst_frmUserLogin::chosenAccountBringsItsDigestUntilTyped()
{
    Open();
    QCOMPARE(Account()->count(), 2);
    QTest::keyClick(Account(), Qt::Key_Down);
    QCOMPARE(Account()->currentText(), "bert");
    QCOMPARE(Edit("txtPwd")->text(), QString(32, 'B'));
    QVERIFY(Check("chkRememberPwd")->isChecked());
    QTest::mouseClick(Button("btnLogin"), Qt::LeftButton);
    fakes->sockets.Last()->AcceptConnection();
    fakes->sockets.Last()->FeedShort("Welcome\r\n1.6 beta\r\n");
    QVERIFY(fakes->sockets.Last()->TakeWrite().endsWith("bert\r\n" + QByteArray(32, 'B')));
    fakes->sockets.Last()->FeedShort("ERR\r\n1\r\n");
    QCOMPARE(form->focusWidget(), Account());
    QTest::keyClick(Edit("txtPwd"), Qt::Key_X);
    QTest::mouseClick(Button("btnLogin"), Qt::LeftButton);
    fakes->sockets.Last()->AcceptConnection();
    fakes->sockets.Last()->FeedShort("Welcome\r\n1.6 beta\r\n");
    QVERIFY(!fakes->sockets.Last()->TakeWrite().contains("BBB")); // digested as typed text
}

void tst_frmUserLogin::checkBoxesFollowEachOther()
{
    Open();
    QTest::keyClick(Check("chkAutoLogin"), Qt::Key_Space);
    QVERIFY(Check("chkRememberPwd")->isChecked());
    QTest::keyClick(Check("chkRememberPwd"), Qt::Key_Space);
    QVERIFY(!Check("chkAutoLogin")->isChecked());
}

void tst_frmUserLogin::missingInputGetsTheFocus()
{
    Open();
    QTest::mouseClick(Button("btnLogin"), Qt::LeftButton);
    QCOMPARE(fakes->prompts.Texts(), QStringList{"Please specify the password."});
    QCOMPARE(form->focusWidget(), Edit("txtPwd"));
    Edit("txtServer")->selectAll();
    QTest::keyClick(Edit("txtServer"), Qt::Key_Delete);
    QTest::mouseClick(Button("btnLogin"), Qt::LeftButton);
    QCOMPARE(form->focusWidget(), Edit("txtServer"));
}

void tst_frmUserLogin::loginFromTheMainWindowAsksForThePasswordOnly()
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

void tst_frmUserLogin::automaticLoginStartsByItself()
{
    Set("anna", "UserFolder", Global().strAppDataPath + "anna");
    Global().objDB->OpenDB(UserProfile::DatabaseFile(Global().strUserFolder));
    Profile::Execute("Insert Into Option(AutoLogin,Pwd) Values(1,'" + QString(32, 'A') + "')");
    Global().objDB->CloseDB();
    Open();
    QTRY_VERIFY(fakes->sockets.Last());
    QCOMPARE(fakes->sockets.Last()->strHost, "faxhost");
    QVERIFY(Check("chkAutoLogin")->isChecked());
}

QTEST_MAIN(tst_frmUserLogin)
#include "tst_frmUserLogin.moc"
