#pragma once

#include <ZeltoIntegrations/Export/CachedValue.h>
#include <ZeltoIntegrations/Export/NetworkExporter.h>

#include <optional>
#include <utility>

namespace zelto {

// What the exporters share that keep data of the account on the service (its user, its projects) in their
// cached values. A concrete exporter reads those values and fetches them.
template <class Data, class Base = NetworkExporter> class AccountDataExporter : public Base {
  public:
    using Base::Base;

    using FullData = Data;

    // What was loaded last, or with `force` from the service. Where a part of it was never loaded, no value,
    // or for some services what the service has.
    void loadData(bool force, Completion<std::optional<Data>, IntegrationLoadError> completion) {
        this->load(std::move(completion), &AccountDataExporter::loadDataStep, force);
    }

    // Loads from the service.
    void fetchServiceData(Completion<void, IntegrationLoadError> withCompletion) override {
        loadData(true, [completion = std::move(withCompletion)](const auto& loaded) mutable {
            completion(loaded ? Result<void, IntegrationLoadError>() : failure(loaded.error()));
        });
    }

  protected:
    using DataCompletion = Completion<std::optional<Data>, IntegrationLoadError>;

    // No value where a part of it was never loaded.
    virtual std::optional<Data> loadedData() const = 0;

    // Whether what was never loaded is loaded without `force` too.
    virtual bool loadsWhatIsMissing() const { return false; }

    // A step that loads from the service and sets the cached values.
    virtual void fetchData(StepRun& run, DataCompletion done) = 0;

    // The parts together as the data; no value where one is missing.
    template <class... Parts> static std::optional<Data> dataOf(std::optional<Parts>... parts) {
        if (!(parts && ...)) {
            return std::nullopt;
        }
        return Data{*std::move(parts)...};
    }

  private:
    void loadDataStep(StepRun& run, bool force, DataCompletion done) {
        if (!force) {
            auto kept = loadedData();
            if (kept || !loadsWhatIsMissing()) {
                return done(std::move(kept));
            }
        }
        fetchData(run, std::move(done));
    }
};

} // namespace zelto
