// Names for the changes of a journal, as people know them.
#pragma once

#include <map>
#include <mutex>
#include <string>
#include <vector>

#include "BrellCore/Background/AgentFolder.h"
#include "BrellCore/Background/LoginItems.h"
#include "BrellCore/Catalog/TweakCatalog.h"
#include "BrellCore/Journal/JournalEntry.h"

namespace brell {

// A tweak has its title, an agent the name that it has among the login items as far as that was learned, and
// else by its label. Any thread may call it.
class ChangeTitles {
public:
    // The catalog must outlive the titles. Of job files only those in this folder are read.
    explicit ChangeTitles(const TweakCatalog& catalog, AgentFolder agents = AgentFolder({}));

    const TweakCatalog& catalog() const { return catalog_; }

    void learn(const std::vector<LoginItemRow>& rows);
    // Reads the job file of an agent that nothing is known of.
    void learn(const JournalEntry& entry);

    // To be shown: in one line, and cut.
    std::string of(const JournalEntry& entry) const;

private:
    bool knows(const std::string& label) const;

    const TweakCatalog& catalog_;
    const AgentFolder agents_;
    mutable std::mutex mutex_;                  // guards the names
    std::map<std::string, std::string> names_;  // of agents, by label
};

}  // namespace brell
