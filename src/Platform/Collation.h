#pragma once

#include <cstddef>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include <algorithm>

namespace zelto {

// The order of names in a language, without regard to case (ICU's collation). Any thread.
class Collation {
  public:
    // Without a locale ("sv"), the environment's. One without a language of its own ("C") has the order that
    // most languages share.
    explicit Collation(std::optional<std::string> locale = std::nullopt);

    // Names are in the order of their keys. Names that differ in case alone have the same key.
    std::string key(std::string_view name) const;

  private:
    class Collator;
    std::shared_ptr<const Collator> collator_;
};

// By the names that the items have there; items of the same name stay in their order.
template <class Item>
std::vector<Item> sortedByName(std::vector<Item> items, std::string Item::*name,
                               const Collation& collation = Collation()) {
    std::vector<std::pair<std::string, std::size_t>> order;
    order.reserve(items.size());
    for (std::size_t place = 0; place < items.size(); ++place) {
        order.emplace_back(collation.key(items[place].*name), place);
    }
    std::ranges::sort(order);
    std::vector<Item> sorted;
    sorted.reserve(items.size());
    for (const auto& each : order) {
        sorted.push_back(std::move(items[each.second]));
    }
    return sorted;
}

} // namespace zelto
