#pragma once

// A folder of a benchmark's own, which is the current one while it lives.

#include <cstdlib>
#include <filesystem>
#include <string>
#include <system_error>

struct scratch {
    scratch() : before(std::filesystem::current_path())
    {
        std::string name = (std::filesystem::temp_directory_path() / "lang-bench-XXXXXX").string();
        if (mkdtemp(name.data()) == nullptr)
            std::abort();
        folder = name;
        std::filesystem::current_path(folder);
    }
    ~scratch()
    {
        std::error_code ignored;
        std::filesystem::current_path(before, ignored);
        std::filesystem::remove_all(folder, ignored);
    }
    scratch(const scratch &) = delete;
    scratch &operator=(const scratch &) = delete;
    std::filesystem::path before, folder;
};
