#pragma once

// For the sources of this folder only: brings in Boost.Container.

#include <Platform/Operations/Operation.h>

#include <boost/container/small_vector.hpp>

#include <cstddef>
#include <functional>
#include <memory>

namespace zelto {

// Kept apart, since most operations have none of it.
struct Operation::Links {
    // Both are empty once it was removed or released unfinished, so that the indices of the others stay.
    struct Dependency {
        std::weak_ptr<Operation> operation;
        std::shared_ptr<Operation> finished;
    };

    struct Dependant {
        std::weak_ptr<Operation> operation;
        // The index of the dependency in the dependant's list.
        std::size_t place;
    };

    void addDependant(Dependant dependant);

    boost::container::small_vector<Dependency, 1> dependencies;
    // May contain operations that are gone or no longer depend on this one.
    boost::container::small_vector<Dependant, 1> dependants;
    std::move_only_function<void()> completionBlock;
};

} // namespace zelto
