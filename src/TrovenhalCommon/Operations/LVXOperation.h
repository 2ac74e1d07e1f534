#pragma once

#include <Platform/Operations/Operation.h>

namespace zelto {

using LVXOperation = Operation;

} // namespace zelto
