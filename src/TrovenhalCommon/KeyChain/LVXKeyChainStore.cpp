#include <TrovenhalCommon/KeyChain/LVXKeyChainStore.h>

namespace zelto {

std::optional<Data> LVXKeyChainStore::data(const std::string& key) {
    auto value = read(key);
    if (!value) {
        lvxLogWarn(value.error().message, "data(forKey:)");
        return std::nullopt;
    }
    return std::move(*value);
}

bool LVXKeyChainStore::set(const Data& value, const std::string& key) {
    const auto written = write(key, value);
    if (!written) {
        lvxLogWarn(written.error().message, "set(_:forKey:)");
    }
    return written.has_value();
}

bool LVXKeyChainStore::remove(const std::string& key) {
    const auto erased = erase(key);
    if (!erased) {
        lvxLogWarn(erased.error().message, "remove(forKey:)");
        return false;
    }
    return *erased;
}

} // namespace zelto
