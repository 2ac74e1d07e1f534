#pragma once

namespace zelto {

// Brings files of a cloud drive to disk.
class ServiceImporter {
  public:
    virtual ~ServiceImporter() = default;
};

} // namespace zelto
