#pragma once

namespace zelto {

// From now on the system gives this process no thread more; false if that cannot be arranged. For a process
// of its own, since nothing ends it.
bool refuseThreads();

} // namespace zelto
