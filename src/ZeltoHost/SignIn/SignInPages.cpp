#include <ZeltoHost/SignIn/SignInPagesInternal.h>

#include <Platform/Base64.h>
#include <Platform/Crypto/Digest.h>
#include <Platform/NeverDestroyed.h>

#include <string_view>

namespace zelto {

namespace {

constexpr std::string_view script =
    "const response=location.hash.slice(1)||location.search.slice(1);"
    "history.replaceState(null,'',location.pathname);"
    "const show=id=>document.getElementById(id).hidden=false;"
    "fetch(location.pathname,{method:'POST',body:new URLSearchParams(response)})"
    ".then(r=>show(r.ok?'taken':'refused'),()=>show('refused'));";

// The colours and shapes of the sandbox's consent page, which a person may have come from.
constexpr std::string_view style =
    ":root{color-scheme:light dark;font:16px/1.5 system-ui,sans-serif}"
    "body{margin:0;min-height:100vh;display:grid;place-items:center;background:Canvas;color:CanvasText}"
    "main{box-sizing:border-box;width:min(30rem,92vw);padding:1.5rem 2rem 2rem;border-radius:12px;"
    "border:1px solid color-mix(in srgb,CanvasText 20%,Canvas);overflow-wrap:anywhere}"
    "h1{font-size:1.3rem;margin:.6rem 0 1rem}"
    "p{margin:0}"
    ".program{font-weight:700}";

// What a person reads: a heading, and what it means for them.
struct Message {
    std::string_view heading;
    std::string_view text;
};

constexpr Message taken{"The response has arrived",
                        "This page can be closed; the terminal shows how it goes on."};
constexpr Message refused{"This is not the expected response",
                          "zelto goes on waiting; the terminal has the right address."};
constexpr Message unscripted{"The response cannot be read",
                             "Without scripts this page cannot hand it on. Paste this page's whole address "
                             "into the terminal."};

std::string page(const std::string& content) {
    return "<!DOCTYPE html>\n<html lang=\"en\"><head><meta charset=\"utf-8\">"
           "<meta name=\"viewport\" content=\"width=device-width\"><title>zelto</title><style>" +
           std::string(style) + "</style></head>\n<body><main><p class=\"program\">zelto</p>" + content +
           "</main></body></html>\n";
}

std::string shown(const Message& message) {
    return "<h1>" + std::string(message.heading) + "</h1><p>" + std::string(message.text) + "</p>";
}

std::string hidden(std::string_view id, const Message& message) {
    return "<div id=\"" + std::string(id) + "\" hidden>" + shown(message) + "</div>";
}

// "'sha256-…'": allows an element of that content alone.
std::string hashOf(std::string_view content) {
    return "'sha256-" + base64Encoded(viewOf(sha256(content))) + "'";
}

std::string httpResponse(std::string_view status, const std::string& allowedContent,
                         const std::string& body) {
    return "HTTP/1.1 " + std::string(status) +
           "\r\n"
           "Content-Type: text/html; charset=utf-8\r\n"
           "Content-Length: " +
           std::to_string(body.size()) +
           "\r\n"
           "Content-Security-Policy: default-src 'none'; style-src " +
           hashOf(style) + "; " + allowedContent +
           "base-uri 'none'; form-action 'none'; frame-ancestors 'none'\r\n"
           "X-Content-Type-Options: nosniff\r\n"
           "Referrer-Policy: no-referrer\r\n"
           "Cache-Control: no-store\r\n"
           "Connection: close\r\n\r\n" +
           body;
}

} // namespace

const std::string& takenResponse() {
    static const auto& whole = neverDestroyed(httpResponse("200 OK", "", page(shown(taken))));
    return whole;
}

const std::string& refusedResponse() {
    static const auto& whole = neverDestroyed(httpResponse("400 Bad Request", "", page(shown(refused))));
    return whole;
}

const std::string& fragmentResponse() {
    static const auto& whole = neverDestroyed(
        httpResponse("200 OK", "script-src " + hashOf(script) + "; connect-src 'self'; ",
                     page(hidden("taken", taken) + hidden("refused", refused) + "<noscript>" +
                          shown(unscripted) + "</noscript><script>" + std::string(script) + "</script>")));
    return whole;
}

} // namespace zelto
