#include <Platform/UTF8.h>
#include <ZeltoHost/Mail/EncodedWords.h>
#include <ZeltoHost/Mail/GMimeInternal.h>
#include <ZeltoHost/Mail/MailHeaderText.h>

namespace zelto {

namespace {

// GMime recurses into a group at each colon; mails do not have more groups than this.
constexpr std::size_t maxGroups = 100;

std::optional<std::string> nonEmpty(std::string text) {
    return text.empty() ? std::nullopt : std::optional(std::move(text));
}

std::string withFewGroups(std::string value) {
    std::size_t groups = 0;
    for (auto& c : value) {
        if (c == ':' && ++groups > maxGroups) {
            c = ' ';
        }
        // Some programs separate addresses by semicolons.
        if (c == ';' && groups == 0) {
            c = ',';
        }
    }
    return value;
}

void collect(InternetAddressList* list, std::vector<IntegrationsInteractorAddress>& addresses) {
    const int count = internet_address_list_length(list);
    for (int index = 0; index < count; ++index) {
        auto* each = internet_address_list_get_address(list, index);
        if (INTERNET_ADDRESS_IS_GROUP(each)) {
            collect(internet_address_group_get_members(INTERNET_ADDRESS_GROUP(each)), addresses);
            continue;
        }
        auto address = makeAddress(textOf(internet_address_mailbox_get_addr(INTERNET_ADDRESS_MAILBOX(each))),
                                   textOf(internet_address_get_name(each)));
        if (!address.email.empty()) {
            addresses.push_back(std::move(address));
        }
    }
}

} // namespace

std::string onOneLine(std::string_view text) {
    const auto valid = repairedUTF8(text);
    std::string line;
    bool blank = false;
    for (std::string_view remaining = valid; !remaining.empty();) {
        const auto [c, length] = firstCodePoint(remaining);
        if (c <= ' ' || (c >= 0x7F && c < 0xA0) || c == 0x2028 || c == 0x2029) {
            blank = !line.empty();
        } else {
            line.append(blank ? " " : "").append(remaining.substr(0, length));
            blank = false;
        }
        remaining.remove_prefix(length);
    }
    return line;
}

std::string decodedText(std::string_view value) {
    const auto text = withUTF8Words(value);
    const GLibPointer<char> decoded(g_mime_utils_header_decode_text(gmimeOptions(), text.c_str()));
    return onOneLine(textOf(decoded.get()));
}

std::vector<IntegrationsInteractorAddress> decodedAddresses(std::string_view value) {
    std::vector<IntegrationsInteractorAddress> addresses;
    const auto text = withFewGroups(withUTF8Words(value));
    const GLibPointer<InternetAddressList> list(internet_address_list_parse(gmimeOptions(), text.c_str()));
    if (list) {
        collect(list.get(), addresses);
    }
    return addresses;
}

IntegrationsInteractorAddress makeAddress(std::string_view email, std::string_view displayName) {
    IntegrationsInteractorAddress address;
    address.email = onOneLine(email);
    address.displayName = nonEmpty(onOneLine(displayName));
    if (!address.displayName) {
        return address;
    }
    const std::string_view name = *address.displayName;
    if (const auto comma = name.find(','); comma != std::string_view::npos) {
        address.lastName = nonEmpty(onOneLine(name.substr(0, comma)));
        address.firstName = nonEmpty(onOneLine(name.substr(comma + 1)));
    } else if (const auto blank = name.rfind(' '); blank != std::string_view::npos) {
        address.firstName = std::string(name.substr(0, blank));
        address.lastName = std::string(name.substr(blank + 1));
    } else {
        address.firstName = std::string(name);
    }
    return address;
}

std::optional<Date> decodedDate(std::string_view value) {
    gmimeOptions();
    const std::string text(value);
    const GLibPointer<GDateTime> date(g_mime_utils_header_decode_date(text.c_str()));
    return date ? std::optional(Date::fromUnixSeconds(static_cast<double>(g_date_time_to_unix(date.get()))))
                : std::nullopt;
}

std::optional<std::string> decodedMessageID(std::string_view value) {
    gmimeOptions();
    const std::string text(value);
    const GLibPointer<char> decoded(g_mime_utils_decode_message_id(text.c_str()));
    auto id = onOneLine(textOf(decoded.get()));
    std::erase(id, ' ');
    return nonEmpty(std::move(id));
}

} // namespace zelto
