#include <ZeltoCommonLogger/LogRecord.h>

#include <Platform/EnumDescription.h>

namespace zelto {

ZELTO_DESCRIBE_ENUM(LogLevel, trace, info, warn, error);

} // namespace zelto
