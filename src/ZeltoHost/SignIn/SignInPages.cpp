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

constexpr std::string_view takenText =
    "zelto has the response. This page can be closed; the terminal shows how it goes on.";
constexpr std::string_view refusedText =
    "This is not the response that zelto waits for. The terminal has the right address.";

std::string page(const std::string& content) {
    return "<!DOCTYPE html>\n<html lang=\"en\"><head><meta charset=\"utf-8\"><title>zelto</title></head>\n"
           "<body>" +
           content + "</body></html>\n";
}

std::string paragraph(std::string_view text) {
    return "<p>" + std::string(text) + "</p>";
}

std::string hiddenParagraph(std::string_view id, std::string_view text) {
    return "<p id=\"" + std::string(id) + "\" hidden>" + std::string(text) + "</p>";
}

std::string httpResponse(std::string_view status, const std::string& allowedContent,
                         const std::string& body) {
    return "HTTP/1.1 " + std::string(status) +
           "\r\n"
           "Content-Type: text/html; charset=utf-8\r\n"
           "Content-Length: " +
           std::to_string(body.size()) +
           "\r\n"
           "Content-Security-Policy: default-src 'none'; " +
           allowedContent +
           "base-uri 'none'; form-action 'none'; frame-ancestors 'none'\r\n"
           "X-Content-Type-Options: nosniff\r\n"
           "Referrer-Policy: no-referrer\r\n"
           "Cache-Control: no-store\r\n"
           "Connection: close\r\n\r\n" +
           body;
}

} // namespace

const std::string& takenResponse() {
    static const auto& whole = neverDestroyed(httpResponse("200 OK", "", page(paragraph(takenText))));
    return whole;
}

const std::string& refusedResponse() {
    static const auto& whole =
        neverDestroyed(httpResponse("400 Bad Request", "", page(paragraph(refusedText))));
    return whole;
}

const std::string& fragmentResponse() {
    static const auto& whole = neverDestroyed(httpResponse(
        "200 OK", "script-src 'sha256-" + base64Encoded(viewOf(sha256(script))) + "'; connect-src 'self'; ",
        page(hiddenParagraph("taken", takenText) + hiddenParagraph("refused", refusedText) + "<noscript>" +
             paragraph("Without scripts this page cannot hand on the response. Paste this page's whole "
                       "address into the terminal.") +
             "</noscript><script>" + std::string(script) + "</script>")));
    return whole;
}

} // namespace zelto
