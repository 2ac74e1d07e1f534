#include <export/AdaptedSession.h>

#include <Platform/JSON/JSONRecordDescription.h>

#include <gtest/gtest.h>

#include <map>

namespace zelto::cli {

// A folder service of the shape that differs most from a task service: other names of fields, a target that
// an export can do without, and a policy for files that exist.
struct FolderConfiguration {
    std::optional<std::string> fileName;
    IntegrationExportContentType selectedExportKind = IntegrationExportContentType::pdf;
    std::optional<std::string> folder;
    IntegrationWebLinkVisibility webLinkVisibility = IntegrationWebLinkVisibility::onlyMe;
    std::optional<std::uint64_t> teamId;

    IntegrationExportContentType exportType() const { return selectedExportKind; }

    bool operator==(const FolderConfiguration&) const = default;
};

ZELTO_JSON_CODED(FolderConfiguration);
ZELTO_JSON_RECORD(FolderConfiguration, fileName, selectedExportKind, folder, webLinkVisibility, teamId);

struct Folder {
    std::string id;
    std::string name;
};

ZELTO_JSON_CODED(Folder);
ZELTO_JSON_RECORD(Folder, id, name);

struct FolderData {
    std::vector<Folder> folders;
};

ZELTO_JSON_CODED(FolderData);
ZELTO_JSON_RECORD(FolderData, folders);

namespace {

using Type = IntegrationExportContentType;
using Texts = std::vector<std::string>;

class FolderExporter {
  public:
    using Configuration = FolderConfiguration;

    std::optional<ServiceRefusal> lastRefusal() const { return refusal; }

    IntegrationExportTarget exportTarget() const { return IntegrationExportTarget::email; }

    IntegrationExportContentTypes contentTypes(IntegrationExportTarget) const {
        return {Type::pdf, {Type::pdf, Type::plainText}};
    }

    void loadConfiguration(Completion<FolderConfiguration, IntegrationLoadError> completion) {
        completion(FolderConfiguration{.fileName = "Title"});
    }

    void loadPreview(Type type, Callback<std::optional<IntegrationExportPreview>> completion) {
        previewed = type;
        completion(std::nullopt);
    }

    void fetchFolders(bool force, Completion<std::optional<FolderData>, IntegrationLoadError> completion) {
        calls.emplace_back(force ? "fetch" : "cached");
        completion(force || isLoaded ? std::optional(FolderData{{{"f1", "Mail"}, {"f2", "Notes"}}})
                                     : std::nullopt);
        isLoaded = isLoaded || force;
    }

    std::shared_ptr<ExportProgress> export_(FolderConfiguration configuration,
                                            std::optional<ExportFilePolicy> policy,
                                            Completion<void, IntegrationExportError> completion) {
        calls.push_back("export " + (policy ? std::string(nameOf(*policy)) : "without a policy"));
        exported = std::move(configuration);
        auto result = policy ? ExporterResult<void>() : firstResult;
        completion(std::move(result));
        return std::make_shared<ExportProgress>(1);
    }

    ExportReport exportReport() const { return {}; }

    Texts calls;
    std::optional<ServiceRefusal> refusal;
    bool isLoaded = false;
    ExporterResult<void> firstResult;
    std::optional<FolderConfiguration> exported;
    std::optional<Type> previewed;
};

struct FolderAdapter : WebAdapter<FolderExporter> {
    static EditableFields fields(FolderConfiguration& configuration) {
        auto fields = usualFields(configuration);
        fields.title = &configuration.fileName;
        fields.saveAs = &configuration.selectedExportKind;
        return fields;
    }

    using TargetData = FolderData;
    static constexpr bool needsTarget = false;

    template <class Done> static void loadTargetData(FolderExporter& exporter, bool force, Done done) {
        exporter.fetchFolders(force, std::move(done));
    }

    static TargetTree targetTree(const FolderData& data) {
        TargetTree tree{.levels = {"folder"}, .nodes = {}};
        for (const auto& folder : data.folders) {
            tree.nodes.push_back({folder.id, folder.name});
        }
        return tree;
    }

    static void setTarget(FolderConfiguration& configuration, const FolderData& data,
                          const TargetPath& path) {
        configuration.folder = data.folders.at(path.at(0)).id;
    }

    static std::string targetName(const FolderConfiguration& configuration) {
        return configuration.folder.value_or("");
    }

    static constexpr bool takesPolicy = true;

    static std::vector<std::string> existingFiles(const FolderExporter& /*exporter*/) { return {"a.pdf"}; }

    static std::shared_ptr<ExportProgress> export_(FolderExporter& exporter,
                                                   FolderConfiguration configuration,
                                                   std::optional<ExportFilePolicy> policy,
                                                   Completion<void, IntegrationExportError> completion) {
        return exporter.export_(std::move(configuration), policy, std::move(completion));
    }
};

class FolderSession : public testing::Test {
  protected:
    ExporterResult<void> run(const ConfigurationEdits& edits) {
        EXPECT_TRUE(session.prepare(edits, DataLoading::whereMissing));
        return session.run([](const auto&) {});
    }

    std::shared_ptr<FolderExporter> exporter = std::make_shared<FolderExporter>();
    AdaptedSession<FolderAdapter> session{exporter, "Drive", "Drive+me"};
};

} // namespace

TEST_F(FolderSession, EditsTheFieldsThatTheAdapterNames) {
    ConfigurationEdits edits;
    edits.title = "Other";
    edits.saveAs = Type::plainText;
    edits.target = "notes";
    edits.visibility = IntegrationWebLinkVisibility::team;
    edits.team = 7;
    const auto plan = session.prepare(edits, DataLoading::whereMissing);
    ASSERT_TRUE(plan);
    EXPECT_EQ(plan->title, "Other");
    EXPECT_EQ(plan->saveAs, Type::plainText);
    EXPECT_EQ(plan->target, "Notes");
    EXPECT_TRUE(session.run([](const auto&) {}));
    EXPECT_EQ(*exporter->exported,
              (FolderConfiguration{.fileName = "Other",
                                   .selectedExportKind = Type::plainText,
                                   .folder = "f2",
                                   .webLinkVisibility = IntegrationWebLinkVisibility::team,
                                   .teamId = 7}));
}

TEST_F(FolderSession, RefusesWhatTheConfigurationHasNoFieldFor) {
    ConfigurationEdits edits;
    edits.note = "x";
    const auto plan = session.prepare(edits, DataLoading::whereMissing);
    ASSERT_FALSE(plan);
    EXPECT_EQ(plan.error().message, "Drive takes no note: leave out --note.");
    EXPECT_EQ(plan.error().status, ExitStatus::wrongUsage);
}

TEST_F(FolderSession, RefusesOptionsOfAServiceThatKeepsContacts) {
    const std::pair<ContactEdits, std::string> rows[] = {
        {{.contacts = "senderOnly", .stage = "lead"}, "--contacts"},
        {{.stage = "lead", .status = "open"}, "--stage"},
        {{.status = "open", .withMeeting = true}, "--status"},
        {{.withMeeting = true}, "--meeting"}};
    for (const auto& [contacts, option] : rows) {
        ConfigurationEdits edits;
        edits.contacts = contacts;
        const auto plan = session.prepare(edits, DataLoading::whereMissing);
        ASSERT_FALSE(plan);
        EXPECT_EQ(plan.error().message, "Drive keeps no contacts: leave out " + option + ".");
        EXPECT_EQ(plan.error().status, ExitStatus::wrongUsage);
    }
    EXPECT_EQ(exporter->calls, Texts{});
}

TEST_F(FolderSession, MissesNoTargetThatItCanDoWithout) {
    const auto plan = session.prepare({}, DataLoading::whereMissing);
    ASSERT_TRUE(plan);
    EXPECT_EQ(plan->target, "");
    EXPECT_FALSE(plan->missingTarget);
}

TEST_F(FolderSession, LoadsNothingWhereNoTargetIsAskedFor) {
    EXPECT_TRUE(session.prepare({}, DataLoading::whereMissing));
    EXPECT_EQ(exporter->calls, Texts{});
}

TEST_F(FolderSession, LoadsDataThatWereNeverLoadedUnlessItMayNot) {
    ConfigurationEdits edits;
    edits.target = "Mail";
    const auto unknown = session.prepare(edits, DataLoading::never);
    ASSERT_FALSE(unknown);
    EXPECT_EQ(unknown.error().name, "noTarget");
    EXPECT_EQ(exporter->calls, Texts{"cached"});
    exporter->calls.clear();
    EXPECT_TRUE(session.prepare(edits, DataLoading::whereMissing));
    EXPECT_EQ(exporter->calls, (Texts{"cached", "fetch"}));
    exporter->calls.clear();
    EXPECT_TRUE(session.prepare(edits, DataLoading::never));
    EXPECT_EQ(exporter->calls, Texts{"cached"});
}

TEST_F(FolderSession, ExportsOnceWithoutAPolicyAndWithKeepBoth) {
    exporter->firstResult = failure(IntegrationExportError::fileAlreadyExists);
    EXPECT_EQ(run({}).error(), IntegrationExportError::fileAlreadyExists);
    EXPECT_EQ(exporter->calls.back(), "export without a policy");
    ConfigurationEdits edits;
    edits.policy = ExportFilePolicy::keepBoth;
    exporter->calls.clear();
    EXPECT_TRUE(run(edits));
    EXPECT_EQ(exporter->calls, (Texts{"export keepBoth"}));
}

TEST_F(FolderSession, OverridesWhatTheExportWithoutAPolicyHasFound) {
    ConfigurationEdits edits;
    edits.policy = ExportFilePolicy::overrideExisting;
    exporter->firstResult = failure(IntegrationExportError::fileAlreadyExists);
    EXPECT_TRUE(run(edits));
    EXPECT_EQ(exporter->calls, (Texts{"export without a policy", "export overrideExisting"}));
    exporter->calls.clear();
    exporter->firstResult = failure(IntegrationExportError::canceled);
    EXPECT_EQ(run(edits).error(), IntegrationExportError::canceled);
    EXPECT_EQ(exporter->calls, (Texts{"export without a policy"}));
    exporter->calls.clear();
    exporter->firstResult = {};
    EXPECT_TRUE(run(edits));
    EXPECT_EQ(exporter->calls, (Texts{"export without a policy"}));
}

TEST_F(FolderSession, PreviewsTheOfferedTypeUnlessOneIsNamed) {
    EXPECT_TRUE(session.preview(std::nullopt));
    EXPECT_EQ(exporter->previewed, Type::pdf);
    EXPECT_TRUE(session.preview(Type::plainText));
    EXPECT_EQ(exporter->previewed, Type::plainText);
}

TEST_F(FolderSession, OffersTheConfigurationWithTheTarget) {
    const auto offered = [this](ConfigurationForm form) {
        const auto members = session.offeredConfiguration("Mail", form);
        return members ? JSONValue(*members).text().value() : members.error().message;
    };
    EXPECT_EQ(offered(ConfigurationForm::record),
              R"({"fileName":"Title","selectedExportKind":0,"folder":"f1","webLinkVisibility":0})");
    EXPECT_EQ(
        offered(ConfigurationForm::names),
        R"({"fileName":"Title","selectedExportKind":"pdf","folder":"f1","webLinkVisibility":"onlyMe"})");
}

} // namespace zelto::cli
