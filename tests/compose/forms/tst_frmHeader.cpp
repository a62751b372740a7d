#include "compose/forms/frmHeader.h"
#include "core/Globals.h"
#include "fakes/FakePorts.h"
#include "fixtures/Profile.h"

#include <QCheckBox>
#include <QLineEdit>
#include <QPushButton>
#include <QTabBar>
#include <QTest>

class tst_frmHeader final : public QObject
{
    Q_OBJECT

private slots:
    void init()
    {
        form.reset();
        profile.reset(); // it clears the globals as it goes
        profile = std::make_unique<Profile>();
        fakes = std::make_unique<FakePorts>();
        Open({});
    }

    void newProfileIsSavedUnderItsName()
    {
        QCOMPARE(Text("txtLeftMargin") + Text("txtTopMargin") + Text("txtFooterTopMargin"), "503030");
        QTest::keyClicks(Box("txtHeaderLeft_1"), "To whom");
        QTest::keyClicks(Box("txtFooterRight_2"), "End");
        Box("txtFooterLineSpace")->selectAll();
        QTest::keyClicks(Box("txtFooterLineSpace"), "1x234");
        form->findChild<QCheckBox *>("chkFirstFooter")->click();
        fakes->prompts.aTyped = {"", "*?", "My/Own"};
        for (int unnamed = 0; unnamed < 2; ++unnamed) {
            Click("btnSave");
            QVERIFY(form->isVisible() && !form->IsSaved());
        }
        QTest::keyClick(Box("txtHeaderLeft_1"), Qt::Key_Return);
        QVERIFY(!form->isVisible() && form->IsSaved());
        QCOMPARE(form->NewName(), "MyOwn");
        QCOMPARE(fakes->prompts.aAsked.first(), "New Profile|Please enter a profile name: ");
        const HeaderProfile saved = ReadHeaderProfile(Global().strHeaderPath + "MyOwn.GNI");
        QCOMPARE(saved.aTexts[0].strText + saved.aTexts[11].strText, "To whomEnd");
        QCOMPARE(saved.footerSpace.lLineSpace, 1000);
        QCOMPARE(saved.headerSpace.lTopMargin, 30);
        QVERIFY(saved.bOnlyFirstFooter && !saved.bOnlyFirstHeader);
    }

    void takenOrUnusableNameKeepsTheWindowOpen()
    {
        QVERIFY(WriteTestFile(Global().strHeaderPath + "Mine.gni", "x"));
        QVERIFY(QDir().mkpath(Global().strHeaderPath + "Folder.GNI"));
        fakes->prompts.aTyped = {"Mine", "Folder", "Yours"};
        Click("btnSave");
        Click("btnSave");
        QVERIFY(form->isVisible() && !form->IsSaved() && form->NewName().isEmpty());
        QCOMPARE(fakes->prompts.Texts().first(), "The specified file already exists.");
        QCOMPARE(fakes->prompts.aBoxes.size(), 2);
        Click("btnSave");
        QCOMPARE(form->NewName(), "Yours");
        QCOMPARE(ReadTestFile(Global().strHeaderPath + "Mine.gni"), "x");
    }

    void existingProfileIsSavedInItsFile()
    {
        const QString path = Global().strHeaderPath + "General.GNI";
        QVERIFY(WriteTestFile(path, "[HeaderMiddle_2]\r\nText=Old\r\nFontSize=12\r\nBold=True\r\n"));
        Open(path);
        QCOMPARE(Text("txtHeaderMiddle_2") + Text("txtTopMargin"), "Old50");
        QVERIFY(Box("txtHeaderMiddle_2")->font().bold() && !Box("txtHeaderLeft_1")->font().bold());
        QTest::keyClicks(Box("txtHeaderMiddle_2"), "er");
        Click("btnSave");
        QVERIFY(!form->isVisible() && form->IsSaved() && form->NewName().isEmpty());
        const HeaderText saved = ReadHeaderProfile(path).aTexts[4];
        QCOMPARE(saved.strText, "Older");
        QVERIFY(saved.bBold && saved.dFontSize == 12 && fakes->prompts.aAsked.isEmpty());
        Open(path);
        QTest::keyClicks(Box("txtHeaderMiddle_2"), "!");
        QTest::keyClick(form.get(), Qt::Key_Escape);
        QVERIFY(!form->isVisible() && !form->IsSaved());
        QCOMPARE(ReadHeaderProfile(path).aTexts[4].strText, "Older");
    }

    void fieldsReplaceTheSelectionOfTheLastText()
    {
        frmHeader untouched(fakes->ports);
        untouched.findChild<QPushButton *>("btnField_0")->click();
        untouched.findChild<QPushButton *>("btnFont")->click();
        QVERIFY(fakes->fontDialogs.aOffered.isEmpty());
        QLineEdit *box = Box("txtHeaderRight_1");
        box->setFocus();
        QTest::keyClicks(box, "Page x of y");
        box->setSelection(5, 1);
        Click("btnField_0");
        QCOMPARE(box->text(), "Page [Page] of y");
        box->setSelection(box->text().size() - 1, 1);
        form->findChild<QPushButton *>("btnField_1")->setFocus(Qt::TabFocusReason); // the selection is gone
        QTest::keyClick(form->focusWidget(), Qt::Key_Space);
        QCOMPARE(box->text(), "Page [Page] of [PageCount]");
        QVERIFY(box->hasFocus());
        Box("txtFooterLeft_1")->setFocus();
        for (const char *button : {"btnField_2", "btnField_3", "btnField_4", "btnField_5"})
            Click(button);
        QCOMPARE(Text("txtFooterLeft_1"), "[Date][Time][CompanyName][Recipients]");
        Box("txtFooterLeft_1")->setText(QString(250, 'x'));
        Click("btnField_0"); // six letters are too many
        QCOMPARE(Text("txtFooterLeft_1"), QString(250, 'x'));
    }

    void fontIsThatOfTheLastText()
    {
        Box("txtFooterMiddle_1")->setFocus();
        Click("btnFont");
        QCOMPARE(fakes->fontDialogs.aOffered.first(), (FontChoice{"Courier New", 8.25}));
        QCOMPARE(Box("txtFooterMiddle_1")->font().family(), "Courier New");
        fakes->fontDialogs.chosen = FontChoice{"Liberation Serif", 40, false, true, false, true};
        Click("btnFont");
        QVERIFY(Box("txtFooterMiddle_1")->font().italic() && Box("txtFooterMiddle_1")->font().strikeOut());
        fakes->prompts.aTyped = {"Fonts"};
        Click("btnSave");
        const HeaderProfile saved = ReadHeaderProfile(Global().strHeaderPath + "Fonts.GNI");
        QCOMPARE(saved.aTexts[7].dFontSize, 40.0);
        QCOMPARE(saved.aTexts[7].strFontName, "Liberation Serif");
        QVERIFY(saved.aTexts[7].bItalic && saved.aTexts[6].strFontName == "Courier New");
    }

    void copyAndImportLeaveTheProfileAlone()
    {
        const QString copy = Global().strUserFolder + "copy.gni";
        QTest::keyClicks(Box("txtHeaderLeft_2"), "Copied");
        fakes->fileDialogs.aChosen = {{}, {copy}, {}, {copy}};
        Click("btnSaveAs");
        QVERIFY(!QFile::exists(copy));
        Click("btnSaveAs");
        QVERIFY(form->isVisible() && !form->IsSaved());
        Box("txtHeaderLeft_2")->clear();
        Click("btnImport");
        QCOMPARE(Text("txtHeaderLeft_2"), "");
        Click("btnImport");
        QCOMPARE(Text("txtHeaderLeft_2"), "Copied");
        QVERIFY(!form->IsSaved() && fakes->prompts.aBoxes.isEmpty());
    }

    void pictureFollowsEachChange()
    {
        auto *picture = form->findChild<QWidget *>("picPage");
        const QImage blank = picture->grab().toImage();
        QTest::keyClicks(Box("txtHeaderLeft_1"), "[Page]");
        QTRY_VERIFY(picture->grab().toImage() != blank);
        const QImage first = picture->grab().toImage();
        Box("txtLeftMargin")->setFocus();
        QTest::keyClick(Box("txtLeftMargin"), Qt::Key_PageUp);
        QTRY_VERIFY(picture->grab().toImage() != first);
        form->findChild<QTabBar *>("tabPicture")->setCurrentIndex(1);
        QVERIFY(picture->grab().toImage() != blank);
        form->findChild<QCheckBox *>("chkFirstHeader")->click();
        QCOMPARE(picture->grab().toImage(), blank);
    }

private:
    void Open(const QString &path)
    {
        form = std::make_unique<frmHeader>(fakes->ports);
        form->Init(path);
        form->show();
        QVERIFY(QTest::qWaitForWindowActive(form.get()));
    }
    QLineEdit *Box(const QString &name) const { return form->findChild<QLineEdit *>(name); }
    QString Text(const QString &name) const { return Box(name)->text(); }
    void Click(const QString &name)
    {
        QTest::mouseClick(form->findChild<QPushButton *>(name), Qt::LeftButton);
    }

    std::unique_ptr<Profile> profile;
    std::unique_ptr<FakePorts> fakes;
    std::unique_ptr<frmHeader> form;
};

QTEST_MAIN(tst_frmHeader)
#include "tst_frmHeader.moc"
