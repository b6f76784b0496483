// The Markdown document that tells what changed on this Mac.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "BrellCore/Catalog/TweakCatalog.h"
#include "BrellCore/Journal/Journal.h"

namespace brell::Report {

inline constexpr std::string_view fileName = "corvane-brell-report.md";

// drifted: the applied entries whose keys no longer hold what was written; lack: why changes are missing from
// the journal, without its full stop. Raises JournalError when the journal can't be read.
std::string markdown(Journal& journal, const TweakCatalog& catalog, std::string_view osVersion,
                     TimeStamp date, const std::vector<JournalEntry>& drifted,
                     const std::optional<std::string>& lack = {});

}  // namespace brell::Report
