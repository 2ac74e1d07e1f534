#pragma once

namespace zelto {

// The client of a running export, as far as the exporter must know it to cancel.
class CancellableServiceClient {
  public:
    virtual ~CancellableServiceClient() = default;

    virtual void cancelAllOperations() = 0;

    // The same, and lets no request begin any more: what is asked for later ends as a cancelled one does.
    virtual void close() { cancelAllOperations(); }
};

} // namespace zelto
