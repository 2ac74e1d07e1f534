#pragma once

namespace zelto {

// The client of a running export, as far as the exporter must know it to cancel.
class CancellableServiceClient {
  public:
    virtual ~CancellableServiceClient() = default;

    virtual void cancelAllOperations() = 0;
};

} // namespace zelto
