#include <ZeltoSandbox/FileStore.h>

#include <Platform/FileNames.h>
#include <Platform/Numbers.h>
#include <Platform/PercentEncoding.h>

#include <algorithm>
#include <array>

namespace zelto::sandbox {

namespace {

// Types that a browser only draws. SVG is not among them: it may contain scripts.
constexpr std::array<std::string_view, 5> images = {"image/png", "image/jpeg", "image/gif", "image/webp",
                                                    "image/bmp"};

bool isText(std::string_view type) {
    return type.starts_with("text/") || type == "application/json" || type == "message/rfc822";
}

// The type that the file is served as; empty for one that is only saved.
std::string shownType(std::string_view type, const SpoolRange& content) {
    if (type == "application/pdf" && content.text(5) == "%PDF-") {
        return "application/pdf";
    }
    if (std::ranges::find(images, type) != images.end()) {
        return std::string(type);
    }
    return isText(type) ? "text/plain; charset=utf-8" : "";
}

// The quoted form has ASCII only; other characters are in the form of RFC 8187.
std::string disposition(bool inlined, const std::string& name) {
    std::string plain;
    for (const char c : name) {
        plain.push_back(c >= ' ' && c <= '~' && c != '"' && c != '\\' && c != '%' ? c : '_');
    }
    return std::string(inlined ? "inline" : "attachment") + "; filename=\"" + plain +
           "\"; filename*=UTF-8''" + percentEncodeBytes(name, AllowedCharacters::alphanumerics);
}

// With the styles that browsers add themselves around what they draw.
std::string_view policyOf(std::string_view type) {
    // The browser's PDF viewer, which runs in a process of its own, does not open in a sandboxed document.
    if (type == "application/pdf") {
        return "default-src 'none'; object-src 'self'; style-src 'unsafe-inline'";
    }
    return type.starts_with("image/") ? "default-src 'none'; style-src 'unsafe-inline'; sandbox"
                                      : "default-src 'none'; sandbox";
}

// Whatever the HTML is, the browser lets it load images of its own alone, and runs nothing of it.
SandboxResponse document(std::string html) {
    return SandboxResponse::html(std::move(html))
        .with("X-Frame-Options", "SAMEORIGIN")
        .with("Content-Security-Policy", "default-src 'none'; img-src data:; style-src 'unsafe-inline'; "
                                         "frame-ancestors 'self'; sandbox");
}

} // namespace

std::string FileStore::add(SpoolRange content, std::string name, std::string contentType) {
    const auto number = ++last_;
    files_[number] = {std::move(content), cleanedFileName(name, "file"), std::move(contentType)};
    return "/files/" + std::to_string(number);
}

std::string FileStore::addDocument(SpoolRange html, ShowHTML show) {
    const auto number = ++last_;
    files_[number] = {std::move(html), {}, "text/html", show};
    return "/files/" + std::to_string(number);
}

SandboxResponse FileStore::response(std::string_view path) const {
    const auto number = numberIn<std::uint64_t>(path);
    const auto found = number ? files_.find(*number) : files_.end();
    if (found == files_.end()) {
        return SandboxResponse::text("There is no such file.\n", 404);
    }
    const auto& file = found->second;
    if (file.show) {
        return document(file.show(file.content.text(static_cast<std::size_t>(file.content.size))));
    }
    const auto type = shownType(file.contentType, file.content);
    SandboxResponse response{.fields = {{"Content-Type", type.empty() ? "application/octet-stream" : type},
                                        {"Content-Disposition", disposition(!type.empty(), file.name)}},
                             .file = file.content};
    response.fields.push_back({"Content-Security-Policy", std::string(policyOf(type))});
    return response;
}

} // namespace zelto::sandbox
