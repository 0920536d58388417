// A folder for the files of one test, removed at its end.
#pragma once

#include "foundation/MFolders.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <span>
#include <string>
#include <vector>

class TemporaryFolder {
public:
    TemporaryFolder()
        : folder(std::filesystem::path(testing::TempDir()) / ("lettrino-imaging-" + std::to_string(getpid()))) {
        std::filesystem::create_directories(folder);
    }
    TemporaryFolder(const TemporaryFolder&) = delete;
    TemporaryFolder& operator=(const TemporaryFolder&) = delete;
    ~TemporaryFolder() {
        std::error_code error;
        std::filesystem::remove_all(folder, error);
    }

    MString Path(const std::string& name) const { return FromSystemPath(folder / name); }

    MString Write(const std::string& name, std::span<const std::uint8_t> bytes) const {
        std::ofstream file(folder / name, std::ios::binary);
        for (const std::uint8_t byte : bytes)
            file.put(static_cast<char>(byte));
        return Path(name);
    }

    std::vector<std::uint8_t> Read(const std::string& name) const {
        std::ifstream file(folder / name, std::ios::binary);
        return {std::istreambuf_iterator<char>(file), {}};
    }

private:
    std::filesystem::path folder;
};
