#include "CorvaneBrell/Window/Trash.h"

#include <QFile>
#include <stdexcept>

#include "CorvaneBrell/Window/QtText.h"

namespace brell {

void moveToTrash(const std::filesystem::path& path) {
    QFile file(qt(path.string()));
    if (file.moveToTrash()) return;
    std::string reason = utf8(file.errorString());
    if (reason.ends_with('.')) reason.pop_back();
    throw std::runtime_error("the Trash did not take it: " + reason);
}

}  // namespace brell
