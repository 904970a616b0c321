#pragma once

#include <functional>
#include <string>

namespace tarn {

/// What a password check came to.
struct PasswordCheck {
    bool accepted = false;
    std::string logLine; ///< why it was refused, for the "info" log; empty without a reason, or memory to say it
};

/// Checks a password against the local user's entry in the shadow database. `password` gives the password, which NUL
/// ends, and is only called when there is a hash to compare it with. Any number of threads may check at once.
PasswordCheck checkPassword(const char *user, const std::function<const char *()> &password);

} // namespace tarn
