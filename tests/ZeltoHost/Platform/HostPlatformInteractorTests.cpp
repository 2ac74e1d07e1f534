#include <ZeltoHost/Platform/HostPlatformInteractor.h>

#include <Support/Completed.h>
#include <Support/TemporaryFolder.h>

#include <gtest/gtest.h>

namespace zelto {
namespace {

TEST(HostPlatformInteractor, ReportsWhyTheLastConversionFailed) {
    const TemporaryFolder folder;
    HostPlatformInteractor interactor([](const URL&, Callback<bool> done) { done(true); },
                                      {.command = {"/nonexistent/converter"}});
    EXPECT_EQ(interactor.lastPDFError(), std::nullopt);
    Completed<bool> converted;
    interactor.convert("<p>a</p>", folder / "a.pdf", converted.callback<Callback<bool>>());
    EXPECT_FALSE(converted.value());
    ASSERT_TRUE(interactor.lastPDFError());
    EXPECT_EQ(interactor.lastPDFError()->code, PDFErrorCode::converterMissing);
    EXPECT_EQ(interactor.lastPDFError()->converter, "/nonexistent/converter");
}

} // namespace
} // namespace zelto
