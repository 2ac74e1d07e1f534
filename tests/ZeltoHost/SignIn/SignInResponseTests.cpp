#include <ZeltoHost/SignIn/SignInResponse.h>

#include <gtest/gtest.h>

namespace zelto {

namespace {

constexpr auto mark = "the-mark";

// The interpretation of a response: "value X", the error's text, or "ignored".
std::string outcome(ServiceType type, std::string_view form) {
    const SignInExpectation expectation(signInServiceFor(type).value(), mark);
    const auto items = parseFormItems(form);
    const auto response = items ? expectation.read(*items) : std::nullopt;
    if (!response) {
        return "ignored";
    }
    return *response ? "value " + (*response)->value : response->error().message;
}

constexpr auto code = ServiceType::GoogleDrive;
constexpr auto implicit = ServiceType::MeisterTask;
constexpr auto oauth1 = ServiceType::Trello;

} // namespace

TEST(SignInResponse, IsTheValueOfItsFlowUnderTheRightMark) {
    EXPECT_EQ(outcome(code, "code=4%2F0A&state=the-mark&scope=a+b"), "value 4/0A");
    EXPECT_EQ(outcome(implicit, "access_token=t&token_type=bearer&state=the-mark&expires_in=60"), "value t");
    EXPECT_EQ(outcome(oauth1, "oauth_token=the-mark&oauth_verifier=v"), "value v");
}

TEST(SignInResponse, OfAnotherSignInIsIgnored) {
    for (const auto* form :
         {"", "code=x", "state=the-mark", "code=&state=the-mark", "code=x&state=", "code=x&state=the-marK",
          "code=x&state=the-mark2", "code=x&state=the-mark&state=the-mark", "code=x&code=y&state=the-mark",
          "code=x&State=the-mark", "code=x&state=the-mark&a=1&a=2", "code=%zz&state=the-mark",
          "code=%ff&state=the-mark", "error=access_denied", "error=access_denied&state=other",
          "access_token=t&state=the-mark"}) {
        EXPECT_EQ(outcome(code, form), "ignored") << form;
    }
    EXPECT_EQ(outcome(implicit, "code=x&state=the-mark"), "ignored");
    EXPECT_EQ(outcome(oauth1, "oauth_token=other&oauth_verifier=v"), "ignored");
    EXPECT_EQ(outcome(oauth1, "oauth_verifier=v&state=the-mark"), "ignored");
}

TEST(SignInResponse, FromAnotherIssuerIsIgnored) {
    const std::string form = "code=x&state=the-mark&iss=";
    EXPECT_EQ(outcome(code, form + "https://accounts.google.com"), "value x");
    EXPECT_EQ(outcome(code, form + "https%3A%2F%2Faccounts.google.com%2Ftenant"), "value x");
    for (const auto* issuer :
         {"https://app.asana.com", "http://accounts.google.com", "accounts.google.com", "",
          "https://accounts.google.com.evil.example", "https://accounts.google.com:444",
          "https://accounts.google.com@evil.example"}) {
        EXPECT_EQ(outcome(code, form + issuer), "ignored") << issuer;
    }
}

TEST(SignInResponse, WithoutAllOfItsPartsWasCutWhenItWasCopied) {
    const auto isCut = [](ServiceType type, std::string_view form) {
        const SignInExpectation expectation(signInServiceFor(type).value(), mark);
        return expectation.isCut(parseFormItems(form).value());
    };
    for (const auto* form : {"", "code=x", "code=x&state=the", "state=the-mark", "code=&state=the-mark"}) {
        EXPECT_TRUE(isCut(code, form)) << form;
    }
    for (const auto* form :
         {"code=x&state=the-mark", "error=access_denied&state=the-mark", "code=x&state=other"}) {
        EXPECT_FALSE(isCut(code, form)) << form;
    }
    EXPECT_TRUE(isCut(oauth1, "oauth_token=the-mark&oauth_ver"));
    EXPECT_FALSE(isCut(oauth1, "oauth_token=the-mark")) << "which denies";
}

TEST(SignInResponse, ThatRefusesIsReportedWithTheServicesOwnWordsCleaned) {
    const std::string start = "state=the-mark&error=user_is_odd&error_description=";
    EXPECT_EQ(outcome(code, start + "You%20may%0anot%1b%5b2J."),
              "GoogleDrive refused the sign-in (user_is_odd). It says: \"You may not [2J.\".");
    EXPECT_EQ(outcome(code, start + std::string(400, 'a')),
              "GoogleDrive refused the sign-in (user_is_odd). It says: \"" + std::string(300, 'a') + "\".");
    EXPECT_EQ(outcome(code, start + "%20"), "GoogleDrive refused the sign-in (user_is_odd).");
    EXPECT_EQ(outcome(code, start + "a&error_description=b"), "ignored");
}

TEST(SignInResponse, ThatRefusesIsReportedInPlainWords) {
    const std::string form = "state=the-mark&error=";
    EXPECT_EQ(outcome(code, form + "access_denied"), "The access was denied on the page of GoogleDrive.");
    EXPECT_EQ(outcome(code, form + "invalid_scope"),
              "GoogleDrive does not grant the permissions that are asked for (invalid_scope).");
    EXPECT_EQ(
        outcome(code, form + "redirect_uri_mismatch"),
        "GoogleDrive does not know this redirect address; register it there, or name the registered one "
        "(redirect_uri_mismatch).");
    EXPECT_EQ(outcome(code, form + "server_error"),
              "GoogleDrive has trouble of its own; try again later (server_error).");
    EXPECT_EQ(outcome(code, form + "user_is_odd-1"), "GoogleDrive refused the sign-in (user_is_odd-1).");
    EXPECT_EQ(outcome(code, form + "%1b]52;c;x%07"), "GoogleDrive refused the sign-in.");
    EXPECT_EQ(outcome(code, form + std::string(65, 'a')), "GoogleDrive refused the sign-in.");
    EXPECT_EQ(outcome(implicit, "state=the-mark&error=access_denied"),
              "The access was denied on the page of MeisterTask.");
    EXPECT_EQ(outcome(oauth1, "oauth_token=the-mark"), "The access was denied on the page of Trello.");
}

} // namespace zelto
