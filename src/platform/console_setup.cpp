#include "platform/console_setup.h"

#if defined(_WIN32)
#include <fcntl.h>
#include <io.h>
#include <windows.h>

#include <shellapi.h>
#endif

#include <cstdio>

namespace torquil {

#if defined(_WIN32)
namespace {

std::string utf8FromWide(const wchar_t* wide) {
    const int size = WideCharToMultiByte(CP_UTF8, 0, wide, -1, nullptr, 0, nullptr, nullptr);
    if (size <= 1) return {};
    std::string text(static_cast<std::size_t>(size - 1), '\0');
    WideCharToMultiByte(CP_UTF8, 0, wide, -1, text.data(), size, nullptr, nullptr);
    return text;
}

} // namespace
#endif

std::vector<std::string> utf8Arguments(int argc, char** argv) {
    std::vector<std::string> args;
#if defined(_WIN32)
    // argv holds the arguments in the ANSI code page, with "?" for letters it lacks.
    int count = 0;
    if (LPWSTR* wide = CommandLineToArgvW(GetCommandLineW(), &count)) {
        for (int i = 0; i < count; ++i) args.push_back(utf8FromWide(wide[i]));
        LocalFree(wide);
        return args;
    }
#endif
    for (int i = 0; i < argc; ++i) args.emplace_back(argv[i]);
    return args;
}

void setBinaryStdio() {
#if defined(_WIN32)
    std::fflush(stdout);
    std::fflush(stderr);
    _setmode(_fileno(stdout), _O_BINARY);
    _setmode(_fileno(stderr), _O_BINARY);
#endif
}

} // namespace torquil
