#pragma once

#include <ZeltoIntegrations/ServiceAccountCredentials.h>

namespace zelto {

// From now on the log masks the record's seven secret fields by value. Of very many only the latest are kept.
// Any thread.
void maskInLog(const ServiceAccountCredentials& credentials);

} // namespace zelto
