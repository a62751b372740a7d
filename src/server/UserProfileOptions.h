#pragma once

#include <QString>

#include <optional>

struct LoginEntry;

/// What the row of settings says about logging in.
struct StoredLogin
{
    bool bAutoLogin = false;
    bool bRememberPwd = false;
    QString strPwd; ///< the digest; untrusted
};

/// The row of settings in the profile's open database. All raise the database layer's errors.
namespace UserProfileOptions {

/// Empty when there is no row.
std::optional<StoredLogin> ReadLogin();
/// The stored digest alone.
std::optional<QString> ReadPwd();
/// Loads the settings into `Global()`, or the defaults when there is no row yet.
void Load();
/// Stores the login's check boxes, and the digest that goes with them. Makes the row at a first login.
void StoreLogin(const LoginEntry &entry);

} // namespace UserProfileOptions
