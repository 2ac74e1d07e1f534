#include <Platform/HTTP/HTTPHeaders.h>

#include <Platform/ASCII.h>

#include <algorithm>
#include <array>

namespace zelto {

namespace {

constexpr auto tokenCharacters = [] {
    std::array<bool, 256> table{};
    for (const char each : std::string_view("ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789"
                                            "!#$%&'*+-.^_`|~")) {
        table[static_cast<unsigned char>(each)] = true;
    }
    return table;
}();

// Typical number of fields; reserving for one after the other costs more.
constexpr std::size_t commonCount = 8;

template <class Fields> auto find(Fields& fields, std::string_view name) {
    return std::ranges::find_if(
        fields, [&](const HTTPHeaderField& field) { return equalIgnoringASCIICase(field.name, name); });
}

} // namespace

void HTTPHeaders::set(std::string name, std::string value) {
    const auto found = find(fields_, name);
    if (found == fields_.end()) {
        add(std::move(name), std::move(value));
    } else {
        *found = {std::move(name), std::move(value)};
    }
}

void HTTPHeaders::append(std::string name, std::string value, std::string_view separator) {
    const auto found = find(fields_, name);
    if (found == fields_.end()) {
        add(std::move(name), std::move(value));
    } else {
        found->name = std::move(name);
        found->value.append(separator).append(value);
    }
}

void HTTPHeaders::add(std::string name, std::string value) {
    if (fields_.empty()) {
        fields_.reserve(commonCount);
    }
    fields_.push_back({std::move(name), std::move(value)});
}

void HTTPHeaders::remove(std::string_view name) {
    const auto found = find(fields_, name);
    if (found != fields_.end()) {
        fields_.erase(found);
    }
}

std::optional<std::string> HTTPHeaders::value(std::string_view name) const {
    const auto found = find(fields_, name);
    return found == fields_.end() ? std::nullopt : std::optional(found->value);
}

bool HTTPHeaders::contains(std::string_view name) const {
    return find(fields_, name) != fields_.end();
}

const HTTPHeaderField* HTTPHeaders::firstInvalid() const {
    const auto found = std::ranges::find_if_not(fields_, [](const HTTPHeaderField& field) {
        return isValidHeaderName(field.name) && isValidHeaderValue(field.value);
    });
    return found == fields_.end() ? nullptr : &*found;
}

bool isTransportHeader(std::string_view name) {
    constexpr std::array<std::string_view, 9> names = {"Host",    "Connection", "Transfer-Encoding",
                                                       "TE",      "Trailer",    "Expect",
                                                       "Upgrade", "Keep-Alive", "Proxy-Connection"};
    return std::ranges::any_of(names, [&](auto each) { return equalIgnoringASCIICase(each, name); });
}

bool isValidHeaderValue(std::string_view value) {
    return std::ranges::none_of(value, [](char c) { return c == '\r' || c == '\n' || c == '\0'; });
}

bool isValidHeaderName(std::string_view name) {
    return !name.empty() &&
           std::ranges::all_of(name, [](char c) { return tokenCharacters[static_cast<unsigned char>(c)]; });
}

} // namespace zelto
