#include "DemoPages.h"
#include "Handwriting.h"

#include <QPainterPath>
#include <QRandomGenerator>

namespace {

constexpr int lMargin = FaxPaper::lMargin;
constexpr int lRight = FaxPaper::lWidth - FaxPaper::lMargin;
const QString strLongDate = "d MMMM yyyy";

/// A signature: a fast line that nobody can read, but for its first letter.
void Sign(FaxPaper &paper, int x, int y, quint32 seed, const QString &name)
{
    QRandomGenerator hand(seed);
    QPainter &painter = paper.Painter();
    const int end = Handwriting::Write(painter, hand, x, y, 46, name, 6);
    QPainterPath flourish(QPointF(x - 20, y + 26));
    flourish.cubicTo(x + 120, y + 52, end - 120, y - 8, end + 70, y + 22);
    painter.drawPath(flourish);
}

struct Clause
{
    QString strHead;
    QString strText;
};

const QList<QList<Clause>> &ContractPages()
{
    static const QList<QList<Clause>> pages{
        {{"1. The Premises", "The Landlord lets and the Tenant takes the workshop known as Unit 7, Northgate "
                             "Yard, being 243 square "
                             "metres on the ground floor together with the loading bay and two parking "
                             "spaces shown edged in black "
                             "on the attached plan."},
         {"2. The Term",
          "The letting is for a term of three years beginning on the first day of next month. Either party "
          "may "
          "end it after eighteen months by giving not less than three months' notice in writing."},
         {"3. The Rent", "The yearly rent is 14,400.00, payable in equal monthly instalments in advance on "
                         "the first working "
                         "day of each month by standing order to the account named in the Schedule."}},
        {{"4. Services and Insurance", "The Tenant pays a fair proportion of the cost of lighting and "
                                       "cleaning the common yard, and repays "
                                       "on demand the premium which the Landlord pays to insure the building "
                                       "against fire, storm and flood."},
         {"5. Repair", "The Tenant keeps the interior in the condition recorded by the photographs taken at "
                       "the start of the "
                       "term. The Landlord keeps the roof, the main walls and the drains in repair and "
                       "answers a report of a "
                       "defect within five working days."},
         {"6. Machines", "Woodworking machines may be installed if they are bolted to the floor, connected "
                         "to the extraction "
                         "system and not run between eight in the evening and seven in the morning."},
         {"7. Alterations",
          "No wall may be moved and no opening made without consent in writing, which is not to be withheld "
          "unreasonably. Shelving and partitions that can be removed without damage need no consent."}},
        {{"8. Access", "The Landlord may enter to inspect or repair after giving two working days' notice, "
                       "and at once when "
                       "there is danger to persons or to the building."},
         {"9. Subletting",
          "The Tenant does not assign or share the premises, except that one bench place may be lent to an "
          "apprentice or a visiting craftsman."},
         {"10. Interruption", "If the premises cannot be used because of a risk that is insured, the rent is "
                              "suspended until they "
                              "can be used again, or for twelve months, whichever is shorter."},
         {"11. The End of the Letting",
          "At the end of the term the Tenant removes machines and stock, makes good the holes left by bolts "
          "and "
          "brackets, and hands back all keys. Goods left for more than fourteen days may be sold."}},
        {{"12. Deposit",
          "A deposit of 2,400.00 is held in a separate account and is returned with interest within twenty "
          "working days after the keys were handed back, less the cost of damage agreed by both parties."},
         {"13. Disputes",
          "A dispute that the parties cannot settle within a month is put to a surveyor appointed by the "
          "Chamber of Commerce, whose decision binds both and whose fee is shared."},
         {"14. Notices",
          "Notices are given in writing. A notice sent by fax counts as given when the sender's machine "
          "reports "
          "that every page was received, if that is before five in the afternoon of a working day."}},
    };
    return pages;
}

void DrawSchedule(FaxPaper &paper, int y, QDate date)
{
    paper.Text(lMargin, y, 36, "Schedule", true);
    const QList<std::pair<QString, QString>> rows{
        {"Landlord", "Ashdown Property Management"},
        {"Tenant", "Northgate Joinery"},
        {"Premises", "Unit 7, Northgate Yard"},
        {"First payment", date.addMonths(1).toString("'1' MMMM yyyy")},
        {"Account", "Ashdown Client Account No. 20481177"}};
    y += 40;
    for (const auto &[name, value] : rows) {
        paper.Frame(lMargin, y, FaxPaper::lTextWidth, 66, 2);
        paper.Line(lMargin + 420, y, lMargin + 420, y + 66, 2);
        paper.Text(lMargin + 20, y + 44, 32, name, true);
        paper.Text(lMargin + 445, y + 44, 32, value);
        y += 66;
    }
    for (const int x : {lMargin, lMargin + 800}) {
        paper.Line(x, y + 420, x + 600, y + 420, 2);
        paper.Text(x, y + 462, 30, x == lMargin ? "For the Landlord" : "For the Tenant");
    }
    Sign(paper, lMargin + 40, y + 400, 11, "R. Ashdown");
    QRandomGenerator hand(5);
    Handwriting::Write(paper.Painter(), hand, lMargin + 860, y + 310, 26, "please sign here", 5);
    paper.Line(lMargin + 1010, y + 330, lMargin + 960, y + 400, 5);
    paper.Line(lMargin + 960, y + 400, lMargin + 992, y + 380, 5);
    paper.Line(lMargin + 960, y + 400, lMargin + 964, y + 362, 5);
}

} // namespace

void DemoPages::DrawLetter(FaxPaper &paper, QDate date)
{
    paper.SetFamily("Liberation Serif");
    paper.Text(lMargin, 210, 72, "Harbour Freight", true);
    paper.Text(lMargin, 262, 32,
               "Pier Road 14  -  Dunmouth DM2 8QT  -  Telephone 01632 960 201  -  Fax 01632 960 202");
    paper.Line(lMargin, 290, lRight, 290, 5);
    paper.Text(lMargin, 400, 38, "Northgate Joinery");
    paper.Text(lMargin, 448, 38, "For the attention of Ms Anna Weber");
    paper.Text(lMargin, 496, 38, "Unit 7, Northgate Yard");
    paper.TextRight(lRight, 400, 38, date.toString(strLongDate));
    paper.Text(lMargin, 650, 40, "Your shipment of oak boards, our reference HF 20917", true);
    int y = 710;
    y = paper.Paragraph(y, 40, "Dear Ms Weber,");
    y = paper.Paragraph(
        y + 20, 40,
        "thank you for your call this morning. The container with your oak boards was unloaded on "
        "Tuesday and has passed customs without remarks. We have moved the two pallets into the "
        "covered store, where they stay dry and free of charge until the end of next week.");
    y = paper.Paragraph(
        y + 20, 40,
        "Our driver can be at Northgate Yard on Thursday between eight and ten in the morning. "
        "Please see that the loading bay is clear: the lorry is nine metres long and carries no "
        "crane, so a fork-lift for 1.5 tonnes is needed at your end.");
    y = paper.Paragraph(
        y + 20, 40,
        "If Thursday does not suit you, a line by fax before noon tomorrow is enough, and we shall "
        "find another day. The papers that you asked for, the certificate of origin and the "
        "weigh note, travel with the driver.");
    y = paper.Paragraph(y + 20, 40, "With kind regards,");
    Sign(paper, lMargin + 20, y + 130, 3, "Jonas Petersen");
    paper.Text(lMargin, y + 230, 38, "Jonas Petersen");
    paper.Text(lMargin, y + 276, 34, "Dispatch");
    paper.Line(lMargin, 2170, lRight, 2170, 2);
    paper.TextCentred(FaxPaper::lWidth / 2, 2212, 28,
                      "Warehousing  -  Customs clearance  -  Coastal and inland haulage");
}

void DemoPages::DrawContract(FaxPaper &paper, QDate date, int page)
{
    paper.SetFamily("Liberation Serif");
    int y = 150;
    if (page == 1) {
        paper.TextCentred(FaxPaper::lWidth / 2, 230, 64, "LEASE OF BUSINESS PREMISES", true);
        paper.TextCentred(FaxPaper::lWidth / 2, 300, 36, "between");
        paper.TextCentred(FaxPaper::lWidth / 2, 360, 42, "Ashdown Property Management, the Landlord", true);
        paper.TextCentred(FaxPaper::lWidth / 2, 420, 36, "and");
        paper.TextCentred(FaxPaper::lWidth / 2, 480, 42, "Northgate Joinery, the Tenant", true);
        paper.TextCentred(FaxPaper::lWidth / 2, 560, 36, "Draft of " + date.toString(strLongDate));
        paper.Line(lMargin + 300, 610, lRight - 300, 610, 3);
        y = 680;
    }
    if (page <= ContractPages().size()) {
        for (const Clause &clause : ContractPages()[page - 1]) {
            paper.Text(lMargin, y + 50, 48, clause.strHead, true);
            y = paper.Paragraph(y + 80, 47, clause.strText) + 44;
        }
    } else {
        DrawSchedule(paper, 230, date);
    }
    paper.TextCentred(FaxPaper::lWidth / 2, 2220, 30, QString("Page %1 of %2").arg(page).arg(lContractPages));
}

void DemoPages::DrawNote(FaxPaper &paper, QDate)
{
    QRandomGenerator hand(20);
    QPainter &painter = paper.Painter();
    painter.rotate(-1.2);
    const QStringList lines{"Anna,",
                            "the chairs are ready! All six,",
                            "seats woven, legs oiled.",
                            "I can bring them on Friday",
                            "after 3, or you send Ben with",
                            "the van - whatever is easier.",
                            "",
                            "One leg had a crack, so I made",
                            "a new one. Nobody will see it,",
                            "but look at it before you pay.",
                            "",
                            "Call me: 01632 960114",
                            "",
                            "Greetings from the workshop"};
    int y = 330;
    for (const QString &line : lines) {
        Handwriting::Write(painter, hand, 190 + hand.bounded(24), y, 36, line, 6);
        y += line.isEmpty() ? 64 : 122;
    }
    Sign(paper, 900, y + 60, 8, "Tomas");
    painter.setPen(QPen(Qt::black, 6, Qt::SolidLine, Qt::RoundCap));
    painter.drawLine(300, y + 10, 300, y + 130); // a chair
    painter.drawLine(300, y + 80, 390, y + 84);
    painter.drawLine(390, y + 84, 388, y + 160);
    painter.drawLine(304, y + 130, 302, y + 164);
    painter.drawLine(300, y + 20, 316, y + 82);
}

void DemoPages::DrawReply(FaxPaper &paper, QDate date)
{
    paper.Text(lMargin, 210, 60, "Northgate Joinery", true);
    paper.Text(lMargin, 262, 32, "Unit 7, Northgate Yard  -  Fax 01632 960 180");
    paper.Line(lMargin, 290, lRight, 290, 8);
    paper.TextRight(lRight, 390, 36, date.toString(strLongDate));
    paper.Text(lMargin, 500, 44, "Thursday suits us well", true);
    int y = paper.Paragraph(570, 40, "Dear Mr Petersen,");
    y = paper.Paragraph(
        y + 20, 40,
        "the loading bay will be clear from half past seven on, and the neighbours lend us their "
        "fork-lift. Please ask the driver to come in by the north gate; the bridge at Mill Lane is "
        "closed to lorries.");
    y = paper.Paragraph(y + 20, 40, "Kind regards,");
    Sign(paper, lMargin + 20, y + 130, 17, "Anna Weber");
}
