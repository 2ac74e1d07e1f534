#pragma once

#include <string>
#include <string_view>

namespace zelto::sandbox {

// A document that looks like a mail's HTML, which need not be well-formed, and neither loads nor runs
// anything. Linear in the length of the HTML.
std::string shownMailHTML(std::string_view html);

} // namespace zelto::sandbox
