#pragma once

#include <optional>
#include <string>
#include <variant>
#include <vector>

namespace zelto {

// A mail's header block as labelled data. The labels are worded by the host.
struct IntegrationHeaderComponents {
    template <class T> struct Component {
        std::string text;
        T value;
        bool operator==(const Component&) const = default;
    };

    struct MailAddress {
        std::optional<std::string> name;
        std::string email;
        bool operator==(const MailAddress&) const = default;
    };

    struct Address {
        struct Sender {
            MailAddress address;
            bool operator==(const Sender&) const = default;
        };

        struct NoSender {
            std::string text;
            bool operator==(const NoSender&) const = default;
        };

        std::variant<Sender, NoSender> value;

        static Address sender(MailAddress address) { return {Sender{std::move(address)}}; }

        static Address noSender(std::string text) { return {NoSender{std::move(text)}}; }

        bool operator==(const Address&) const = default;
    };

    Component<std::string> date;
    std::vector<Component<std::vector<Address>>> sendersInfo;

    bool operator==(const IntegrationHeaderComponents&) const = default;
};

} // namespace zelto
