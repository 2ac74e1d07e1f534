#pragma once

#include <Platform/Enum.h>
#include <Platform/URL.h>

#include <optional>
#include <string>
#include <variant>
#include <vector>

namespace zelto {

// One element of a body that has been split into styled text: a paragraph or a heading.
struct FormattedBodyComponent {
    enum class HeaderLevel : int { h1 = 1, h2, h3, h4, h5, h6 };

    struct TextPart {
        // A bit set. The bit of value 1 is not used.
        struct Modifiers {
            int rawValue = 0;

            static const Modifiers bold;
            static const Modifiers italic;
            static const Modifiers underline;

            constexpr bool contains(Modifiers other) const {
                return (rawValue & other.rawValue) == other.rawValue;
            }

            constexpr Modifiers operator|(Modifiers other) const { return {rawValue | other.rawValue}; }

            constexpr Modifiers operator&(Modifiers other) const { return {rawValue & other.rawValue}; }

            constexpr Modifiers operator-(Modifiers other) const { return {rawValue & ~other.rawValue}; }

            constexpr Modifiers& operator|=(Modifiers other) { return *this = *this | other; }

            constexpr bool operator==(const Modifiers&) const = default;
        };

        std::string value;
        Modifiers modifiers;
        std::optional<URL> link;

        bool operator==(const TextPart&) const = default;
    };

    struct Text {
        std::vector<TextPart> parts;
        bool operator==(const Text&) const = default;
    };

    struct Header {
        HeaderLevel level;
        std::vector<TextPart> parts;
        bool operator==(const Header&) const = default;
    };

    std::variant<Text, Header> value;

    static FormattedBodyComponent text(std::vector<TextPart> parts) { return {Text{std::move(parts)}}; }

    static FormattedBodyComponent header(HeaderLevel level, std::vector<TextPart> parts) {
        return {Header{level, std::move(parts)}};
    }

    bool operator==(const FormattedBodyComponent&) const = default;
};

ZELTO_ENUM(FormattedBodyComponent::HeaderLevel);

inline constexpr FormattedBodyComponent::TextPart::Modifiers
    FormattedBodyComponent::TextPart::Modifiers::bold{2};
inline constexpr FormattedBodyComponent::TextPart::Modifiers
    FormattedBodyComponent::TextPart::Modifiers::italic{4};
inline constexpr FormattedBodyComponent::TextPart::Modifiers
    FormattedBodyComponent::TextPart::Modifiers::underline{8};

} // namespace zelto
