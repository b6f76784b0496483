#include "CorvaneBrell/Platform/Symbols.h"

namespace brell {

std::optional<SymbolImage> systemSymbol(const std::string&, int, double) {
    return std::nullopt;
}

}  // namespace brell
