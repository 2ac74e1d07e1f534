#pragma once

#include <string>
#include <string_view>

namespace zelto {

// Text of "format=flowed" (RFC 3676) with its soft line breaks undone. Quoted lines keep their ">".
std::string unfoldedFlowedText(std::string_view text, bool delSp);

} // namespace zelto
