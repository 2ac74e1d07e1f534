#pragma once

// Only for the sources of the logger.

#include <bitset>
#include <cstdint>
#include <memory>
#include <span>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace zelto {

struct TextRange {
    std::size_t begin = 0;
    std::size_t end = 0;
};

// One secret in all forms that are searched for; wiped when it is destroyed.
class SecretForms {
  public:
    explicit SecretForms(std::string_view secret);
    ~SecretForms();
    SecretForms(const SecretForms&) = delete;
    SecretForms& operator=(const SecretForms&) = delete;

    struct Form {
        std::string text;
        bool base64 = false; // its outer characters contain bits of the neighbours
    };

    std::span<const Form> forms() const { return forms_; }

  private:
    void add(std::string text, bool base64);

    std::vector<Form> forms_;
};

// Finds all forms of some hundred secrets in one pass: candidates by a hash of their first bytes, which are
// then compared. Of a form longer than `comparedLength` only that much is compared, which also masks a secret
// that was cut, and keeps the time linear.
class SecretIndex {
  public:
    using Secrets = std::vector<std::shared_ptr<const SecretForms>>;

    explicit SecretIndex(Secrets secrets);

    bool empty() const { return secrets_.empty(); }

    void find(std::string_view text, std::vector<TextRange>& ranges) const;

  private:
    static constexpr std::size_t prefixLength = 6;
    static constexpr std::size_t comparedLength = 64;

    // The offset at which the search may continue.
    std::size_t findAt(std::string_view text, std::size_t at, std::uint64_t prefix,
                       std::vector<TextRange>& ranges) const;
    std::size_t matchedLength(std::string_view remaining, const SecretForms::Form& form) const;

    Secrets secrets_;
    std::bitset<1 << 16> filter_;
    std::unordered_map<std::uint64_t, std::vector<const SecretForms::Form*>> byPrefix_;
};

// The index of all secrets that are currently registered.
std::shared_ptr<const SecretIndex> currentSecretIndex();

} // namespace zelto
