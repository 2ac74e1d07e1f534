#include <TrovenhalCommon/KeyChain/KeyChainError.h>

#include <Platform/EnumDescription.h>

namespace zelto {

ZELTO_DESCRIBE_ENUM(KeyChainErrorKind, locked, unavailable, damaged, wrongPassphrase, denied, ioError);

} // namespace zelto
