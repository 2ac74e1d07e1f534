#include <ZeltoHost/Storage/SQLiteConnectionInternal.h>

#include <Support/TemporaryFolder.h>

#include <gtest/gtest.h>

#include <stdexcept>

namespace zelto {
namespace {

TEST(SQLiteConnection, ATransactionWhoseBodyThrowsIsUndone) {
    const TemporaryFolder folder;
    const auto connection = SQLiteConnection::open(folder.write("database", ""));
    ASSERT_TRUE(connection);
    ASSERT_TRUE((*connection)->execute("CREATE TABLE Numbers (number INTEGER)"));
    const auto add = [&] { return (*connection)->execute("INSERT INTO Numbers VALUES (1)"); };
    EXPECT_THROW(static_cast<void>((*connection)->transaction([&]() -> Result<void, StorageError> {
                     EXPECT_TRUE(add());
                     throw std::runtime_error("thrown");
                 })),
                 std::runtime_error);
    EXPECT_EQ((*connection)->number("SELECT COUNT(*) FROM Numbers"), 0);
    EXPECT_TRUE((*connection)->transaction(add));
    EXPECT_EQ((*connection)->number("SELECT COUNT(*) FROM Numbers"), 1);
}

} // namespace
} // namespace zelto
