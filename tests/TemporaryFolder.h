// A folder of a test's own, removed with all that is in it.
#pragma once

#include "foundation/MFolders.h"
#include "foundation/MString.h"

#include <stdlib.h>

#include <filesystem>
#include <fstream>
#include <string>
#include <string_view>

class TemporaryFolder {
public:
    std::filesystem::path path;

    TemporaryFolder() {
        std::string name = (std::filesystem::temp_directory_path() / "lettrino-test-XXXXXX").string();
        path = mkdtemp(name.data());
    }
    TemporaryFolder(const TemporaryFolder&) = delete;
    TemporaryFolder& operator=(const TemporaryFolder&) = delete;
    ~TemporaryFolder() {
        std::error_code error;
        std::filesystem::remove_all(path, error);
    }

    MString File(const char* name) const { return FromSystemPath(path / name); }

    MString Write(const char* name, std::string_view bytes) const {
        std::filesystem::create_directories((path / name).parent_path());
        std::ofstream(path / name, std::ios::binary) << bytes;
        return File(name);
    }

    std::string Read(const char* name) const {
        std::ifstream file(path / name, std::ios::binary);
        return {std::istreambuf_iterator<char>(file), {}};
    }
};
