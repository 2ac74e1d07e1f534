#include <ZeltoIntegrations/Accounts/ServiceType.h>

#include <Platform/JSON/JSONCoding.h>

#include <gtest/gtest.h>

#include <set>
#include <vector>

namespace zelto {

namespace {

struct Row {
    const char* name;
    int rawValue;
    ServiceAuthFlow flow;
};

constexpr auto oauth = ServiceAuthFlow::oauth;
constexpr auto installedApp = ServiceAuthFlow::installedApp;
constexpr auto systemPermission = ServiceAuthFlow::systemPermission;

// In declared order.
const std::vector<Row> rows = {
    {"Reminders", 30, systemPermission},
    {"Calendar", 31, oauth},
    {"OmniFocus", 32, installedApp},
    {"Type2Do", 33, installedApp},
    {"Things", 34, installedApp},
    {"TodoIst", 41, oauth},
    {"Asana", 42, oauth},
    {"OneNote", 43, oauth},
    {"Evernote", 44, oauth},
    {"Trello", 45, oauth},
    {"Bear", 46, installedApp},
    {"MeisterTask", 47, oauth},
    {"TickTick", 48, oauth},
    {"Agenda", 49, installedApp},
    {"Slack", 60, oauth},
    {"Hubspot", 61, oauth},
    {"Notion", 99, oauth},
    {"GoogleDrive", 50, oauth},
    {"OneDrive", 51, oauth},
    {"Box", 52, oauth},
    {"Dropbox", 53, oauth},
    {"iCloudDrive", 54, systemPermission},
    {"Instapaper", 81, oauth},
    {"OneDriveBusiness", 100, oauth},
    {"iOSShare", 200, systemPermission},
    {"Albums", 201, systemPermission},
    {"Zelto", 202, systemPermission},
    {"iOSSharePDF", 203, systemPermission},
    {"G2Meeting", 300, oauth},
    {"ZoomMeeting", 301, oauth},
    {"MicrosoftTeams", 302, oauth},
};

} // namespace

TEST(ServiceType, EveryCaseHasItsNameRawValueAndFlowInDeclaredOrder) {
    const auto cases = casesOf<ServiceType>();
    ASSERT_EQ(cases.size(), 31u);
    ASSERT_EQ(rows.size(), 31u);
    for (std::size_t i = 0; i < rows.size(); ++i) {
        EXPECT_EQ(cases[i].name, rows[i].name);
        EXPECT_EQ(rawValue(cases[i].value), rows[i].rawValue) << rows[i].name;
        EXPECT_EQ(serviceAuthFlow(cases[i].value), rows[i].flow) << rows[i].name;
        EXPECT_EQ(fromRawValue<ServiceType>(rows[i].rawValue), cases[i].value);
    }
}

TEST(ServiceType, RawValuesOutsideTheTableGiveNoValue) {
    EXPECT_EQ(fromRawValue<ServiceType>(35), std::nullopt);
    EXPECT_EQ(fromRawValue<ServiceType>(55), std::nullopt);
    EXPECT_EQ(fromRawValue<ServiceType>(54), ServiceType::iCloudDrive);
    std::set<int> known;
    for (const auto& row : rows) {
        known.insert(row.rawValue);
    }
    for (int raw = -1; raw < 400; ++raw) {
        EXPECT_EQ(fromRawValue<ServiceType>(raw).has_value(), known.contains(raw)) << raw;
    }
}

TEST(ServiceType, IsCodedAsItsNumber) {
    EXPECT_EQ(JSONEncoder().encode(ServiceType::Notion).value(), "99");
    EXPECT_EQ(JSONDecoder().decode<ServiceType>("302").value(), ServiceType::MicrosoftTeams);
    EXPECT_FALSE(JSONDecoder().decode<ServiceType>("55"));
}

TEST(ServiceAuthFlow, HasThreeRawValuesAndNoOther) {
    EXPECT_EQ(fromRawValue<ServiceAuthFlow>(0), oauth);
    EXPECT_EQ(fromRawValue<ServiceAuthFlow>(1), installedApp);
    EXPECT_EQ(fromRawValue<ServiceAuthFlow>(2), systemPermission);
    EXPECT_EQ(fromRawValue<ServiceAuthFlow>(3), std::nullopt);
    EXPECT_EQ(fromRawValue<ServiceAuthFlow>(-1), std::nullopt);
}

} // namespace zelto
