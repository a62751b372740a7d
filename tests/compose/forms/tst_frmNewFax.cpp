#include "compose/Recipients.h"
#include "compose/forms/SourceFileView.h"
#include "compose/forms/frmNewFax.h"
#include "core/Globals.h"
#include "fakes/FakeDesktop.h"
#include "fakes/FakePorts.h"
#include "fixtures/FaxFile.h"
#include "fixtures/Profile.h"
#include "fixtures/TestTable.h"
#include "server/FaxSender.h"

#include <QCheckBox>
#include <QClipboard>
#include <QComboBox>
#include <QDir>
#include <QGuiApplication>
#include <QImage>
#include <QLabel>
#include <QLineEdit>
#include <QMimeData>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QRegularExpression>
#include <QTest>
#include <QTextBlock>
#include <QUrl>

#include <memory>

namespace {

struct Bench
{
    Bench()
    {
        ports.folders.strRoot = profile.Root();
        desktop.forms.lCount = 2;
        dialogs.askOptions = [this](QWidget &, const QString &, int) {
            bClosedWhileAsking = window->TryClose();
            return option;
        };
        dialogs.askContact = [this](QWidget &, const ContactChoice &choice) {
            aAsked.append(choice.strKeyword);
            return strContact;
        };
        dialogs.selectReceivers = [this](QWidget &, const QList<SelectedReceiver> &) { return receivers; };
        dialogs.editHeader = [this](QWidget &, const QString &path) {
            aEdited.append(path);
            return edit;
        };
        for (const char *name : {"General.GNI", "Mine.GNI"}) {
            if (!WriteTestFile(Global().strHeaderPath + name, "[Options]\r\n"))
                qFatal("no profile");
        }
    }
    void Open(const ComposerStart &start = {})
    {
        window = std::make_unique<frmNewFax>(ports.ports,
                                             ComposerParts{desktop.mailbox, desktop.mainWindow, upload,
                                                           desktop.forms, turn, [this] { return bOnline; },
                                                           [] { return false; }},
                                             dialogs);
        window->Open(start);
        window->activateWindow();
        if (!QTest::qWaitForWindowActive(window.get()))
            qFatal("not active");
    }
    template <typename Widget>
    Widget &Get(const char *name) const
    {
        auto *found = window->findChild<Widget *>(name);
        if (!found)
            qFatal("no %s", name);
        return *found;
    }
    void Click(const char *name) const { QTest::mouseClick(&Get<QPushButton>(name), Qt::LeftButton); }
    bool IsEnabled(const char *name) const { return Get<QWidget>(name).isEnabled(); }

    Profile profile;
    FakePorts ports;
    FakeDesktop desktop;
    FaxSender upload;
    ConversionTurn turn;
    ComposerDialogs dialogs;
    std::optional<QString> option;
    std::optional<QList<SelectedReceiver>> receivers;
    ComposerDialogs::HeaderEdit edit;
    QStringList aAsked, aEdited;
    QString strContact;
    bool bOnline = true;
    bool bClosedWhileAsking = false;
    std::unique_ptr<frmNewFax> window;
};

} // namespace

/// The composer's window: what its controls pass on and show.
class tst_frmNewFax final : public QObject
{
    Q_OBJECT

private slots:
    void init() { bench = std::make_unique<Bench>(); }
    void cleanup() { bench.reset(); }

    void newFaxIsEmptyAndClosesWithoutAQuestion()
    {
        bench->bOnline = false;
        bench->Open();
        QCOMPARE(bench->window->windowTitle(), "New fax");
        QVERIFY(bench->Get<QPlainTextEdit>("txtReceive").hasFocus());
        for (const char *name :
             {"btnDeleteFile", "btnViewFile", "btnUp", "btnDown", "btnEditHeader", "btnDelete", "chkSend"})
            QVERIFY2(!bench->IsEnabled(name), name);
        bench->Click("btnOption");
        QVERIFY(!bench->bClosedWhileAsking);
        QTest::keyClick(bench->window.get(), Qt::Key_Escape);
        QVERIFY(!bench->window->isVisible() && bench->ports.prompts.aBoxes.isEmpty());
    }

    void changedFaxIsAskedAboutUntilItIsSaved()
    {
        bench->Open();
        bench->Get<QPlainTextEdit>("txtReceive").setPlainText("1");
        bench->Get<QLineEdit>("txtSubject").setText("changed");
        bench->ports.prompts.aAnswers = {mbAnswerCancel};
        QVERIFY(!bench->window->close());
        QTest::keySequence(bench->window.get(), QKeySequence::Save);
        QVERIFY(bench->window->close());
        QCOMPARE(Profile::Value("Select title from SendFax"), "changed");
    }

    void semicolonCompletesTheName()
    {
        bench->profile.InsertRow("Contacts", {{"ID", "1"}, {"Name", "Anna"}, {"Fax", "555"}});
        bench->Open();
        auto &txtReceive = bench->Get<QPlainTextEdit>("txtReceive");
        QTest::keyClicks(&txtReceive, "Ann;");
        QCOMPARE(txtReceive.toPlainText(), "Anna(555);  ");
        QTest::keySequence(&txtReceive, QKeySequence::Undo);
        QCOMPARE(txtReceive.toPlainText(), "Ann");
        QTest::keySequence(&txtReceive, QKeySequence::Redo);
        QTest::keyClicks(&txtReceive, "77;");
        QCOMPARE(txtReceive.toPlainText(), "Anna(555);  77;");
        QCOMPARE(bench->Get<QLabel>("labCounts").text().left(13), "Recipients: 2");

        bench->profile.InsertRow("Contacts", {{"ID", "2"}, {"Name", "Annika"}, {"Fax", "556"}});
        bench->strContact = "Annika(556)";
        QTest::keyClicks(&txtReceive, "Ann;");
        QCOMPARE(bench->aAsked, {"Ann"});
        QCOMPARE(txtReceive.toPlainText(), "Anna(555);  77;Annika(556);  ");
    }

    void longTextsComeInShortLines_data()
    {
        QStringList receivers;
        for (int i = 0; i < 10000; ++i)
            receivers.append(QString("Jonas Petersen %1 <01632 %1>").arg(i));
        const TestTable<QString, int> row{"text", "count"};
        row("many recipients", receivers.join(";"), 10000);
        row("a recipient without an end", QString(1 << 20, '5'), 1);
        row("words without an end", QString("5555 ").repeated(1 << 18).trimmed(), 1);
    }
    void longTextsComeInShortLines()
    {
        QFETCH(QString, text);
        QFETCH(int, count);
        bench->Open();
        auto &txtReceive = bench->Get<QPlainTextEdit>("txtReceive");
        QGuiApplication::clipboard()->setText(text);
        QTest::keySequence(&txtReceive, QKeySequence::Paste);
        QTest::keyClick(&txtReceive, '5');
        text += '5';
        for (QTextBlock line = txtReceive.document()->begin(); line.isValid(); line = line.next())
            QVERIFY2(line.length() < 1100,
                     qPrintable(QString::number(line.length()))); // laid out at each key
        QString shown = txtReceive.toPlainText();
        QVERIFY(shown.remove(QRegularExpression("\\s")) == text.remove(' '));
        bench->Click("btnSave");
        const QStringList saved = Profile::Value("Select TempReceiver from SendFax").split(';');
        QCOMPARE(saved.size(), count + 1);
        QVERIFY(count == 1 || saved.value(9) == "\"Jonas Petersen 9 \"<01632 9>");
    }

    void headersFollowTheirList()
    {
        bench->Open();
        auto &cmbHeader = bench->Get<QComboBox>("cmbHeader");
        cmbHeader.setCurrentText("*General");
        QVERIFY(bench->IsEnabled("btnEditHeader") && !bench->IsEnabled("btnDelete"));
        cmbHeader.setCurrentText("Mine");
        bench->Click("btnEditHeader");
        QVERIFY(bench->aEdited.value(0).endsWith("Mine.GNI"));

        bench->edit = {true, "Other"};
        cmbHeader.setCurrentIndex(cmbHeader.count() - 1);
        QCOMPARE(cmbHeader.currentText(), "Other");
        QCOMPARE(cmbHeader.itemText(cmbHeader.count() - 1), "<New Profile...>");

        cmbHeader.setCurrentText("Mine");
        bench->ports.prompts.aAnswers = {mbAnswerYes};
        bench->Click("btnDelete");
        QCOMPARE(cmbHeader.findText("Mine"), -1);
        QVERIFY(!QFile::exists(Global().strHeaderPath + "Mine.GNI"));
        QCOMPARE(cmbHeader.currentText(), "Other");
    }

    void filesAreDroppedPastedAndCounted()
    {
        bench->Open();
        const QString fax = bench->profile.Root() + "/ready.tif";
        FaxFile file;
        file.lPages = 3;
        QVERIFY(file.Write(fax));
        auto &lstFile = bench->Get<SourceFileView>("lstFile");
        auto *urls = new QMimeData;
        urls->setUrls({QUrl::fromLocalFile(fax), QUrl::fromLocalFile(bench->profile.Root() + "/missing")});
        QGuiApplication::clipboard()->setMimeData(urls);
        QTest::keySequence(&lstFile, QKeySequence::Paste);
        QCOMPARE(lstFile.topLevelItemCount(), 1);
        QCOMPARE(lstFile.topLevelItem(0)->text(0) + lstFile.topLevelItem(0)->text(2), "ready.tif3");

        QGuiApplication::clipboard()->setImage(QImage(8, 8, QImage::Format_RGB32));
        QTest::keySequence(&lstFile, QKeySequence::Paste);
        QCOMPARE(lstFile.topLevelItemCount(), 2);
        QVERIFY(bench->IsEnabled("btnUp") && !bench->IsEnabled("btnDown"));
        emit lstFile.RowsMoved({1}, 0);
        QTRY_COMPARE(lstFile.topLevelItem(1)->text(0), "ready.tif");
        QCOMPARE(lstFile.SelectedRows(), {0});
        lstFile.setFocus();
        QTest::keyClick(&lstFile, Qt::Key_Delete);
        QCOMPARE(lstFile.topLevelItemCount(), 1);
    }

    void panelLocksTheWindowWhileItConverts()
    {
        QVERIFY(QDir().mkpath(bench->profile.Root() + "/program"));
        QVERIFY(WriteTestFile(bench->profile.Root() + "/program/ZemPrint.exe", "x"));
        ComposerStart start;
        start.strExtraFile = bench->profile.Root() + "/program/ZemPrint.exe";
        bench->Open(start);
        bool wasLocked = false;
        bench->ports.pump.After(50).Then([&] {
            wasLocked = !bench->IsEnabled("picMain") && !bench->IsEnabled("btnSend") &&
                        bench->Get<QWidget>("picProcess").isVisible() && !bench->window->close();
            bench->ports.shell.program.bRunning = false; // it dies
        });
        bench->Click("btnPreview");
        QVERIFY(wasLocked);
        QCOMPARE(bench->Get<QPlainTextEdit>("txtStatu").toPlainText(),
                 "Unknow error or Zem Fax Printer doesn't exist.");
        bench->Click("btnCancel");
        QTRY_VERIFY(bench->IsEnabled("picMain"));
        QVERIFY(!bench->Get<QWidget>("picProcess").isVisible());
    }

private:
    std::unique_ptr<Bench> bench;
};

QTEST_MAIN(tst_frmNewFax)
#include "tst_frmNewFax.moc"
