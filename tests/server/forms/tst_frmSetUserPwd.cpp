#include "core/Globals.h"
#include "fakes/FakePorts.h"
#include "fixtures/Profile.h"
#include "server/forms/frmSetUserPwd.h"
#include "server/wire/Frames.h"

#include <QLineEdit>
#include <QTest>

class tst_frmSetUserPwd : public QObject
{
    Q_OBJECT

private slots:
    void refusedInputKeepsTheWindowOpenAndTheRightOneCloses()
    {
        const Profile profile;
        FakePorts fakes;
        QStringList asked;
        bool accepts = false, connected = false;
        frmSetUserPwd form(
            fakes.ports,
            [&](const QString &oldPassword, const QString &newPassword) {
                form.close(); // not while the server is asked
                asked += {oldPassword, newPassword, form.isVisible() && !form.isEnabled() ? "stays" : "gone"};
                return accepts;
            },
            [&] { return connected; });
        form.show();
        QVERIFY(QTest::qWaitForWindowActive(&form));
        QCOMPARE(form.focusWidget()->objectName(), "txtOldPwd");
        // Types the three and presses Enter: the field that has the focus then, and what is told.
        const auto enter = [&](const QStringList &typed) {
            fakes.prompts.aBoxes.clear();
            for (int i = 0; i < 3; ++i) {
                auto *edit =
                    form.findChild<QLineEdit *>(QStringList{"txtOldPwd", "txtNewPwd", "txtPwdConfirm"}[i]);
                edit->clear();
                QTest::keyClicks(edit, typed[i]);
                if (edit->echoMode() != QLineEdit::Password)
                    return QString("readable");
            }
            QTest::keyClick(&form, Qt::Key_Return);
            return (form.isVisible() ? form.focusWidget()->objectName() : "closed") + '|' +
                   fakes.prompts.Texts().join('|');
        };
        QCOMPARE(enter({"", "12345", "12345"}), "txtOldPwd|Current password cannot be left blank.");
        QCOMPARE(enter({"old", "abcd", "ABCD"}),
                 "txtNewPwd|New password and confirm password do not match. ");
        QCOMPARE(enter({"old", "abc", "abc"}), "txtNewPwd|Password is too short");
        QVERIFY(asked.isEmpty());
        QCOMPARE(enter({"old", "1234", "1234"}), "txtOldPwd|"); // the session tells of a lost connection
        connected = true;
        QCOMPARE(enter({"old", "1234", "1234"}), "txtOldPwd|The password you gave is incorrect.");
        QVERIFY(form.isVisible() && form.isEnabled());
        QCOMPARE(Profile::Value("Select Pwd From Option"), QString());
        accepts = true;
        QCOMPARE(enter({"old", "1234", "1234"}), "closed|");
        QCOMPARE(form.result(), int(QDialog::Accepted));
        QCOMPARE(asked.mid(6), (QStringList{"old", "1234", "stays"}));
        QCOMPARE(Profile::Value("Select Pwd From Option"), Frames::Md5Digest("1234"));
        QCOMPARE(Global().strPwdDigest, Frames::Md5Digest("1234"));
        form.show();
        QTest::keyClick(&form, Qt::Key_Escape);
        QVERIFY(!form.isVisible());
    }
};

QTEST_MAIN(tst_frmSetUserPwd)
#include "tst_frmSetUserPwd.moc"
