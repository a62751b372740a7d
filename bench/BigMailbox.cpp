#include "BigMailbox.h"

#include "core/Globals.h"

#include <QDateTime>
#include <QStringList>

#include <array>
#include <functional>
#include <random>

namespace {

constexpr int lRowsAtOnce = 200;
constexpr QChar separator(2);

/// Draws texts; the same in every run.
class Drawing
{
public:
    unsigned Number(unsigned below) { return random() % below; }
    bool OneIn(unsigned cases) { return Number(cases) == 0; }

    template <std::size_t count>
    QString OneOf(const std::array<const char *, count> &texts)
    {
        return QString::fromLatin1(texts.at(Number(count)));
    }

    QString ID()
    {
        QString id;
        for (int part = 0; part < 4; ++part)
            id += QString::number(random(), 16).rightJustified(8, '0').toUpper();
        return id;
    }

    QString Phone()
    {
        return QStringLiteral("+49 %1 %2").arg(30 + Number(900)).arg(1000000 + Number(8000000));
    }

    QString Company()
    {
        static constexpr std::array names{"Miller & Sons",  "Hansa Logistik", "O~$@~Brien Freight",
                                          "Nordlicht AG",   "City Hospital",  "Weber Maschinenbau",
                                          "Law Office Ray", "Atlas Insurance"};
        static constexpr std::array branches{"", " GmbH", " Ltd.", " Hamburg", " Purchasing Dept."};
        return OneOf(names) + OneOf(branches);
    }

    QString Person()
    {
        static constexpr std::array first{"Anna", "Bert", "Clara", "David", "Emil", "Frieda", "Georg"};
        static constexpr std::array last{"Berg", "Castell", "Dorn", "Ernst", "Falkenhagen", "Grimm"};
        return OneOf(first) + ' ' + OneOf(last);
    }

    QString Title()
    {
        static constexpr std::array kinds{"Offer",          "Order confirmation", "Invoice",
                                          "Delivery note",  "Your letter of May", "Contract draft",
                                          "Medical report", "Change of address"};
        static constexpr std::array tails{"", " - second notice", ", please sign and return", " (corrected)"};
        return OneOf(kinds) + ' ' + QString::number(10000 + Number(90000)) + OneOf(tails);
    }

    QString Remark()
    {
        return OneIn(4) ? QStringLiteral("Please call back before noon, thank you.") : QString();
    }
    QString Pages() { return QString::number(1 + (OneIn(5) ? Number(40) : Number(4))); }
    QString Level() { return OneIn(20) ? "0" : OneIn(20) ? "2" : "1"; }
    QString Readed() { return OneIn(10) ? "0" : "1"; }

private:
    std::mt19937 random{1};
};

/// One fax about every ten minutes.
QString TimeOf(int fax)
{
    static const QDateTime first(QDate(2023, 1, 2), QTime(7, 0), Qt::UTC);
    return first.addSecs(qint64{600} * fax + fax % 7 * 61).toString("yyyy-MM-dd HH:mm:ss");
}

constexpr const char *strReceivedColumns =
    "Sender,Title,FileName,Pages,FaxLevel,reMark,receiveTime,ReceiveUser,Resender,FolderID,Fax_ID,RecyleID,"
    "isreaded,IsSendedReceipt,ReturnReceipts,FirstReader";

QStringList ReceivedRow(Drawing &draw, int fax)
{
    const QString id = draw.ID();
    const QString time = TimeOf(fax);
    const QString reader = draw.Person();
    const bool isShared = draw.OneIn(2);
    return {draw.OneIn(3) ? draw.Phone() : draw.Company(),
            draw.Title(),
            id + ".tif",
            draw.Pages(),
            draw.Level(),
            draw.Remark(),
            time,
            isShared ? reader + "[reader];" + draw.Person() + "[anna];" : draw.Person() + "[anna];",
            draw.OneIn(10) ? draw.Person() + "(boss)" : QString(),
            BigMailbox::strReceivedFolder,
            id,
            QString(),
            draw.Readed(),
            "False",
            isShared ? time + ",1;,0;" : QString(),
            isShared ? reader : QString()};
}

constexpr const char *strSentColumns =
    "Fax_ID,ReMark,RetryInterval,IsDontRetry,FaxLevel,TimingSend,FileName,FileList,Pages,InnerReceiver,"
    "OuterReceiver,ReceiverName,ResendTimes,busyResend,Title,User_ID,IsTransmit,IsImmediately,Resolution,"
    "SendTime,ModifyTime,EndTime,Header,folderID,RecyleID,Deepness,IsReaded,TempReceiver,Result,"
    "ResultDetailed";

QStringList SentRow(Drawing &draw, int fax)
{
    const QString id = draw.ID();
    const QString time = TimeOf(fax);
    const QString receiver = draw.Company();
    const QString phone = draw.Phone();
    const QString contact = QString::number(draw.Number(50000));
    return {id,
            draw.Remark(),
            "3",
            "0",
            draw.Level(),
            QString(),
            id + ".tif",
            "/home/anna/Documents/" + draw.Title() + ".odt,",
            draw.Pages(),
            QString(),
            contact + ';',
            receiver + '<' + phone + ">;",
            "3",
            QString(),
            draw.Title(),
            "7",
            "0",
            "-1",
            "1",
            time,
            time,
            time,
            QString(),
            BigMailbox::strSentFolder,
            QString(),
            "150",
            draw.Readed(),
            QString(),
            "Sucessfully",
            time + separator + separator + '4' + separator + separator + contact + ';' + separator};
}

/// Many rows by each statement: the time goes into the rows, not into reading statements.
void InsertRows(const QString &table, const QString &columns, int rows,
                const std::function<QStringList(int)> &makeRow)
{
    QStringList values;
    for (int row = 0; row < rows; ++row) {
        values.append("('" + makeRow(row).join("','") + "')");
        if (values.size() < lRowsAtOnce && row + 1 < rows)
            continue;
        Global().objDB->Execute("Insert Into " + table + "(" + columns + ") Values" + values.join(','));
        values.clear();
    }
}

} // namespace

void BigMailbox::Fill(int faxes)
{
    Drawing draw;
    Global().objDB->Begin();
    InsertRows("ReceiveFax", strReceivedColumns, faxes, [&](int fax) { return ReceivedRow(draw, fax); });
    InsertRows("SendFax", strSentColumns, faxes, [&](int fax) { return SentRow(draw, fax); });
    Global().objDB->Commit();
}

void BigMailbox::AddFolders(int folders)
{
    Global().objDB->Begin();
    InsertRows("FaxFolder", "Folder_ID,Folder_Name,Folder_Type,parentID,isSystem", folders, [](int folder) {
        const QString number = QString::number(folder);
        return QStringList{"F" + number, "Customer " + number, "1", strReceivedFolder, "0"};
    });
    Global().objDB->Commit();
}
