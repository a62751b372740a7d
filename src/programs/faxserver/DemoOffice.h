#pragma once

class Store;

/// A small lively office to look at: accounts "anna" and "ben" (the passwords are the names), addresses,
/// faxes that wait, and faxes of the past.
namespace DemoOffice {

/// Fills the store, unless it has been filled before. Raises `ServerError`.
void Seed(Store &store);

} // namespace DemoOffice
