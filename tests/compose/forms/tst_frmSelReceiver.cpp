#include "compose/ForwardFax.h"
#include "compose/forms/frmSelReceiver.h"
#include "compose/forms/frmSelectContact.h"
#include "core/Globals.h"
#include "fakes/FakeDesktop.h"
#include "fakes/FakePorts.h"
#include "fixtures/AddressRows.h"
#include "fixtures/FaxFile.h"
#include "server/FaxSender.h"

#include <QCheckBox>
#include <QComboBox>
#include <QHeaderView>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QTest>
#include <QTreeView>

#include <memory>

using namespace AddressRows;

class tst_frmSelReceiver : public QObject
{
    Q_OBJECT

private slots:
    void init()
    {
        profile = std::make_unique<Profile>();
        fakes = std::make_unique<FakePorts>();
        AddContact(*profile, "C1", "Bert", "1", "1");
        AddContact(*profile, "C2", "Anna", "2");
        AddContact(*profile, "C3", "Annette", "3");
        AddUser(*profile, "7", "carl", "Carl");
    }

    void cleanup()
    {
        form.reset();
        fakes.reset();
        profile.reset();
    }

    void recipientsAreFoundAddedAndRemovedByKeys()
    {
        OpenPicker(ToSelectedReceivers("\"x\"<9>;"));
        QCOMPARE(form->focusWidget(), Edit("txtFind"));
        QVERIFY(!Find<QWidget>("picForward")->isVisible());
        QVERIFY(!Button("btnAddOne")->isEnabled() && Button("btnAddAll")->isEnabled());
        QTest::keyClicks(form->focusWidget(), "ann");
        QTest::keyClick(form->focusWidget(), Qt::Key_Return);
        QTest::keyClick(form->focusWidget(), Qt::Key_Down);
        QTest::keyClick(form->focusWidget(), Qt::Key_Return);
        QCOMPARE(Chosen(), "x,Anna,Annette");
        Grid()->setFocus();
        QTest::keyClick(Grid(), Qt::Key_B); // typing finds
        QCOMPARE(form->focusWidget(), Edit("txtFind"));
        QCOMPARE(Edit("txtFind")->text(), "b");
        QTest::keyClick(form->focusWidget(), Qt::Key_Z);
        QCOMPARE(Find<QLabel>("labCount")->text(), "Not found.");
        QTest::keyClick(form->focusWidget(), Qt::Key_Return);
        QCOMPARE(Chosen(), "x,Anna,Annette");
        Grid()->setFocus();
        QTest::keyClick(Grid(), Qt::Key_F, Qt::ControlModifier);
        QCOMPARE(form->focusWidget(), Edit("txtFind"));
        QCOMPARE(Edit("txtFind")->selectedText(), "bz");
        Grid()->setFocus();
        QTest::keyClick(Grid(), Qt::Key_Space); // Bert, who was found before
        QTest::keyClick(Grid(), Qt::Key_Return);
        QCOMPARE(Chosen(), "x,Anna,Annette,Bert");
        List()->setFocus();
        List()->setCurrentIndex(List()->model()->index(1, 0));
        QTest::keyClick(List(), Qt::Key_Delete);
        QTest::keyClick(List(), Qt::Key_Delete);
        QCOMPARE(Chosen(), "x,Bert");
        QCOMPARE(List()->model()->index(1, 0).data(Qt::ToolTipRole), "<qt>Bert, 1</qt>");
        QTest::keyClick(form.get(), Qt::Key_Return, Qt::ControlModifier);
        QCOMPARE(form->result(), int(QDialog::Accepted));
        QCOMPARE(ToReceiverText(form->Receivers()), "\"x\"<9>;  \"Bert\"<1>;  ");
    }

    void knownRecipientIsShownInTheList()
    {
        OpenPicker(ToSelectedReceivers("\"x\"<9>;\"Anna\"<2>;"));
        const QModelIndex anna = Grid()->model()->index(1, 1);
        QTest::mouseClick(Grid()->viewport(), Qt::LeftButton, {}, Grid()->visualRect(anna).center());
        QTest::mouseDClick(Grid()->viewport(), Qt::LeftButton, {}, Grid()->visualRect(anna).center());
        QCOMPARE(Chosen(), "x,Anna");
        QCOMPARE(List()->currentIndex().row(), 1);
        QVERIFY(Button("btnRemoveOne")->isEnabled());
        QTest::mouseClick(Button("btnAddAll"), Qt::LeftButton);
        QCOMPARE(Chosen(), "x,Anna,Bert,Annette");
        QTest::mouseClick(Button("btnRemoveAll"), Qt::LeftButton);
        QCOMPARE(Chosen(), "");
        QVERIFY(!Button("btnRemoveOne")->isEnabled() && !Button("btnRemoveAll")->isEnabled());
        QTest::keyClick(form.get(), Qt::Key_Escape);
        QCOMPARE(form->result(), int(QDialog::Rejected));
    }

    void usersNeedFewerColumns()
    {
        OpenPicker({});
        Combo("cmbGroup")->setCurrentIndex(1);
        QCOMPARE(Grid()->model()->rowCount(), 1);
        QVERIFY(Grid()->isColumnHidden(ContactTable::colPhone));
        Combo("cmbGroup")->setCurrentIndex(0);
        QVERIFY(!Grid()->isColumnHidden(ContactTable::colPhone));
        const int section = Grid()->header()->sectionViewportPosition(ContactTable::colContact);
        QTest::mouseClick(Grid()->header()->viewport(), Qt::LeftButton, {}, QPoint(section + 20, 5));
        QCOMPARE(Grid()->model()->index(0, 1).data(), "Anna");
    }

    void sizeAndColumnsAreRemembered()
    {
        OpenPicker({});
        form->resize(700, 480);
        Grid()->header()->resizeSection(ContactTable::colContact, 77);
        Grid()->header()->resizeSection(ContactTable::colPhone, 66);
        Combo("cmbGroup")->setCurrentIndex(1); // hides some
        form->reject();
        OpenPicker({});
        QCOMPARE(form->size(), QSize(700, 480));
        QCOMPARE(Grid()->header()->sectionSize(ContactTable::colContact), 77);
        QCOMPARE(Grid()->header()->sectionSize(ContactTable::colPhone), 66);
        QCOMPARE(Grid()->header()->sectionSize(ContactTable::colGroup), 120);
    }

    void forwardStaysOpenUntilSomebodyGetsTheFax()
    {
        FakeDesktop desktop;
        FaxSender upload;
        profile->InsertReceivedFax("R1", {{"title", "Offer"}, {"faxLevel", "0"}});
        QVERIFY(FaxFile().Write(Global().strInputBoxPath + "R1.tif"));
        for (const bool maySend : {false, true}) {
            ForwardFax forward(fakes->ports, {desktop.mainWindow, desktop.mailbox, upload});
            QVERIFY(forward.Begin({"R1"}, false));
            form = std::make_unique<frmSelReceiver>(fakes->message, forward, maySend);
            Show();
            QCOMPARE(form->windowTitle(), "Forward fax");
            QCOMPARE(Edit("txtSubject")->text(), "Forward to : Offer");
            QCOMPARE(Combo("cmbImportance")->currentText(), "High");
            QCOMPARE(Find<QCheckBox>("chkSend")->isEnabled(), maySend);
            QTest::mouseClick(Button("btnOK"), Qt::LeftButton);
            QVERIFY(form->isVisible());
            QCOMPARE(fakes->prompts.Texts().last(), "You must specify a recipient at least.");
            Combo("cmbImportance")->setCurrentIndex(2);
            Edit("txtOtherReceiver")->setFocus();
            QTest::keyClicks(form->focusWidget(), "12;34");
            QTest::keyClick(form->focusWidget(), Qt::Key_Return);
            QVERIFY(!form->isVisible());
            QCOMPARE(form->result(), int(QDialog::Accepted));
            QCOMPARE(form->IsSendWanted(), maySend);
        }
        QCOMPARE(Profile::Values("Select FaxLevel||Title||TempReceiver From SendFax"),
                 QStringList(2, "2Forward to : Offer\"12\"<12>;\"34\"<34>;"));
    }

    void oneOfSeveralMatchesIsChosen()
    {
        const auto choose = [this](ContactChoice::Kind kind, Qt::Key key) {
            frmSelectContact choice({"n", kind}, fakes->message);
            choice.show();
            if (!QTest::qWaitForWindowActive(&choice))
                return QString("not shown");
            QTest::keyClick(choice.focusWidget(), Qt::Key_Down);
            QTest::keyClick(choice.focusWidget(), key);
            return choice.isVisible() ? QString("still there") : choice.Result();
        };
        QCOMPARE(choose(ContactChoice::chContact, Qt::Key_Return), "Annette(3)");
        QCOMPARE(choose(ContactChoice::chContact, Qt::Key_Escape), "");
        AddUser(*profile, "8", "nora", "Nora");
        AddUser(*profile, "9", "nina", "Nina");
        QCOMPARE(choose(ContactChoice::chUser, Qt::Key_Return), "Nina[nina]");
    }

private:
    void OpenPicker(const QList<SelectedReceiver> &receivers)
    {
        form = std::make_unique<frmSelReceiver>(fakes->message, receivers);
        Show();
    }
    void Show()
    {
        form->show();
        QVERIFY(QTest::qWaitForWindowActive(form.get()));
    }
    template <class Widget>
    Widget *Find(const char *name) const
    {
        auto *widget = form->findChild<Widget *>(name);
        if (!widget)
            qFatal("no %s", name);
        return widget;
    }
    QLineEdit *Edit(const char *name) const { return Find<QLineEdit>(name); }
    QPushButton *Button(const char *name) const { return Find<QPushButton>(name); }
    QComboBox *Combo(const char *name) const { return Find<QComboBox>(name); }
    QTreeView *Grid() const { return Find<QTreeView>("grdContact"); }
    QTreeView *List() const { return Find<QTreeView>("lstSelected"); }
    QString Chosen() const
    {
        QStringList names;
        for (int place = 0; place < List()->model()->rowCount(); ++place)
            names.append(List()->model()->index(place, 0).data().toString());
        return names.join(',');
    }

    std::unique_ptr<Profile> profile;
    std::unique_ptr<FakePorts> fakes;
    std::unique_ptr<frmSelReceiver> form;
};

QTEST_MAIN(tst_frmSelReceiver)
#include "tst_frmSelReceiver.moc"
