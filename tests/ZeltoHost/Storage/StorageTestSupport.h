#pragma once

#include <ZeltoHost/Storage/SQLiteAccountStorage.h>

#include <Support/TemporaryFolder.h>

#include <string>
#include <vector>

namespace zelto {

ServiceAccountConfiguration account(ServiceType type, std::optional<std::string> userName);

// The storage of a folder; the test stops if it does not open.
std::shared_ptr<SQLiteAccountStorage> opened(const std::filesystem::path& directory);
std::shared_ptr<SQLiteAccountStorage> opened(const TemporaryFolder& folder);

// The error code if it does not open; `nullopt` if it does.
std::optional<StorageErrorCode> refusal(const std::filesystem::path& directory);

std::vector<std::string> identifiers(SQLiteAccountStorage& storage);

// Runs SQL on the file directly, and gives the first column of the first row of the last statement.
void sql(const std::filesystem::path& file, const std::string& statements);
std::string textOf(const std::filesystem::path& file, const std::string& query);

} // namespace zelto
