#include <ZeltoHost/Storage/RestorableKeyChain.h>

#include <ZeltoHost/Storage/WipeNotesInternal.h>
#include <ZeltoIntegrations/Accounts/ServiceCredentialsManager.h>

#include <Platform/EnumDescription.h>
#include <Platform/JSON/JSONRecordDescription.h>

#include <cmath>

namespace zelto {

ZELTO_DESCRIBE_ENUM(RestoreErrorCode, newerTokens, nothingKept, tooOld, keyChain);

// The value under a kept key.
struct KeptRecord {
    Date date; // of the wipe
    std::string record;
};

ZELTO_JSON_CODED(KeptRecord);
ZELTO_JSON_RECORD(KeptRecord, date, record);

namespace {

std::string keptKey(const std::string& key) {
    return "Wiped " + key;
}

// A flow's key goes with its flow.
bool isOfAccount(const std::string& key) {
    return key.starts_with(ServiceAccountCredentials::forIdentifier("").serviceCredentialsKey) &&
           !ServiceAccountCredentials::isFlowKey(key);
}

// Also when the clock was set back meanwhile, which must not keep it longer.
bool isTooOld(Date date) {
    return !(std::abs((Date::now() - date).count()) <= RestorableKeyChain::keptFor.count());
}

Result<std::optional<KeptRecord>, KeyChainError> keptRecord(LVXKeyChainStore& store, const std::string& key) {
    const auto value = store.read(keptKey(key));
    if (!value) {
        return failure(value.error());
    }
    auto kept = *value ? JSONDecoder().decode<KeptRecord>(viewOf(**value)) : failure(DecodingError());
    return kept ? std::optional(*std::move(kept)) : std::nullopt;
}

Result<void, RestoreError> refused(RestoreErrorCode code, std::string message = {}) {
    return failure(RestoreError{code, std::move(message)});
}

} // namespace

RestorableKeyChain::RestorableKeyChain(std::shared_ptr<LVXKeyChainStore> store, std::string name,
                                       std::filesystem::path dataDirectory)
    : store_(std::move(store)), name_(std::move(name)), dataDirectory_(std::move(dataDirectory)) {}

Result<std::optional<Data>, KeyChainError> RestorableKeyChain::read(const std::string& key) {
    return store_->read(key);
}

Result<void, KeyChainError> RestorableKeyChain::write(const std::string& key, const Data& value) {
    if (!isOfAccount(key)) {
        return store_->write(key, value);
    }
    const bool hasTokens = ServiceCredentialsManager::holdsTokens(value);
    bool isWipe = false;
    if (!hasTokens) {
        const auto before = store_->read(key);
        isWipe = before && *before && ServiceCredentialsManager::holdsTokens(**before);
        if (isWipe) {
            keep(key, **before);
        }
    }
    auto written = store_->write(key, value);
    // A record that was not replaced needs no copy.
    if (written ? hasTokens : isWipe) {
        (void)forget(key);
    }
    return written;
}

Result<bool, KeyChainError> RestorableKeyChain::erase(const std::string& key) {
    auto erased = store_->erase(key);
    if (erased && isOfAccount(key)) {
        if (const auto forgotten = forget(key); !forgotten) {
            return failure(forgotten.error());
        }
    }
    return erased;
}

void RestorableKeyChain::keep(const std::string& key, const Data& record) {
    constexpr auto function = "keep(key:record:)";
    const WipeNotes notes(dataDirectory_);
    const auto lock = notes.lock();
    if (!lock) {
        return lvxLogWarn(lock.error().message(), function);
    }
    const auto date = Date::now();
    const auto text = JSONEncoder().encode(KeptRecord{date, std::string(viewOf(record))});
    // Noted first: what is kept without a note would never be erased.
    const auto noted = text ? notes.write({name_, key, date}) : Result<void, StorageError>();
    if (!text || !noted) {
        return lvxLogWarn(text ? noted.error().message() : text.error().message(), function);
    }
    if (!store_->set(dataOf(*text), keptKey(key))) {
        return notes.remove(name_, key);
    }
    const std::lock_guard guard(lock_);
    keptKeys_.insert(key);
}

Result<void, KeyChainError> RestorableKeyChain::forget(const std::string& key) {
    const WipeNotes notes(dataDirectory_);
    if (!notes.has(name_, key)) {
        return {};
    }
    const auto lock = notes.lock();
    if (!lock) {
        return failure(KeyChainError{KeyChainErrorKind::ioError, lock.error().message()});
    }
    if (const auto erased = store_->erase(keptKey(key)); !erased) {
        return failure(erased.error());
    }
    notes.remove(name_, key);
    const std::lock_guard guard(lock_);
    keptKeys_.erase(key);
    return {};
}

Result<std::optional<Date>, KeyChainError> RestorableKeyChain::wipeDate(const std::string& key) {
    const auto present = store_->read(key);
    if (!present) {
        return failure(present.error());
    }
    if (*present && ServiceCredentialsManager::holdsTokens(**present)) {
        return std::nullopt;
    }
    const auto kept = keptRecord(*store_, key);
    if (!kept) {
        return failure(kept.error());
    }
    return *kept && !isTooOld((*kept)->date) ? std::optional((*kept)->date) : std::nullopt;
}

Result<void, RestoreError> RestorableKeyChain::restore(const std::string& key) {
    const auto present = store_->read(key);
    if (!present) {
        return refused(RestoreErrorCode::keyChain, present.error().message);
    }
    if (*present && ServiceCredentialsManager::holdsTokens(**present)) {
        return refused(RestoreErrorCode::newerTokens);
    }
    return putBack(key);
}

Result<void, RestoreError> RestorableKeyChain::putBack(const std::string& key) {
    const auto kept = keptRecord(*store_, key);
    if (!kept) {
        return refused(RestoreErrorCode::keyChain, kept.error().message);
    }
    if (!*kept) {
        return refused(RestoreErrorCode::nothingKept);
    }
    if (isTooOld((*kept)->date)) {
        const auto forgotten = forget(key);
        return forgotten ? refused(RestoreErrorCode::tooOld)
                         : refused(RestoreErrorCode::keyChain, forgotten.error().message);
    }
    const auto written = store_->write(key, dataOf((*kept)->record));
    if (!written) {
        return refused(RestoreErrorCode::keyChain, written.error().message);
    }
    // If this fails, what is left is erased when it is old.
    (void)forget(key);
    return {};
}

bool RestorableKeyChain::hasKept(const std::string& key) const {
    const std::lock_guard guard(lock_);
    return keptKeys_.contains(key);
}

void RestorableKeyChain::eraseOld(const std::filesystem::path& dataDirectory, const StoreNamed& storeNamed) {
    const WipeNotes notes(dataDirectory);
    if (notes.all().empty()) {
        return;
    }
    const auto lock = notes.lock();
    if (!lock) {
        return;
    }
    // Read again: what was old a moment ago may have been kept anew.
    for (const auto& note : notes.all()) {
        const auto store = isTooOld(note.date) ? storeNamed(note.keyChain) : nullptr;
        if (store && store->erase(keptKey(note.key))) {
            notes.remove(note.keyChain, note.key);
        }
    }
}

} // namespace zelto
