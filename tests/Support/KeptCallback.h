#pragma once

#include <Support/Event.h>
#include <Support/FakeDataInteractor.h>
#include <Support/FakePlatformInteractor.h>

#include <atomic>
#include <functional>
#include <memory>
#include <string>
#include <utility>

namespace zelto {

// The first callback of one operation of the host, which the host keeps until it is called here. The
// operation is named as FakeDataInteractor names it, or "convert".
class KeptCallback {
  public:
    using Call = std::move_only_function<void()>;

    explicit KeptCallback(std::string operation) : operation_(std::move(operation)) {}

    static std::shared_ptr<KeptCallback> of(const std::string& operation, FakeDataInteractor& data,
                                            FakePlatformInteractor& interactor) {
        const auto kept = std::make_shared<KeptCallback>(operation);
        data.onCompletion = [kept](const std::string& called, Call call) {
            kept->keep(called, std::move(call));
        };
        interactor.makePdf = [kept, makePdf = interactor.makePdf](const auto& html, const auto& path,
                                                                  Callback<bool> done) {
            kept->keep("convert", [makePdf, html, path, done = std::move(done)]() mutable {
                makePdf(html, path, std::move(done));
            });
        };
        return kept;
    }

    // Until the host keeps it.
    void wait() const { kept_.wait(); }

    void call() { std::exchange(call_, nullptr)(); }

  private:
    void keep(const std::string& operation, Call call) {
        if (operation != operation_ || hasKept_.exchange(true)) {
            return call();
        }
        call_ = std::move(call);
        kept_.set();
    }

    const std::string operation_;
    std::atomic<bool> hasKept_ = false;
    Call call_;
    Event kept_;
};

} // namespace zelto
