#pragma once

#include <Platform/Operations/OperationQueue.h>

namespace zelto {

using LVXOperationQueue = OperationQueue;

} // namespace zelto
