#include "compose/forms/frmSendOption.h"
#include "core/Globals.h"
#include "fakes/FakePorts.h"
#include "fixtures/Profile.h"

#include <QCalendarWidget>
#include <QCheckBox>
#include <QComboBox>
#include <QDateEdit>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QRadioButton>
#include <QSlider>
#include <QTest>

class tst_frmSendOption final : public QObject
{
    Q_OBJECT

private slots:
    void init()
    {
        form.reset();
        profile.reset(); // it clears the globals as it goes
        profile = std::make_unique<Profile>();
        fakes = std::make_unique<FakePorts>();
        Global().ServerDeepness = 120;
        Global().lServerResendTimes = 4;
        Global().lServerTryInterval = 5;
        Open({}, 0);
    }

    void choicesBecomeThePackedText()
    {
        Open("2024-02-01\r\n9:45\r\n\0021\0023\002-1\0021\00299\0023\2", 0);
        QVERIFY(Find<QRadioButton>("optSendTime")->isChecked() && Find<QWidget>("picSendTime")->isEnabled());
        QCOMPARE(Find<QDateEdit>("dtpSendTime")->date(), QDate(2024, 2, 1));
        QCOMPARE(Find<QLabel>("labValue")->text(), "Current value:99");
        QVERIFY(Find<QRadioButton>("optNoReSend")->isChecked() && !Find<QLineEdit>("txtDelay")->isEnabled());
        Find<QRadioButton>("optImportance_2")->click();
        Find<QRadioButton>("optPixel_2")->click();
        Find<QRadioButton>("optImagePrint_4")->click();
        Find<QRadioButton>("optReSend")->click();
        QVERIFY(Find<QLineEdit>("txtDelay")->isEnabled() && Find<QLineEdit>("txtTryTime")->isEnabled());
        Find<QLineEdit>("txtDelay")->selectAll();
        QTest::keyClicks(Find<QLineEdit>("txtDelay"), "a12-7x");
        QTest::keyClick(Find<QLineEdit>("txtDelay"), Qt::Key_Return);
        QVERIFY(!form->isVisible() && form->IsChanged());
        QCOMPARE(form->SendOption(), "2024-02-01\r\n9:45\r\n\0022\0023\002127\r\n-5\0022\00299\0024\2");
    }

    void numbersStayWithinTheirBounds()
    {
        Find<QRadioButton>("optReSend")->click();
        auto *edit = Find<QLineEdit>("txtTryTime");
        const auto typed = [edit](const QString &keys) {
            edit->selectAll();
            QTest::keyClicks(edit, keys);
            return edit->text() + '|' + QString::number(edit->cursorPosition());
        };
        QCOMPARE(typed("99999999999999999999"), "1000|4");
        QCOMPARE(typed("007"), "7|1");
        typed("100");
        QTest::keyClick(edit, Qt::Key_Home);
        QTest::keyClick(edit, Qt::Key_Delete);
        QTest::keyClicks(edit, "2");
        QCOMPARE(edit->text(), "200");
        edit->selectAll();
        QTest::keyClick(edit, Qt::Key_Delete);
        QCOMPARE(edit->text(), "0");
        QTest::keyClick(edit, Qt::Key_Up);
        QCOMPARE(edit->text(), "1");
    }

    void serversSettingsAreShown()
    {
        QCOMPARE(Find<QLabel>("labServer")->text(), "( Interval: 5 / Attempt: 4 )");
        QVERIFY(!Find<QLineEdit>("txtDelay")->isEnabled() && !Find<QComboBox>("cmbSendTime")->isEnabled());
        Find<QRadioButton>("optNoReSend")->click();
        QCOMPARE(Find<QLabel>("labServer")->text(), "");
        auto *slider = Find<QSlider>("Slider1");
        auto *server = Find<QCheckBox>("chkServerDeepness");
        slider->setValue(77);
        server->click();
        QVERIFY(!Find<QWidget>("Picture6")->isEnabled());
        QCOMPARE(Find<QLabel>("labValue")->text(), "Current value:120");
        server->click();
        QCOMPARE(slider->value(), 77);
    }

    void readyFaxLocksTheResolution()
    {
        Open({}, 2);
        QVERIFY(Find<QRadioButton>("optPixel_1")->isChecked());
        for (int button = 0; button < 3; ++button)
            QVERIFY(!Find<QRadioButton>("optPixel_" + QString::number(button))->isEnabled());
        Open("-1\0021\0023\002-1\0020\00299\0020\2", 1);
        QVERIFY(Find<QRadioButton>("optPixel_2")->isChecked());
    }

    void calendarOpensByKeys()
    {
        Find<QRadioButton>("optSendTime")->click();
        auto *date = Find<QDateEdit>("dtpSendTime");
        date->setFocus();
        QTest::keyClick(date, Qt::Key_Down, Qt::AltModifier);
        QVERIFY(date->calendarWidget()->isVisible());
        QTest::keyClick(QApplication::focusWidget(), Qt::Key_Right);
        QTest::keyClick(QApplication::focusWidget(), Qt::Key_Return);
        QVERIFY(!date->calendarWidget()->isVisible() && form->isVisible());
        QCOMPARE(date->date(), fakes->clock.Now().date().addDays(1));
    }

    void sendingTimeInThePastKeepsTheWindowOpen()
    {
        Find<QRadioButton>("optSendTime")->click();
        auto *time = Find<QComboBox>("cmbSendTime");
        QCOMPARE(time->count(), 96);
        QCOMPARE(time->currentText(), "9:45");
        time->setEditText("9:29");
        QTest::keyClick(time->lineEdit(), Qt::Key_Return);
        QCOMPARE(fakes->prompts.Texts(), QStringList{"Invalid sending time."});
        QCOMPARE(fakes->prompts.aBoxes.first().lFlags, long(mbExclamation));
        QVERIFY(form->isVisible() && !form->IsChanged() && time->hasFocus());
        QTest::keyClick(form.get(), Qt::Key_Escape);
        QVERIFY(!form->isVisible() && !form->IsChanged());
        QCOMPARE(form->SendOption(), "");
    }

private:
    void Open(const QString &strSendOption, int fixedResolution)
    {
        form = std::make_unique<frmSendOption>(fakes->ports);
        form->Init(strSendOption, fixedResolution);
        form->show();
        QVERIFY(QTest::qWaitForWindowActive(form.get()));
    }

    template <typename Widget>
    Widget *Find(const QString &name) const
    {
        return form->findChild<Widget *>(name);
    }

    std::unique_ptr<Profile> profile;
    std::unique_ptr<FakePorts> fakes;
    std::unique_ptr<frmSendOption> form;
};

QTEST_MAIN(tst_frmSendOption)
#include "tst_frmSendOption.moc"
