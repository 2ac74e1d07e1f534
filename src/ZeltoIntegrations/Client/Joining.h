#pragma once

#include <Platform/Completion.h>
#include <ZeltoIntegrations/Client/Trampoline.h>

#include <cstddef>
#include <functional>
#include <memory>
#include <mutex>
#include <optional>
#include <tuple>
#include <utility>
#include <vector>

namespace zelto {

// Works on the items of a list one after the other, and completes with the list as it is then, or with the
// first failure, after which nothing more is done. Work may end before the call returns that began it.
template <class Item, class E> class InOrder : public std::enable_shared_from_this<InOrder<Item, E>> {
  public:
    // It keeps alive what it calls; the item lives until its completion was called.
    using Work = std::function<void(Item&, Completion<void, E>)>;

    static void run(std::vector<Item> items, Work work, Completion<std::vector<Item>, E> completion) {
        std::make_shared<InOrder>(std::move(items), std::move(work), std::move(completion))->next();
    }

    InOrder(std::vector<Item> items, Work work, Completion<std::vector<Item>, E> completion)
        : items_(std::move(items)), work_(std::move(work)), completion_(std::move(completion)) {}

  private:
    void next() {
        if (index_ == items_.size()) {
            return completion_(std::move(items_));
        }
        const auto self = this->shared_from_this();
        rounds_.run([&] { workOn(items_[index_++], self); });
    }

    void workOn(Item& item, const std::shared_ptr<InOrder>& self) {
        work_(item, [self](Result<void, E> result) {
            if (!result) {
                return self->completion_(failure(result.error()));
            }
            self->next();
        });
    }

    std::vector<Item> items_;
    const Work work_;
    Completion<std::vector<Item>, E> completion_;
    std::size_t index_ = 0;
    Trampoline rounds_;
};

// Collects the results of several requests that run side by side. Completes when each has ended: with all
// values, or with the first failure in the order of the types.
template <class E, class... Values> class Joined : public std::enable_shared_from_this<Joined<E, Values...>> {
  public:
    using All = std::tuple<Values...>;

    explicit Joined(Completion<All, E> completion) : completion_(std::move(completion)) {}

    // The completion of the request whose value has that place.
    template <std::size_t place> Completion<std::tuple_element_t<place, All>, E> part() {
        using Value = std::tuple_element_t<place, All>;
        return [self = this->shared_from_this()](Result<Value, E> result) {
            self->template take<place>(std::move(result));
        };
    }

  private:
    template <std::size_t place, class R> void take(R result) {
        {
            const std::lock_guard guard(lock_);
            std::get<place>(results_) = std::move(result);
            if (++count_ < sizeof...(Values)) {
                return;
            }
        }
        complete(std::index_sequence_for<Values...>());
    }

    template <std::size_t... places> void complete(std::index_sequence<places...>) {
        std::optional<E> error;
        ((error = error || *std::get<places>(results_) ? error
                                                       : std::optional(std::get<places>(results_)->error())),
         ...);
        if (error) {
            return completion_(failure(*error));
        }
        completion_(All(*std::move(*std::get<places>(results_))...));
    }

    std::mutex lock_;
    std::tuple<std::optional<Result<Values, E>>...> results_;
    std::size_t count_ = 0;
    Completion<All, E> completion_;
};

} // namespace zelto
