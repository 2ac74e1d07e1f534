#pragma once

// For sources only: brings in POSIX.

#include <ZeltoHost/Process/ChildSetupInternal.h>

namespace zelto {

// Runs the program in a process of its own and waits for it. When the program ends, when SIGTERM comes and
// when the thread that has forked this process dies, everything that the program has started is killed,
// also what has left its process group or session: whoever loses its parent is handed to this process.
// At last `ChildSetup::report` gets how the program ended.
//
// To be called in a forked child, with all signals blocked. `ChildSetup::parent` is who has forked it.
[[noreturn]] void supervise(const ChildSetup& setup) noexcept;

} // namespace zelto
