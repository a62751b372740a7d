#include "compose/HeaderProfiles.h"
#include "core/Message.h"
#include "fakes/FakePorts.h"
#include "fixtures/Profile.h"
#include "fixtures/TestTable.h"

#include <QDir>

#include <memory>

using HeaderProfiles::Commands;

class tst_HeaderProfiles final : public QObject
{
    Q_OBJECT

private slots:
    void init()
    {
        folder = std::make_unique<QTemporaryDir>();
        prompts = std::make_unique<FakePrompts>();
        message = std::make_unique<Message>(*prompts);
    }

    void listHoldsWhatCanBeChosen_data()
    {
        const TestTable<QStringList, QStringList> row{"files", "entries"};
        row("none", {"General.txt"}, {});
        row("standard ones first", {"Detailed.GNI", "general.gni", "Compact.GNI", "a.GNI"},
            {"*General", "*Compact", "*Detailed", "a"});
        row("by name", {"b.GNI", "A.gni", ".c.GNI", "General 2.GNI"}, {".c", "A", "b", "General 2"});
        row("each once", {"a.GNI", "a.gni", "General.GNI", "GENERAL.GNI"}, {"*General", "a"});
        row("names that nobody can have given", {".GNI", "*General.GNI", "<None>.GNI", "a\nb.GNI"}, {});
    }

    void listHoldsWhatCanBeChosen()
    {
        QFETCH(QStringList, files);
        QFETCH(QStringList, entries);
        for (const QString &file : files)
            QVERIFY(WriteTestFile(folder->filePath(file), "x"));
        QVERIFY(QDir().mkdir(folder->filePath("folder.GNI")));
        QCOMPARE(HeaderProfiles::Entries(folder->path()),
                 QStringList{"<None>"} + entries + QStringList{"<New Profile...>"});
    }

    void entriesAllowWhatTheyAre()
    {
        const QStringList entries{"<None>", "*General", "Mine", "<New Profile...>"};
        const QList<QList<bool>> allowed{{false, false, false}, {false, false, false}, {false, true, false},
                                         {false, true, true},   {true, false, false},  {false, false, false}};
        for (int index = -1; index <= entries.size(); ++index) {
            const Commands commands = HeaderProfiles::CommandsOf(entries, index);
            QCOMPARE((QList{commands.bMakesNew, commands.bEdit, commands.bDelete}), allowed[index + 1]);
        }
    }

    void selectionFollowsTheList()
    {
        QStringList entries{"<None>", "<New Profile...>"};
        QCOMPARE(HeaderProfiles::Insert(entries, "a"), 1);
        QCOMPARE(HeaderProfiles::Insert(entries, "b"), 2);
        QCOMPARE(entries, (QStringList{"<None>", "a", "b", "<New Profile...>"}));
        QCOMPARE(HeaderProfiles::Remove(entries, 1), 1);
        QCOMPARE(HeaderProfiles::Remove(entries, 1), 0);
        QCOMPARE(entries, (QStringList{"<None>", "<New Profile...>"}));
    }

    void profileIsDeletedAfterYes()
    {
        const QString file = HeaderProfiles::PathOf(folder->path(), "Mine");
        QCOMPARE(file, folder->filePath("Mine.GNI"));
        QVERIFY(WriteTestFile(folder->filePath("mine.gni"), "x"));
        prompts->aAnswers = {mbAnswerNo, mbAnswerYes, mbAnswerYes};
        QVERIFY(!HeaderProfiles::Delete(folder->path(), "Mine", *message));
        QCOMPARE(HeaderProfiles::PathOf(folder->path(), "Mine"), folder->filePath("mine.gni"));
        QVERIFY(HeaderProfiles::Delete(folder->path(), "Mine", *message));
        QVERIFY(QDir(folder->path()).isEmpty());
        QVERIFY(HeaderProfiles::Delete(folder->path(), "Mine", *message)); // gone already
        QCOMPARE(prompts->aBoxes[0].lFlags, mbYesNo | mbQuestion | mbDefaultButton2);
    }

    void newNamesAreCleanAndFree()
    {
        QVERIFY(WriteTestFile(folder->filePath("Mine.gni"), "x"));
        prompts->aTyped = {" M:i/n*e ", "*?\\/ \t", " a:b\n ", "..", ""};
        QStringList names;
        for (int answer = 0; answer < 5; ++answer)
            names.append(HeaderProfiles::AskName(folder->path(), *message));
        QCOMPARE(names, (QStringList{"", "", "ab", "..", ""}));
        QCOMPARE(prompts->Texts(), QStringList{"The specified file already exists."});
        QCOMPARE(prompts->aAsked.first(), "New Profile|Please enter a profile name: ");
    }

    void copyReplacesAfterYes()
    {
        const QString file = folder->filePath("copy.gni");
        const HeaderProfile profile = HeaderProfiles::NewProfile();
        QVERIFY(HeaderProfiles::SaveAs(file, profile, *message)); // a new one asks nothing
        const QByteArray written = ReadTestFile(file);
        QVERIFY(WriteTestFile(file, "old"));
        prompts->aAnswers = {mbAnswerNo, mbAnswerYes};
        QVERIFY(!HeaderProfiles::SaveAs(file, profile, *message));
        QCOMPARE(ReadTestFile(file), "old");
        QVERIFY(HeaderProfiles::SaveAs(file, profile, *message));
        QCOMPARE(ReadTestFile(file), written);
        QVERIFY(!HeaderProfiles::SaveAs(folder->filePath("none/a.gni"), profile, *message));
        QVERIFY(!HeaderProfiles::SaveAs("", profile, *message)); // cancelled
        const QString question = "The spcified file already exists.\r\nDo you want to replace?";
        QCOMPARE(prompts->Texts(), (QStringList{question, question, "Cannot save the profile."}));
    }

private:
    std::unique_ptr<QTemporaryDir> folder;
    std::unique_ptr<FakePrompts> prompts;
    std::unique_ptr<Message> message;
};

QTEST_GUILESS_MAIN(tst_HeaderProfiles)
#include "tst_HeaderProfiles.moc"
