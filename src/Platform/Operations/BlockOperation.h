#pragma once

#include <Platform/Operations/Operation.h>

namespace zelto {

// Runs a block, and destroys it as soon as it has run or can no longer run.
class BlockOperation : public Operation {
  public:
    explicit BlockOperation(std::move_only_function<void()> block);

  protected:
    void main() override;
    void endBeforeStart() override;

  private:
    std::move_only_function<void()> block_;
};

} // namespace zelto
