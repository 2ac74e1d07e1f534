#pragma once

// For sources only.

#include <string>

namespace zelto {

// What the listener answers with, head and body. All of it is fixed: nothing that came from outside is shown,
// and the content policy lets no other content in.

// The answer was taken.
const std::string& takenAnswer();
// All that is not waited for.
const std::string& refusedAnswer();
// For an answer that a service puts behind "#", which a browser keeps to itself: the page posts it, and takes
// it out of the history.
const std::string& fragmentAnswer();

} // namespace zelto
