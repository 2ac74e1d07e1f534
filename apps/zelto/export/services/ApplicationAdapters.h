#pragma once

#include "export/ServiceAdapter.h"

#include <ZeltoIntegrations/Agenda/AgendaExporter.h>
#include <ZeltoIntegrations/Bear/BearExporter.h>
#include <ZeltoIntegrations/OmniFocus/OmniFocusExporter.h>
#include <ZeltoIntegrations/Things/ThingsExporter.h>
#include <ZeltoIntegrations/TwoDo/TwoDoExporter.h>

namespace zelto::cli {

// The applications that are reached by a URL scheme.
using AgendaAdapter = ApplicationAdapter<AgendaExporter>;
using BearAdapter = ApplicationAdapter<BearExporter>;
using OmniFocusAdapter = ApplicationAdapter<OmniFocusExporter>;
using ThingsAdapter = ApplicationAdapter<ThingsExporter>;
using TwoDoAdapter = ApplicationAdapter<TwoDoExporter>;

} // namespace zelto::cli
