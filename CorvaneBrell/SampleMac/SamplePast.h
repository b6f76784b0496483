// Some weeks with Brell behind a sample Mac, so that its window has something of every state to show.
#pragma once

#include <filesystem>

#include "BrellCore/Support/TimeStamp.h"
#include "CorvaneBrell/SampleMac/SampleMac.h"

namespace brell {

// Gives the Mac and the journal of this directory a past that ends an hour before now: changes on most pages,
// one of them made on an older macOS, one restored, one that drifted, one that was interrupted and an agent
// that was turned off; then a key that is set for this host alone, one that a profile forces and one that
// holds a dictionary. The journal undoes everything but these three.
//
// Leaves a Mac that has a past, and a journal that holds anything, as they are. Stores that were opened
// before do not know of the host's and the profile's keys. Raises an exception derived from std::exception
// when something can't be read or written.
void makePast(const SampleMac& sample, const std::filesystem::path& journalDirectory, TimeStamp now);

}  // namespace brell
