#include "DemoOffice.h"

#include "DemoPages.h"
#include "FaxHeader.h"
#include "FaxWriter.h"
#include "OutgoingFaxes.h"
#include "ServerTime.h"
#include "Store.h"

#include <QDateTime>
#include <QFileInfo>

#include <functional>

namespace {

/// A document, who sent it, and when.
struct Document
{
    QString strName; ///< of its file
    QString strSender;
    QString strNumber;
    QString strTitle;
    int lDaysAgo;
    QTime timSent;
    FaxPaper::Resolution lResolution;
    FaxWriter::Coding coding;
    int lPages;
    std::function<void(FaxPaper &, QDate, int)> fnDraw;
    int lLevel = 1;
    QString strRemark = {};

    QDateTime Time() const { return {QDate::currentDate().addDays(-lDaysAgo), timSent}; }
};

template <typename Draw>
std::function<void(FaxPaper &, QDate, int)> OnePage(Draw draw)
{
    return [draw](FaxPaper &paper, QDate date, int) { draw(paper, date); };
}

QList<Document> IncomingDocuments()
{
    using namespace DemoPages;
    constexpr auto fine = FaxPaper::resFine;
    constexpr auto standard = FaxPaper::resStandard;
    constexpr auto group3 = FaxWriter::codGroup3;
    constexpr auto group4 = FaxWriter::codGroup4;
    return {
        {"pricelist", "Brightwell Ironmongery", "01632 960 240", "New trade prices", 19, QTime(16, 41, 7),
         standard, group3, lPriceListPages, DrawPriceList, 2, "For the file"},
        {"plan", "Studio Ferrante", "01632 960 077", "Floor plan of unit 7, revision C", 15,
         QTime(10, 12, 40), fine, group4, 1, OnePage(DrawFloorPlan), 1,
         "Forwarded by Ben: please check the paint room"},
        {"invoice", "Keller & Sons Timber", "01632 960 155", "Invoice K-4471", 11, QTime(8, 55, 12), fine,
         group4, lInvoicePages, DrawInvoice, 1, "Due in 30 days"},
        {"map",
         "Marta Lindqvist",
         "01632 960 019",
         "The way to the barn",
         8,
         QTime(19, 26, 3),
         standard,
         group3,
         1,
         OnePage(DrawMap),
         1,
         {}},
        {"order", "O'Brien Catering", "01632 960 131", "Order for the open day", 5, QTime(11, 3, 55),
         standard, group3, 1, OnePage(DrawOrder), 0, "Please confirm by phone"},
        {"contract", "Ashdown Property Management", "01632 960 300", "Lease of unit 7, draft to sign", 3,
         QTime(14, 37, 21), fine, group4, lContractPages, DrawContract, 0,
         "Please return page 5 signed by Friday"},
        {"note",
         "+44 1632 960114",
         "01632 960 114",
         "Chairs",
         1,
         QTime(17, 49, 30),
         standard,
         group3,
         1,
         OnePage(DrawNote),
         2,
         {}},
        {"letter", "Harbour Freight", "01632 960 202", "Your shipment HF 20917", 0, QTime(8, 14, 2), fine,
         group4, 1, OnePage(DrawLetter), 1, "Answer before noon tomorrow"},
    };
}

QString SenderLine(const Document &document, int page)
{
    return QString("%1   %2%3   P. %4/%5")
        .arg(document.Time().toString("dd/MM/yyyy HH:mm"), document.strNumber,
             document.strSender.startsWith('+') ? QString() : "   " + document.strSender.toUpper(),
             QString::number(page), QString::number(document.lPages));
}

/// The fax of a document, with its file in place.
Fax MakeFax(const Store &store, const Document &document)
{
    QList<QImage> pages;
    for (int page = 1; page <= document.lPages; ++page) {
        FaxPaper paper(document.lResolution);
        document.fnDraw(paper, document.Time().date(), page);
        pages.append(paper.Finish(SenderLine(document, page)));
    }
    Fax fax;
    fax.strFile = "demo-" + document.strName + ".tif";
    const QString path = store.mailboxes.PathOf(fax.strFile);
    FaxWriter::Write(path, pages, document.lResolution, document.coding);
    fax.lSize = QFileInfo(path).size();
    fax.lPages = document.lPages;
    fax.strSender = document.strSender;
    fax.strTitle = document.strTitle;
    fax.lLevel = document.lLevel;
    fax.strRemark = document.strRemark;
    fax.strTime = ServerTime::TextOf(document.Time());
    return fax;
}

class Office
{
public:
    explicit Office(Store &store)
        : objStore(store)
    {
    }

    void AddPeople();
    void AddAddresses();
    void AddIncoming();
    void AddSent();

private:
    QString AddAccount(const QString &login, const QString &name, const QString &department);
    QString AddContact(const QStringList &fields);
    void GiveTo(const QString &owner, Fax fax);
    /// One that is still to be sent waits for tomorrow.
    void AddSentFax(const QString &owner, Fax fax, int kind, int daysAgo, const QString &title,
                    const QStringList &contacts, const QStringList &typed);

    Store &objStore;
    QString strAnna;
    QString strBen;
    QString strHarbour; ///< contacts
    QString strKeller;
};

QString Office::AddAccount(const QString &login, const QString &name, const QString &department)
{
    const Account account{Accounts::NewID(), login, name, department, Accounts::DigestOf(login), false};
    objStore.accounts.Save(account);
    return account.strID;
}

void Office::AddPeople()
{
    const QString office = Accounts::NewID();
    const QString workshop = Accounts::NewID();
    objStore.addresses.Add(AddressBook::lstDepartments, {office, "Office", "Orders, invoices, post"});
    objStore.addresses.Add(AddressBook::lstDepartments, {workshop, "Workshop", "Joinery and finishing"});
    strAnna = AddAccount("anna", "Anna Weber", office);
    strBen = AddAccount("ben", "Ben Hollis", workshop);
}

QString Office::AddContact(const QStringList &fields)
{
    const QString id = Accounts::NewID();
    objStore.addresses.Add(AddressBook::lstContacts, QStringList{id} + fields);
    return id;
}

void Office::AddAddresses()
{
    const QString suppliers = Accounts::NewID();
    const QString customers = Accounts::NewID();
    objStore.addresses.Add(AddressBook::lstGroups, {suppliers, "Suppliers", "Timber, fittings and freight"});
    objStore.addresses.Add(AddressBook::lstGroups, {customers, "Customers", ""});
    strHarbour = AddContact({"Jonas Petersen", "Harbour Freight", "Dispatch", "", "01632 960 202",
                             "01632 960 201", "", "dispatch@harbour.example", "", suppliers});
    strKeller = AddContact({"Keller & Sons Timber", "Keller & Sons", "Sales", "", "01632 960 155",
                            "01632 960 150", "", "sales@keller.example", "", suppliers});
    AddContact({"Brightwell Ironmongery", "Brightwell", "", "", "01632 960 240", "01632 960 239", "",
                "trade@brightwell.example", "", suppliers});
    AddContact({"Siobhan O'Brien", "O'Brien Catering", "", "Owner", "01632 960 131", "01632 960 130",
                "07700 900 131", "", "", customers});
    AddContact({"Marta Lindqvist", "", "", "", "01632 960 019", "", "07700 900 019", "marta@barn.example", "",
                customers});
    AddContact({"Moorside Plumbing", "Moorside", "", "", "01632 960 902", "", "", "", "", suppliers});
    AddContact({"Old Mill Tea Room", "", "", "", "01632 960 903", "", "", "", "", customers});
}

void Office::GiveTo(const QString &owner, Fax fax)
{
    fax.strID = Accounts::NewID();
    fax.strOwner = owner;
    fax.bWaiting = true;
    objStore.mailboxes.Insert(fax);
}

void Office::AddIncoming()
{
    for (const Document &document : IncomingDocuments()) {
        Fax fax = MakeFax(objStore, document);
        fax.strUsers = strAnna + ';';
        fax.strReceipts = ",0;";
        const bool isForBoth =
            document.strName == "contract" || document.strName == "pricelist" || document.strName == "order";
        if (isForBoth) {
            fax.strDistribution = Accounts::NewID();
            fax.strUsers += strBen + ';';
            const QString read = ServerTime::TextOf(document.Time().addSecs(5400));
            fax.strReceipts = document.strName == "pricelist" ? ",0;" + read + ",1;" : ",0;,0;";
            GiveTo(strBen, fax);
        }
        if (document.strName == "plan")
            fax.strResender = strBen;
        if (document.strName == "invoice") {
            fax.strContacts = strKeller + ';';
            fax.strReceipts = ",0;,0;";
        }
        if (document.strName == "map") {
            fax.strTyped = "Village hall (01632 960 020);";
            fax.strReceipts = ",0;,0;";
        }
        GiveTo(strAnna, fax);
    }
}

void Office::AddSentFax(const QString &owner, Fax fax, int kind, int daysAgo, const QString &title,
                        const QStringList &contacts, const QStringList &typed)
{
    const QDate today = QDate::currentDate();
    const QDateTime time(today.addDays(-daysAgo), QTime(9, 40, 12));
    fax.strID = Accounts::NewID();
    fax.strOwner = owner;
    fax.lKind = kind;
    fax.strTitle = title;
    fax.strTime = ServerTime::TextOf(time);
    fax.strEndTime = kind == kindSending ? QString() : ServerTime::TextOf(time.addSecs(170));
    FaxHeader header;
    header.aContacts = contacts;
    header.aTyped = typed;
    OutgoingFaxes(objStore).Insert(fax, header, {today.addDays(1), QTime(8, 0)});
}

void Office::AddSent()
{
    const Document reply{"reply",
                         "Northgate Joinery",
                         "01632 960 180",
                         "Thursday suits us well",
                         0,
                         QTime(9, 40, 12),
                         FaxPaper::resFine,
                         FaxWriter::codGroup4,
                         1,
                         OnePage(DemoPages::DrawReply)};
    const Fax fax = MakeFax(objStore, reply);
    AddSentFax(strAnna, fax, kindSent, 24, "Delivery on the 14th", {strHarbour}, {});
    AddSentFax(strAnna, fax, kindSent, 10, "Complaint about lot 3", {strKeller}, {});
    AddSentFax(strAnna, fax, kindFailed, 6, "Offer for shelves", {}, {"\"School\"<01632 960 999>"});
    AddSentFax(strAnna, fax, kindSending, 0, "Thursday suits us well", {strHarbour}, {});
    AddSentFax(strBen, fax, kindSent, 4, "Order of sanding discs", {}, {"\"Brightwell\"<01632 960 240>"});
}

} // namespace

void DemoOffice::Seed(Store &store)
{
    if (store.accounts.Find("anna"))
        return;
    const auto changes = store.Change();
    Office office(store);
    office.AddPeople();
    office.AddAddresses();
    office.AddIncoming();
    office.AddSent();
    changes->Commit();
}
