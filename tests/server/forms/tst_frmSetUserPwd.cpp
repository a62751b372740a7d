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
    void refusedPasswordKeepsTheWindowOpenAndTheRightOneCloses()
    {
        const Profile profile;
        FakePorts fakes;
        bool stays = false, accepts = false;
        frmSetUserPwd form(
            fakes.ports,
            [&](const QString &, const QString &) {
                form.close(); // not while the server is asked
                stays = form.isVisible() && !form.isEnabled();
                return accepts;
            },
            [] { return true; });
        const auto edit = [&form](const char *name) { return form.findChild<QLineEdit *>(name); };
        const auto typeAll = [&edit](const QString &confirmation) {
            for (const auto &[name, text] :
                 {std::pair("txtOldPwd", QString("secret")), std::pair("txtNewPwd", QString("12345")),
                  std::pair("txtPwdConfirm", confirmation)}) {
                QCOMPARE(edit(name)->echoMode(), QLineEdit::Password);
                edit(name)->clear();
                QTest::keyClicks(edit(name), text);
            }
        };
        form.show();
        QVERIFY(QTest::qWaitForWindowActive(&form));
        QCOMPARE(form.focusWidget(), edit("txtOldPwd"));
        typeAll("1234");
        QTest::keyClick(form.focusWidget(), Qt::Key_Return);
        QCOMPARE(form.focusWidget(), edit("txtNewPwd"));
        typeAll("12345");
        QTest::keyClick(&form, Qt::Key_Return);
        QCOMPARE(fakes.prompts.Texts().last(), "The password you gave is incorrect.");
        QVERIFY(stays && form.isVisible() && form.isEnabled());
        QCOMPARE(form.focusWidget(), edit("txtOldPwd"));
        accepts = true;
        QTest::keyClick(&form, Qt::Key_Return);
        QVERIFY(!form.isVisible());
        QCOMPARE(form.result(), int(QDialog::Accepted));
        QCOMPARE(Profile::Value("Select Pwd From Option"), Frames::Md5Digest("12345"));
        form.show();
        QTest::keyClick(&form, Qt::Key_Escape);
        QVERIFY(!form.isVisible());
    }
};

QTEST_MAIN(tst_frmSetUserPwd)
#include "tst_frmSetUserPwd.moc"
