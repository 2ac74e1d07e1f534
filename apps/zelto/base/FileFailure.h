#pragma once

#include "base/Outcome.h"

#include <Platform/FileError.h>

namespace zelto::cli {

inline Failure failureOf(const FileError& error) {
    return {std::string(nameOf(error.code)), error.message(), ""};
}

} // namespace zelto::cli
