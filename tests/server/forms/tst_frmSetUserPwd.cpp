#include "fakes/FakePorts.h"
#include "fixtures/Profile.h"
#include "server/forms/frmSetUserPwd.h"
#include "server/wire/Frames.h"

#include <QLineEdit>
#include <QPushButton>
#include <QTest>

class tst_frmSetUserPwd : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();

    void enterChangesAndCloses();
    void refusedPasswordKeepsTheWindowOpen();
    void windowStaysWhileTheServerIsAsked();

private:
    QLineEdit *Edit(const char *name) const { return form->findChild<QLineEdit *>(name); }
    void Type(const QString &oldPassword, const QString &newPassword, const QString &confirmation)
    {
        QTest::keyClicks(Edit("txtOldPwd"), oldPassword);
        QTest::keyClicks(Edit("txtNewPwd"), newPassword);
        QTest::keyClicks(Edit("txtPwdConfirm"), confirmation);
    }

    Profile *profile = nullptr;
    FakePorts fakes;
    std::unique_ptr<frmSetUserPwd> form;
    std::function<bool()> answer;
};

void tst_frmSetUserPwd::init()
{
    profile = new Profile;
    fakes.prompts.aBoxes.clear();
    form = std::make_unique<frmSetUserPwd>(
        fakes.ports, [this](const QString &, const QString &) { return answer(); }, [] { return true; });
    form->show();
    QVERIFY(QTest::qWaitForWindowActive(form.get()));
}

void tst_frmSetUserPwd::cleanup()
{
    form.reset();
    delete profile;
}

void tst_frmSetUserPwd::enterChangesAndCloses()
{
    answer = [] { return true; };
    QCOMPARE(form->focusWidget(), Edit("txtOldPwd"));
    Type("secret", "12345", "12345");
    for (const char *name : {"txtOldPwd", "txtNewPwd", "txtPwdConfirm"})
        QCOMPARE(Edit(name)->echoMode(), QLineEdit::Password);
    QTest::keyClick(form->focusWidget(), Qt::Key_Return);
    QVERIFY(!form->isVisible());
    QCOMPARE(form->result(), int(QDialog::Accepted));
    QCOMPARE(Profile::Value("Select Pwd From Option"), Frames::Md5Digest("12345"));
}

void tst_frmSetUserPwd::refusedPasswordKeepsTheWindowOpen()
{
    answer = [] { return false; };
    Type("wrong", "12345", "1234");
    QTest::keyClick(form.get(), Qt::Key_Return);
    QCOMPARE(form->focusWidget(), Edit("txtNewPwd"));
    QTest::keyClicks(Edit("txtPwdConfirm"), "5");
    QTest::keyClick(form.get(), Qt::Key_Return);
    QCOMPARE(fakes.prompts.Texts().last(), "The password you gave is incorrect.");
    QVERIFY(form->isVisible());
    QCOMPARE(form->focusWidget(), Edit("txtOldPwd"));
    QTest::keyClick(form.get(), Qt::Key_Escape);
    QVERIFY(!form->isVisible());
}

void tst_frmSetUserPwd::windowStaysWhileTheServerIsAsked()
{
    answer = [this] {
        form->close();
        return !form->isVisible() || form->isEnabled(); // gone or open to a second click
    };
    Type("secret", "12345", "12345");
    QTest::keyClick(form.get(), Qt::Key_Return);
    QVERIFY(form->isVisible());
    QVERIFY(form->isEnabled());
}

QTEST_MAIN(tst_frmSetUserPwd)
#include "tst_frmSetUserPwd.moc"
