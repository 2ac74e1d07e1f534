#pragma once

#include <Support/Suites/ExportCancellationSuite.h>
#include <Support/Suites/ExportHostSuite.h>
#include <Support/Suites/ExportStatusSuite.h>
#include <Support/Suites/ExportTargetSuite.h>
#include <Support/Suites/ExportTitleSuite.h>
#include <Support/Suites/LoadedDataSuite.h>

#include <gtest/gtest.h>

// Instantiates for a service what every service has that exports to a chosen target with a title: the suites
// of all its scenarios, those of its usual one, and that of the data which it loads.
#define ZELTO_EXPORT_SUITES(Service, Scenarios, Scenario, Data)                                              \
    INSTANTIATE_TYPED_TEST_SUITE_P(Service, ExportCancellation, Scenarios, NamedByFacts);                    \
    INSTANTIATE_TYPED_TEST_SUITE_P(Service, ExportHost, Scenarios, NamedByFacts);                            \
    INSTANTIATE_TYPED_TEST_SUITE_P(Service, ExportStatus, Scenario, NamedByFacts);                           \
    INSTANTIATE_TYPED_TEST_SUITE_P(Service, ExportTitle, Scenario, NamedByFacts);                            \
    INSTANTIATE_TYPED_TEST_SUITE_P(Service, ExportTarget, Scenario, NamedByFacts);                           \
    INSTANTIATE_TYPED_TEST_SUITE_P(Service, LoadedData, Data, NamedByFacts)
