#pragma once

#include <Platform/Completion.h>
#include <ZeltoCommonLogger/Logger.h>
#include <ZeltoIntegrations/Client/ServiceClientError.h>
#include <ZeltoIntegrations/Client/Trampoline.h>

#include <functional>
#include <iterator>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <utility>
#include <vector>

namespace zelto {

// One page of a list, and what asks for the next one: the text of a page number, an offset, a cursor or
// a path, as the service has it. Without that it is the last page.
template <class Item> struct Page {
    std::vector<Item> items;
    std::optional<std::string> next;
};

// Asks for page after page and completes with all items in their order, or with the first failure. A list
// whose `next` repeats, or that has more than `maximumPageCount` pages, has no end; it is logged and
// completes with `dataParseError`. Pages may come before the call returns that asks for them, in any number.
template <class Item> class PageLoader : public std::enable_shared_from_this<PageLoader<Item>> {
  public:
    static constexpr std::size_t maximumPageCount = 20'000;

    using PageCompletion = Completion<Page<Item>, ServiceClientError>;

    // Asks for one page; the first one without a `next`. It keeps alive what it calls.
    using Fetch = std::function<void(const std::optional<std::string>& next, PageCompletion)>;

    static void load(Fetch fetch, Completion<std::vector<Item>, ServiceClientError> completion) {
        const auto loader = std::make_shared<PageLoader>(std::move(fetch), std::move(completion));
        loader->fetchNext();
    }

    PageLoader(Fetch fetch, Completion<std::vector<Item>, ServiceClientError> completion)
        : fetch_(std::move(fetch)), completion_(std::move(completion)) {}

  private:
    void fetchNext() {
        const auto self = this->shared_from_this();
        rounds_.run([&] { fetchPage(self); });
    }

    void fetchPage(const std::shared_ptr<PageLoader>& self) {
        const auto next = next_; // which the page may replace while it is asked for
        fetch_(next, [self](Result<Page<Item>, ServiceClientError> page) { self->take(std::move(page)); });
    }

    void take(Result<Page<Item>, ServiceClientError> page) {
        if (!page) {
            return completion_(failure(page.error()));
        }
        items_.insert(items_.end(), std::make_move_iterator(page->items.begin()),
                      std::make_move_iterator(page->items.end()));
        if (!page->next) {
            return completion_(std::move(items_));
        }
        if (!seen_.insert(*page->next).second || seen_.size() >= maximumPageCount) {
            Logger::shared().error("A list does not end: its pages repeat or are too many", "take(page:)");
            return completion_(failure(ServiceClientError::dataParseError));
        }
        next_ = std::move(page->next);
        fetchNext();
    }

    const Fetch fetch_;
    Completion<std::vector<Item>, ServiceClientError> completion_;
    std::vector<Item> items_;
    std::optional<std::string> next_;
    std::set<std::string> seen_;
    Trampoline rounds_;
};

} // namespace zelto
