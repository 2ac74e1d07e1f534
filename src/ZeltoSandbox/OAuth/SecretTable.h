#pragma once

#include <Platform/Date.h>

#include <cstddef>
#include <deque>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <utility>

namespace zelto::sandbox {

// A new secret. All secrets of the sandbox have one prefix, by which they are masked wherever they appear.
std::string newSecret();
inline constexpr std::string_view secretPrefix = "zsb_";

// Values by texts that cannot be guessed, each with a lifetime. Beyond the limit the oldest is removed.
template <class T> class SecretTable {
  public:
    // `makeText` makes the texts: those of newSecret are masked wherever a request is shown.
    explicit SecretTable(std::size_t limit = 20'000, std::string (*makeText)() = newSecret)
        : limit_(limit), makeText_(makeText) {}

    std::string add(T value, std::optional<TimeInterval> lifetime) {
        auto secret = makeText_();
        const auto end = lifetime ? std::optional(Date::now() + *lifetime) : std::nullopt;
        entries_.emplace(secret, Entry{std::move(value), end});
        order_.push_back(secret);
        while (entries_.size() > limit_ || order_.size() > 2 * limit_) {
            entries_.erase(order_.front());
            order_.pop_front();
        }
        return secret;
    }

    // Null for one that is unknown or has expired.
    T* find(std::string_view secret) {
        auto* entry = entryOf(secret);
        return entry && !isExpired(*entry) ? &entry->value : nullptr;
    }

    // The same, but finds one that has expired too.
    T* findEvenExpired(std::string_view secret) {
        auto* entry = entryOf(secret);
        return entry ? &entry->value : nullptr;
    }

    // When it expires or has expired; nullopt for one that is unknown or never expires.
    std::optional<Date> endOf(std::string_view secret) const {
        const auto found = entries_.find(secret);
        return found == entries_.end() ? std::nullopt : found->second.end;
    }

    void erase(std::string_view secret) {
        if (const auto found = entries_.find(secret); found != entries_.end()) {
            entries_.erase(found);
        }
    }

    void expireIf(auto matches) {
        for (auto& [secret, entry] : entries_) {
            if (matches(entry.value)) {
                entry.end = Date::now();
            }
        }
    }

    void eraseIf(auto matches) {
        std::erase_if(entries_, [&](const auto& entry) { return matches(entry.second.value); });
    }

    std::size_t countIf(auto matches) const {
        std::size_t count = 0;
        for (const auto& [secret, entry] : entries_) {
            count += !isExpired(entry) && matches(entry.value) ? 1 : 0;
        }
        return count;
    }

    void clear() {
        entries_.clear();
        order_.clear();
    }

  private:
    struct Entry {
        T value;
        std::optional<Date> end;
    };

    static bool isExpired(const Entry& entry) { return entry.end && Date::now() >= *entry.end; }

    Entry* entryOf(std::string_view secret) {
        const auto found = entries_.find(secret);
        return found == entries_.end() ? nullptr : &found->second;
    }

    std::size_t limit_;
    std::string (*makeText_)();
    std::map<std::string, Entry, std::less<>> entries_;
    std::deque<std::string> order_;
};

} // namespace zelto::sandbox
