#include "apps/lettrino-cli/Paths.h"

#include "foundation/MFolders.h"

MString AbsolutePath(const std::string& file) {
    std::error_code error;
    const std::filesystem::path absolute = std::filesystem::absolute(file, error);
    return FromSystemPath(error ? std::filesystem::path(file) : absolute);
}
