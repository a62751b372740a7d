#include "core/Globals.h"
#include "core/RaisedError.h"
#include "core/Schema.h"

#include <span>

namespace {

// The first lacks a comma, so that Group_name is an alias there and never looked for. It stays: files in use
// may lack the column.
constexpr const char *aProbes[] = {
    "Select  Group_id Group_name,group_detail ,isPublic From ContactGroup Limit 1 ",
    "Select id , Name,Company,Department,Duty,Fax,Mail,Mobile,Phone,Im,Folder_id,isPublic,Group_ID "
    "From Contacts Limit 1",
    "Select SwitchTo,Connected,CheckFax,MarkFax,AutoPrint,PrinterName,Copies,AutoLogin,Pwd,"
    "StartUpRun,Resolve,Deepness,ContactGroupVersion,ContactVersion,UserListVersion,"
    "DepartmentVersion,Company,RememberPwd,DisconnectTime,ServerResolve ,ServerDeepness,"
    "ShowInTaskBar,CloseToTray, lServerResendTimes,lServerTryInterval,SoundPath From Option Limit 1",
    "Select folder_id,folder_name,folder_Type,parentID,isSystem From FaxFolder Limit 1",
    " Select ID , LoginName , UserName , Department From UserList Limit 1",
    "Select ID , Department , Describle From UserDepartment Limit 1",
};

constexpr const char *aProbesV10[] = {
    "Select Fax_id,fileName,pages,receiveTime,sender,title ,faxLevel,Remark,receiveUser,reSender,"
    "folderID,isReaded,RecyleID From ReceiveFax Limit 1",
    "Select fax_id,remark,retryInterval,isDontRetry,faxLevel,fileName, fileList,pages,innerReceiver,"
    "outerReceiver,ReceiverName,resendTimes,busyResend,state,result,title,user_id,SendTime,endTime,"
    "isTransmit, isImmediately,resolution,ModifyTime,Header,folderID,RecyleID,isReaded,timingSend,"
    "Deepness,TempReceiver,originalSender,ResultDetailed From SendFax Limit 1",
};

constexpr const char *aProbesV25[] = {
    "Select Fax_id,fileName,pages,receiveTime,sender,title ,faxLevel,Remark,receiveUser,reSender,"
    "folderID,isReaded,RecyleID,ReturnReceipts,IsSendedReceipt From ReceiveFax Limit 1",
    "Select ReturnReceipts,fax_id,remark,retryInterval,isDontRetry,faxLevel,fileName, fileList,pages,"
    "innerReceiver,outerReceiver,ReceiverName,resendTimes,busyResend,state,result,title,user_id,"
    "SendTime,endTime,isTransmit, isImmediately,resolution,ModifyTime,Header,folderID,RecyleID,"
    "isReaded,timingSend,Deepness,TempReceiver,originalSender,ResultDetailed From SendFax Limit 1",
    "Select Fax_ID,FaxType FROM ReceiptQueue Limit 1",
};

constexpr const char *aProbesV28[] = {
    "Select Fax_id,fileName,pages,receiveTime,sender,title ,faxLevel,Remark,receiveUser,reSender,"
    "folderID,isReaded,RecyleID,ReturnReceipts,IsSendedReceipt,FirstReader,sRecReserve1,sRecReserve2,"
    "sRecReserve3 From ReceiveFax Limit 1",
    "Select ReturnReceipts,fax_id,remark,retryInterval,isDontRetry,faxLevel,fileName, fileList,pages,"
    "innerReceiver,outerReceiver,ReceiverName,resendTimes,busyResend,state,result,title,user_id,"
    "SendTime,endTime,isTransmit, isImmediately,resolution,ModifyTime,Header,folderID,RecyleID,"
    "isReaded,timingSend,Deepness,TempReceiver,originalSender,ResultDetailed,sSndReserve1,"
    "sSndReserve2,sSndReserve3 From SendFax Limit 1",
    "Select Fax_ID,FaxType FROM ReceiptQueue Limit 1",
};

using Probes = std::span<const char *const>;

void RunProbes(clsDBcon &database, Probes probes)
{
    for (const char *probe : probes)
        database.Execute(probe);
}

/// True when no probe names a table or column that is missing, and the file says that it has `version`.
bool MatchesVersion(Probes ownProbes, const QString &version)
{
    try {
        clsDBcon &database = *Global().objDB;
        RunProbes(database, aProbes);
        RunProbes(database, ownProbes);
        const auto row = database.SelectEx("Select Version From DatabaseVersion ");
        return row->Next() && row->Text("Version") == version;
    } catch (const RaisedError &) {
        return false; // the file is not of this version
    }
}

} // namespace

bool CheckDatabaseV10()
{
    return MatchesVersion(aProbesV10, "1.0");
}

bool CheckDatabaseV25()
{
    return MatchesVersion(aProbesV25, "2.5");
}

bool CheckDatabaseV28()
{
    return MatchesVersion(aProbesV28, "2.8");
}
