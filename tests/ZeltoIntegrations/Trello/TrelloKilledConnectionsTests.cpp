// What libcurl would repeat by itself when a connection that it keeps turns out dead: the making of a card.

#include <Support/KillingProxy.h>
#include <Support/ServiceRoute.h>
#include <Support/TrelloExport.h>

#include <gtest/gtest.h>

#include <map>
#include <random>
#include <string>

namespace zelto {
namespace {

constexpr int exportCount = 2000;

// An export sends about 1,000 bytes and gets about 250, so that most connections die after some exports, at
// any byte of an exchange.
KillingProxy::Limits anyLimits(std::mt19937& random) {
    const bool endsOnTheWayThere = random() % 2 == 0;
    return endsOnTheWayThere ? KillingProxy::Limits{.toServer = random() % 5000}
                             : KillingProxy::Limits{.toClient = random() % 1250};
}

TEST(TrelloKilledConnections, NoCardAndNoFileIsMadeTwiceWhateverByteAKeptConnectionDiesAt) {
    TrelloServer trello;
    std::mt19937 random(20261121); // NOLINT: the same run each time
    const KillingProxy proxy(trello.server.port(), [&](int) { return anyLimits(random); });
    const ServiceRoute route(proxy.url());
    TrelloExport exporting;
    exporting.attach("notes.txt");
    exporting.configuration.saveAs = IntegrationExportContentType::backLink;

    int succeeded = 0;
    for (int index = 0; index < exportCount; ++index) {
        exporting.configuration.userTitle = "Card" + std::to_string(index);
        succeeded += exporting.run().has_value();
    }

    std::map<std::string, int> received;
    int files = 0;
    for (const auto& line : trello.lines()) {
        line.starts_with("POST /1/cards?") ? ++received[line] : ++files;
    }
    for (const auto& [card, times] : received) {
        EXPECT_EQ(times, 1) << card;
    }
    EXPECT_LE(received.size(), exportCount);
    EXPECT_LE(files, static_cast<int>(received.size()));
    // Else nothing was shown: both happened, and connections were kept until they were ended.
    EXPECT_GT(succeeded, exportCount / 4);
    EXPECT_LT(succeeded, exportCount);
    EXPECT_GT(proxy.killedCount(), exportCount / 20);
    EXPECT_LT(proxy.connectionCount(), exportCount);
}

} // namespace
} // namespace zelto
