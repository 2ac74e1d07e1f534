#pragma once

#include <ZeltoIntegrations/Accounts/ServiceAccountCredentials.h>

namespace zelto {

// From now on the log masks by value the record's tokens, secrets and password, and what stands in its
// additional information under the name of a secret. A login name is none. Of very many secrets only those
// that were passed last are kept. Any thread.
void maskInLog(const ServiceAccountCredentials& credentials);

} // namespace zelto
