#include "core/Globals.h"
#include "fakes/FakePorts.h"
#include "fixtures/Profile.h"
#include "server/PasswordChange.h"
#include "server/wire/Frames.h"

#include <QTest>

class tst_PasswordChange : public QObject
{
    Q_OBJECT

private slots:
    void badInputIsNotSent_data();
    void badInputIsNotSent();
    void acceptedPasswordIsStoredAsDigest();
    void refusalAndLostConnectionAreToldApart();
    void secondClickDuringTheWaitDoesNothing();
};

void tst_PasswordChange::badInputIsNotSent_data()
{
    QTest::addColumn<QString>("oldPassword");
    QTest::addColumn<QString>("newPassword");
    QTest::addColumn<QString>("confirmation");
    QTest::addColumn<QString>("message");
    QTest::addColumn<int>("result");
    QTest::newRow("no old one") << ""
                                << "ab"
                                << "cd"
                                << "Current password cannot be left blank."
                                << int(PasswordChange::resInvalidOld);
    QTest::newRow("different") << "old"
                               << "ab"
                               << "AB"
                               << "New password and confirm password do not match. "
                               << int(PasswordChange::resInvalidNew);
    QTest::newRow("short") << "old"
                           << "abc"
                           << "abc"
                           << "Password is too short" << int(PasswordChange::resInvalidNew);
}

void tst_PasswordChange::badInputIsNotSent()
{
    QFETCH(QString, oldPassword);
    QFETCH(QString, newPassword);
    QFETCH(QString, confirmation);
    FakePorts fakes;
    int asked = 0;
    PasswordChange window(
        fakes.ports, [&](const QString &, const QString &) { return ++asked > 0; }, [] { return true; });
    QTEST(int(window.ClickOK(oldPassword, newPassword, confirmation)), "result");
    QFETCH(QString, message);
    QCOMPARE(fakes.prompts.Texts(), QStringList{message});
    QCOMPARE(asked, 0);
}

void tst_PasswordChange::acceptedPasswordIsStoredAsDigest()
{
    Profile profile;
    FakePorts fakes;
    QStringList asked;
    PasswordChange window(
        fakes.ports,
        [&](const QString &oldPassword, const QString &newPassword) {
            asked = {oldPassword, newPassword};
            return true;
        },
        [] { return true; });
    QCOMPARE(window.ClickOK("secret", "1234", "1234"), PasswordChange::resChanged);
    QCOMPARE(asked, (QStringList{"secret", "1234"}));
    QCOMPARE(Profile::Value("Select Pwd From Option"), Frames::Md5Digest("1234"));
    QCOMPARE(Global().strPwdDigest, Frames::Md5Digest("1234"));
    QVERIFY(fakes.prompts.aBoxes.isEmpty());
}

void tst_PasswordChange::refusalAndLostConnectionAreToldApart()
{
    Profile profile;
    FakePorts fakes;
    bool connected = true;
    PasswordChange window(
        fakes.ports, [](const QString &, const QString &) { return false; }, [&] { return connected; });
    QCOMPARE(window.ClickOK("wrong", "1234", "1234"), PasswordChange::resInvalidOld);
    QCOMPARE(fakes.prompts.Texts(), QStringList{"The password you gave is incorrect."});
    connected = false;
    QCOMPARE(window.ClickOK("right", "1234", "1234"), PasswordChange::resRefused);
    QCOMPARE(fakes.prompts.aBoxes.size(), 1);
    QCOMPARE(Profile::Value("Select Pwd From Option"), QString());
}

void tst_PasswordChange::secondClickDuringTheWaitDoesNothing()
{
    FakePorts fakes;
    PasswordChange *inner = nullptr;
    int asked = 0;
    PasswordChange window(
        fakes.ports,
        [&](const QString &, const QString &) {
            ++asked;
            return inner->ClickOK("old", "1234", "1234") == PasswordChange::resChanged;
        },
        [] { return false; });
    inner = &window;
    QCOMPARE(window.ClickOK("old", "1234", "1234"), PasswordChange::resRefused);
    QCOMPARE(asked, 1);
    QVERIFY(!window.IsBusy());
}

QTEST_GUILESS_MAIN(tst_PasswordChange)
#include "tst_PasswordChange.moc"
