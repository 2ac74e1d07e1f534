#include <ZeltoIntegrations/Helpers/ExportServiceHelper.h>

#include <Platform/FileManager.h>
#include <Platform/Text.h>
#include <Platform/UTF8.h>

#include <gtest/gtest.h>

#include <set>

namespace zelto {

namespace {

struct ProductName {
    ServiceType type;
    const char* name; // null for none
};

const ProductName productNames[] = {
    {ServiceType::Reminders, "Reminders"},
    {ServiceType::Calendar, nullptr},
    {ServiceType::OmniFocus, "OmniFocus"},
    {ServiceType::Type2Do, "2Do"},
    {ServiceType::Things, "Things"},
    {ServiceType::TodoIst, "Todoist"},
    {ServiceType::Asana, "Asana"},
    {ServiceType::OneNote, "OneNote"},
    {ServiceType::Evernote, "Evernote"},
    {ServiceType::Trello, "Trello"},
    {ServiceType::Bear, "Bear"},
    {ServiceType::MeisterTask, "MeisterTask"},
    {ServiceType::TickTick, "TickTick"},
    {ServiceType::Agenda, "Agenda"},
    {ServiceType::Slack, "Slack"},
    {ServiceType::Hubspot, "Hubspot"},
    {ServiceType::Notion, "Notion"},
    {ServiceType::GoogleDrive, "GoogleDrive"},
    {ServiceType::OneDrive, "OneDrive"},
    {ServiceType::Box, "Box"},
    {ServiceType::Dropbox, "Dropbox"},
    {ServiceType::iCloudDrive, "iCloudDrive"},
    {ServiceType::Instapaper, "Instapaper"},
    {ServiceType::OneDriveBusiness, "OneDriveBusiness"},
    {ServiceType::iOSShare, "iOSShare"},
    {ServiceType::Albums, "Albums"},
    {ServiceType::Zelto, "Zelto"},
    {ServiceType::iOSSharePDF, "iOSSharePDF"},
    {ServiceType::G2Meeting, "GoTo"},
    {ServiceType::ZoomMeeting, "Zoom"},
    {ServiceType::MicrosoftTeams, "Microsoft Teams"},
};

} // namespace

TEST(ExportServiceHelper, EachServiceHasItsProductName) {
    for (const auto& row : productNames) {
        const auto name = ExportServiceHelper::getServiceProductNameFor(row.type);
        EXPECT_EQ(name, row.name ? std::optional<std::string>(row.name) : std::nullopt) << nameOf(row.type);
    }
    EXPECT_EQ(std::size(productNames), casesOf<ServiceType>().size());
}

TEST(ExportServiceHelper, AnIdentifierIsTheProductNameAPlusAndTheUserNameAsItStands) {
    for (const auto& row : productNames) {
        if (row.name) {
            const std::string name = row.name;
            EXPECT_EQ(ExportServiceHelper::getServiceIdentifierFor(row.type, "alice"), name + "+alice");
            EXPECT_EQ(ExportServiceHelper::getServiceIdentifierFor(row.type, " a+b/c\n"), name + "+ a+b/c\n");
            EXPECT_EQ(ExportServiceHelper::getServiceIdentifierFor(row.type, ""), name + "+");
            EXPECT_EQ(ExportServiceHelper::getServiceIdentifierFor(row.type, std::nullopt), name);
        }
    }
}

TEST(ExportServiceHelper, AServiceWithoutAProductNameGetsARandomIdentifierEachTime) {
    std::set<std::string> seen;
    for (int round = 0; round < 10; ++round) {
        const auto identifier = ExportServiceHelper::getServiceIdentifierFor(ServiceType::Calendar, "alice");
        EXPECT_EQ(identifier.size(), 36u);
        seen.insert(identifier);
    }
    EXPECT_EQ(seen.size(), 10u);
}

TEST(ExportServiceHelper, TheMediaTypeComesFromTheExtension) {
    EXPECT_EQ(ExportServiceHelper::mimeType("/a/b.pdf"), "application/pdf");
    EXPECT_EQ(ExportServiceHelper::mimeType("/a/b.PDF"), "application/pdf");
    EXPECT_EQ(ExportServiceHelper::mimeType("b.txt"), "text/plain");
    EXPECT_EQ(ExportServiceHelper::mimeType("archive.tar.png"), "image/png");
}

TEST(ExportServiceHelper, AnUnknownOrAbsentExtensionIsAnOctetStream) {
    for (const auto* path : {"", "/a/b", "/a.pdf/b", "a.nosuchextension", "a.", ".pdf"}) {
        EXPECT_EQ(ExportServiceHelper::mimeType(path), "application/octet-stream") << path;
    }
}

TEST(ExportServiceHelper, ASlashInATitleBecomesOneUnderscoreARun) {
    EXPECT_EQ(ExportServiceHelper::fileName("a/b", ".x"), "a_b.x");
    EXPECT_EQ(ExportServiceHelper::fileName("a///b//c", ".x"), "a_b_c.x");
    EXPECT_EQ(ExportServiceHelper::fileName("/a/", ""), "_a_");
    EXPECT_EQ(ExportServiceHelper::fileName("////", ".x"), "_.x");
    EXPECT_EQ(ExportServiceHelper::fileName("a_/b__c", ".x"), "a__b__c.x");
    EXPECT_EQ(ExportServiceHelper::fileName("../../etc/passwd", ".x"), ".._.._etc_passwd.x");
}

TEST(ExportServiceHelper, AccentedLatinLettersLoseTheirAccents) {
    EXPECT_EQ(ExportServiceHelper::fileName("Übergrößen à la carte, señor", ".x"),
              "Ubergroßen a la carte, senor.x");
    EXPECT_EQ(ExportServiceHelper::fileName("e\u0301", ".x"), "e.x");
}

TEST(ExportServiceHelper, ACyrillicTitleComesOutInLatinLetters) {
    EXPECT_EQ(ExportServiceHelper::fileName("Привет мир", ".x"), "Privet mir.x");
}

TEST(ExportServiceHelper, ANameThatIsNotSanitisedStaysAsItIs) {
    EXPECT_EQ(ExportServiceHelper::fileName("a//é", ".x", false), "a//é.x");
    EXPECT_EQ(ExportServiceHelper::pdfName("a//é", false), "a//é.pdf");
    EXPECT_EQ(ExportServiceHelper::txtName("a//é", false), "a//é.txt");
}

TEST(ExportServiceHelper, ATextThatIsNotUTF8KeepsItsBytes) {
    EXPECT_EQ(ExportServiceHelper::fileName("a/\xFF", ".x"), "a_\xFF.x");
}

TEST(ExportServiceHelper, PdfAndTextNamesBringTheirExtensions) {
    EXPECT_EQ(ExportServiceHelper::pdfName("Ré/sumé"), "Re_sume.pdf");
    EXPECT_EQ(ExportServiceHelper::txtName("Ré/sumé"), "Re_sume.txt");
    EXPECT_EQ(ExportServiceHelper::pdfName(""), ".pdf");
}

TEST(ExportServiceHelper, NoCharacterBecomesASlashOnTheWay) {
    for (char32_t block = 0; block <= 0x10FFFF; block += 256) {
        if (block >= 0xD800 && block <= 0xDFFF) {
            continue;
        }
        std::string text;
        for (char32_t point = block; point < block + 256; ++point) {
            appendUTF8(text, point);
            text += ' ';
        }
        ASSERT_FALSE(ExportServiceHelper::fileName(text, "").contains('/'))
            << static_cast<std::uint32_t>(block);
    }
}

TEST(ExportServiceHelper, PathsLieInFreshFoldersOfTheTemporaryDirectory) {
    const auto pdf = ExportServiceHelper::pdfFilePath("Größe/1");
    const auto again = ExportServiceHelper::pdfFilePath("Größe/1");
    const auto txt = ExportServiceHelper::txtFilePath("Größe/1");
    ASSERT_TRUE(pdf && again && txt);
    EXPECT_EQ(pdf->filename(), "Große_1.pdf");
    EXPECT_EQ(txt->filename(), "Große_1.txt");
    EXPECT_NE(*pdf, *again);
    EXPECT_EQ(pdf->parent_path().parent_path(), *FileManager::temporaryDirectory());
    EXPECT_TRUE(std::filesystem::is_directory(pdf->parent_path()));
    EXPECT_TRUE(std::filesystem::is_empty(pdf->parent_path()));
    EXPECT_EQ(ExportServiceHelper::pdfFilePath("ä", false)->filename(), "ä.pdf");
}

TEST(ExportServiceHelper, AFileCanBeMadeAtThePathOfAnyTitle) {
    std::string controls;
    for (char each = 0; each < 32; ++each) {
        controls += each;
    }
    std::string family;
    for (int round = 0; round < 100; ++round) {
        family += "👨‍👩‍👧‍👦";
    }
    for (const auto& title :
         {std::string(), std::string("/"), std::string("////"), std::string("   "), std::string("."),
          std::string(".."), std::string("../../x"), controls, std::string(10000, 'x'), family,
          std::string("שלום עולם"), std::string("-rf"), std::string("$(x)"), std::string(";x"),
          std::string("'\""), std::string("\xFF\xFE"), std::string("\u202Egnp.exe")}) {
        for (const bool sanitise : {true, false}) {
            const auto path = ExportServiceHelper::pdfFilePath(title, sanitise);
            ASSERT_TRUE(path) << escapeControlCharacters(title);
            EXPECT_TRUE(path->is_absolute());
            EXPECT_EQ(path->extension() == ".pdf" || path->filename() == ".pdf", true) << *path;
            EXPECT_TRUE(FileManager::writeFileAtomically(*path, "content")) << *path;
        }
    }
}

TEST(ExportServiceHelper, ATextOfBlanksAndLineEndsIsEmpty) {
    EXPECT_FALSE(ExportServiceHelper::isNotEmpty(std::nullopt));
    EXPECT_FALSE(ExportServiceHelper::isNotEmpty(""));
    EXPECT_FALSE(ExportServiceHelper::isNotEmpty(" \t\r\n  \n"));
    EXPECT_FALSE(ExportServiceHelper::isNotEmpty("\u00A0\u2003\u3000\u0085\u2028\u2029"));
    EXPECT_TRUE(ExportServiceHelper::isNotEmpty(" \n. "));
    EXPECT_TRUE(ExportServiceHelper::isNotEmpty("0"));
}

TEST(ExportServiceHelper, ABackslashBeforeAQuoteGivesThreeBackslashesBeforeTheQuote) {
    EXPECT_EQ(ExportServiceHelper::escapeJSONString(R"(a\"b)"), R"(a\\\"b)");
}

TEST(ExportServiceHelper, EachCharacterThatHandMadeJSONCannotHoldIsEscaped) {
    EXPECT_EQ(ExportServiceHelper::escapeJSONString("\\"), R"(\\)");
    EXPECT_EQ(ExportServiceHelper::escapeJSONString("\""), R"(\")");
    EXPECT_EQ(ExportServiceHelper::escapeJSONString("/"), R"(\/)");
    EXPECT_EQ(ExportServiceHelper::escapeJSONString("\n"), R"(\n)");
    EXPECT_EQ(ExportServiceHelper::escapeJSONString("\b"), R"(\b)");
    EXPECT_EQ(ExportServiceHelper::escapeJSONString("\f"), R"(\f)");
    EXPECT_EQ(ExportServiceHelper::escapeJSONString("\r"), R"(\r)");
    EXPECT_EQ(ExportServiceHelper::escapeJSONString("\t"), R"(\t)");
    EXPECT_EQ(ExportServiceHelper::escapeJSONString("\\n"), R"(\\n)");
    EXPECT_EQ(ExportServiceHelper::escapeJSONString("\x01\x1F é 😀 'x'"), "\x01\x1F é 😀 'x'");
    EXPECT_EQ(ExportServiceHelper::escapeJSONString(""), "");
}

TEST(ExportServiceHelper, TheLastUsedContentTypeIsOfferedWhileItIsSupported) {
    using enum IntegrationExportContentType;
    const IntegrationExportContentTypes types = {backLink, {backLink, emailBacklink}};
    EXPECT_EQ(ExportServiceHelper::saveAs(emailBacklink, types), emailBacklink);
    EXPECT_EQ(ExportServiceHelper::saveAs(backLink, types), backLink);
    EXPECT_EQ(ExportServiceHelper::saveAs(pdf, types), backLink);
    EXPECT_EQ(ExportServiceHelper::saveAs(std::nullopt, types), backLink);
}

TEST(ExportServiceHelper, TheDefaultContentTypeIsOfferedEvenIfItIsNotAmongTheSupportedOnes) {
    using enum IntegrationExportContentType;
    EXPECT_EQ(ExportServiceHelper::saveAs(plainText, {pdf, {}}), pdf);
}

} // namespace zelto
