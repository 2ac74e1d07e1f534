#pragma once

namespace zelto {

// How JSON holds a Date: as seconds since 2001-01-01T00:00:00Z, a number; or as ISO 8601 text, written in
// whole seconds with "Z" and read in every usual form, fractions and offsets included.
enum class DateStrategy { default_, iso8601 };

} // namespace zelto
