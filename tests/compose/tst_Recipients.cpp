#include "compose/ReceiverCompletion.h"
#include "compose/Recipients.h"
#include "core/Globals.h"
#include "core/Utilities.h"
#include "fixtures/AddressRows.h"
#include "fixtures/TestTable.h"

#include <QTest>

#include <memory>
#include <random>

using namespace Recipients;

class tst_Recipients : public QObject
{
    Q_OBJECT

private slots:
    void init()
    {
        profile = std::make_unique<Profile>();
        AddContact("C1", "Anna", "555", "1");
        AddContact("C2", "Bert", "<030> 12", "0"); // typed as "(030) 12"
        AddContact("C3", "", "777", "1");
        AddContact("C4", "\"Quinn\"", "888", "1");
        AddContact("C5", "Shaun O~$@~Hara", "1~$@~2", "0");
        AddContact("C6", "Under_score", "61", "1");
        AddContact("C7", "100% Fax", "62", "1");
        AddContact("C8", "Back\\slash", "63", "1");
        AddUser("7", "carl", "Carl Carlsen");
        AddUser("8", "o~$@~neil", "Pat O~$@~Neil");
        AddUser("12", "erin", "Doe; Erin [QA]");
    }
    void cleanup() { profile.reset(); }

    /// The normal form, and the columns that it becomes; "`" stands for a double quote.
    void textBecomesColumns_data()
    {
        const TestTable<QString, QString, QString, QString, QString> row{"text", "formatted", "outer",
                                                                         "inner", "temp"};
        const QString none;
        row("empty", "", none, none, none, none);
        row("blanks and separators only", " ;; \t;", none, none, none, none);
        row("number", "12345", "`12345`<12345>;", none, none, "`12345`<12345>;");
        row("number of a nameless contact", "777", "`777`<777>;", none, none, "`777`<777>;");
        row("blank before the number stays", "Anna <555>", "`Anna `<555>;", none, none, "`Anna `<555>;");
        row("name is looked up", " Anna ; x", "`Anna`<555>;`x`<x>;", none, none, "`Anna`<555>;`x`<x>;");
        row("letter case counts", "anna", "`anna`<anna>;", none, none, "`anna`<anna>;");
        row("contact's brackets cut nothing", "Bert;", "`Bert`<(030) 12>;", none, none, "`Bert`<(030) 12>;");
        row("quotes go", "\"An\"na;\"", "`Anna`<555>;", none, none, "`Anna`<555>;");
        row("apostrophe", "Shaun O'Hara", "`Shaun O'Hara`<1'2>;", none, none, "`Shaun O'Hara`<1'2>;");
        row("user", "Carl Carlsen[carl]", "`Carl Carlsen[carl]`;", none, "Carl Carlsen[7];", none);
        row("user with apostrophe", "x[o'neil]", "`x[o'neil]`;", none, "Pat O~$@~Neil[8];", none);
        row("user's name cuts nothing", "x[erin]", "`x[erin]`;", none, "Doe, Erin (QA)[12];", none);
        row("unknown user is lost", "Nobody[none];1", "`Nobody[none]`;`1`<1>;", none, none, "`1`<1>;");
        row("mixed item disappears", "a<1>[b];c<<d>;e];f>;<g;Anna", "`Anna`<555>;", none, none,
            "`Anna`<555>;");
        row("brackets the wrong way round", "a>b<c;2", "`a>b`<c;`2`<2>;", none, none, "`2`<2>;");
        row("wildcards are letters", "An%;_nna", "`An%`<An%>;`_nna`<_nna>;", none, none,
            "`An%`<An%>;`_nna`<_nna>;");
        row("markers are letters", "%1;%2", "`%1`<%1>;`%2`<%2>;", none, none, "`%1`<%1>;`%2`<%2>;");
    }
    void textBecomesColumns()
    {
        QFETCH(QString, text);
        QFETCH(QString, temp);
        const QString formatted = FormatReceiverText(text);
        QTEST(QString(formatted).replace('"', '`'), "formatted");
        QTEST(GetOuterReceiver(formatted), "outer");
        QTEST(GetInnerReceiver(formatted), "inner");
        QCOMPARE(GetTempReceiver(formatted).replace('"', '`'), temp);
        QCOMPARE(FormatReceiverText(formatted), formatted);
    }

    /// Public contacts are looked up with the quotes of the normal form.
    void publicContactIsFoundByANameWithQuotes()
    {
        QCOMPARE(GetOuterReceiver("\"Quinn\"<888>;Anna<555>;777<777>;Anna<556>"), "C4;C1;C3;");
        QCOMPARE(GetTempReceiver("\"Quinn\"<888>;Anna<555>;777<777>; Anna < 556 >;\r\n"), "Anna<556>;");
        QCOMPARE(GetTempReceiver("loose text"), "loose text<loose text);");
        QCOMPARE(GetInnerReceiver("\"Carl\r\n[ca\r\nrl]\""), "Carl Carlsen[7];");
    }

    void semicolonCompletesTheLastName_data()
    {
        const TestTable<QString, QString, QString> row{"text", "completed", "asked"};
        row("nothing typed", " ", "", "");
        row("nothing behind the separator", "Anna;  ", "", "");
        row("unknown", "Zoe", "", "");
        row("contact", "Ann", "Anna(555);  ", "");
        row("behind others", "1;  2; ann", "1;  2;Anna(555);  ", "");
        row("escaped text before comes back", "O~$@~x;ann", "O'x;Anna(555);  ", "");
        row("contact's brackets cut nothing", "bert", "Bert((030) 12);  ", "");
        row("apostrophe of a number", "O'Hara", "Shaun O'Hara(1 '2);  ", "");
        row("user", "Carlsen", "Carl Carlsen[carl];  ", "");
        row("apostrophe of a login", "O'Neil", "Pat O'Neil[o 'neil];  ", "");
        row("several contacts", "a", "", "contact a");
        row("several users", "1;Carl", "", "user Carl");
        row("one contact, several users", "Shaun", "Shaun O'Hara(1 '2);  ", "user Shaun");
        row("percent", "%", "100% Fax(62);  ", "");
        row("underscore", "_", "Under_score(61);  ", "");
        row("backslash", "\\", "Back\\slash(63);  ", "");
    }
    void semicolonCompletesTheLastName()
    {
        QFETCH(QString, text);
        AddUser("9", "carla", "Carla Shaun");
        AddUser("10", "shaun", "Shaun");
        const ReceiverCompletion completion = ReceiverCompletion::Complete(text);
        QTEST(completion.strText.value_or(""), "completed");
        const auto kind = [&] {
            return completion.choice->lKind == ContactChoice::chUser ? "user " : "contact ";
        };
        QTEST(completion.choice ? kind() + completion.choice->strKeyword : QString(), "asked");
    }

    void oneUserReplacesTheOneContact()
    {
        AddUser("9", "anna", "Annabel");
        QCOMPARE(ReceiverCompletion::Complete("Ann").strText, "Annabel[anna];  ");
    }

    void chosenLineEndsTheText()
    {
        AddContact("C9", "Annette [Sales]", "<1>", "0");
        AddUser("9", "ca", "Carl [x]");
        QStringList lines;
        QString answer;
        const ReceiverKeys keys([&](const ContactChoice &choice) {
            lines = choice.ReadLines();
            return answer;
        });
        QCOMPARE(keys.txtReceive_KeyPress('x', "Ann"), std::nullopt);
        QCOMPARE(keys.txtReceive_KeyPress(';', "1;Ann"), std::nullopt); // cancelled: the key enters the box
        QCOMPARE(lines, (QStringList{"Anna(555)", "Annette (Sales)((1))"}));
        answer = lines.last();
        QCOMPARE(keys.txtReceive_KeyPress(';', "1;Ann"), "1;Annette (Sales)((1));  ");
        QCOMPARE(keys.txtReceive_KeyPress(';', "Carl"), "Annette (Sales)((1));  ");
        QCOMPARE(lines, (QStringList{"Carl Carlsen[carl]", "Carl (x)[ca]"}));
    }

    void manyItemsAreFoundAsFewAre()
    {
        const QString few = "Anna;Shaun O'Hara;77;Carl[carl];x[o'neil];";
        const QString many = few.repeated(2000);
        const QString formatted = FormatReceiverText(few);
        QCOMPARE(FormatReceiverText(many), formatted.repeated(2000));
        QCOMPARE(GetInnerReceiver(many), GetInnerReceiver(few).repeated(2000));
        const QString outer = "Anna<555>;777<777>;1<1>;";
        QCOMPARE(GetOuterReceiver(outer.repeated(2000)), QString("C1;C3;").repeated(2000));
        QCOMPARE(GetTempReceiver(outer.repeated(2000)), QString("1<1>;").repeated(2000));
        Profile::Execute("Insert Into Contacts(ID,Name,Fax,isPublic) Values('N',NULL,'9',1)");
        AddContact("C0", "Anna", "second", "1"); // the first one counts
        QCOMPARE(FormatReceiverText(QString("Anna;;").repeated(100)),
                 QString("\"Anna\"<555>;").repeated(100));
    }

    void textsOfAMegabyteAreRead()
    {
        constexpr int size = 1 << 20;
        std::mt19937 random{7};
        const QString letters = "<>[]\"';%_\\ a\r\n~$@(";
        QString mixture;
        for (int i = 0; i < size; ++i)
            mixture += letters.at(qsizetype(random() % unsigned(letters.size())));
        for (const QString &text : {mixture, QString(size, '\''), QString(size, ';'), QString(size, '<')}) {
            const QString formatted = FormatReceiverText(text);
            QCOMPARE(GetOuterReceiver(formatted) + GetInnerReceiver(formatted), "");
            GetTempReceiver(text);
            QVERIFY(!ReceiverCompletion::Complete(text).strText || text.contains(';'));
        }
        QCOMPARE(Profile::Value("Select count(*) From Contacts"), "8");
    }

private:
    void AddContact(const QString &id, const QString &name, const QString &fax, const QString &isPublic)
    {
        AddressRows::AddContact(*profile, id, name, fax, isPublic);
    }
    void AddUser(const QString &id, const QString &login, const QString &name)
    {
        AddressRows::AddUser(*profile, id, login, name);
    }

    std::unique_ptr<Profile> profile;
};

QTEST_GUILESS_MAIN(tst_Recipients)
#include "tst_Recipients.moc"
