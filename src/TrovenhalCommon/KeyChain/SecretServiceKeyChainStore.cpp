#include <TrovenhalCommon/KeyChain/SecretServiceKeyChainStore.h>

#include <TrovenhalCommon/KeyChain/GLibInternal.h>
#include <TrovenhalCommon/KeyChain/SecretBytesInternal.h>

#include <libsecret/secret.h>
#include <sodium.h>

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <iterator>
#include <vector>

namespace zelto {

namespace {

using SecretValuePtr = std::unique_ptr<SecretValue, GLibDeleter<secret_value_unref>>;
using Items = std::vector<GObjectPtr<SecretItem>>;

constexpr const char* busName = "org.freedesktop.secrets";
constexpr const char* directoryAttribute = "directory";
constexpr int base64Variant = sodium_base64_VARIANT_ORIGINAL;

const SecretSchema& schema() {
    static const SecretSchema all = {.name = "org.zelto.Integrations",
                                     .flags = SECRET_SCHEMA_NONE,
                                     .attributes = {{"application", SECRET_SCHEMA_ATTRIBUTE_STRING},
                                                    {"key", SECRET_SCHEMA_ATTRIBUTE_STRING},
                                                    {directoryAttribute, SECRET_SCHEMA_ATTRIBUTE_STRING},
                                                    {nullptr, SECRET_SCHEMA_ATTRIBUTE_STRING}},
                                     .reserved = 0,
                                     .reserved1 = nullptr,
                                     .reserved2 = nullptr,
                                     .reserved3 = nullptr,
                                     .reserved4 = nullptr,
                                     .reserved5 = nullptr,
                                     .reserved6 = nullptr,
                                     .reserved7 = nullptr};
    return all;
}

auto lockedError() {
    return failure(KeyChainError{KeyChainErrorKind::locked,
                                 "The desktop's key chain is locked. Unlock it and try again."});
}

auto unavailableError(const std::string& reason) {
    return failure(KeyChainError{KeyChainErrorKind::unavailable,
                                 "The desktop's key chain (Secret Service) is not available: " + reason});
}

bool isLockedError(const GError& error) {
    if (error.domain == SECRET_ERROR && error.code == SECRET_ERROR_IS_LOCKED) {
        return true;
    }
    const GStringPtr remote(g_dbus_error_get_remote_error(&error));
    return remote && std::string_view(remote.get()) == "org.freedesktop.Secret.Error.IsLocked";
}

// One use of the service. The proxies are created each time: nothing has to run a main loop that would keep
// older ones up to date, and a locked or restarted service is noticed at once.
class Session {
  public:
    Session(const std::string& application, const std::optional<SecretServiceOwner>& owner,
            std::chrono::milliseconds limit)
        : application_(application), owner_(owner), cancellable_(limit) {}

    // Opens the user's default collection, which must not be locked.
    Result<void, KeyChainError> open() {
        service_.reset(secret_service_open_sync(SECRET_TYPE_SERVICE, nullptr, SECRET_SERVICE_OPEN_SESSION,
                                                cancellable_.get(), error_.out()));
        if (!service_) {
            return failed();
        }
        collection_.reset(secret_collection_for_alias_sync(service_.get(), SECRET_COLLECTION_DEFAULT,
                                                           SECRET_COLLECTION_NONE, cancellable_.get(),
                                                           error_.out()));
        if (!collection_) {
            return error_.get() ? failed() : unavailableError("it has no default collection; make one.");
        }
        if (secret_collection_get_locked(collection_.get())) {
            return lockedError();
        }
        return {};
    }

    // The owner's items; all that are nobody's for a store without one.
    Result<Items, KeyChainError> find(const std::string& key, SecretSearchFlags flags) {
        return owner_ ? search(attributes(key), flags) : findNobodys(key, flags);
    }

    // The items that the owner may have made before it marked them.
    Result<Items, KeyChainError> findUnmarked(const std::string& key, SecretSearchFlags flags) {
        return owner_ && owner_->takesItemsOfNobody ? findNobodys(key, flags) : Items();
    }

    Result<void, KeyChainError> put(const std::string& key, const char* text, std::size_t length) {
        const SecretValuePtr value(secret_value_new(text, static_cast<gssize>(length), "text/plain"));
        if (!owner_) {
            // To replace by attributes would replace the item of an owner, which has the same ones and more.
            const auto present = findNobodys(key, SECRET_SEARCH_NONE);
            if (!present) {
                return failure(present.error());
            }
            if (!present->empty()) {
                return secret_item_set_secret_sync(present->front().get(), value.get(), cancellable_.get(),
                                                   error_.out())
                           ? Result<void, KeyChainError>()
                           : failed();
            }
        }
        return create(key, *value, owner_ ? SECRET_ITEM_CREATE_REPLACE : SECRET_ITEM_CREATE_NONE);
    }

    Result<void, KeyChainError> remove(SecretItem& item) {
        return secret_item_delete_sync(&item, cancellable_.get(), error_.out())
                   ? Result<void, KeyChainError>()
                   : failed();
    }

  private:
    GHashTablePtr attributesOfNobody(const std::string& key) const {
        return GHashTablePtr(secret_attributes_build(&schema(), "application", application_.c_str(), "key",
                                                     key.c_str(), nullptr));
    }

    GHashTablePtr attributes(const std::string& key) const {
        if (!owner_) {
            return attributesOfNobody(key);
        }
        return GHashTablePtr(secret_attributes_build(&schema(), "application", application_.c_str(), "key",
                                                     key.c_str(), directoryAttribute,
                                                     owner_->directory.c_str(), nullptr));
    }

    Result<void, KeyChainError> create(const std::string& key, SecretValue& value,
                                       SecretItemCreateFlags flags) {
        const GObjectPtr<SecretItem> item(secret_item_create_sync(collection_.get(), &schema(),
                                                                  attributes(key).get(), key.c_str(), &value,
                                                                  flags, cancellable_.get(), error_.out()));
        return item ? Result<void, KeyChainError>() : failed();
    }

    static bool isOwned(const GObjectPtr<SecretItem>& item) {
        const GHashTablePtr attributes(secret_item_get_attributes(item.get()));
        return attributes && g_hash_table_contains(attributes.get(), directoryAttribute);
    }

    Result<Items, KeyChainError> findNobodys(const std::string& key, SecretSearchFlags flags) {
        // The values of others are not asked for.
        auto items = search(attributesOfNobody(key), SECRET_SEARCH_NONE);
        if (!items) {
            return items;
        }
        std::erase_if(*items, isOwned);
        const bool loads = (flags & SECRET_SEARCH_LOAD_SECRETS) != 0;
        for (const auto& item : *items) {
            if (loads && !secret_item_load_secret_sync(item.get(), cancellable_.get(), error_.out())) {
                return failure(failed().error());
            }
        }
        return items;
    }

    Result<Items, KeyChainError> search(const GHashTablePtr& wanted, SecretSearchFlags flags) {
        GList* found = secret_collection_search_sync(
            collection_.get(), &schema(), wanted.get(),
            static_cast<SecretSearchFlags>(flags | SECRET_SEARCH_ALL), cancellable_.get(), error_.out());
        Items items;
        for (auto* each = found; each; each = each->next) {
            items.emplace_back(static_cast<SecretItem*>(each->data));
        }
        g_list_free(found);
        if (error_.get()) {
            return failure(failed().error());
        }
        return items;
    }

    // The error that the service's last error stands for.
    Result<void, KeyChainError> failed() const {
        if (cancellable_.isOver()) {
            return unavailableError("it does not respond, or waits for the user.");
        }
        if (!error_.get()) {
            return unavailableError("it gave no result.");
        }
        const auto& error = *error_.get();
        if (isLockedError(error)) {
            return lockedError();
        }
        if (g_error_matches(&error, G_DBUS_ERROR, G_DBUS_ERROR_ACCESS_DENIED)) {
            return failure(KeyChainError{KeyChainErrorKind::denied,
                                         std::string("The desktop's key chain refused: ") + error.message});
        }
        return unavailableError(error.message);
    }

    const std::string& application_;
    const std::optional<SecretServiceOwner>& owner_;
    TimedCancellable cancellable_;
    GErrorHolder error_;
    GObjectPtr<SecretService> service_;
    GObjectPtr<SecretCollection> collection_;
};

Result<void, KeyChainError> checkKey(const std::string& key) {
    if (key.find('\0') == std::string::npos &&
        g_utf8_validate(key.data(), static_cast<gssize>(key.size()), nullptr)) {
        return {};
    }
    return failure(KeyChainError{KeyChainErrorKind::ioError,
                                 "The desktop's key chain takes no key that holds NUL or is not UTF-8."});
}

std::optional<Data> decoded(std::string_view base64) {
    Data bytes(base64.size() / 4 * 3 + 3);
    std::size_t length = 0;
    if (sodium_base642bin(bytes.data(), bytes.size(), base64.data(), base64.size(), nullptr, &length, nullptr,
                          base64Variant) != 0) {
        return std::nullopt;
    }
    bytes.resize(length);
    return bytes;
}

Result<std::optional<Data>, KeyChainError> valueOf(SecretItem& item) {
    if (secret_item_get_locked(&item)) {
        return lockedError();
    }
    const SecretValuePtr secret(secret_item_get_secret(&item));
    if (!secret) {
        return unavailableError("it does not give out a value that it holds.");
    }
    gsize length = 0;
    const char* text = secret_value_get(secret.get(), &length);
    auto bytes = decoded({text, length});
    if (!bytes) {
        return failure(
            KeyChainError{KeyChainErrorKind::damaged,
                          "The desktop's key chain holds a value that this program did not write."});
    }
    return bytes;
}

bool hasSessionBus() {
    if (std::getenv("DBUS_SESSION_BUS_ADDRESS")) {
        return true;
    }
    const char* runtime = std::getenv("XDG_RUNTIME_DIR");
    std::error_code ignored;
    return runtime && std::filesystem::exists(std::filesystem::path(runtime) / "bus", ignored);
}

// Whether the service's name is in a list of names from the bus.
bool busLists(GDBusConnection& bus, const char* method) {
    constexpr int timeLimit = 2000; // ms
    const GVariantPtr reply(g_dbus_connection_call_sync(
        &bus, "org.freedesktop.DBus", "/org/freedesktop/DBus", "org.freedesktop.DBus", method, nullptr,
        G_VARIANT_TYPE("(as)"), G_DBUS_CALL_FLAGS_NONE, timeLimit, nullptr, nullptr));
    if (!reply) {
        return false;
    }
    const GVariantPtr names(g_variant_get_child_value(reply.get(), 0));
    for (gsize index = 0; index < g_variant_n_children(names.get()); ++index) {
        const GVariantPtr name(g_variant_get_child_value(names.get(), index));
        if (std::string_view(g_variant_get_string(name.get(), nullptr)) == busName) {
            return true;
        }
    }
    return false;
}

} // namespace

SecretServiceKeyChainStore::SecretServiceKeyChainStore(std::string application,
                                                       std::chrono::milliseconds timeLimit,
                                                       std::optional<SecretServiceOwner> owner)
    : application_(std::move(application)), timeLimit_(timeLimit), owner_(std::move(owner)) {
    startSodium();
}

bool SecretServiceKeyChainStore::isOffered() {
    if (!hasSessionBus()) {
        return false;
    }
    const GObjectPtr<GDBusConnection> bus(g_bus_get_sync(G_BUS_TYPE_SESSION, nullptr, nullptr));
    return bus && (busLists(*bus, "ListNames") || busLists(*bus, "ListActivatableNames"));
}

Result<std::optional<Data>, KeyChainError> SecretServiceKeyChainStore::read(const std::string& key) {
    if (const auto checked = checkKey(key); !checked) {
        return failure(checked.error());
    }
    Session session(application_, owner_, timeLimit_);
    if (const auto opened = session.open(); !opened) {
        return failure(opened.error());
    }
    auto items = session.find(key, SECRET_SEARCH_LOAD_SECRETS);
    if (items && items->empty()) {
        items = session.findUnmarked(key, SECRET_SEARCH_LOAD_SECRETS);
    }
    if (!items) {
        return failure(items.error());
    }
    return items->empty() ? Result<std::optional<Data>, KeyChainError>(std::nullopt)
                          : valueOf(*items->front());
}

Result<void, KeyChainError> SecretServiceKeyChainStore::write(const std::string& key, const Data& value) {
    if (auto checked = checkKey(key); !checked) {
        return checked;
    }
    Session session(application_, owner_, timeLimit_);
    if (auto opened = session.open(); !opened) {
        return opened;
    }
    std::string text(sodium_base64_encoded_len(value.size(), base64Variant), '\0');
    sodium_bin2base64(text.data(), text.size(), value.data(), value.size(), base64Variant);
    auto written = session.put(key, text.c_str(), text.size() - 1);
    wipe(text);
    return written;
}

Result<bool, KeyChainError> SecretServiceKeyChainStore::erase(const std::string& key) {
    if (const auto checked = checkKey(key); !checked) {
        return failure(checked.error());
    }
    Session session(application_, owner_, timeLimit_);
    if (const auto opened = session.open(); !opened) {
        return failure(opened.error());
    }
    auto items = session.find(key, SECRET_SEARCH_NONE);
    auto unmarked = items ? session.findUnmarked(key, SECRET_SEARCH_NONE) : failure(items.error());
    if (!unmarked) {
        return failure(unmarked.error());
    }
    std::ranges::move(*unmarked, std::back_inserter(*items));
    for (const auto& item : *items) {
        if (const auto removed = session.remove(*item); !removed) {
            return failure(removed.error());
        }
    }
    return !items->empty();
}

} // namespace zelto
