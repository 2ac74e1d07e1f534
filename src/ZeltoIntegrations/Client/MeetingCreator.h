#pragma once

namespace zelto {

// Makes online meetings on a meeting service. One that also is an IntegrationsServiceDataFetcher checks the
// account while it is connected.
class MeetingCreator {
  public:
    virtual ~MeetingCreator() = default;
};

} // namespace zelto
