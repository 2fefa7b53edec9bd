#pragma once
// A unique temporary folder per test, removed afterwards.

#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <random>
#include <sstream>
#include <string>
#include <vector>

namespace torquil::testing {

// One folder per test run under the system's temporary folder. Its name travels in the
// environment, so a death test's child (a re-run of the test binary on Windows) finds the
// same folders as its parent.
inline const std::filesystem::path& testRunRoot() {
    struct Root {
        std::filesystem::path path;
        bool owned = false;
        Root() {
            constexpr const char* kVariable = "TORQUIL_TEST_ROOT";
            if (const char* given = std::getenv(kVariable); given && *given) {
                path = given;
                return;
            }
            std::random_device random;
            path = std::filesystem::temp_directory_path() /
                   ("torquil-tests-" + std::to_string(random()) + std::to_string(random()));
            owned = true;
            const std::string value = path.string();
#if defined(_WIN32)
            _putenv_s(kVariable, value.c_str());
#else
            setenv(kVariable, value.c_str(), 1);
#endif
        }
        ~Root() {
            std::error_code ec;
            if (owned) std::filesystem::remove_all(path, ec);
        }
    };
    static Root root;
    return root.path;
}

// A unique temporary folder per test, named by the test (a test's folders get the same names
// each time it runs), removed afterwards.
class TempDir {
public:
    TempDir() {
        path_ = testRunRoot() / nextName();
        std::filesystem::remove_all(path_);
        std::filesystem::create_directories(path_);
    }
    ~TempDir() {
        std::error_code ec;
        std::filesystem::remove_all(path_, ec);
    }
    TempDir(const TempDir&) = delete;
    TempDir& operator=(const TempDir&) = delete;
    const std::filesystem::path& path() const { return path_; }
    std::filesystem::path operator/(const std::string& name) const { return path_ / name; }

private:
    static std::string nextName() {
        static std::string lastTest;
        static int counter = 0;
        const auto* info = ::testing::UnitTest::GetInstance()->current_test_info();
        std::string test = info ? std::string(info->test_suite_name()) + "." + info->name()
                                : std::string("outside-tests");
        for (char& c : test)
            if (c == '/' || c == '\\' || c == ':') c = '_';
        if (test != lastTest) {
            lastTest = test;
            counter = 0;
        }
        return test + "-" + std::to_string(counter++);
    }

    std::filesystem::path path_;
};

// The whole of a text file (empty when it cannot be read).
inline std::string readText(const std::filesystem::path& path) {
    std::ifstream in(path);
    std::stringstream text;
    text << in.rdbuf();
    return text.str();
}

inline std::vector<std::string> readLines(const std::filesystem::path& path) {
    std::vector<std::string> lines;
    std::ifstream in(path);
    for (std::string line; std::getline(in, line);) lines.push_back(line);
    return lines;
}

} // namespace torquil::testing
