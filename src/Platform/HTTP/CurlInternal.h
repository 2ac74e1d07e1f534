#pragma once

// Internal to the transport: libcurl's set-up and errors.

#include <Platform/HTTP/URLError.h>

#include <curl/curl.h>

#include <string_view>

namespace zelto {

// Sets libcurl up, once in the process, without the TLS key log that the environment may ask for.
void setUpCurl();

// The error with its text: which host, and why.
URLError errorOf(URLErrorCode code, std::string_view host, std::string_view reason = {});

// The error that a transfer's result stands for, unless the transport itself ended it. `detail` is libcurl's
// own text. If the request was sent once, it may have been carried out: whatever kept libcurl from sending it
// again is then reported as a lost connection.
URLError errorOf(CURLcode code, bool wasSent, std::string_view host, std::string_view detail);

} // namespace zelto
