#include <zelto/PassedLimits.h>

#include <export/services/TrelloAdapter.h>

#include <Support/TrelloExport.h>

#include <gtest/gtest.h>

namespace zelto::cli {

namespace {

class TrelloLimits : public testing::Test {
  protected:
    std::vector<std::string> passed(const std::vector<SentRequest>& requests) {
        return passedLimits<TrelloAdapter>(fixture, requests);
    }

    static SentRequest card(const std::string& query) {
        return {.method = "POST", .url = "https://api.trello.com/1/cards?" + query};
    }

    TrelloExport fixture;
};

using Texts = std::vector<std::string>;

} // namespace

TEST_F(TrelloLimits, OfACardsTextsCountCharacters) {
    // An address of that length passes its own limit, which is not looked at here.
    const auto firstOf = [&](const std::string& query) { return passed({card(query)}).front(); };
    const auto address = "the address of the request that makes the card";
    EXPECT_TRUE(firstOf("name=" + std::string(16'383, 'a')).starts_with(address));
    EXPECT_TRUE(firstOf("name=" + std::string(16'384, 'a')).starts_with(address));
    EXPECT_EQ(firstOf("name=" + std::string(16'385, 'a')), "the card's name: 16385 of 16384 characters");
    EXPECT_TRUE(firstOf("desc=" + std::string(16'384, 'a')).starts_with(address));
    EXPECT_EQ(firstOf("desc=" + std::string(16'385, 'a')),
              "the card's description: 16385 of 16384 characters");
    std::string letters;
    for (int i = 0; i < 16'384; ++i) {
        letters += "%C3%A4";
    }
    EXPECT_TRUE(firstOf("name=" + letters).starts_with(address));
    EXPECT_EQ(firstOf("name=" + letters + "a"), "the card's name: 16385 of 16384 characters");
}

TEST_F(TrelloLimits, OfTheAddressCountBytes) {
    const auto start = card("name=").url.size();
    EXPECT_EQ(passed({card("name=" + std::string(7999 - start, 'a'))}), Texts{});
    EXPECT_EQ(passed({card("name=" + std::string(8000 - start, 'a'))}), Texts{});
    EXPECT_EQ(passed({card("name=" + std::string(8001 - start, 'a'))}),
              Texts{"the address of the request that makes the card: 8001 of 8000 bytes"});
}

TEST_F(TrelloLimits, OfTheFilesCountThoseThatAreSelected) {
    for (const auto count : {99, 100, 101}) {
        auto& list = fixture.configuration.attachments.list;
        list.assign(static_cast<std::size_t>(count),
                    IntegrationAttachment{1, "a", 1, IntegrationAttachmentState::selected});
        list.push_back(IntegrationAttachment{2, "b", 1, IntegrationAttachmentState::allowed});
        EXPECT_EQ(passed({}),
                  count > 100 ? Texts{"the card's list of attachments: 101 of 100 files"} : Texts{});
    }
}

} // namespace zelto::cli
