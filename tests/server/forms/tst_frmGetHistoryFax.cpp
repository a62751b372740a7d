#include "fakes/FakeClock.h"
#include "fixtures/Profile.h"
#include "server/forms/frmGetHistoryFax.h"

#include <QCheckBox>
#include <QComboBox>
#include <QDateEdit>
#include <QPushButton>
#include <QTest>

#include <optional>

class tst_frmGetHistoryFax : public QObject
{
    Q_OBJECT

private slots:
    void init()
    {
        profile.emplace();
        form.emplace(clock); // it is 2024-01-31
        form->show();
        QVERIFY(QTest::qWaitForWindowActive(&*form));
    }
    void cleanup()
    {
        form.reset();
        profile.reset();
    }

    void monthIsOfferedAndReturnFetchesIt()
    {
        QCOMPARE(Find<QComboBox>("cmbTime")->currentText(), "This month");
        QTest::keyClick(&*form, Qt::Key_Return);
        QVERIFY(!form->isVisible());
        QCOMPARE(Shown(), "2024-01-01;2024-01-31|1;1;1;1");
    }

    void choicesMakeTheRequest()
    {
        auto *time = Find<QComboBox>("cmbTime");
        for (int step = 0; step < 4; ++step)
            QTest::keyClick(time, Qt::Key_Down);
        QCOMPARE(time->currentText(), "Last year");
        for (const char *box : {"chkSendingFax", "chkSendFailFax"})
            QTest::keyClick(Find<QCheckBox>(box), Qt::Key_Space);
        QCOMPARE(Days(), "2023-01-01 2023-12-31");
        Find<QDateEdit>("pictTimeFrom")->setDate(QDate(2024, 1, 15)); // behind the last day
        QCOMPARE(Days(), "2024-01-15 2024-01-15");
        Find<QDateEdit>("pictTimeTo")->setDate(QDate(2024, 1, 10));
        QCOMPARE(Days(), "2024-01-10 2024-01-10");
        QTest::mouseClick(Find<QPushButton>("btnOK"), Qt::LeftButton);
        QCOMPARE(Shown(), "2024-01-10;2024-01-10|0;1;0;1");
    }

    void daysAreTypedWithTheirSeparators()
    {
        QTest::keyClicks(Find<QDateEdit>("pictTimeFrom"), "2024-01-15");
        QTest::keyClicks(Find<QDateEdit>("pictTimeTo"), "2024.1.25"); // "2" alone lies before the first day
        QTest::mouseClick(Find<QPushButton>("btnOK"), Qt::LeftButton);
        QCOMPARE(Shown(), "2024-01-15;2024-01-25|1;1;1;1");
    }

    void nothingIsFetchedWithoutAKindOrAfterCancel()
    {
        for (const char *box : {"chkSendingFax", "chkSendedFax", "chkSendFailFax", "chkReceiveFax"})
            QTest::keyClick(Find<QCheckBox>(box), Qt::Key_Space);
        QVERIFY(!Find<QPushButton>("btnOK")->isEnabled());
        QTest::keyClick(&*form, Qt::Key_Escape);
        QVERIFY(!form->isVisible() && form->Request().isEmpty());
    }

private:
    template <typename Control>
    Control *Find(const char *name)
    {
        return form->findChild<Control *>(name);
    }
    QString Shown() { return QString(form->Request()).replace(QChar(0), '|'); }
    QString Days()
    {
        return Find<QDateEdit>("pictTimeFrom")->text() + ' ' + Find<QDateEdit>("pictTimeTo")->text();
    }

    FakeClock clock;
    std::optional<Profile> profile;
    std::optional<frmGetHistoryFax> form;
};

QTEST_MAIN(tst_frmGetHistoryFax)
#include "tst_frmGetHistoryFax.moc"
