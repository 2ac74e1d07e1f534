#pragma once

#include <zelto/ServiceCommands.h>

#include <algorithm>
#include <string>

namespace zelto {

// What is printed where an attachment is not taken, for CommandFacts of a service that takes files, which
// also have
//
//     static constexpr auto madeBeforeUpload;     // as they are listed: what an export has made when its
//     second
//                                                 // attachment "Agenda.txt" is uploaded,
//     static constexpr auto madeBeforeUploadData; // and in JSON
template <CommandFacts Facts> class UploadCommands : public ServiceCommands<Facts> {};

TYPED_TEST_SUITE_P(UploadCommands);

TYPED_TEST_P(UploadCommands, ListWhatWasMadeBeforeAnUploadFailed) {
    this->service.respondTo("filename=\"Agenda.txt\"", PlayedResponse::json("no", 429));
    const auto document = this->expectFailure(
        this->exportOf({"--attach", "all"}),
        {1, "uploadAttachmentError",
         this->name +
             " did not take the file \"Agenda.txt\": it had too many requests; wait some minutes (\"no\"). On " +
             this->name + " already, and made again by another export: " + TypeParam::madeBeforeUpload + ".",
         this->exportOf({"--attach", "all", "--verbose"})});
    EXPECT_EQ(this->textOf(document, "made"), TypeParam::madeBeforeUploadData);
    EXPECT_EQ(this->textOf(document, "refused"),
              R"([{"kind":"file","name":"Agenda.txt","reason":"toManyRequests","words":"no"}])");
}

TYPED_TEST_P(UploadCommands, NameAFileThatIsTooLargeAndItsSize) {
    const std::string content(1234, 'a');
    const auto mail = this->zelto.home.write(
        "large.eml",
        "Subject: T\r\nMessage-ID: <id1@harbour.example>\r\nContent-Type: multipart/mixed; boundary=x\r\n\r\n--x\r\n\r\nText\r\n--x\r\n"
        "Content-Disposition: attachment; filename=Agenda.txt\r\n\r\n" +
            content + "\r\n--x--\r\n");
    auto arguments = this->exportOf({"--attach", "all"});
    std::ranges::replace(arguments, this->mail, mail.string());
    this->service.respondTo("filename=\"Agenda.txt\"", PlayedResponse::json("no", 413));
    const auto outcome = this->run(arguments);
    EXPECT_EQ(outcome.status, 1);
    EXPECT_NE(outcome.errorOutput.find(this->name +
                                       " did not take the file \"Agenda.txt\": the file, of 1234 bytes, is "
                                       "larger than " +
                                       this->name + " takes (\"no\")."),
              std::string::npos)
        << outcome.errorOutput;
    arguments.emplace_back("--json");
    EXPECT_EQ(this->textOf(this->run(arguments).json(), "refused"),
              R"([{"kind":"file","name":"Agenda.txt","reason":"apiCallError","words":"no",)"
              R"("tooLarge":true,"size":1234}])");
}

REGISTER_TYPED_TEST_SUITE_P(UploadCommands, ListWhatWasMadeBeforeAnUploadFailed,
                            NameAFileThatIsTooLargeAndItsSize);

} // namespace zelto
