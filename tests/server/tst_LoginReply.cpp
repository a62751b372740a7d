#include "server/LoginReply.h"
#include "server/wire/clsClient.h"

#include <QTest>

class tst_LoginReply : public QObject
{
    Q_OBJECT

private slots:
    void repliesAreTold_data()
    {
        QTest::addColumn<QByteArray>("data");
        QTest::addColumn<int>("kind");
        QTest::addColumn<QString>("detail");
        const auto add = [](const char *name, const QByteArray &data, LoginReply::Kind kind,
                            const char *detail) {
            QTest::newRow(name) << data << int(kind) << QString(detail);
        };
        add("greeting", "welcome\r\n1.6 beta\r\n", LoginReply::rplGreeting, "1.6 beta");
        add("greeting with ok in it", "Welcome\r\n1.6 beta\r\nTokyo", LoginReply::rplGreeting, "1.6 beta");
        add("greeting of one line", "Welcome", LoginReply::rplUnexpected, "");
        add("not quite a greeting", "Welcome!\r\n1.6 beta", LoginReply::rplOther, "");
        add("accepted", "OK\r\n", LoginReply::rplAccepted, "");
        add("accepted somewhere", QByteArray("user\0ok", 7), LoginReply::rplAccepted, "");
        add("refused", "ERR\r\n12\r\n", LoginReply::rplRefused, "12");
        add("refusal outweighs", "OK\r\n14\r\nerr", LoginReply::rplRefused, "14");
        add("refused without a line", "ERR", LoginReply::rplUnexpected, "");
        add("nothing", "", LoginReply::rplOther, "");
    }

    void repliesAreTold()
    {
        QFETCH(QByteArray, data);
        QFETCH(int, kind);
        QFETCH(QString, detail);
        ClientReply reply;
        reply.abData = data;
        const LoginReply told = LoginReply::Classify(reply);
        QCOMPARE(int(told.kind), kind);
        QCOMPARE(told.strCode + told.strVersion, detail);
    }
};

QTEST_APPLESS_MAIN(tst_LoginReply)
#include "tst_LoginReply.moc"
