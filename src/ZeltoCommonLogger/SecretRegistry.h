#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>

namespace zelto {

// The secrets that are alive in the process, so that the log can mask them wherever they turn up. Any thread.
class SecretRegistry {
  public:
    // Secrets of fewer bytes are not masked by value: they would turn up in ordinary words.
    static constexpr std::size_t minimumLength = 6;

    // Keeps one secret masked for as long as it lives; the registry's copies are wiped at its end.
    class [[nodiscard]] Registration {
      public:
        Registration() = default;
        ~Registration();
        Registration(Registration&& other) noexcept;
        Registration& operator=(Registration&& other) noexcept;

      private:
        friend class SecretRegistry;

        explicit Registration(std::uint64_t id) : id_(id) {}

        std::uint64_t id_ = 0; // 0: nothing registered
    };

    static SecretRegistry& shared();

    // The same secret may be added many times; it stays masked until the last registration ends.
    Registration add(std::string_view secret);

  private:
    SecretRegistry() = default;
};

} // namespace zelto
