#pragma once

#include <ZeltoIntegrations/Export/TextExporter.h>
#include <ZeltoIntegrations/Slack/SlackExportConfiguration.h>
#include <ZeltoIntegrations/Slack/SlackRecords.h>

#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace zelto {

class SlackClient;

// Posts a message to a channel or a person: a note of the user, and the message's text with a link to it, or
// the link alone. The text is sent whole, however long it is. What the host gives is sent as it is, as text
// in Slack's mrkdwn: the host escapes in it what is no markup. The note is sent as it was typed.
class SlackExporter final
    : public TextExporter<SlackFullData, ContentText::Link::altBacklink, IntegrationLinkFormat::mrkdwn> {
  public:
    using TextExporter::TextExporter;

    using Configuration = SlackExportConfiguration;

    // What was loaded last, and where the last message went; kept in the account.
    CachedValue<SlackSaveToInfo> lastExportInfo{*this, "lastExportInfo"};
    CachedValue<SlackSelfUser> me{*this, "me"};
    CachedValue<std::vector<SlackChannel>> channels{*this, "channels"};
    CachedValue<std::vector<SlackUser>> users{*this, "users"};

    // A stored target is offered as it stands, whether or not its channel is still there. Without one there
    // is none: a message must not appear where nobody has chosen to post it.
    void loadConfiguration(Completion<SlackExportConfiguration, IntegrationLoadError> completion);

    // Fails with `unsupportedFormat` before it returns; with `createBodyError` without a text,
    // `createTaskError` without a target, `oauthError` without credentials, and `canceled`. When the service
    // does not take the message: `oauthError` for its sign-in, `connectionError` when it was not reached,
    // else `internalError`; the report has the service's word for why.
    std::shared_ptr<ExportProgress> export_(SlackExportConfiguration configuration,
                                            Completion<void, IntegrationExportError> completion);

    // "user@team": the service does not give the e-mail away.
    std::optional<std::string> loadUserEmail() override;

  private:
    SlackExportConfiguration offered() const;

    void fetchData(StepRun& run, DataCompletion done) override;
    std::optional<SlackFullData> loadedData() const override;

    bool loadsWhatIsMissing() const override { return true; }

    void store(SlackFullData data);

    void postMessage(StepRun& run, const SlackExportConfiguration& configuration,
                     const Step<std::string>& text, StepCompletion<void> done);
    template <class Done> std::shared_ptr<SlackClient> createSlackClient(StepRun& run, Done& done);
};

} // namespace zelto
