#pragma once

#include <optional>
#include <span>
#include <string>
#include <string_view>

namespace zelto {

// The identifiers and secrets of the clients that are registered at the services. They come from the
// registration file that was named when this was built (ZELTO_CLIENTS_FILE), and lie scrambled in the
// program; without a file they are placeholders, which no real service takes. Read once, on first use; the
// log masks the secrets from then on. Any thread.
struct Secrets {
    Secrets() = delete;

    static const std::string& asanaClientKey();
    static const std::string& asanaClientSecret();
    static const std::string& dropboxClientID();
    static const std::string& dropboxClientSecret();
    static const std::string& evernoteConsumerKey();
    static const std::string& evernoteConsumerSecret();
    static const std::string& googleDriveClientID();
    static const std::string& googleDriveClientSecret();
    static const std::string& goToClientKey();
    static const std::string& goToClientSecret();
    static const std::string& hubspotClientID();
    static const std::string& hubspotClientSecret();
    static const std::string& meisterTaskClientKey();
    static const std::string& meisterTaskClientSecret();
    static const std::string& microsoftTeamsClientKey();
    static const std::string& microsoftTeamsClientSecret();
    static const std::string& notionClientKey();
    static const std::string& notionClientSecret();
    static const std::string& oneNoteClientKey();
    static const std::string& oneNoteClientSecret();
    static const std::string& slackClientID();
    static const std::string& slackClientSecret();
    static const std::string& tickTickClientKey();
    static const std::string& tickTickClientSecret();
    static const std::string& todoistClientKey();
    static const std::string& todoistClientSecret();
    static const std::string& trelloClientKey();
    static const std::string& trelloClientSecret();
    static const std::string& zoomClientKey();
    static const std::string& zoomClientSecret();

    // Puts a client of one's own in place of the one that was built in; what is absent stays. False, and
    // without effect, when the name is none of serviceNames() or a value was read before.
    static bool overrideClient(std::string_view serviceName, std::optional<std::string> clientID,
                               std::optional<std::string> clientSecret);

    // "Asana", "Dropbox" and so on, as the constants' types begin; also the keys of the registration file.
    static std::span<const std::string_view> serviceNames();

    // Where the "web" redirects lie: the origin of the product's web site, without a "/" at the end.
    static const std::string& webSite();
};

} // namespace zelto
