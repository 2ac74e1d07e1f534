#pragma once

#include <ZeltoIntegrations/Accounts/ServiceAccountCredentials.h>
#include <ZeltoIntegrations/Client/FileDownload.h>
#include <ZeltoIntegrations/Client/ServiceClientError.h>
#include <ZeltoIntegrations/Import/DownloadFileInfo.h>

#include <Support/Completed.h>
#include <Support/MemoryKeyChain.h>
#include <Support/TemporaryFolder.h>

#include <gtest/gtest.h>

#include <filesystem>
#include <memory>

namespace zelto {

// A client of a drive with the access token "token", beside a stand-in of its service.
template <class Client, class Authoriser, class Server> class DriveClientTest : public testing::Test {
  protected:
    static std::shared_ptr<Client> client() {
        ServiceAccountCredentials credentials;
        credentials.accessToken = "token";
        credentials.expirationDate = Date::distantFuture();
        return std::make_shared<Client>(std::make_shared<Authoriser>(credentials), JSONDecoder());
    }

    // What a call of the client completes with; the function gets the client and the completion.
    template <class T, class Call> static ServiceResult<T> performed(Call call) {
        Completed<ServiceResult<T>> completed;
        call(*client(), completed.template callback<ServiceCompletion<T>>());
        return completed.value();
    }

    DownloadResult download(const std::string& fileId) {
        Completed<DownloadResult> completed;
        client()->downloadFile({fileId, "a.bin"}, folder / "a.bin", nullptr,
                               completed.callback<DownloadCompletion>());
        return completed.value();
    }

    MemoryKeyChain keyChain;
    TemporaryFolder folder;
    Server service;
};

} // namespace zelto
