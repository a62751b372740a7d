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
    void init()
    {
        asked.clear();
        fakes.prompts.aBoxes.clear();
        whileAsked = nullptr;
        bAccepts = bConnected = true;
    }

    void badInputIsNotSent()
    {
        QCOMPARE(window.ClickOK("", "ab", "cd"), PasswordChange::resInvalidOld);
        QCOMPARE(window.ClickOK("old", "ab", "AB"), PasswordChange::resInvalidNew);
        QCOMPARE(window.ClickOK("old", "abc", "abc"), PasswordChange::resInvalidNew);
        QCOMPARE(fakes.prompts.Texts(),
                 (QStringList{"Current password cannot be left blank.",
                              "New password and confirm password do not match. ", "Password is too short"}));
        QVERIFY(asked.isEmpty());
    }

    void acceptedPasswordIsStoredAsDigest()
    {
        const Profile profile;
        whileAsked = [this] { // a second click does nothing
            QVERIFY(window.IsBusy());
            QCOMPARE(window.ClickOK("other", "5678", "5678"), PasswordChange::resRefused);
        };
        QCOMPARE(window.ClickOK("secret", "1234", "1234"), PasswordChange::resChanged);
        QVERIFY(!window.IsBusy());
        QCOMPARE(asked, (QStringList{"secret", "1234"}));
        QCOMPARE(Profile::Value("Select Pwd From Option"), Frames::Md5Digest("1234"));
        QCOMPARE(Global().strPwdDigest, Frames::Md5Digest("1234"));
        QVERIFY(fakes.prompts.aBoxes.isEmpty());
    }

    void refusalAndLostConnectionAreToldApart()
    {
        const Profile profile;
        bAccepts = false;
        QCOMPARE(window.ClickOK("wrong", "1234", "1234"), PasswordChange::resInvalidOld);
        QCOMPARE(fakes.prompts.Texts(), QStringList{"The password you gave is incorrect."});
        bConnected = false;
        QCOMPARE(window.ClickOK("right", "1234", "1234"), PasswordChange::resRefused);
        QCOMPARE(fakes.prompts.aBoxes.size(), 1);
        QCOMPARE(Profile::Value("Select Pwd From Option"), QString());
    }

private:
    bool AskServer(const QString &oldPassword, const QString &newPassword)
    {
        asked += {oldPassword, newPassword};
        if (whileAsked)
            whileAsked();
        return bAccepts;
    }

    FakePorts fakes;
    QStringList asked;
    std::function<void()> whileAsked;
    bool bAccepts = true, bConnected = true;
    PasswordChange window{fakes.ports,
                          [this](const QString &oldPassword, const QString &newPassword) {
                              return AskServer(oldPassword, newPassword);
                          },
                          [this] { return bConnected; }};
};

QTEST_GUILESS_MAIN(tst_PasswordChange)
#include "tst_PasswordChange.moc"
