#include <ZeltoIntegrations/Export/StepExporter.h>

#include <Support/Completed.h>
#include <Support/FakeDataInteractor.h>
#include <Support/FakePlatformInteractor.h>
#include <Support/FakeStorage.h>

#include <Platform/FileManager.h>

#include <gtest/gtest.h>

#include <csignal>
#include <filesystem>
#include <iterator>
#include <string>
#include <sys/resource.h>

namespace zelto {

namespace {

using Error = IntegrationExportError;
using VoidResult = ExporterResult<void>;
using Path = std::filesystem::path;

// Makes a text, and of that a file.
class TextFileExporter final : public StepExporter {
  public:
    using StepExporter::StepExporter;

    ExporterResult<std::string> text = "content"; // what the first step comes to

    ExporterResult<Path> file() const { return resultOf(fileStep_); }

    void run(const std::string& title, FailureRule rule, Completion<void, Error> completion) {
        auto shared = std::make_shared<Completion<void, Error>>(std::move(completion));
        auto steps = exportSteps(rule, 2, [shared](VoidResult result) { (*shared)(result); });
        const auto textStep = steps.add<std::string>(&TextFileExporter::makeAnyText);
        fileStep_ = steps.add<Path>(&TextFileExporter::makeTextFile, title, textStep, Error::createBodyError);
        steps.execute();
    }

  private:
    void makeAnyText(StepRun&, Completion<std::string, Error> done) { done(text); }

    Step<Path> fileStep_;
};

class TextFileStep : public testing::Test {
  protected:
    VoidResult run(const std::string& title, FailureRule rule = FailureRule::stop) {
        Completed<VoidResult> completed;
        exporter->run(title, rule, completed.callback<Completion<void, Error>>());
        return completed.value();
    }

    std::string content() const {
        const auto bytes = FileManager::readFile(exporter->file().value());
        return bytes ? std::string(viewOf(*bytes)) : "(unreadable)";
    }

    std::shared_ptr<TextFileExporter> exporter = std::make_shared<TextFileExporter>(
        ServiceAccountConfiguration(ServiceType::TickTick, "alice", true), std::make_shared<FakeStorage>(),
        std::make_shared<FakePlatformInteractor>(), std::make_shared<FakeDataInteractor>(), "test", true);
};

// While this lives, the process can write no file that is longer.
class FileSizeLimit {
  public:
    explicit FileSizeLimit(rlim_t bytes) {
        getrlimit(RLIMIT_FSIZE, &before_);

        const struct rlimit limit { bytes, before_.rlim_max };

        EXPECT_EQ(setrlimit(RLIMIT_FSIZE, &limit), 0);
    }

    ~FileSizeLimit() {
        setrlimit(RLIMIT_FSIZE, &before_);
        std::signal(SIGXFSZ, handler_);
    }

    FileSizeLimit(const FileSizeLimit&) = delete;
    FileSizeLimit& operator=(const FileSizeLimit&) = delete;

  private:
    struct rlimit before_ {};

    void (*const handler_)(int) = std::signal(SIGXFSZ, SIG_IGN);
};

} // namespace

TEST_F(TextFileStep, TheFileHasTheWholeTextAndStaysThere) {
    for (const auto& text : {std::string("Größe 1\r\n\tend"), std::string(), std::string("a\0b", 3)}) {
        exporter->text = text;
        ASSERT_TRUE(run("Title"));
        EXPECT_EQ(content(), text);
    }
}

TEST_F(TextFileStep, TheFileIsNamedByTheTitleInAFolderOfItsOwn) {
    ASSERT_TRUE(run("Größe/1"));
    const auto first = exporter->file().value();
    EXPECT_EQ(first.filename(), "Große_1.txt");
    ASSERT_TRUE(run("Größe/1"));
    const auto second = exporter->file().value();
    EXPECT_EQ(second.filename(), "Große_1.txt");
    EXPECT_NE(first.parent_path(), second.parent_path());
    EXPECT_EQ(first.parent_path().parent_path(), *FileManager::temporaryDirectory());
}

TEST_F(TextFileStep, ATextThatCannotBeWrittenIsTheStepsErrorAndLeavesNoFile) {
    exporter->text = std::string(200'000, 'x');
    ASSERT_TRUE(run("Title")) << "without a limit";
    {
        const FileSizeLimit limit(100'000);
        EXPECT_EQ(run("Cut off"), failure(Error::createBodyError));
    }
    for (const auto& each :
         std::filesystem::recursive_directory_iterator(*FileManager::temporaryDirectory())) {
        EXPECT_NE(each.path().filename(), "Cut off.txt");
    }
}

TEST_F(TextFileStep, WithoutATextThereIsNoFile) {
    exporter->text = failure(Error::convertError);
    EXPECT_EQ(run("Title", FailureRule::stop), failure(Error::convertError));
    EXPECT_EQ(exporter->file(), failure(Error::convertError)) << "the step was not called";
    EXPECT_EQ(run("Title", FailureRule::goOn), failure(Error::convertError));
    EXPECT_EQ(exporter->file(), failure(Error::createBodyError)) << "it was called";
}

} // namespace zelto
