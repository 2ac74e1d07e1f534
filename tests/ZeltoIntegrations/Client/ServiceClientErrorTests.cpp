#include <ZeltoIntegrations/Client/ServiceClientError.h>

#include <gtest/gtest.h>

namespace zelto {

namespace {

using E = ServiceClientError;

struct Row {
    E error;
    int raw;
    std::string_view name;
    bool isService;
    IntegrationLoadError load = IntegrationLoadError::internalError;
    IntegrationExportError export_ = IntegrationExportError::internalError;
};

constexpr Row rows[] = {
    {E::internalError, 100, "internalError", false},
    {E::connectionError, 101, "connectionError", false, IntegrationLoadError::connectionError,
     IntegrationExportError::connectionError},
    {E::dataParseError, 102, "dataParseError", false},
    {E::serviceInternalError, 103, "serviceInternalError", true},
    {E::authorizationError, 104, "authorizationError", true, IntegrationLoadError::oauthError,
     IntegrationExportError::oauthError},
    {E::apiCallError, 105, "apiCallError", true},
    {E::oauthError, 106, "oauthError", false, IntegrationLoadError::oauthError,
     IntegrationExportError::oauthError},
    {E::invalidAccount, 107, "invalidAccount", true},
    {E::itemNotFound, 108, "itemNotFound", true},
    {E::forbidden, 109, "forbidden", true},
    {E::toManyRequests, 110, "toManyRequests", true},
};

} // namespace

TEST(ServiceClientError, HasItsCodesAndNames) {
    EXPECT_EQ(casesOf<E>().size(), std::size(rows));
    for (const auto& row : rows) {
        EXPECT_EQ(rawValue(row.error), row.raw);
        EXPECT_EQ(fromRawValue<E>(row.raw), row.error);
        EXPECT_EQ(nameOf(row.error), row.name);
    }
}

TEST(ServiceClientError, OtherCodesAreNone) {
    for (const int raw : {-1, 0, 99, 111, 1000}) {
        EXPECT_FALSE(fromRawValue<E>(raw)) << raw;
    }
}

TEST(ServiceClientError, SaysWhetherTheServiceHasSpoken) {
    for (const auto& row : rows) {
        EXPECT_EQ(isServiceError(row.error), row.isService) << row.name;
    }
}

TEST(ServiceClientError, BecomesTheHostsErrors) {
    for (const auto& row : rows) {
        EXPECT_EQ(loadError(row.error), row.load) << row.name;
        EXPECT_EQ(exportError(row.error), row.export_) << row.name;
    }
}

} // namespace zelto
