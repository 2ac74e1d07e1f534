#include <ZeltoIntegrations/RegisterIntegrationsTypes.h>

#include <ZeltoIntegrations/Asana/AsanaRecords.h>
#include <ZeltoIntegrations/OneNote/OneNoteRecords.h>
#include <ZeltoIntegrations/Todoist/TodoistRecords.h>

#include <TrovenhalCommon/AnyCodable.h>

#include <gtest/gtest.h>

namespace zelto {

namespace {

template <class T> void expectRegistered(const T& value, const std::string& name) {
    const AnyCodable wrapped(value);
    EXPECT_EQ(wrapped.typeName(), name);
    const auto text = JSONEncoder().encode(wrapped).value();
    const auto back = JSONDecoder().decode<AnyCodable>(text).value();
    EXPECT_EQ(back.typeName(), name);
    EXPECT_EQ(back.value<T>(), value);
}

} // namespace

TEST(RegisterIntegrationsTypes, EachOfTheSixTypesReadsBackUnderItsName) {
    RegisterIntegrationsTypes();
    const AsanaProject project{"1", "Plan", true, false};
    const AsanaUser user{"2", std::nullopt, "ann@example.org"};
    const OneNoteSection section{"3", "Inbox", "4"};
    expectRegistered(AsanaWorkspace{"0", "Work", {project}, {user}}, "AsanaWorkspace");
    expectRegistered(project, "AsanaProject");
    expectRegistered(user, "AsanaUser");
    expectRegistered(OneNoteNotebook{"4", std::nullopt, {section}}, "OneNoteNotebook");
    expectRegistered(section, "OneNoteSection");
    expectRegistered(TodoistProject{"5", "Home"}, "TodoistProject");
}

TEST(RegisterIntegrationsTypes, IsHarmlessASecondTime) {
    RegisterIntegrationsTypes();
    RegisterIntegrationsTypes();
    expectRegistered(TodoistProject{"5", std::nullopt}, "TodoistProject");
}

} // namespace zelto
