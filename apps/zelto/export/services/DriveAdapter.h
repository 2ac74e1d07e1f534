#pragma once

#include "export/ServiceAdapter.h"
#include "export/services/DriveFolders.h"

#include <optional>
#include <string>
#include <utility>

namespace zelto::cli {

// What the adapters of drives share: a message becomes a file in a folder, in the root where none is chosen.
template <class E> struct DriveAdapter : WebAdapter<E> {
    using typename WebAdapter<E>::Configuration;
    using TargetData = DriveFolders;

    static constexpr bool needsTarget = false;
    static constexpr bool takesPolicy = true;

    static EditableFields fields(Configuration& configuration) {
        auto fields = usualFields(configuration);
        fields.saveAs = &configuration.selectedExportKind;
        return fields;
    }

    // The exporter itself keeps no folders.
    template <class Done> static void loadTargetData(E& exporter, bool force, Done done) {
        if (!force) {
            return done(exporter.template getCachedValue<DriveFolders>(keptFolders));
        }
        exporter.fetchFolders([&exporter, done = std::move(done)](auto folders) mutable {
            if (!folders) {
                return done(failure(folders.error()));
            }
            const std::optional loaded = foldersOf(*std::move(folders));
            exporter.setCachedValue(loaded, keptFolders);
            done(loaded);
        });
    }

    static std::shared_ptr<ExportProgress> export_(E& exporter, Configuration configuration,
                                                   std::optional<ExportFilePolicy> policy,
                                                   Completion<void, IntegrationExportError> completion) {
        return exporter.export_(std::move(configuration), policy, std::move(completion));
    }

  private:
    static constexpr auto keptFolders = "folders";
};

} // namespace zelto::cli
