#include "StorageTestSupport.h"

#include <ZeltoHost/Storage/SQLiteConnectionInternal.h>

#include <stdexcept>

namespace zelto {

namespace {

std::unique_ptr<SQLiteConnection> connected(const std::filesystem::path& file) {
    auto connection = SQLiteConnection::open(file);
    if (!connection) {
        throw std::runtime_error(connection.error().message());
    }
    return std::move(*connection);
}

} // namespace

ServiceAccountConfiguration account(ServiceType type, std::optional<std::string> userName) {
    return {type, std::move(userName), true};
}

std::shared_ptr<SQLiteAccountStorage> opened(const std::filesystem::path& directory) {
    auto storage = SQLiteAccountStorage::open(directory);
    if (!storage) {
        throw std::runtime_error(storage.error().message());
    }
    return *storage;
}

std::shared_ptr<SQLiteAccountStorage> opened(const TemporaryFolder& folder) {
    return opened(folder.path());
}

std::optional<StorageErrorCode> refusal(const std::filesystem::path& directory) {
    const auto storage = SQLiteAccountStorage::open(directory);
    return storage ? std::nullopt : std::optional(storage.error().code);
}

std::vector<std::string> identifiers(SQLiteAccountStorage& storage) {
    std::vector<std::string> all;
    for (const auto& each : storage.loadConfigurations()) {
        all.push_back(each.identifier());
    }
    return all;
}

void sql(const std::filesystem::path& file, const std::string& statements) {
    if (auto done = connected(file)->execute(statements); !done) {
        throw std::runtime_error(done.error().message());
    }
}

std::string textOf(const std::filesystem::path& file, const std::string& query) {
    const auto connection = connected(file);
    auto statement = connection->prepare(query);
    if (!statement) {
        throw std::runtime_error(statement.error().message());
    }
    const auto row = statement->step();
    if (!row) {
        throw std::runtime_error(row.error().message());
    }
    return *row ? statement->text(0) : "";
}

} // namespace zelto
