#pragma once

// For the transport alone: libcurl as a whole.

#include <Platform/HTTP/URLError.h>

#include <curl/curl.h>

#include <string_view>

namespace zelto {

// Sets libcurl up, once in the process, without the key log that the environment may ask for.
void setUpCurl();

// The error in words, with whom it was and why.
URLError errorOf(URLErrorCode code, std::string_view host, std::string_view reason = {});

// What a transfer's result means when nothing of our own ended it. `detail` is libcurl's own text. A request
// that was sent once may have been carried out, so that what kept it from being sent again is a connection
// lost.
URLError errorOf(CURLcode code, bool wasSent, std::string_view host, std::string_view detail);

} // namespace zelto
