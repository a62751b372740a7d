#include "core/Message.h"

#include <QTest>

#include <functional>
#include <stdexcept>

namespace {

/// Runs events while a box stands, as a real one does.
class BusyPrompts final : public Prompts
{
public:
    long Show(const QString &text, long flags, const QString &title) override
    {
        aShown.append(QString("%1|%2|%3").arg(text, QString::number(flags), title));
        if (whileOpen)
            whileOpen();
        return mbAnswerYes;
    }
    QStringList aShown;
    std::function<void()> whileOpen;
};

} // namespace

class tst_Message : public QObject
{
    Q_OBJECT

private slots:
    void titleIsTheProgramsUnlessGiven();
    void secondBoxIsNotShownWhileOneStands();
    void failedBoxDoesNotBlockTheNext();

private:
    BusyPrompts prompts;
    Message message{prompts};
};

void tst_Message::titleIsTheProgramsUnlessGiven()
{
    message.ShowMessage("Done");
    message.ShowMessage("Really?", mbYesNo + mbQuestion, "Delete");
    QCOMPARE(prompts.aShown, (QStringList{"Done|0|Velmar Client", "Really?|36|Delete"}));
}

void tst_Message::secondBoxIsNotShownWhileOneStands()
{
    prompts.aShown.clear();
    long second = 0;
    prompts.whileOpen = [&] { second = message.ShowMessage("Second", mbYesNo); };
    QCOMPARE(message.ShowMessage("First", mbYesNo), long(mbAnswerYes));
    QCOMPARE(second, long(mbAnswerOK));
    QCOMPARE(prompts.aShown.size(), 1);
    prompts.whileOpen = nullptr;
    QCOMPARE(message.ShowMessage("Third", mbYesNo), long(mbAnswerYes));
}

void tst_Message::failedBoxDoesNotBlockTheNext()
{
    prompts.whileOpen = [] { throw std::runtime_error("no display"); };
    QVERIFY_THROWS_EXCEPTION(std::runtime_error, message.ShowMessage("First"));
    prompts.whileOpen = nullptr;
    QCOMPARE(message.ShowMessage("Next"), long(mbAnswerYes));
}

QTEST_GUILESS_MAIN(tst_Message)
#include "tst_Message.moc"
