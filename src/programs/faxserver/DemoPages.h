#pragma once

#include "FaxPaper.h"

#include <QDate>

/// The documents of the demonstration, each sheet as its sender drew it.
namespace DemoPages {

void DrawLetter(FaxPaper &paper, QDate date);
void DrawContract(FaxPaper &paper, QDate date, int page);
inline constexpr int lContractPages = 5;
void DrawNote(FaxPaper &paper, QDate date);

void DrawOrder(FaxPaper &paper, QDate date);
/// Page 1 holds the table, page 2 the terms.
void DrawInvoice(FaxPaper &paper, QDate date, int page);
inline constexpr int lInvoicePages = 2;
void DrawPriceList(FaxPaper &paper, QDate date, int page);
inline constexpr int lPriceListPages = 2;

void DrawMap(FaxPaper &paper, QDate date);
void DrawFloorPlan(FaxPaper &paper, QDate date);

/// What the office itself has sent.
void DrawReply(FaxPaper &paper, QDate date);

} // namespace DemoPages
