// An empty folder that is the current one for as long as it lives, and is gone with all that is in
// it afterwards.
#pragma once

#include <windows.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>

class ScratchFolder {
public:
    ScratchFolder() : before(std::filesystem::current_path()), folder(newFolder()) {
        std::filesystem::remove_all(folder); // left by a process of the same id that died
        std::filesystem::create_directories(folder);
        std::filesystem::current_path(folder);
    }
    ~ScratchFolder() {
        std::filesystem::current_path(before);
        makeWritable(folder);
        std::error_code ignored;
        std::filesystem::remove_all(folder, ignored);
    }
    ScratchFolder(const ScratchFolder&) = delete;
    ScratchFolder& operator=(const ScratchFolder&) = delete;

    // Without a backslash at its end.
    std::string path() const { return folder.string(); }

    static void write(const std::string& name, const std::string& content) {
        std::ofstream(name, std::ios::binary) << content;
    }

    static std::string read(const std::string& name) {
        std::ifstream file(name, std::ios::binary);
        return {std::istreambuf_iterator<char>(file), {}};
    }

    static bool exists(const std::string& name) {
        return GetFileAttributesA(name.c_str()) != INVALID_FILE_ATTRIBUTES;
    }

private:
    static std::filesystem::path newFolder() {
        static int count = 0;
        const auto process = std::to_string(GetCurrentProcessId());
        return std::filesystem::temp_directory_path() /
               ("scratch-" + process + "-" + std::to_string(++count));
    }

    static void makeWritable(const std::filesystem::path& root) {
        SetFileAttributesW(root.c_str(), FILE_ATTRIBUTE_NORMAL);
        for (const auto& entry : std::filesystem::recursive_directory_iterator(root))
            SetFileAttributesW(entry.path().c_str(), FILE_ATTRIBUTE_NORMAL);
    }

    std::filesystem::path before;
    std::filesystem::path folder;
};
