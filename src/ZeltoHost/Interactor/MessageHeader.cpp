#include <Platform/DateFormatter.h>
#include <ZeltoHost/HTML/PlainText.h>
#include <ZeltoHost/Interactor/MessageHeader.h>

#include <Platform/ASCII.h>
#include <Platform/NeverDestroyed.h>

#include <array>

namespace zelto {

namespace {

using Address = IntegrationHeaderComponents::Address;

std::string domainOf(std::string_view address) {
    const auto at = address.rfind('@');
    return toASCIILower(at == std::string_view::npos ? address : address.substr(at + 1));
}

bool isOfDomain(const IntegrationsInteractorAddress& address, const std::string& domain) {
    const auto own = domainOf(address.email);
    return own == domain || own.ends_with("." + domain);
}

std::optional<std::vector<IntegrationsInteractorAddress>>
outside(std::optional<std::vector<IntegrationsInteractorAddress>> addresses, const std::string& domain) {
    if (addresses) {
        std::erase_if(*addresses, [&](const auto& each) { return isOfDomain(each, domain); });
    }
    return addresses && !addresses->empty() ? std::move(addresses) : std::nullopt;
}

// Characters that change the direction of all text behind them: in a name, they could write an address
// backwards.
std::string withoutDirections(std::string text) {
    constexpr std::array<std::string_view, 9> directions{"\u202A", "\u202B", "\u202C", "\u202D", "\u202E",
                                                         "\u2066", "\u2067", "\u2068", "\u2069"};
    for (const auto direction : directions) {
        for (auto at = text.find(direction); at != std::string::npos; at = text.find(direction, at)) {
            text.erase(at, direction.size());
        }
    }
    return text;
}

std::string shown(const std::string& text) {
    return htmlEscaped(withoutDirections(text));
}

std::string written(const Address& address) {
    if (const auto* nobody = std::get_if<Address::NoSender>(&address.value)) {
        return "<i>" + htmlEscaped(nobody->text) + "</i>";
    }
    const auto& sender = std::get<Address::Sender>(address.value).address;
    const auto email = shown(sender.email);
    return sender.name ? shown(*sender.name) + " &lt;" + email + "&gt;" : email;
}

// A label stands beside the first line of what it names.
std::string row(const std::string& label, const std::string& html) {
    return "<tr><td style=\"vertical-align:top;white-space:nowrap;padding:1px 12px 3px 0\"><b>" +
           htmlEscaped(label) + "</b></td><td style=\"width:100%;vertical-align:top;padding:1px 0 3px 0\">" +
           html + "</td></tr>\n";
}

// One that is longer is broken where it has to be.
constexpr std::size_t unbrokenLength = 80;

// Lines of many addresses end between two of them.
std::string list(const std::vector<Address>& addresses) {
    std::string html;
    for (std::size_t index = 0; index < addresses.size(); ++index) {
        const auto address = written(addresses[index]) + (index + 1 == addresses.size() ? "" : ",");
        html += index == 0 ? "" : " ";
        html += address.size() > unbrokenLength ? address
                                                : "<span style=\"white-space:nowrap\">" + address + "</span>";
    }
    return html;
}

} // namespace

IntegrationHeaderComponents::Component<std::vector<Address>>
headerLine(std::string label, const std::vector<IntegrationsInteractorAddress>& addresses) {
    std::vector<Address> line;
    line.reserve(addresses.size());
    for (const auto& each : addresses) {
        line.push_back(Address::sender({each.displayName, each.email}));
    }
    return {std::move(label), std::move(line)};
}

std::string headerDate(std::optional<Date> date, const std::optional<std::string>& timeZone) {
    static constexpr std::string_view pattern = "d MMMM yyyy, HH:mm z";
    if (!date) {
        return {};
    }
    if (timeZone) {
        return DateFormatter(pattern, "en_US", timeZone).string(*date);
    }
    static const auto& local = neverDestroyed(DateFormatter(pattern, "en_US")); // creating one is slow
    return local.string(*date);
}

std::string headerHTML(const IntegrationHeaderComponents& header, const std::string& subjectLabel,
                       const std::string& subject) {
    std::string html =
        "<table style=\"width:100%;border-collapse:collapse;font-family:sans-serif;font-size:13px\">\n";
    for (const auto& line : header.sendersInfo) {
        html += row(line.text, list(line.value));
    }
    if (!header.date.value.empty()) {
        html += row(header.date.text, htmlEscaped(header.date.value));
    }
    if (!subject.empty()) {
        html += row(subjectLabel, shown(subject));
    }
    return html + "</table>\n";
}

IntegrationsInteractorAddresses externalOf(const IntegrationsInteractorAddresses& all,
                                           const std::optional<std::string>& userAddress) {
    const auto domain = domainOf(userAddress.value_or(""));
    if (domain.empty()) {
        return all;
    }
    IntegrationsInteractorAddresses external;
    external.from = all.from && !isOfDomain(*all.from, domain) ? all.from : std::nullopt;
    external.to = outside(all.to, domain);
    external.cc = outside(all.cc, domain);
    external.bcc = outside(all.bcc, domain);
    return external;
}

} // namespace zelto
