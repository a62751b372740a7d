#include "mailbox/FaxListQueries.h"

#include <QCoreApplication>

namespace {

/// The fixed texts of one query.
struct QueryTexts
{
    const char *strSelect;
    const char *strFolder; ///< with %1 for the folder's id
    const char *strAllFolders;
    const char *strDate;
    const char *strOrder;
    int lFaxTable;
};

constexpr QueryTexts textsDraft{
    "Select Fax_ID,FaxLevel,ReceiverName ,Title,Pages,modifyTime,FileList,IsReaded from SendFax ",
    " Where FolderID='%1' and RecyleID='' ",
    " Where  RecyleID='' ",
    " and  ModifyTime ",
    " order by modifytime asc",
    1};
constexpr QueryTexts textsReceived{
    "Select Fax_ID,isReaded,FaxLevel,Sender,Title,Pages,ReceiveTime,reSender,FileName,FirstReader from "
    "ReceiveFax ",
    " Where FolderID='%1'  and RecyleID='' ",
    " Where   RecyleID='' ",
    " and ReceiveTime ",
    " order by ReceiveTime asc",
    0};
constexpr QueryTexts textsRecyleSent{"Select Fax_ID,FaxLevel,Title,Pages,FileName,IsReaded from SendFax ",
                                     " Where RecyleID='%1' ",
                                     " Where RecyleID='%1' ",
                                     " and ModifyTime ",
                                     " order by ModifyTime asc",
                                     1};
constexpr QueryTexts textsRecyleReceived{
    "Select Fax_ID,isReaded,FaxLevel,Sender,Title,Pages,ReceiveTime,reSender,FileName from ReceiveFax ",
    " Where RecyleID='%1' ",
    " Where RecyleID='%1' ",
    " and ReceiveTime ",
    "  order by ReceiveTime asc",
    0};
constexpr QueryTexts textsOutgoing{
    "Select Fax_ID,FaxLevel,ReceiverName ,Title,Pages,FileName,IsReaded from SendFax ",
    " Where FolderID='%1' and RecyleID='' ",
    " Where  RecyleID='' ",
    " and ModifyTime ",
    " order by modifytime asc",
    1};
constexpr QueryTexts textsSended{
    "Select Fax_ID,FaxLevel,ReceiverName ,Title,Pages,Result,SendTime,FileNAME,IsReaded from SendFax ",
    " Where FolderID='%1' and RecyleID='' ",
    " Where  RecyleID='' ",
    " and ModifyTime ",
    " order by sendTime asc",
    1};

QList<const QueryTexts *> GetTexts(int mode)
{
    switch (mode) {
    case 1:
        return {&textsDraft};
    case 2:
        return {&textsReceived};
    case 3:
        return {&textsRecyleSent, &textsRecyleReceived};
    case 4:
        return {&textsOutgoing};
    case 5:
    case 6:
    case 7:
        return {&textsSended};
    default:
        return {};
    }
}

const char *GetFaxText(int mode, int faxTable)
{
    if (faxTable == 0)
        return "Select Fax_ID,isReaded,FaxLevel,Sender,Title,Pages,ReceiveTime,reSender,FileName from "
               "ReceiveFax   Where Fax_ID='%1'";
    switch (mode) {
    case 1:
        return "Select Fax_ID,FaxLevel,ReceiverName ,Title,Pages,modifyTime,FileList,IsReaded,FileName from "
               "SendFax  Where Fax_ID='%1'";
    case 3:
        return "Select Fax_ID,FaxLevel,Title,Pages,FileName,IsReaded from SendFax  Where Fax_ID='%1'";
    case 4:
        return "Select Fax_ID,FaxLevel,ReceiverName ,Title,Pages,FileName,IsReaded from SendFax  Where "
               "Fax_ID='%1'";
    default:
        return "Select Fax_ID,FaxLevel,ReceiverName ,Title,Pages,Result,SendTime,FileNAME,IsReaded from "
               "SendFax  Where Fax_ID='%1'";
    }
}

QString Column(const char *column, const QString &dateRange)
{
    return dateRange.isEmpty() ? QString() : column + dateRange;
}

QString Label(const char *text)
{
    return QCoreApplication::translate("mailbox", text);
}

/// Both lines of the bin join two tables by "union": equal counts fall into one row, and only one is summed.
FaxListQueries::SummaryLine RecyleLine(const QString &dateRange)
{
    const QString byModify = Column(" and  ModifyTime", dateRange);
    const QString byReceive = Column(" and  ReceiveTime", dateRange);
    return {Label("Recycle bin"),
            "Select count(*)  From SendFax Where isreaded=0 and  RecyleID<>'' " + byModify +
                " union Select count(*) From ReceiveFax Where  isreaded=0 and RecyleID<>'' " + byReceive,
            "Select count(*)  From SendFax Where RecyleID<>'' " + byModify +
                " union Select count(*) From ReceiveFax Where RecyleID<>''  " + byReceive};
}

} // namespace

QList<FaxListQueries::Query> FaxListQueries::ForFolder(const Selection &selection)
{
    const QString notIn =
        selection.strListed.isEmpty() ? QString() : " and Fax_ID Not in(" + selection.strListed + ")";
    QList<Query> queries;
    for (const QueryTexts *texts : GetTexts(selection.lMode)) {
        QString where = selection.bAllFolders ? texts->strAllFolders : texts->strFolder;
        where.replace("%1", selection.strKey);
        queries.append({texts->strSelect + where + selection.strExtraFilter + notIn +
                            Column(texts->strDate, selection.strDateRange) + texts->strOrder,
                        texts->lFaxTable});
    }
    return queries;
}

QString FaxListQueries::ForFax(const QString &id, int mode, int faxTable)
{
    return QString(GetFaxText(mode, faxTable)).arg(id);
}

QList<FaxListQueries::SummaryLine> FaxListQueries::ForSummary(const Subtrees &subtrees,
                                                              const QString &dateRange)
{
    const QString byModify = Column(" and  ModifyTime ", dateRange);
    const QString byReceive = Column(" and  ReceiveTime ", dateRange);
    const QString incoming = "FolderID In('1001'" + subtrees.strIncoming + ") " + byReceive;
    const QString draft = "FolderID In('1002'" + subtrees.strDraft + ")" + byModify;
    const QString sent = "FolderID In('1004'" + subtrees.strSent + ")" + byModify;
    const QString outgoing = "FolderID In('1003'" + subtrees.strOutgoing + ")" + byModify;
    return {
        {Label("Incoming Fax"),
         "Select Count(*) From ReceiveFax Where isReaded=0 and RecyleID='' and   " + incoming,
         "Select Count(*) From ReceiveFax Where  RecyleID='' and   " + incoming},
        {Label("Draft Fax"), "Select Count(*) From SendFax Where  RecyleID='' and isReaded=0 and    " + draft,
         "Select Count(*) From SendFax Where  RecyleID='' and   " + draft},
        {Label("Sent Fax"), "Select Count(*) From SendFax Where isReaded=0 and RecyleID='' and   " + sent,
         "Select Count(*) From SendFax Where  RecyleID='' and  " + sent},
        // The total also counts the outgoing faxes that stand in the Recycle bin.
        {Label("Outgoing fax"),
         "Select Count(*) From SendFax Where isReaded=0 and RecyleID='' and   " + outgoing,
         "Select Count(*) From SendFax Where   " + outgoing},
        RecyleLine(dateRange),
    };
}
