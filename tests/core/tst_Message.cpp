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
    void secondBoxIsNotShownWhileOneStands()
    {
        BusyPrompts prompts;
        Message message(prompts);
        long second = 0;
        prompts.whileOpen = [&] { second = message.ShowMessage("Second", mbYesNo); };
        QCOMPARE(message.ShowMessage("First"), long(mbAnswerYes));
        QCOMPARE(second, long(mbAnswerOK));
        prompts.whileOpen = [] { throw std::runtime_error("no display"); };
        QVERIFY_THROWS_EXCEPTION(std::runtime_error, message.ShowMessage("Third"));
        prompts.whileOpen = nullptr;
        QCOMPARE(message.ShowMessage("Really?", mbYesNo + mbQuestion, "Delete"), long(mbAnswerYes));
        QCOMPARE(prompts.aShown,
                 (QStringList{"First|0|Velmar Client", "Third|0|Velmar Client", "Really?|36|Delete"}));
    }
};

QTEST_GUILESS_MAIN(tst_Message)
#include "tst_Message.moc"
