#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>

namespace zelto {

// The process's live secrets, so that the log can mask them wherever they occur. Any thread.
class SecretRegistry {
  public:
    // Shorter secrets are not masked by value: they would occur in ordinary words.
    static constexpr std::size_t minimumLength = 6;

    // Keeps one secret masked as long as it lives; the registry's copies are wiped when it is destroyed.
    class [[nodiscard]] Registration {
      public:
        Registration() = default;
        ~Registration();
        Registration(Registration&& other) noexcept;
        Registration& operator=(Registration&& other) noexcept;

      private:
        friend class SecretRegistry;

        explicit Registration(std::uint64_t id) : id_(id) {}

        std::uint64_t id_ = 0; // 0 if nothing is registered
    };

    static SecretRegistry& shared();

    // The same secret may be added repeatedly; it stays masked until the last registration ends.
    Registration add(std::string_view secret);

  private:
    SecretRegistry() = default;
};

} // namespace zelto
