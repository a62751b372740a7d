#include "compose/HeaderProfiles.h"
#include "core/Message.h"
#include "fakes/FakePorts.h"
#include "fixtures/Profile.h"
#include "fixtures/TestTable.h"

#include <QDir>

#include <memory>

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
