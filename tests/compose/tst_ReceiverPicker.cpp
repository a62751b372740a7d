#include "compose/ReceiverCompletion.h"
#include "compose/ReceiverPicker.h"
#include "core/ModelRoles.h"
#include "core/RaisedError.h"
#include "fakes/FakePorts.h"
#include "fixtures/AddressRows.h"
#include "fixtures/TestTable.h"

#include <QAbstractItemModelTester>
#include <QTest>

#include <memory>

using namespace AddressRows;

class tst_ReceiverPicker : public QObject
{
    Q_OBJECT

private slots:
    void init()
    {
        profile = std::make_unique<Profile>();
        fakes = std::make_unique<FakePorts>();
        AddGroup(*profile, "G2", "Suppliers");
        AddGroup(*profile, "G1", "Bert~$@~s friends");
        AddContact(*profile, "C1", "Bert X", "<030> 1", "1", "G2");
        AddContact(*profile, "C2", "anna [x]", "555", "0", "G1");
        AddContact(*profile, "C3", "Bert E", "7", "False");
        AddContact(*profile, "C4", "no group any more", "8", "0", "gone");
        AddDepartment(*profile, "D1", "Sales");
        AddDepartment(*profile, "D2", "Dispatch");
        AddUser(*profile, "7", "carl", "Carl O~$@~Neil", "D2");
        AddUser(*profile, "8", "dora", "Dora", "none");
        picker = std::make_unique<ReceiverPicker>(fakes->message);
        for (QAbstractItemModel *model :
             QList<QAbstractItemModel *>{&picker->Contacts(), &picker->Selected()})
            new QAbstractItemModelTester(model, QAbstractItemModelTester::FailureReportingMode::QtTest,
                                         model);
        picker->Load();
    }

    void cleanup()
    {
        picker.reset();
        fakes.reset();
        profile.reset();
    }

    void groupsShowTheirRows_data()
    {
        const TestTable<int, QString, QStringList> row{"index", "group", "rows"};
        row("contacts", 0, "<All Contacts>",
            {"imgPublicContact|C1|Bert X|(030) 1|Suppliers||||",
             "imgContact|C2|anna (x)|555|Bert's friends||||", "imgContact|C3|Bert E|7|||||"});
        row("group", 1, "     Bert's friends", {"imgContact|C2|anna (x)|555|Bert's friends||||"});
        row("users", 3, "<All Users>",
            {"imgUser|7|Carl O'Neil|carl|Dispatch||||", "imgUser|8|Dora|dora|||||"});
        row("empty department", 4, "     Sales", {});
        row("department", 5, "     Dispatch", {"imgUser|7|Carl O'Neil|carl|Dispatch||||"});
    }
    void groupsShowTheirRows()
    {
        QFETCH(int, index);
        QCOMPARE(picker->Groups().size(), 6);
        QTEST(picker->Groups().at(index).ShownText(), "group");
        picker->ShowGroup(index);
        QTEST(Rows(), "rows");
        const bool hasUsers = index > 2;
        QCOMPARE(picker->Contacts().Table().HasUsers(), hasUsers);
        QCOMPARE(picker->Contacts().headerData(ContactTable::colFax, Qt::Horizontal, Qt::DisplayRole),
                 hasUsers ? "User Name" : "Fax");
    }

    void findsTheFirstRowWhateverTheCase()
    {
        picker->ShowGroup(0);
        const ContactTable &table = picker->Contacts().Table();
        QCOMPARE(table.Find("BERT"), 0);
        QCOMPARE(table.Find("bert'S"), 1);
        QCOMPARE(table.Find("(X"), 1);  // as it is shown, not as it is stored
        QCOMPARE(table.Find("C3"), -1); // the id is not looked at
        QCOMPARE(table.Find("%"), -1);
        QCOMPARE(table.Find("bert e"), 2);
        picker->Contacts().SortBy(ContactTable::colContact);
        QCOMPARE(table.Find("bert e"), 1); // in the new order
        picker->ShowGroup(3);
        QCOMPARE(table.Find("bert e"), -1);
        QCOMPARE(table.Find("DORA"), 1);
    }

    void columnSortsUpAndDownAndKeepsTheSelection()
    {
        picker->ShowGroup(0);
        const QPersistentModelIndex bert10 = picker->Contacts().index(0, 1);
        const auto names = [&] {
            QStringList all;
            for (const QString &row : Rows())
                all.append(row.section('|', 2, 2));
            return all.join(',');
        };
        picker->Contacts().SortBy(ContactTable::colContact);
        QCOMPARE(names(), "anna (x),Bert E,Bert X");
        QCOMPARE(bert10.row(), 2);
        QCOMPARE(picker->Contacts().headerData(1, Qt::Horizontal, ImageKeyRole), "imgSortUp");
        picker->Contacts().SortBy(ContactTable::colContact);
        QCOMPARE(names(), "Bert X,Bert E,anna (x)");
        QCOMPARE(bert10.row(), 0);
        QCOMPARE(picker->Contacts().headerData(1, Qt::Horizontal, ImageKeyRole), "imgSortDown");
        picker->Contacts().SortBy(ContactTable::colFax);
        QCOMPARE(picker->Contacts().headerData(1, Qt::Horizontal, ImageKeyRole), QVariant());
        picker->ShowGroup(3); // stays sorted
        QCOMPARE(names(), "Carl O'Neil,Dora");
    }

    void recipientIsTakenOnce()
    {
        picker->Selected().Replace(ToSelectedReceivers("\"Bert E\"<7>;loose;"));
        picker->ShowGroup(0);
        QCOMPARE(picker->AddRows({0, 1}), -1);
        QCOMPARE(picker->AddRows({2}), 0); // from the text, with its quotes
        QCOMPARE(picker->AddRows({1, 0}), 2);
        fakes->prompts.aAnswers = {mbAnswerCancel, mbAnswerOK};
        picker->ShowGroup(3);
        QCOMPARE(picker->AddAllRows(), -1);
        QCOMPARE(Chosen(), "Bert E,loose,Bert X,anna (x)");
        QCOMPARE(picker->AddAllRows(), -1);
        QCOMPARE(fakes->prompts.aBoxes.last().strText,
                 "All contacts will be added to the recipient list, do you want to continue?");
        QCOMPARE(fakes->prompts.aBoxes.last().lFlags & 0xf, long(mbOKCancel));
        QCOMPARE(Chosen(), "Bert E,loose,Bert X,anna (x),Carl O'Neil,Dora");
        picker->Selected().Remove({0, 2, 5});
        QCOMPARE(Chosen(), "loose,anna (x),Carl O'Neil");
        QCOMPARE(picker->AddRows({0}), 2);
        QCOMPARE(picker->AddRows({1}), -1); // back again, at the end
        QCOMPARE(ToReceiverText(picker->Selected().Receivers().All()),
                 "\"loose\"<loose>;  \"anna (x)\"<555>;  Carl O'Neil[carl];  Dora[dora];  ");
    }

    void composersTextGoesThroughThePicker()
    {
        QStringList shown;
        std::optional<QList<SelectedReceiver>> answer;
        const ReceiverKeys keys([](const ContactChoice &) { return QString(); });
        const auto select = [&](const QString &text) {
            shown.clear();
            return ReceiverPicker::SelectReceivers(text, keys, [&](const QList<SelectedReceiver> &receivers) {
                for (const SelectedReceiver &receiver : receivers)
                    shown.append(receiver.strName + '|' + receiver.strNumber + '|' +
                                 QString::number(receiver.lType));
                return answer;
            });
        };
        QCOMPARE(select(""), "");
        QCOMPARE(shown, QStringList());
        // Cancelled: the text keeps its normal form. The last name was completed first.
        QCOMPARE(select("1 ; a>b<c; a<1>[b]; x [dora]; bert e"),
                 "\"1\"<1>;\"a>b\"<c;\"x [dora]\";\"Bert E(7)\"<Bert E(7)>;");
        QCOMPARE(shown, (QStringList{"\"1\"|1|0", "\"a>b\"<c|\"a>b\"<c|-1", "\"x|dora|2",
                                     "\"Bert E(7)\"|Bert E(7)|0"}));
        answer = QList<SelectedReceiver>{};
        QCOMPARE(select("1;"), "\"1\"<1>;");
        answer = ToSelectedReceivers("\"Anna\"<5>;\"Dora[dora]\";");
        QCOMPARE(select("1;"), "\"Anna\"<5>;  \"Dora[dora];  ");
    }

    void refusedGroupKeepsTheRows()
    {
        picker->ShowGroup(0);
        Profile::Execute("Drop Table UserList");
        QVERIFY_THROWS_EXCEPTION(RaisedError, picker->ShowGroup(3));
        QCOMPARE(picker->Contacts().rowCount(), 3);
        QVERIFY(!picker->Contacts().Table().HasUsers());
    }

private:
    QStringList Rows() const
    {
        QStringList rows;
        for (int row = 0; row < picker->Contacts().rowCount(); ++row) {
            QStringList cells{picker->Contacts().index(row, 1).data(ImageKeyRole).toString()};
            for (int column = 0; column < picker->Contacts().columnCount(); ++column)
                cells.append(picker->Contacts().index(row, column).data().toString());
            rows.append(cells.join('|'));
        }
        return rows;
    }
    QString Chosen() const
    {
        QStringList names;
        for (int place = 0; place < picker->Selected().rowCount(); ++place)
            names.append(picker->Selected().index(place, 0).data().toString());
        return names.join(',');
    }

    std::unique_ptr<Profile> profile;
    std::unique_ptr<FakePorts> fakes;
    std::unique_ptr<ReceiverPicker> picker;
};

QTEST_GUILESS_MAIN(tst_ReceiverPicker)
#include "tst_ReceiverPicker.moc"
