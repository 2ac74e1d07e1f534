#pragma once

namespace zelto::cli {

// Writes a line about each request of the process into the log when it has ended: its method, host and path,
// the status or what went wrong, milliseconds and bytes.
void logTransfers();

} // namespace zelto::cli
