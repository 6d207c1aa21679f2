// From the application's delegate, which the system tells, to the claim on the session, which answers.
#pragma once

namespace ns {

/// The person started the running application once more, from the Finder, Spotlight or with `open`.
void reopen();

}  // namespace ns
