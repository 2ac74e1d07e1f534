#pragma once

#include <ZeltoIntegrations/Accounts/ServiceAccountCredentials.h>

namespace zelto {

// From now on the log masks by value every text of the record but its key. Of very many secrets only those
// that were passed last are kept. Any thread.
void maskInLog(const ServiceAccountCredentials& credentials);

} // namespace zelto
