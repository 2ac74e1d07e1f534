#include <Platform/DateFormatter.h>
#include <ZeltoHost/HTML/PlainText.h>
#include <ZeltoHost/Interactor/MessageHeader.h>

#include <Platform/ASCII.h>
#include <Platform/NeverDestroyed.h>

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

std::string written(const Address& address) {
    if (const auto* nobody = std::get_if<Address::NoSender>(&address.value)) {
        return "<i>" + htmlEscaped(nobody->text) + "</i>";
    }
    const auto& sender = std::get<Address::Sender>(address.value).address;
    const auto email = htmlEscaped(sender.email);
    return sender.name ? htmlEscaped(*sender.name) + " &lt;" + email + "&gt;" : email;
}

std::string row(const std::string& label, const std::string& html) {
    return "<tr><td><b>" + htmlEscaped(label) + "</b></td><td>" + html + "</td></tr>\n";
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
    std::string html = "<table>\n";
    for (const auto& line : header.sendersInfo) {
        std::string addresses;
        for (const auto& each : line.value) {
            addresses += (addresses.empty() ? "" : ", ") + written(each);
        }
        html += row(line.text, addresses);
    }
    if (!header.date.value.empty()) {
        html += row(header.date.text, htmlEscaped(header.date.value));
    }
    if (!subject.empty()) {
        html += row(subjectLabel, htmlEscaped(subject));
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
