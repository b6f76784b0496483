// Any bytes give a list of volumes; and each, printed in the tool's form, reads back as one.
#include <cstdint>
#include <cstdlib>
#include <string>

#include "BrellCore/Review/Spotlight.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    for (const brell::VolumeIndexStatus& status :
         brell::MdutilParser::parse({reinterpret_cast<const char*>(data), size})) {
        const auto back = brell::MdutilParser::parse(status.volume + ":\n\t" + status.raw + "\n");
        if (back.size() != 1 || back[0].volume != status.volume || back[0].raw != status.raw) std::abort();
        // Two lines may together look like the one that says so, but not the other way round.
        if (status.indexing && back[0].indexing != status.indexing) std::abort();
    }
    return 0;
}
