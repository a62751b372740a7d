#include "compose/ForwardReceivers.h"
#include "compose/ReceiverCompletion.h"
#include "compose/Recipients.h"
#include "compose/forms/frmNewFax.h"
#include "compose/forms/frmSelReceiver.h"
#include "compose/forms/frmSelectContact.h"
#include "core/Globals.h"
#include "desktop/forms/frmMain.h"
#include "fakes/FakePorts.h"
#include "fixtures/Profile.h"
#include "platform/SystemPorts.h"
#include "programs/client/ClientProgram.h"

#include <QAction>
#include <QApplication>
#include <QClipboard>
#include <QKeyEvent>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QTreeView>

#include <memory>

#include <benchmark/benchmark.h>

// The composer and its recipients with an address book of 50,000 contacts. To run it without a display:
// QT_QPA_PLATFORM=offscreen.

namespace {

constexpr int lContacts = 50 * 1000;
constexpr int lGroups = 100;
constexpr int lReceivers = 10 * 1000;

QString NameOf(int contact)
{
    return QString("Jonas O~$@~Petersen %1").arg(contact);
}

QString NumberOf(int contact)
{
    return QString("01632 %1").arg(contact);
}

/// A profile with the address book of a large house.
struct House
{
    House()
    {
        clsDBcon &database = *Global().objDB;
        database.Begin();
        for (int group = 0; group < lGroups; ++group)
            database.Execute(QString("Insert Into ContactGroup(Group_ID,Group_name,isPublic) "
                                     "Values('G%1','Harbour Freight %1',1)")
                                 .arg(group));
        const auto insert = database.SelectEx(
            "Insert Into Contacts(ID,Name,Fax,Phone,Mobile,Mail,Company,Department,Duty,Group_ID,isPublic) "
            "Values(?,?,?,'01632 960 201','07700 900 131','dispatch@harbour.example','Harbour Freight',"
            "'Dispatch','Clerk',?,1)");
        for (int i = 0; i < lContacts; ++i) {
            insert->Reset();
            insert->BindText(1, QString("%1").arg(qHash(i, 7), 32, 16, QChar('0')));
            insert->BindText(2, NameOf(i));
            insert->BindText(3, NumberOf(i));
            insert->BindText(4, QString("G%1").arg(i % lGroups));
            insert->Execute();
        }
        database.Commit();
    }

    Profile profile;
    FakePorts fakes;
};

House &SharedHouse()
{
    static House house;
    return house;
}

/// The program behind its login, offline, whose user writes faxes.
struct Desk
{
    Desk()
    {
        SharedHouse();
        program.MarkOnline(false, false);
        program.ShowMainWindow();
        QApplication::processEvents();
    }

    template <typename Window>
    static Window *Find()
    {
        for (QWidget *window : QApplication::topLevelWidgets()) {
            auto *found = qobject_cast<Window *>(window);
            if (found && found->isVisible())
                return found;
        }
        return nullptr;
    }

    SystemPorts system;
    ClientProgram program{system.Get(), system.Pump()};
};

/// Tells when a window of one kind has been painted.
template <typename Window>
class PaintWatch final : public QObject
{
public:
    PaintWatch() { qApp->installEventFilter(this); }

    void Wait()
    {
        while (!bPainted)
            QApplication::processEvents();
        bPainted = false;
    }

private:
    bool eventFilter(QObject *object, QEvent *event) override
    {
        bPainted = bPainted || (event->type() == QEvent::Paint && qobject_cast<Window *>(object));
        return false;
    }

    bool bPainted = false;
};

/// From the command of the main window to the painted composer; the first one of the session, and others.
void OpenComposer(benchmark::State &state)
{
    Desk desk;
    PaintWatch<frmNewFax> painted;
    auto *mnuNewFax = desk.Find<frmMain>()->findChild<QAction *>("mnuNewFax");
    for (auto _ : state) {
        mnuNewFax->trigger();
        painted.Wait();
        state.PauseTiming();
        desk.Find<frmNewFax>()->close();
        QApplication::processEvents();
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        state.ResumeTiming();
    }
}
BENCHMARK(OpenComposer)->Name("OpenComposer/first")->Iterations(1)->Unit(benchmark::kMillisecond);
BENCHMARK(OpenComposer)->Unit(benchmark::kMillisecond);

/// A key typed behind so many recipients, or into one that never ends, to the painted text.
void RecipientKey(benchmark::State &state, int receivers, int characters)
{
    Desk desk;
    desk.Find<frmMain>()->findChild<QAction *>("mnuNewFax")->trigger();
    auto *txtReceive = desk.Find<frmNewFax>()->findChild<QPlainTextEdit *>("txtReceive");
    QString text(characters, '5');
    for (int i = 0; i < receivers; ++i)
        text += QString("Jonas Petersen %1 <01632 %1>;  ").arg(i);
    QGuiApplication::clipboard()->setText(text);
    txtReceive->paste();
    txtReceive->moveCursor(QTextCursor::End);
    QApplication::processEvents();
    for (auto _ : state) {
        QKeyEvent key(QEvent::KeyPress, Qt::Key_5, Qt::NoModifier, "5");
        QApplication::sendEvent(txtReceive, &key);
        QApplication::processEvents();
    }
    txtReceive->document()->setModified(false);
}
BENCHMARK_CAPTURE(RecipientKey, few, 3, 0)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(RecipientKey, tenThousand, lReceivers, 0)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(RecipientKey, aMegabyte, 0, 1 << 20)->Unit(benchmark::kMillisecond);

/// One press of ";" behind a name.
void CompletionKey(benchmark::State &state, const QString &name, int megabytes)
{
    SharedHouse();
    QString text(qsizetype(megabytes) << 20, '1');
    for (qsizetype at = 20; at < text.size(); at += 20)
        text[at] = ';';
    text += "; " + name;
    for (auto _ : state)
        benchmark::DoNotOptimize(ReceiverCompletion::Complete(text));
}
BENCHMARK_CAPTURE(CompletionKey, noMatch, "nobody", 0)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(CompletionKey, oneMatch, "O'Petersen 49999", 0)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(CompletionKey, allMatch, "Jonas", 0)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(CompletionKey, behindAMegabyte, "nobody", 1)->Unit(benchmark::kMillisecond);

/// To the painted window that offers all contacts to choose from.
void OpenChoice(benchmark::State &state)
{
    House &house = SharedHouse();
    for (auto _ : state) {
        frmSelectContact form({"Jonas", ContactChoice::chContact}, house.fakes.message);
        form.show();
        QApplication::processEvents();
    }
}
BENCHMARK(OpenChoice)->Unit(benchmark::kMillisecond);

/// The picker, opened to its first painted rows.
void OpenPicker(benchmark::State &state)
{
    House &house = SharedHouse();
    for (auto _ : state) {
        frmSelReceiver form(house.fakes.message, QList<SelectedReceiver>());
        form.show();
        QApplication::processEvents();
    }
}
BENCHMARK(OpenPicker)->Unit(benchmark::kMillisecond);

/// A key in `txtFind`, to the painted row; the first one, and others.
void FindKey(benchmark::State &state, bool isFirst, const QString &text)
{
    House &house = SharedHouse();
    std::unique_ptr<frmSelReceiver> form;
    for (auto _ : state) {
        state.PauseTiming();
        if (isFirst || !form) {
            form = std::make_unique<frmSelReceiver>(house.fakes.message, QList<SelectedReceiver>());
            form->show();
            form->findChild<QLineEdit *>("txtFind")->setText(isFirst ? "" : "x");
        }
        form->findChild<QLineEdit *>("txtFind")->setText("");
        QApplication::processEvents();
        state.ResumeTiming();
        form->findChild<QLineEdit *>("txtFind")->setText(text);
        QApplication::processEvents();
    }
}
BENCHMARK_CAPTURE(FindKey, first, true, "n")->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(FindKey, lastRow, false, "petersen 49999")->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(FindKey, nothing, false, "zzz")->Unit(benchmark::kMillisecond);

/// A click on the head of the names.
void Sort(benchmark::State &state)
{
    House &house = SharedHouse();
    ReceiverPicker picker(house.fakes.message);
    picker.Load();
    picker.ShowGroup(0);
    for (auto _ : state)
        picker.Contacts().SortBy(ContactTable::colContact);
}
BENCHMARK(Sort)->Unit(benchmark::kMillisecond);

/// All contacts as recipients.
void AddAll(benchmark::State &state)
{
    House &house = SharedHouse();
    for (auto _ : state) {
        state.PauseTiming();
        ReceiverPicker picker(house.fakes.message);
        picker.Load();
        picker.ShowGroup(0);
        state.ResumeTiming();
        picker.AddAllRows();
    }
}
BENCHMARK(AddAll)->Unit(benchmark::kMillisecond);

/// The columns of a fax that is forwarded to all of them.
void ForwardToAll(benchmark::State &state)
{
    House &house = SharedHouse();
    ReceiverPicker picker(house.fakes.message);
    picker.Load();
    picker.ShowGroup(0);
    picker.AddAllRows();
    for (auto _ : state)
        benchmark::DoNotOptimize(ForwardReceivers::Resolve(picker.Selected().Receivers().All(), {}));
}
BENCHMARK(ForwardToAll)->Unit(benchmark::kMillisecond);

/// From the text to the columns of a fax with few or many recipients.
void TextToColumns(benchmark::State &state)
{
    SharedHouse();
    QString text;
    for (int i = 0; i < state.range(0); ++i)
        text += QString(NameOf(i * 5 % lContacts)).replace("~$@~", "'") + ";  ";
    for (auto _ : state) {
        const QString formatted = Recipients::FormatReceiverText(text);
        benchmark::DoNotOptimize(Recipients::GetOuterReceiver(formatted));
        benchmark::DoNotOptimize(Recipients::GetInnerReceiver(formatted));
        benchmark::DoNotOptimize(Recipients::GetTempReceiver(formatted));
    }
}
BENCHMARK(TextToColumns)->Arg(1)->Arg(10)->Arg(lReceivers)->Unit(benchmark::kMillisecond);

} // namespace

int main(int argc, char **argv)
{
    QApplication application(argc, argv);
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    return 0;
}
