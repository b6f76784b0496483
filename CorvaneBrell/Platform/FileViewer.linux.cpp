#include "CorvaneBrell/Platform/FileViewer.h"

namespace brell {

bool selectInFileViewer(const std::filesystem::path&) {
    return false;
}

}  // namespace brell
