#pragma once

#include <ZeltoIntegrations/Export/ServiceExporter.h>

#include <optional>

namespace zelto {

// A value that an exporter keeps in its account from one export to the next: a member of the exporter,
// declared in one line. Any thread.
template <class T> class CachedValue {
  public:
    CachedValue(ServiceExporter& exporter, const char* key) : exporter_(exporter), key_(key) {}

    CachedValue(const CachedValue&) = delete;
    CachedValue& operator=(const CachedValue&) = delete;

    std::optional<T> operator()() const { return exporter_.getCachedValue<T>(key_); }

    // Saves the account through the storage.
    void set(const std::optional<T>& value) { exporter_.setCachedValue(value, key_); }

  private:
    ServiceExporter& exporter_;
    const char* const key_;
};

} // namespace zelto
