#pragma once

#include "base/Outcome.h"
#include "commandline/CommandLine.h"

#include <ZeltoHost/SignIn/SignIn.h>

#include <stop_token>

namespace zelto::cli {

// What Ctrl-C leaves of a sign-in.
Failure canceledSignIn();

// Whether the options of a sign-in in the browser go together.
Outcome<void> checkSignInOptions(const Invocation& invocation);

// Signs in at the service in the user's browser; blocks until that has ended. What the user must know and do
// meanwhile goes to standard error.
Outcome<SignInToken> signInByBrowser(const Invocation& invocation, const SignInService& service,
                                     const std::stop_token& stop);

} // namespace zelto::cli
