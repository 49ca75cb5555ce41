/* A folder of a test's own that goes with the object. */
#ifndef TESTS_OSTORE_TEMPORARY_FOLDER_H
#define TESTS_OSTORE_TEMPORARY_FOLDER_H

#include <stdlib.h>

#include <filesystem>
#include <stdexcept>
#include <string>

struct temporary_folder {
    temporary_folder()
    {
        std::string name = std::filesystem::temp_directory_path() / "ostore-test-XXXXXX";
        if (mkdtemp(name.data()) == nullptr)
            throw std::runtime_error("cannot make " + name);
        path = name;
    }
    temporary_folder(const temporary_folder &) = delete;
    temporary_folder &operator=(const temporary_folder &) = delete;
    ~temporary_folder() { std::filesystem::remove_all(path); }

    std::filesystem::path path;
};

#endif
