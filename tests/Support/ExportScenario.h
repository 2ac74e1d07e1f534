#pragma once

#include <concepts>
#include <set>
#include <string>
#include <vector>

namespace zelto {

// An export to a service on the web that succeeds, which the suites in `Suites` repeat and disturb: of what
// it is made, and what has to happen. `prepare` gives a new export the attachments "a.txt", "b.txt" and
// "c.txt" where the service takes files, and begins with asking the host. Each suite says which further facts
// it needs.
template <class T>
concept ExportScenario = requires(typename T::Export& one) {
    typename T::Server;
    { T::name } -> std::convertible_to<std::string>; // in the names of the tests
    T::prepare(one);
    { T::events() } -> std::same_as<std::vector<std::string>>; // as CancelledExport lists them
    { T::made() } -> std::same_as<std::vector<std::string>>;   // as ServiceServer lists it
};

// A scenario of a service that takes files.
template <class ServiceExport, class ServiceServer> struct ScenarioWithFiles {
    using Export = ServiceExport;
    using Server = ServiceServer;

    static void prepare(Export& one) {
        for (const auto* file : {"a.txt", "b.txt", "c.txt"}) {
            one.attach(file);
        }
    }
};

// The operations of the host that the export asks for.
template <ExportScenario Scenario> std::set<std::string> hostOperations() {
    const std::set<std::string> others = {"started", "request",    "progress", "analytics",
                                          "storage", "completion", "ended"};
    std::set<std::string> operations;
    for (const auto& event : Scenario::events()) {
        if (!others.contains(event)) {
            operations.insert(event);
        }
    }
    return operations;
}

// A new export of the scenario.
template <ExportScenario Scenario> class Prepared final : public Scenario::Export {
  public:
    Prepared() { Scenario::prepare(*this); }
};

// The list, and behind it the list again.
inline std::vector<std::string> twice(std::vector<std::string> list) {
    const auto once = list;
    list.insert(list.end(), once.begin(), once.end());
    return list;
}

// Names the tests of a suite by the name of their facts.
struct NamedByFacts {
    template <class Facts> static std::string GetName(int) { return Facts::name; }
};

} // namespace zelto
